#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QStringList>

#include <gtest/gtest.h>

// Every text that a user can see or hear has to come out of the tables of translations.

namespace {

// What a property that shows or says a text is bound to, its further lines included.
const QRegularExpression
    binding(QStringLiteral("(?:^|[\\n{;])\\s*(?:readonly\\s+)?(?:property\\s+string\\s+\\w+|text|"
                           "placeholderText|title|message|hint|label|"
                           "shortcutText|Accessible\\.(?:name|description))\\s*:((?:[^\\n]|\\n\\s*[:?+])*)"));
const QRegularExpression
    translated(QStringLiteral("qsTranslate\\(\\s*\"Qorvane\"\\s*,\\s*\"[^\"]*\"(?:\\s*,\\s*\"[^\"]*\")?"));
const QRegularExpression compared(QStringLiteral("[=!]==?\\s*\"[^\"]*\""));
const QRegularExpression literal(QStringLiteral("\"([^\"]*)\""));
const QRegularExpression letter(QStringLiteral("\\p{L}"));

// Names and addresses rather than texts.
const QStringList notTexts{QStringLiteral("Qorvane")};

QStringList bareTexts(const QString &qml)
{
    QStringList found;
    for (auto match = binding.globalMatch(qml); match.hasNext();) {
        QString expression = match.next().captured(1);
        expression.remove(translated).remove(compared);
        for (auto text = literal.globalMatch(expression); text.hasNext();) {
            const QString word = text.next().captured(1);
            if (word.contains(letter) && !word.startsWith(QLatin1String("image://")) &&
                !notTexts.contains(word))
                found.append(word);
        }
    }
    return found;
}

QStringList qmlFiles()
{
    QStringList files;
    QDirIterator iterator(QStringLiteral(QORVANE_SOURCE_DIR "/Qorvane"), {QStringLiteral("*.qml")},
                          QDir::Files, QDirIterator::Subdirectories);
    while (iterator.hasNext())
        files.append(iterator.next());
    return files;
}

} // namespace

TEST(VisibleTexts, areFoundWhereTheyBypassTheTables)
{
    EXPECT_EQ(bareTexts(QStringLiteral("Label {\n    text: \"Photos\"\n}")),
              QStringList{QStringLiteral("Photos")});
    EXPECT_EQ(bareTexts(QStringLiteral("Label { text: \"照片\" }")), QStringList{QStringLiteral("照片")});
    EXPECT_EQ(bareTexts(QStringLiteral("    Accessible.name: isOn ? qsTranslate(\"Qorvane\", \"On\")\n"
                                       "                          : \"Off\"\n")),
              QStringList{QStringLiteral("Off")});
    for (const char *property : {"label", "shortcutText", "message", "hint", "title"})
        EXPECT_EQ(bareTexts(QStringLiteral("ColumnSplitter { %1: \"Width\" }").arg(QLatin1String(property))),
                  QStringList{QStringLiteral("Width")});
    EXPECT_EQ(bareTexts(QStringLiteral("    readonly property string help: \"Help\"\n")),
              QStringList{QStringLiteral("Help")});
}

TEST(VisibleTexts, areNotMistakenForNamesAndSigns)
{
    for (const char *qml :
         {"    text: qsTranslate(\"Qorvane\", \"Photos\")\n", "    text: count + \" %\"\n",
          "    text: kind === \"video\" ? \"\" : name\n", "    objectName: \"searchField\"\n",
          "    name: \"folder\"\n",
          "    text: qsTranslate(\"Qorvane\", \"items_selected\", \"Items selected count\", 3)\n"})
        EXPECT_EQ(bareTexts(QString::fromUtf8(qml)), QStringList()) << qml;
}

TEST(VisibleTexts, allComeOutOfTheTables)
{
    const QStringList files = qmlFiles();
    ASSERT_GT(files.size(), 20) << "the sources weren't found";
    for (const QString &path : files) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(path);
        EXPECT_EQ(bareTexts(QString::fromUtf8(file.readAll())), QStringList()) << qPrintable(path);
    }
}
