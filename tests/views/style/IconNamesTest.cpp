#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QStringList>

#include <gtest/gtest.h>

// An icon that isn't there is an empty place that nobody misses until the page with it is opened.

namespace {

// What the name of an icon is bound to, its further lines included.
const QRegularExpression
    binding(QStringLiteral("(?<![.\\w])(?:iconName|name)\\s*:((?:[^\\n]|\\n\\s*[:?])*)"));
const QRegularExpression compared(QStringLiteral("[=!]==?\\s*\"[^\"]*\""));
const QRegularExpression literal(QStringLiteral("\"([^\"]+)\""));

QStringList iconNames(const QString &qml)
{
    QStringList names;
    for (auto match = binding.globalMatch(qml); match.hasNext();) {
        QString expression = match.next().captured(1);
        expression.remove(compared);
        for (auto name = literal.globalMatch(expression); name.hasNext();)
            names.append(name.next().captured(1));
    }
    return names;
}

} // namespace

TEST(IconNames, areFoundWhereverAnIconIsNamed)
{
    EXPECT_EQ(iconNames(QStringLiteral("ToolButton {\n    iconName: \"tag\"\n}")), QStringList{"tag"});
    EXPECT_EQ(iconNames(QStringLiteral("Icon { name: \"star.fill\"; size: 13 }")), QStringList{"star.fill"});
    EXPECT_EQ(iconNames(QStringLiteral("    name: isOpen ? \"chevron.down\"\n        : \"chevron.right\"\n")),
              QStringList({"chevron.down", "chevron.right"}));
    EXPECT_EQ(iconNames(QStringLiteral("    name: kind === \"page\" ? \"photo\" : page.iconName\n")),
              QStringList{"photo"});
}

TEST(IconNames, areNotMistakenForOtherNames)
{
    for (const char *qml :
         {"    objectName: \"count\"\n", "    Accessible.name: \"Photos\"\n",
          "    property string iconName: \"\"\n    text: \"Photos\"\n", "    name: row.name\n"})
        EXPECT_EQ(iconNames(QString::fromUtf8(qml)), QStringList()) << qml;
}

TEST(IconNames, allBelongToAnIcon)
{
    int count = 0;
    QDirIterator iterator(QStringLiteral(QORVANE_SOURCE_DIR "/Qorvane/views"), {QStringLiteral("*.qml")},
                          QDir::Files, QDirIterator::Subdirectories);
    while (iterator.hasNext()) {
        QFile file(iterator.next());
        ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(file.fileName());
        for (const QString &name : iconNames(QString::fromUtf8(file.readAll()))) {
            EXPECT_TRUE(QFile::exists(QStringLiteral(":/icons/%1.svg").arg(name)))
                << qPrintable(name) << " in " << qPrintable(file.fileName());
            ++count;
        }
    }
    EXPECT_GT(count, 20) << "the sources weren't found";
}
