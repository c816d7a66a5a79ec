#include "platform/Languages.h"

#include <QLocale>

#include <array>
#include <mutex>
#include <optional>

namespace Qorvane::Languages {

namespace {

struct Override
{
    QStringList preferred;
    QString currentLanguageCode;
};

std::mutex overrideMutex;

std::optional<Override> &currentOverride()
{
    static std::optional<Override> instance;
    return instance;
}

std::optional<Override> copyOfOverride()
{
    const std::scoped_lock lock(overrideMutex);
    return currentOverride();
}

const char *variable(Aspect aspect)
{
    switch (aspect) {
    case Aspect::messages:
        return "LC_MESSAGES";
    case Aspect::collation:
        return "LC_COLLATE";
    case Aspect::dates:
        return "LC_TIME";
    case Aspect::numbers:
        return "LC_NUMERIC";
    }
    return "LC_MESSAGES";
}

// "zh_CN" of "zh_CN.UTF-8@pinyin"; empty for the C locale and for what is no locale's name.
QString plainName(const QString &value)
{
    QString name = value.section(u'.', 0, 0).section(u'@', 0, 0);
    if (name == u"C" || name == u"POSIX" || QLocale(name) == QLocale::c())
        return {};
    return name;
}

// POSIX, "Environment Variables": the first that is set and not empty decides alone.
QString environmentName(Aspect aspect)
{
    for (const char *name : std::array{"LC_ALL", variable(aspect), "LANG"}) {
        const QString value = qEnvironmentVariable(name);
        if (!value.isEmpty())
            return plainName(value);
    }
    return {};
}

QString tag(const QString &localeName)
{
    const QLocale locale(localeName);
    QStringList parts{QLocale::languageToCode(locale.language())};
    // The script tells simplified from traditional Chinese; elsewhere it goes without saying.
    if (locale.language() == QLocale::Chinese)
        parts.append(QLocale::scriptToCode(locale.script()));
    if (localeName.contains(u'_') || localeName.contains(u'-'))
        parts.append(QLocale::territoryToCode(locale.territory()));
    return parts.join(u'-');
}

} // namespace

QStringList preferred()
{
    if (const std::optional<Override> override = copyOfOverride())
        return override->preferred;
    const QString inForce = environmentName(Aspect::messages);
    if (inForce.isEmpty())
        return {QStringLiteral("en")};

    QStringList tags;
    const QStringList wishes = qEnvironmentVariable("LANGUAGE").split(u':', Qt::SkipEmptyParts);
    for (const QString &wish : wishes + QStringList{inForce}) {
        const QString name = plainName(wish);
        if (name.isEmpty())
            continue;
        const QString wished = tag(name);
        if (!tags.contains(wished))
            tags.append(wished);
    }
    return tags;
}

QString currentLanguageCode()
{
    if (const std::optional<Override> override = copyOfOverride())
        return override->currentLanguageCode;
    return QLocale::languageToCode(QLocale(localeName(Aspect::messages)).language());
}

QString localeName(Aspect aspect)
{
    const QString name = environmentName(aspect);
    return name.isEmpty() ? QStringLiteral("en_US") : name;
}

void overrideForTests(const QStringList &preferred, const QString &currentLanguageCode)
{
    const std::scoped_lock lock(overrideMutex);
    currentOverride() = Override{preferred, currentLanguageCode};
}

void endOverrideForTests()
{
    const std::scoped_lock lock(overrideMutex);
    currentOverride().reset();
}

} // namespace Qorvane::Languages
