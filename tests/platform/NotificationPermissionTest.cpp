#include "platform/NotificationPermission.h"

#include "platform/MainQueue.h"
#include "support/LogCapture.h"
#include "support/Waiting.h"

#include <gtest/gtest.h>

#include <optional>

using namespace Qorvane;

TEST(NotificationPermission, isAlwaysGrantedOnTheGuiThreadWithoutALogLine)
{
    const LogCapture log;
    std::optional<bool> answer;
    bool isOnGuiThread = false;
    NotificationPermission::request([&](bool isGranted) {
        answer = isGranted;
        isOnGuiThread = MainQueue::isCurrent();
    });
    EXPECT_FALSE(answer.has_value());
    NotificationPermission::request();
    ASSERT_TRUE(waitUntil([&answer] { return answer.has_value(); }));

    EXPECT_TRUE(*answer);
    EXPECT_TRUE(isOnGuiThread);
    EXPECT_TRUE(log.lines().isEmpty());
}
