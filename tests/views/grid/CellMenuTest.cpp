#include "platform/GlobalQueue.h"
#include "support/MessageBus.h"
#include "views/GridFixture.h"

#include <QDBusConnection>

using namespace Qorvane;

namespace {

const QString connectionName = QStringLiteral("file manager");

/// The window on a message bus of our own, with a file manager of our own on it.
class CellMenuTest : public GridFixture
{
protected:
    static void SetUpTestSuite()
    {
        s_bus = std::make_unique<MessageBus>();
        ASSERT_TRUE(s_bus->isRunning());
    }
    static void TearDownTestSuite() { s_bus.reset(); }

    void SetUp() override
    {
        QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, connectionName);
        ASSERT_TRUE(bus.registerObject(QStringLiteral("/org/freedesktop/FileManager1"), &fileManager,
                                       QDBusConnection::ExportAllSlots));
        ASSERT_TRUE(bus.registerService(QStringLiteral("org.freedesktop.FileManager1")));
        GridFixture::SetUp();
    }
    void TearDown() override
    {
        GlobalQueue::waitUntilIdle();
        QDBusConnection::disconnectFromBus(connectionName);
    }

    void waitForMenu()
    {
        ASSERT_TRUE(waitUntil([this] { return popupItem("openInFinder") != nullptr; }));
        waitForFrame();
    }
    void chooseOpenInFinder()
    {
        click(popupItem("openInFinder"));
        ASSERT_TRUE(waitUntil([this] { return !fileManager.m_shown.isEmpty(); }));
    }

    static inline std::unique_ptr<MessageBus> s_bus;
    FileManager fileManager;
};

TEST_F(CellMenuTest, openInFinderShowsTheCellsFileAndLeavesTheSelection)
{
    showFolder(4);
    clickPicture("photoGrid", 0);
    clickPicture("photoGrid", 1, Qt::ControlModifier);
    clickPicture("photoGrid", 3, {}, Qt::RightButton);
    waitForMenu();
    EXPECT_EQ(popupItem("openInFinder")->property("text").toString(), QStringLiteral("Open in Finder"));
    EXPECT_EQ(selected(), (QSet<FileUrl>{picture(0), picture(1)}));
    chooseOpenInFinder();
    EXPECT_EQ(fileManager.m_shown, QStringList{picture(3).absoluteString()});
    EXPECT_EQ(selected(), (QSet<FileUrl>{picture(0), picture(1)}));
}

TEST_F(CellMenuTest, onOneOfSeveralSelectedItIsStillThatFileAlone)
{
    showFolder(4);
    clickPicture("photoGrid", 0);
    clickPicture("photoGrid", 1, Qt::ControlModifier);
    clickPicture("photoGrid", 1, {}, Qt::RightButton);
    waitForMenu();
    chooseOpenInFinder();
    EXPECT_EQ(fileManager.m_shown, QStringList{picture(1).absoluteString()});
}

TEST_F(CellMenuTest, aHitHasTheSameMenu)
{
    showFolder(4);
    showResults({2, 3});
    clickPicture("resultsGrid", 1, {}, Qt::RightButton);
    waitForMenu();
    chooseOpenInFinder();
    EXPECT_EQ(fileManager.m_shown, QStringList{picture(3).absoluteString()});
    EXPECT_TRUE(selected().isEmpty());
}

TEST_F(CellMenuTest, theKeyboardOpensItForTheFirstSelectedCellAndBringsThatIntoView)
{
    showFolder(60);
    clickPicture("photoGrid", 2);
    clickPicture("photoGrid", 1, Qt::ControlModifier);
    setPosition("photoGrid", 1500);
    QTest::keyClick(window.get(), Qt::Key_F10, Qt::ShiftModifier);
    waitForMenu();
    EXPECT_TRUE(isInView("photoGrid", 1));
    chooseOpenInFinder();
    EXPECT_EQ(fileManager.m_shown, QStringList{picture(1).absoluteString()});
}

TEST_F(CellMenuTest, theMenuKeyOpensItTooAndEscapeClosesIt)
{
    showFolder(3);
    clickPicture("photoGrid", 2);
    QTest::keyClick(window.get(), Qt::Key_Menu);
    waitForMenu();
    QTest::keyClick(window.get(), Qt::Key_Escape);
    EXPECT_TRUE(waitUntil([this] { return !popupItem("openInFinder"); }));
    EXPECT_TRUE(item("photoGrid")->hasActiveFocus());
}

TEST_F(CellMenuTest, aKeyRightAfterItIsTheGrids)
{
    showFolder(4);
    clickPicture("photoGrid", 1);
    QTest::keyClick(window.get(), Qt::Key_Menu);
    waitForMenu();
    QTest::keyClick(window.get(), Qt::Key_Escape);
    QTest::keyClick(window.get(), Qt::Key_Right);
    EXPECT_EQ(selected(), QSet<FileUrl>{picture(2)});
    ASSERT_TRUE(waitUntil([this] { return !popupItem("openInFinder"); }));
    QTest::keyClick(window.get(), Qt::Key_Right);
    EXPECT_EQ(selected(), QSet<FileUrl>{picture(3)});
}

TEST_F(CellMenuTest, aClickRightAfterItReachesTheCell)
{
    showFolder(4);
    clickPicture("photoGrid", 3, {}, Qt::RightButton);
    waitForMenu();
    QTest::keyClick(window.get(), Qt::Key_Escape);
    const QObject *const menu = window->findChild<QObject *>(QStringLiteral("cellMenu"));
    ASSERT_TRUE(waitUntil([menu] { return !menu->property("modal").toBool(); }));
    clickPicture("photoGrid", 1);
    EXPECT_EQ(selected(), QSet<FileUrl>{picture(1)});
}

TEST_F(CellMenuTest, theKeysGoBackToTheFieldThatHadThem)
{
    showFolder(4);
    click(item("searchField"));
    clickPicture("photoGrid", 3, {}, Qt::RightButton);
    waitForMenu();
    QTest::keyClick(window.get(), Qt::Key_Escape);
    EXPECT_TRUE(item("searchField")->hasActiveFocus());
    type(QStringLiteral("x"));
    EXPECT_EQ(item("searchField")->property("text").toString(), QStringLiteral("x"));
}

TEST_F(CellMenuTest, withNothingSelectedTheKeyboardHasNoMenu)
{
    showFolder(3);
    clickPicture("photoGrid", 2);
    clickPicture("photoGrid", 2, Qt::ControlModifier);
    QTest::keyClick(window.get(), Qt::Key_Menu);
    waitForFrame();
    EXPECT_FALSE(popupItem("openInFinder"));
}

} // namespace
