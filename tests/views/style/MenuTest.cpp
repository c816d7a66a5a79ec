#include "support/ConsoleWatch.h"
#include "support/Waiting.h"
#include "views/pictures/PictureQueue.h"
#include "views/pictures/ThumbnailProvider.h"
#include "views/window/ContentWindow.h"

#include <QAccessible>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

#include <memory>

using namespace Qorvane;

namespace {

const QByteArray menuWindow = R"(
import QtQuick
import QtQuick.Templates as T
import QorvaneStyle

T.ApplicationWindow {
    id: window
    property string chosen: ""
    property bool hasDivider: false
    width: 600
    height: 400
    visible: true

    Item {
        objectName: "below"
        width: 600
        height: 400
        focus: true
        Keys.onPressed: window.chosen = "key below"
        TapHandler { onTapped: window.chosen = "below" }
    }
    Menu {
        id: menu
        objectName: "menu"
        title: "Photo"
        MenuHeading { objectName: "heading"; text: "Order" }
        MenuItem { objectName: "first"; text: "First"; shortcutText: "Ctrl+I"; isChoice: true; isChosen: true; onTriggered: window.chosen = "first" }
        MenuItem { objectName: "hidden"; text: "A hidden entry that is by far the longest of them all"; isOffered: false; onTriggered: window.chosen = "hidden" }
        MenuSeparator { objectName: "separator" }
        MenuItem { objectName: "disabled"; text: "Disabled"; enabled: false; onTriggered: window.chosen = "disabled" }
        Menu {
            objectName: "submenu"
            title: "Rotate"
            MenuItem { objectName: "left"; text: "Rotate Left"; onTriggered: window.chosen = "left" }
            MenuItem { objectName: "right"; text: "Rotate Right"; onTriggered: window.chosen = "right" }
        }
        MenuItem { objectName: "delete"; text: "Delete"; isDestructive: true; onTriggered: window.chosen = "delete" }
    }
    function openAt(x, y) { menu.popUpAt(window.contentItem, x, y); }
    function addLongEntry() { menu.addItem(longEntry.createObject(menu.contentItem)); }
    Component { id: longEntry; MenuItem { objectName: "long"; text: "An entry with a text that is much longer than all the others have" } }
}
)";

class MenuTest : public testing::Test
{
protected:
    MenuTest()
    {
        setUpEngine(engine, std::make_unique<ThumbnailProvider>(std::make_shared<PictureQueue>(1),
                                                                [](const QString &) { return QImage(); }));
        QQmlComponent component(&engine);
        component.setData(menuWindow, QUrl());
        if (component.isReady())
            window.reset(qobject_cast<QQuickWindow *>(component.create()));
        else
            qWarning("%s", qUtf8Printable(component.errorString()));
    }

    void SetUp() override
    {
        ASSERT_TRUE(window);
        window->requestActivate();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    }

    void openAt(int x, int y)
    {
        QMetaObject::invokeMethod(window.get(), "openAt", Q_ARG(QVariant, x), Q_ARG(QVariant, y));
        ASSERT_TRUE(waitUntil([this] { return menu()->property("opened").toBool(); }));
    }

    QObject *menu() const { return window->findChild<QObject *>(QStringLiteral("menu")); }
    QObject *submenu() const { return window->findChild<QObject *>(QStringLiteral("submenu")); }

    QQuickItem *entry(const char *name) const
    {
        return window->findChild<QQuickItem *>(QString::fromLatin1(name));
    }

    // A submenu's own entry is made by its menu, without a name.
    QQuickItem *submenuEntry() const
    {
        QQuickItem *item = nullptr;
        QMetaObject::invokeMethod(menu(), "itemAt", Q_RETURN_ARG(QQuickItem *, item), Q_ARG(int, 5));
        return item;
    }

    void press(Qt::Key key) { QTest::keyClick(window.get(), key); }

    static QRectF sceneRect(QQuickItem *item) { return item->mapRectToScene(item->boundingRect()); }
    static QPoint middleOf(QQuickItem *item) { return sceneRect(item).center().toPoint(); }

    QString chosen() const { return window->property("chosen").toString(); }
    bool isOpen() const { return menu()->property("visible").toBool(); }
    QString highlighted() const
    {
        for (QQuickItem *const item : window->findChildren<QQuickItem *>()) {
            if (item->property("highlighted").toBool())
                return item->property("text").toString();
        }
        return {};
    }

    const ConsoleWatch console;
    QQmlEngine engine;
    std::unique_ptr<QQuickWindow> window;
};

} // namespace

TEST_F(MenuTest, opensAtThePlaceItIsAskedForAndStaysInTheWindow)
{
    openAt(100, 60);
    auto *const popup = entry("first")->parentItem()->parentItem()->parentItem();
    EXPECT_EQ(sceneRect(popup).topLeft(), QPointF(100, 60));
    press(Qt::Key_Escape);
    ASSERT_TRUE(waitUntil([this] { return !isOpen(); }));

    openAt(595, 395);
    EXPECT_TRUE(QRectF(0, 0, 600, 400).contains(sceneRect(popup)));
}

