#include "support/Printing.h"

#include <QBuffer>
#include <QDirIterator>
#include <QFile>
#include <QMap>
#include <QRegularExpression>
#include <QSet>
#include <QXmlStreamReader>

#include <gtest/gtest.h>

#include <algorithm>

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

// How many forms of a text a language has for numbers: one item, two items.
int formCount(const QString &language)
{
    return language == QStringLiteral("zh_CN") ? 1 : 2;
}

// A counted text has an element of its own for each form.
QStringList readForms(QXmlStreamReader &reader, bool isCounted)
{
    if (!isCounted)
        return {reader.readElementText().trimmed()};
    QStringList forms;
    while (reader.readNextStartElement())
        forms.append(reader.readElementText().trimmed());
    return forms;
}

Translations read(QIODevice *file, const QString &language)
{
    Translations translations;
    QXmlStreamReader reader(file);
    QString source;
    bool isCounted = false;
    while (!reader.atEnd()) {
        if (reader.readNext() != QXmlStreamReader::StartElement)
            continue;
        if (reader.name() == u"message")
            isCounted = reader.attributes().value(QLatin1String("numerus")) == u"yes";
        if (reader.name() == u"source")
            source = reader.readElementText();
        if (reader.name() != u"translation")
            continue;
        const bool isMarked = reader.attributes().hasAttribute(QStringLiteral("type"));
        const QStringList forms = readForms(reader, isCounted);
        const bool isEmpty = std::ranges::any_of(forms, [](const QString &form) { return form.isEmpty(); });
        if (isMarked || isEmpty)
            translations.faults.append(QStringLiteral("not translated: ") + source);
        const int expected = isCounted ? formCount(language) : 1;
        if (forms.size() != expected)
            translations.faults.append(QStringLiteral("not %1 forms: ").arg(expected) + source);
        if (translations.texts.contains(source))
            translations.faults.append(QStringLiteral("twice: ") + source);
        translations.texts.insert(source, forms.join(QLatin1Char('\n')));
    }
    if (reader.hasError())
        translations.faults.append(reader.errorString());
    return translations;
}

Translations read(const QString &language)
{
    Translations translations;
    QFile file(sourceFile(QStringLiteral("Qorvane/resources/translations/qorvane_%1.ts").arg(language)));
    if (!file.open(QIODevice::ReadOnly)) {
        translations.faults.append(file.errorString());
        return translations;
    }
    return read(&file, language);
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

TEST(Translations, ofACountedTextNoFormMayLack)
{
    const auto faults = [](const char *forms, const QString &language) {
        QByteArray table = "<TS><message numerus=\"yes\"><source>%n items</source><translation>" +
                           QByteArray(forms) + "</translation></message></TS>";
        QBuffer file(&table);
        file.open(QIODevice::ReadOnly);
        return read(&file, language).faults;
    };
    const QString english = QStringLiteral("en");
    const QString chinese = QStringLiteral("zh_CN");
    const char *one = "<numerusform>%n items</numerusform>";
    const char *two = "<numerusform>%n item</numerusform><numerusform>%n items</numerusform>";
    EXPECT_TRUE(faults(two, english).isEmpty());
    EXPECT_TRUE(faults(one, chinese).isEmpty());
    EXPECT_FALSE(faults("<numerusform>%n item</numerusform><numerusform></numerusform>", english).isEmpty());
    EXPECT_FALSE(faults(one, english).isEmpty());
    EXPECT_FALSE(faults(two, chinese).isEmpty());
}

TEST(Translations, coverWhatTheProgramAsksFor)
{
    const QSet<QString> keys = askedFor();
    EXPECT_TRUE(keys.contains(QStringLiteral("Add Folder"))) << "the sources weren't read";
    const QMap<QString, QString> english = read(QStringLiteral("en")).texts;
    for (const QString &key : keys)
        EXPECT_TRUE(english.contains(key)) << qPrintable(key);
}

// Texts of entries and windows that are still to come: what the program is called with is settled for them.
const QStringList notAskedForYet{QStringLiteral("检查更新..."), QStringLiteral("帮助"),
                                 QStringLiteral("软件更新")};

TEST(Translations, holdNothingThatTheProgramNeverAsksFor)
{
    const QSet<QString> asked = askedFor();
    for (const QString &key : read(QStringLiteral("en")).texts.keys())
        EXPECT_TRUE(asked.contains(key) || notAskedForYet.contains(key)) << qPrintable(key);
    for (const QString &key : notAskedForYet)
        EXPECT_FALSE(asked.contains(key)) << qPrintable(key);
}

} // namespace
