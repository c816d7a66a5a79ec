#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QStringList>

#include <gtest/gtest.h>

// Every colour of the interface is named in Theme.qml, where light and dark meet, and every time.

namespace {

const QRegularExpression literal(QStringLiteral("\"(#[0-9A-Fa-f]{3,8}|[a-z]+)\""));
const QRegularExpression painted(QStringLiteral("(?:[cC]olor|ink|Ink)\\s*:([^\\n]*)"));
const QRegularExpression mixed(QStringLiteral("Qt\\.(?:rgba|hsla|hsva|color|darker|lighter)\\("));

QStringList coloursOfItsOwn(const QString &qml)
{
    QStringList found;
    for (auto match = painted.globalMatch(qml); match.hasNext();) {
        const QString expression = match.next().captured(1);
        for (auto color = literal.globalMatch(expression); color.hasNext();) {
            const QString name = color.next().captured(1);
            if (name != QStringLiteral("transparent"))
                found.append(name);
        }
    }
    static const QRegularExpression anywhere(QStringLiteral("\"(#[0-9A-Fa-f]{3,8})\""));
    for (auto color = anywhere.globalMatch(qml); color.hasNext();) {
        if (const QString name = color.next().captured(1); !found.contains(name))
            found.append(name);
    }
    if (mixed.match(qml).hasMatch())
        found.append(mixed.match(qml).captured());
    return found;
}

QStringList timesOfItsOwn(const QString &qml)
{
    static const QRegularExpression time(
        QStringLiteral("(?:duration|interval|delay|timeout)\\s*:\\s*([1-9][0-9]*)"),
        QRegularExpression::CaseInsensitiveOption);
    QStringList found;
    for (auto match = time.globalMatch(qml); match.hasNext();)
        found.append(match.next().captured(1));
    return found;
}

} // namespace

TEST(ThemeOnly, timesAreFoundWhereTheyBypassTheTheme)
{
    EXPECT_EQ(timesOfItsOwn(QStringLiteral("    interval: 300\n    sweepDuration: 1000\n")),
              QStringList({"300", "1000"}));
    // Nothing is a time to wait for.
    EXPECT_EQ(timesOfItsOwn(QStringLiteral("    interval: 0\n    duration: Theme.quick\n")), QStringList());
}

TEST(ThemeOnly, coloursAreFoundWhereTheyBypassTheTheme)
{
    for (const char *qml : {"    color: \"#FFFFFF\"\n", "    border.color: isOn ? Theme.accent : \"white\"\n",
                            "    progressColor: \"red\"\n", "    readonly property var shades: [\"#fff\"]\n",
                            "    color: Qt.rgba(0, 0, 0, 0.5)\n"})
        EXPECT_EQ(coloursOfItsOwn(QString::fromUtf8(qml)).size(), 1) << qml;
    for (const char *qml :
         {"    color: \"transparent\"\n", "    color: Qt.alpha(Theme.window, 0.72)\n",
          "    name: \"folder\"\n", "    color: row.isSelected ? Theme.accentInk : Theme.text\n"})
        EXPECT_EQ(coloursOfItsOwn(QString::fromUtf8(qml)), QStringList()) << qml;
}

TEST(ThemeOnly, allColoursAndTimesComeOutOfTheTheme)
{
    int count = 0;
    QDirIterator iterator(QStringLiteral(QORVANE_SOURCE_DIR "/Qorvane"), {QStringLiteral("*.qml")},
                          QDir::Files, QDirIterator::Subdirectories);
    while (iterator.hasNext()) {
        QFile file(iterator.next());
        if (file.fileName().endsWith(QStringLiteral("/Theme.qml")))
            continue;
        ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(file.fileName());
        const QString qml = QString::fromUtf8(file.readAll());
        EXPECT_EQ(coloursOfItsOwn(qml), QStringList()) << qPrintable(file.fileName());
        EXPECT_EQ(timesOfItsOwn(qml), QStringList()) << qPrintable(file.fileName());
        ++count;
    }
    EXPECT_GT(count, 20) << "the sources weren't found";
}
