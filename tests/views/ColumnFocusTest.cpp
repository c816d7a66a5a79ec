#include "views/ColumnFocus.h"

#include <QSignalSpy>

#include <gtest/gtest.h>

using namespace Qorvane;

TEST(ColumnFocus, belongsToNoColumnAtFirst)
{
    const ColumnFocus focus;
    EXPECT_EQ(focus.focusedField(), std::nullopt);
    EXPECT_FALSE(focus.isOnSidebar());
    EXPECT_FALSE(focus.isOnDetail());
}

TEST(ColumnFocus, theUserTakesTheKeysToAColumnEvenIfTheyAreItsOwnAlready)
{
    ColumnFocus focus;
    const QSignalSpy wanted(&focus, &ColumnFocus::detailWanted);
    const QSignalSpy changed(&focus, &ColumnFocus::focusedFieldChanged);
    focus.focusDetail();
    focus.focusDetail();
    EXPECT_TRUE(focus.isOnDetail());
    EXPECT_EQ(wanted.count(), 2);
    EXPECT_EQ(changed.count(), 1);
}

TEST(ColumnFocus, whereTheUserIsAlreadyNothingIsTaken)
{
    ColumnFocus focus;
    const QSignalSpy wanted(&focus, &ColumnFocus::sidebarWanted);
    focus.noteSidebar();
    EXPECT_TRUE(focus.isOnSidebar());
    EXPECT_EQ(wanted.count(), 0);
}

TEST(ColumnFocus, theProgramLeavesTheKeysToWhoIsTypingAQuery)
{
    ColumnFocus focus;
    const QSignalSpy wanted(&focus, &ColumnFocus::sidebarWanted);
    focus.setLentToSearch(true);
    focus.settleOn(FocusableField::sidebar);
    EXPECT_TRUE(focus.isOnSidebar());
    EXPECT_EQ(wanted.count(), 0);
    focus.setLentToSearch(false);
    focus.settleOn(FocusableField::sidebar);
    EXPECT_EQ(wanted.count(), 1);
}