TEST_F(MenuTest, isAsWideAsItsLongestEntryOnOffer)
{
    openAt(10, 10);
    const double narrow = entry("first")->width();
    EXPECT_LT(narrow, 220);
    EXPECT_EQ(entry("delete")->width(), narrow);
    EXPECT_EQ(entry("heading")->width(), narrow);
    QMetaObject::invokeMethod(window.get(), "addLongEntry");
    ASSERT_TRUE(waitUntil([&] { return entry("first")->width() > narrow; }));
    EXPECT_GE(entry("first")->width(), entry("long")->implicitWidth());
}

TEST_F(MenuTest, anEntryThatIsNotOnOfferTakesNoRoom)
{
    openAt(10, 10);
    EXPECT_FALSE(entry("hidden")->isVisible());
    EXPECT_EQ(sceneRect(entry("first")).bottom(), sceneRect(entry("separator")).top());
}

TEST_F(MenuTest, arrowsGoFromEntryToEntryOverWhatCannotBeChosen)
{
    openAt(10, 10);
    QStringList visited;
    for (int i = 0; i < 4; ++i) {
        press(Qt::Key_Down);
        visited.append(highlighted());
    }
    EXPECT_EQ(visited, (QStringList{QStringLiteral("First"), QStringLiteral("Rotate"),
                                    QStringLiteral("Delete"), QStringLiteral("Delete")}));
    press(Qt::Key_Up);
    EXPECT_EQ(highlighted(), QStringLiteral("Rotate"));
}

TEST_F(MenuTest, returnChoosesTheEntryOnceAndCloses)
{
    openAt(10, 10);
    press(Qt::Key_Up); // the last one
    EXPECT_EQ(highlighted(), QString());
    press(Qt::Key_Down);
    EXPECT_EQ(highlighted(), QStringLiteral("First"));
    press(Qt::Key_Return);
    EXPECT_EQ(chosen(), QStringLiteral("first"));
    EXPECT_TRUE(waitUntil([this] { return !isOpen(); }));
}

TEST_F(MenuTest, rightOpensTheSubmenuAndLeftLeavesIt)
{
    openAt(10, 10);
    press(Qt::Key_Down);
    press(Qt::Key_Down);
    press(Qt::Key_Right);
    ASSERT_TRUE(waitUntil([this] { return submenu()->property("opened").toBool(); }));
    press(Qt::Key_Left);
    ASSERT_TRUE(waitUntil([this] { return !submenu()->property("visible").toBool(); }));
    EXPECT_TRUE(isOpen());
    press(Qt::Key_Right);
    ASSERT_TRUE(waitUntil([this] { return submenu()->property("opened").toBool(); }));
    press(Qt::Key_Down);
    press(Qt::Key_Return);
    EXPECT_EQ(chosen(), QStringLiteral("right"));
    EXPECT_TRUE(waitUntil([this] { return !isOpen(); }));
}

TEST_F(MenuTest, thePointerOpensTheSubmenuAndChoosesThere)
{
    openAt(10, 10);
    QTest::mouseMove(window.get(), middleOf(entry("first")));
    EXPECT_TRUE(waitUntil([this] { return highlighted() == QStringLiteral("First"); }));
    QTest::mouseMove(window.get(), middleOf(submenuEntry()));
    ASSERT_TRUE(waitUntil([this] { return submenu()->property("opened").toBool(); }));
    EXPECT_GT(sceneRect(entry("left")).left(), sceneRect(entry("first")).right() - 10);
    QTest::mouseMove(window.get(), middleOf(entry("left")));
    QTest::mouseClick(window.get(), Qt::LeftButton, {}, middleOf(entry("left")));
    EXPECT_EQ(chosen(), QStringLiteral("left"));
    EXPECT_TRUE(waitUntil([this] { return !isOpen(); }));
}

TEST_F(MenuTest, thePointerGoesBackFromTheSubmenu)
{
    openAt(10, 10);
    QTest::mouseMove(window.get(), middleOf(submenuEntry()));
    ASSERT_TRUE(waitUntil([this] { return submenu()->property("opened").toBool(); }));
    QTest::mouseMove(window.get(), middleOf(entry("delete")));
    ASSERT_TRUE(waitUntil([this] { return !submenu()->property("visible").toBool(); }));
    QTest::mouseClick(window.get(), Qt::LeftButton, {}, middleOf(entry("delete")));
    EXPECT_EQ(chosen(), QStringLiteral("delete"));
}

TEST_F(MenuTest, aClickOnADisabledEntryDoesNothing)
{
    openAt(10, 10);
    QTest::mouseClick(window.get(), Qt::LeftButton, {}, middleOf(entry("disabled")));
    EXPECT_TRUE(isOpen());
    EXPECT_EQ(chosen(), QString());
}

