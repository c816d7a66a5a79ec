#include "platform/Localization.h"

#include "platform/Languages.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QTranslator>

#include <memory>

namespace Qorvane {

namespace {

struct InstalledTranslators
{
    std::unique_ptr<QTranslator> toolkit;
    std::unique_ptr<QTranslator> program;
};

InstalledTranslators &installed()
{
    static InstalledTranslators instance;
    return instance;
}

// English unless the first language we have a table for is Chinese: the keys are partly Chinese, so a reader
// of neither is helped more by English than by the bare keys.
QString tableName()
{
    for (const QString &language : Languages::preferred()) {
        if (language.startsWith(u"zh", Qt::CaseInsensitive))
            return QStringLiteral("zh_CN");
        if (language.startsWith(u"en", Qt::CaseInsensitive))
            break;
    }
    return QStringLiteral("en");
}

std::unique_ptr<QTranslator> put(const QString &file, const QString &folder)
{
    auto translator = std::make_unique<QTranslator>();
    if (!translator->load(file, folder))
        return nullptr;
    QCoreApplication::installTranslator(translator.get());
    return translator;
}

} // namespace

QString localized(const char *key)
{
    return QCoreApplication::translate(Localization::context, key);
}

QString localizedFormat(const char *key, qint64 first, qint64 second)
{
    // Replaced by hand: QString::arg() warns about a text without places, as a bare key is one.
    QString text = localized(key);
    text.replace(QStringLiteral("%1"), QString::number(first));
    text.replace(QStringLiteral("%2"), QString::number(second));
    return text;
}

QString localizedCount(const char *key, int count)
{
    return QCoreApplication::translate(Localization::context, key, nullptr, count);
}

void Localization::remove()
{
    installed() = {};
}

void Localization::install()
{
    const QString table = tableName();
    remove();
    installed().toolkit =
        put(QStringLiteral("qtbase_") + table, QLibraryInfo::path(QLibraryInfo::TranslationsPath));
    installed().program = put(QStringLiteral("qorvane_") + table, QStringLiteral(":/i18n"));
}

} // namespace Qorvane
