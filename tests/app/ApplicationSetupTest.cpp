#include "ApplicationSetup.h"

#include <QGuiApplication>
#include <QIcon>

#include <gtest/gtest.h>

using namespace Qorvane;

TEST(ApplicationSetup, givesTheApplicationItsNamesAndItsIcon)
{
    setUpApplication(*qGuiApp);
    EXPECT_EQ(QGuiApplication::applicationName(), QStringLiteral("Qorvane"));
    EXPECT_FALSE(QGuiApplication::applicationVersion().isEmpty());
    EXPECT_EQ(QGuiApplication::desktopFileName(), QStringLiteral("com.qorvane.Qorvane"));
    EXPECT_FALSE(QGuiApplication::windowIcon().pixmap(64).isNull());
    EXPECT_FALSE(QGuiApplication::quitOnLastWindowClosed());
}