TEST_F(MenuTest, aKeyRightAfterTheMenuIsForWhoHadTheKeys)
{
    openAt(10, 10);
    press(Qt::Key_Escape);
    ASSERT_TRUE(isOpen()) << "it fades";
    press(Qt::Key_A);
    EXPECT_EQ(chosen(), QStringLiteral("key below"));
    ASSERT_TRUE(waitUntil([this] { return !isOpen(); }));
    EXPECT_TRUE(entry("below")->hasActiveFocus());
}

TEST_F(MenuTest, aKeyRightAfterTheSubmenuIsForWhoHadTheKeys)
{
    openAt(10, 10);
    press(Qt::Key_Down);
    press(Qt::Key_Down);
    press(Qt::Key_Right);
    ASSERT_TRUE(waitUntil([this] { return submenu()->property("opened").toBool(); }));
    press(Qt::Key_Down);
    press(Qt::Key_Return);
    ASSERT_EQ(chosen(), QStringLiteral("right"));
    press(Qt::Key_A);
    EXPECT_EQ(chosen(), QStringLiteral("key below"));
    ASSERT_TRUE(waitUntil([this] { return !isOpen() && !submenu()->property("visible").toBool(); }));
    EXPECT_TRUE(entry("below")->hasActiveFocus());
}

TEST_F(MenuTest, aClickRightAfterTheMenuReachesWhatIsBelow)
{
    openAt(10, 10);
    press(Qt::Key_Escape);
    ASSERT_TRUE(waitUntil([this] { return !menu()->property("modal").toBool(); }));
    QTest::mouseClick(window.get(), Qt::LeftButton, {}, QPoint(500, 350));
    EXPECT_EQ(chosen(), QStringLiteral("below"));
    ASSERT_TRUE(waitUntil([this] { return !isOpen(); }));
}

TEST_F(MenuTest, twoClicksOnAnEntryChooseItOnce)
{
    openAt(10, 10);
    QSignalSpy choices(entry("first"), SIGNAL(triggered()));
    const QPoint middle = middleOf(entry("first"));
    QTest::mouseClick(window.get(), Qt::LeftButton, {}, middle);
    QTest::mouseClick(window.get(), Qt::LeftButton, {}, middle);
    EXPECT_EQ(choices.count(), 1);
    EXPECT_EQ(chosen(), QStringLiteral("first")) << "and what is below the menu got neither";
}

TEST_F(MenuTest, canBeOpenedAgainWhileItFades)
{
    openAt(10, 10);
    press(Qt::Key_Escape);
    openAt(60, 60);
    press(Qt::Key_Down);
    press(Qt::Key_Return);
    EXPECT_EQ(chosen(), QStringLiteral("first"));
    ASSERT_TRUE(waitUntil([this] { return !isOpen(); }));
    openAt(10, 10);
    QTest::mouseClick(window.get(), Qt::LeftButton, {}, QPoint(500, 350));
    EXPECT_EQ(chosen(), QStringLiteral("first")) << "the click beside it only closes it";
}

TEST_F(MenuTest, aClickBesideTheMenuOnlyClosesIt)
{
    openAt(10, 10);
    QTest::mouseClick(window.get(), Qt::LeftButton, {}, QPoint(500, 350));
    EXPECT_TRUE(waitUntil([this] { return !isOpen(); }));
    EXPECT_EQ(chosen(), QString());
    QTest::mouseClick(window.get(), Qt::LeftButton, {}, QPoint(500, 350));
    EXPECT_EQ(chosen(), QStringLiteral("below"));
}

TEST_F(MenuTest, aChosenEntryStaysChosenWhenItIsClickedAgain)
{
    openAt(10, 10);
    QTest::mouseClick(window.get(), Qt::LeftButton, {}, middleOf(entry("first")));
    EXPECT_TRUE(entry("first")->property("isChosen").toBool());
    EXPECT_EQ(chosen(), QStringLiteral("first"));
}

TEST_F(MenuTest, entriesHaveNamesAndRolesForScreenReaders)
{
    openAt(10, 10);
    const auto check = [this](const char *name, QAccessible::Role role, const char *text) {
        QAccessibleInterface *const interface = QAccessible::queryAccessibleInterface(entry(name));
        ASSERT_TRUE(interface) << name;
        EXPECT_EQ(interface->role(), role) << name;
        EXPECT_EQ(interface->text(QAccessible::Name).toStdString(), text);
    };
    check("first", QAccessible::MenuItem, "First");
    check("delete", QAccessible::MenuItem, "Delete");
    check("heading", QAccessible::Heading, "Order");
    QAccessibleInterface *const first = QAccessible::queryAccessibleInterface(entry("first"));
    EXPECT_TRUE(first->state().checkable);
    EXPECT_TRUE(first->state().checked);
    EXPECT_EQ(first->text(QAccessible::Description), QStringLiteral("Ctrl+I"));
}
