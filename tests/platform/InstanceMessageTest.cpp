#include "platform/InstanceMessage.h"

#include <gtest/gtest.h>

using namespace Qorvane;

TEST(InstanceMessage, showTakesTheDesktopsTokenAlong)
{
    qputenv("XDG_ACTIVATION_TOKEN", "token-7");
    EXPECT_EQ(InstanceMessage::shownWith(InstanceMessage::show()), QByteArray("token-7"));
    qunsetenv("XDG_ACTIVATION_TOKEN");
    EXPECT_EQ(InstanceMessage::shownWith(InstanceMessage::show()), QByteArray());
}

TEST(InstanceMessage, addCarriesPathsAsTheyAre)
{
    const QStringList paths{QStringLiteral("/p/a b"), QStringLiteral("/照片")};
    EXPECT_EQ(InstanceMessage::added(InstanceMessage::add(paths)), paths);
}

TEST(InstanceMessage, noMessageIsTakenForAnother)
{
    EXPECT_FALSE(InstanceMessage::added(InstanceMessage::show()));
    EXPECT_FALSE(InstanceMessage::shownWith(InstanceMessage::add({QStringLiteral("/p")})));
    EXPECT_FALSE(InstanceMessage::added({}));
    EXPECT_FALSE(InstanceMessage::shownWith({}));
    EXPECT_FALSE(InstanceMessage::shownWith({QStringLiteral("of a later release")}));
}
