#include "support/Printing.h"

#include <QDirIterator>
#include <QFile>
#include <QMap>
#include <QRegularExpression>
#include <QSet>
#include <QXmlStreamReader>

#include <gtest/gtest.h>

namespace {

struct Translations
{
    QMap<QString, QString> texts;
    QStringList faults;
};

QString sourceFile(const QString &relative)
{
    return QStringLiteral(QORVANE_SOURCE_DIR "/") + relative;
}

Translations read(const QString &language)
{
    Translations translations;
    QFile file(sourceFile(QStringLiteral("Qorvane/resources/translations/qorvane_%1.ts").arg(language)));
    if (!file.open(QIODevice::ReadOnly)) {
        translations.faults.append(file.errorString());
        return translations;
    }
    QXmlStreamReader reader(&file);
    QString source;
    while (!reader.atEnd()) {
        if (reader.readNext() != QXmlStreamReader::StartElement)
            continue;
        if (reader.name() == u"source")
            source = reader.readElementText();
        if (reader.name() != u"translation")
            continue;
        const bool isMarked = reader.attributes().hasAttribute(QStringLiteral("type"));
        // The forms that a language has for numbers are elements of their own.
        const QString text = reader.readElementText(QXmlStreamReader::IncludeChildElements);
        if (isMarked || text.trimmed().isEmpty())
            translations.faults.append(QStringLiteral("not translated: ") + source);
        if (translations.texts.contains(source))
            translations.faults.append(QStringLiteral("twice: ") + source);
        translations.texts.insert(source, text);
    }
    if (reader.hasError())
        translations.faults.append(reader.errorString());
    return translations;
}

QStringList placeholders(const QString &text)
{
    static const QRegularExpression pattern(QStringLiteral("%[0-9n]"));
    QStringList found;
    for (auto match = pattern.globalMatch(text); match.hasNext();)
        found.append(match.next().captured());
    found.sort();
    found.removeDuplicates(); // languages differ in how many forms they have for a number
    return found;
}

// Every text that the program asks the tables for by a literal.
QSet<QString> askedFor()
{
    static const QRegularExpression pattern(QStringLiteral(
        "(?:qsTranslate\\(\\s*\"Qorvane\"\\s*,\\s*|localized(?:Format|Count)?\\(\\s*)\"([^\"\\n]+)\""));
    QSet<QString> keys;
    QDirIterator files(sourceFile(QStringLiteral("Qorvane")),
                       {QStringLiteral("*.qml"), QStringLiteral("*.cpp")}, QDir::Files,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QFile file(files.next());
        if (!file.open(QIODevice::ReadOnly))
            return {};
        for (auto match = pattern.globalMatch(QString::fromUtf8(file.readAll())); match.hasNext();)
            keys.insert(match.next().captured(1));
    }
    return keys;
}

TEST(Translations, areCompleteInBothLanguages)
{
    for (const char *language : {"en", "zh_CN"}) {
        const Translations translations = read(QLatin1String(language));
        EXPECT_EQ(translations.faults, QStringList()) << language;
        EXPECT_FALSE(translations.texts.isEmpty()) << language;
    }
}

TEST(Translations, haveTheSameKeysInBothLanguages)
{
    EXPECT_EQ(read(QStringLiteral("en")).texts.keys(), read(QStringLiteral("zh_CN")).texts.keys());
}

TEST(Translations, fillInTheSameValuesInBothLanguages)
{
    const QMap<QString, QString> chinese = read(QStringLiteral("zh_CN")).texts;
    const QMap<QString, QString> english = read(QStringLiteral("en")).texts;
    for (auto text = english.cbegin(); text != english.cend(); ++text)
        EXPECT_EQ(placeholders(text.value()), placeholders(chinese.value(text.key())))
            << qPrintable(text.key());
}

TEST(Translations, coverWhatTheProgramAsksFor)
{
    const QSet<QString> keys = askedFor();
    EXPECT_TRUE(keys.contains(QStringLiteral("Add Folder"))) << "the sources weren't read";
    const QMap<QString, QString> english = read(QStringLiteral("en")).texts;
    for (const QString &key : keys)
        EXPECT_TRUE(english.contains(key)) << qPrintable(key);
}

} // namespace
