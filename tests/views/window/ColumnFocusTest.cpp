#include "views/window/ColumnFocus.h"

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
    focus.focusDetail();
    focus.focusDetail();
    EXPECT_TRUE(focus.isOnDetail());
    EXPECT_EQ(wanted.count(), 2);
}

TEST(ColumnFocus, whereTheUserIsAlreadyNothingIsTaken)
{
    ColumnFocus focus;
    const QSignalSpy wanted(&focus, &ColumnFocus::sidebarWanted);
    focus.noteSidebar();
    EXPECT_TRUE(focus.isOnSidebar());
    EXPECT_EQ(wanted.count(), 0);
}

TEST(ColumnFocus, theSearchFieldGivesTheKeysBackToWhoHadThem)
{
    ColumnFocus focus;
    const QSignalSpy toSidebar(&focus, &ColumnFocus::sidebarWanted);
    const QSignalSpy toDetail(&focus, &ColumnFocus::detailWanted);
    focus.giveBack();
    EXPECT_EQ(toSidebar.count(), 1) << "the first to have them";
    focus.noteDetail();
    focus.setLentToSearch(true);
    focus.giveBack();
    EXPECT_EQ(toDetail.count(), 1);
    focus.settleOn(FocusableField::sidebar);
    focus.giveBack();
    EXPECT_EQ(toSidebar.count(), 2);
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
