#include "platform/desktop/InterfaceFont.h"

#include <QFontDatabase>
#include <QFontInfo>
#include <QGuiApplication>

#include <gtest/gtest.h>

using namespace Qorvane;

namespace {

const QString dejaVu = QStringLiteral("DejaVu Sans");
const QString inter = QStringLiteral("Inter");
const QString noto = QStringLiteral("Noto Sans");

} // namespace

TEST(InterfaceFont, isInterWhereNoDesktopNamesOne)
{
    for (const char *generic : {"Sans Serif", "Sans", "sans-serif"})
        EXPECT_EQ(InterfaceFont::betterFamily(QLatin1String(generic), dejaVu, {dejaVu, inter, noto}), inter);
}

TEST(InterfaceFont, isNotoSansWithoutInter)
{
    EXPECT_EQ(InterfaceFont::betterFamily(QStringLiteral("Sans Serif"), dejaVu, {dejaVu, noto}), noto);
}

TEST(InterfaceFont, isTheToolkitsWithoutEither)
{
    EXPECT_EQ(InterfaceFont::betterFamily(QStringLiteral("Sans Serif"), dejaVu, {dejaVu}), std::nullopt);
}

TEST(InterfaceFont, isTheOneThatTheDesktopNames)
{
    const QString cantarell = QStringLiteral("Cantarell");
    EXPECT_EQ(InterfaceFont::betterFamily(cantarell, cantarell, {dejaVu, inter}), std::nullopt);
    EXPECT_EQ(InterfaceFont::betterFamily(dejaVu, dejaVu, {dejaVu, inter}), std::nullopt);
}

TEST(InterfaceFont, isTheOneThatTheUserSetForAllPrograms)
{
    EXPECT_EQ(
        InterfaceFont::betterFamily(QStringLiteral("Sans Serif"), QStringLiteral("Ubuntu"), {dejaVu, inter}),
        std::nullopt);
}

TEST(InterfaceFont, reachesTheApplication)
{
    const QFont before = QGuiApplication::font();
    const std::optional<QString> better =
        InterfaceFont::betterFamily(before.family(), QFontInfo(before).family(), QFontDatabase::families());
    InterfaceFont::install();
    EXPECT_EQ(QGuiApplication::font().family(), better.value_or(before.family()));
    EXPECT_EQ(QGuiApplication::font().pointSizeF(), before.pointSizeF());
    QGuiApplication::setFont(before);
}
