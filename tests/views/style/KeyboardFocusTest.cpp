#include "views/style/KeyboardFocus.h"

#include <QQuickItem>
#include <QQuickWindow>
#include <QShortcut>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qorvane;

namespace {

/// A window with two items that take the keys and a ground that popups lie on.
class KeyboardFocusTest : public testing::Test
{
protected:
    KeyboardFocusTest()
    {
        for (QQuickItem *const item : {&list, &grid, &popups})
            item->setParentItem(window.contentItem());
        menu.setParentItem(&popups);
        window.resize(200, 200);
        focus.follow(&window, &popups);
        window.show();
        window.requestActivate();
    }

    void SetUp() override { ASSERT_TRUE(QTest::qWaitForWindowActive(&window)); }

    void click() { QTest::mouseClick(&window, Qt::LeftButton, {}, QPoint(50, 50)); }

    QQuickWindow window;
    QQuickItem list;
    QQuickItem grid;
    QQuickItem popups;
    QQuickItem menu;
    KeyboardFocus focus;
};

} // namespace

TEST_F(KeyboardFocusTest, isShownFromAKeyToTheNextClick)
{
    list.forceActiveFocus();
    EXPECT_FALSE(focus.isVisible()) << "nobody has touched anything";
    const QSignalSpy changed(&focus, &KeyboardFocus::isVisibleChanged);
    QTest::keyClick(&window, Qt::Key_Tab);
    EXPECT_TRUE(focus.isVisible());
    QTest::keyClick(&window, Qt::Key_Down);
    EXPECT_EQ(changed.count(), 1);
    click();
    EXPECT_FALSE(focus.isVisible());
}

TEST_F(KeyboardFocusTest, isNotShownForAKeyThatIsHeldToClick)
{
    list.forceActiveFocus();
    QTest::keyPress(&window, Qt::Key_Control, Qt::ControlModifier);
    QTest::mouseClick(&window, Qt::LeftButton, Qt::ControlModifier, QPoint(50, 50));
    QTest::keyRelease(&window, Qt::Key_Control);
    EXPECT_FALSE(focus.isVisible());
}

TEST_F(KeyboardFocusTest, isShownForAShortcutThatTakesTheKeysElsewhere)
{
    list.forceActiveFocus();
    QShortcut stays(QKeySequence(Qt::CTRL | Qt::Key_I), &window);
    QTest::keyClick(&window, Qt::Key_I, Qt::ControlModifier);
    EXPECT_FALSE(focus.isVisible());
    grid.forceActiveFocus();
    EXPECT_FALSE(focus.isVisible()) << "the shortcut is over";

    QShortcut goes(QKeySequence(Qt::CTRL | Qt::Key_L), &window);
    QObject::connect(&goes, &QShortcut::activated, &list, [this] { list.forceActiveFocus(); });
    QTest::keyClick(&window, Qt::Key_L, Qt::ControlModifier);
    EXPECT_TRUE(list.hasActiveFocus());
    EXPECT_TRUE(focus.isVisible());
}

TEST_F(KeyboardFocusTest, aPopupKeepsItsKeysToItselfAndTheHolderIsWhoHadThem)
{
    list.forceActiveFocus();
    EXPECT_EQ(focus.holder(), &list);
    const QSignalSpy changed(&focus, &KeyboardFocus::holderChanged);
    menu.forceActiveFocus();
    QTest::keyClick(&window, Qt::Key_Down);
    EXPECT_FALSE(focus.isVisible());
    EXPECT_EQ(focus.holder(), &list);
    list.forceActiveFocus();
    EXPECT_EQ(changed.count(), 0);
    grid.forceActiveFocus();
    EXPECT_EQ(focus.holder(), &grid);
    EXPECT_EQ(changed.count(), 1);
}

TEST_F(KeyboardFocusTest, anotherWindowChangesNothing)
{
    list.forceActiveFocus();
    const QSignalSpy changed(&focus, &KeyboardFocus::holderChanged);
    QQuickWindow other;
    other.show();
    other.requestActivate();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
    ASSERT_FALSE(list.hasActiveFocus());
    EXPECT_EQ(focus.holder(), &list);
    QTest::keyClick(&other, Qt::Key_Tab);
    window.requestActivate();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    EXPECT_TRUE(list.hasActiveFocus());
    EXPECT_EQ(changed.count(), 0);
    EXPECT_FALSE(focus.isVisible());
}

TEST_F(KeyboardFocusTest, knowsWhatLiesInWhat)
{
    EXPECT_TRUE(focus.isWithin(&menu, &popups));
    EXPECT_TRUE(focus.isWithin(&menu, &menu));
    EXPECT_FALSE(focus.isWithin(&popups, &menu));
    EXPECT_FALSE(focus.isWithin(nullptr, &menu));
    EXPECT_FALSE(focus.isWithin(&menu, nullptr));
}
