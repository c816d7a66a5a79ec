#include "views/folders/FolderBrowser.h"

#include "platform/GlobalQueue.h"
#include "support/DeadDrive.h"
#include "support/Printing.h"
#include "support/Waiting.h"

#include <QAbstractItemModelTester>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>

using namespace Qorvane;

namespace {

class FolderBrowserTest : public testing::Test
{
protected:
    FolderBrowserTest()
    {
        for (const char *name : {"img10", "img2", "照片/inner", ".hidden", "empty"})
            EXPECT_TRUE(QDir(m_place.path()).mkpath(QString::fromUtf8(name)));
        QFile file(m_place.filePath(QStringLiteral("a file.jpg")));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        EXPECT_TRUE(
            QFile::link(m_place.filePath(QStringLiteral("empty")), m_place.filePath(QStringLiteral("link"))));
    }

    void open(const QString &path)
    {
        browser.open(path);
        ASSERT_TRUE(waitUntil([this] { return browser.state() != FolderBrowser::Reading; }));
    }

    QStringList names() const
    {
        return texts([](const QModelIndex &) { return true; });
    }
    QStringList selected() const
    {
        return texts(
            [](const QModelIndex &index) { return index.data(FolderBrowser::IsSelectedRole).toBool(); });
    }
    QStringList chosen() const
    {
        QStringList paths;
        for (const QUrl &url : browser.chosen())
            paths.append(url.toLocalFile());
        return paths;
    }
    QString path(const char *name) const { return m_place.filePath(QString::fromUtf8(name)); }

    const QTemporaryDir m_place;
    FolderBrowser browser;
    QAbstractItemModelTester tester{&browser, QAbstractItemModelTester::FailureReportingMode::Fatal};

private:
    template <typename Wanted>
    QStringList texts(const Wanted &wanted) const
    {
        QStringList list;
        for (int row = 0; row < browser.rowCount(); ++row) {
            if (wanted(browser.index(row)))
                list.append(browser.index(row).data(FolderBrowser::NameRole).toString());
        }
        return list;
    }
};

/// A browser over a drive that doesn't answer at "/dead", and one folder everywhere else.
class HangingFolderTest : public testing::Test
{
protected:
    void open(const char *path) const { browser->open(QString::fromLatin1(path)); }

    bool waitForReads(int count)
    {
        return waitUntil([this, count] { return drive.reads() == count; });
    }

    DeadDrive drive;
    std::unique_ptr<FolderBrowser> browser =
        std::make_unique<FolderBrowser>([read = drive.reading()](const QString &path) {
            if (path.startsWith(QStringLiteral("/dead")))
                read();
            return QStringList{QStringLiteral("in ") + path};
        });
};

} // namespace

TEST_F(FolderBrowserTest, listsFoldersInTheOrderOfFileManagers)
{
    open(m_place.path());
    EXPECT_EQ(names(), (QStringList{QStringLiteral("empty"), QStringLiteral("img2"), QStringLiteral("img10"),
                                    QStringLiteral("link"), QStringLiteral("照片")}));
    EXPECT_EQ(browser.path(), m_place.path());
}

TEST_F(FolderBrowserTest, beginsAtHome)
{
    open({});
    EXPECT_EQ(browser.path(), QDir::homePath());
    EXPECT_EQ(chosen(), QStringList()) << "all of it is chosen by selecting it only";
}

TEST_F(FolderBrowserTest, theRootOfAllIsNotChosenByMistake)
{
    EXPECT_EQ(chosen(), QStringList());
    open(QStringLiteral("/"));
    EXPECT_EQ(chosen(), QStringList());
}

TEST_F(FolderBrowserTest, withNothingSelectedTheFolderItselfIsChosen)
{
    open(m_place.path());
    EXPECT_EQ(chosen(), QStringList{m_place.path()});
}

TEST_F(FolderBrowserTest, severalAreChosenInTheOrderOfTheList)
{
    open(m_place.path());
    browser.click(4, Qt::NoModifier);
    browser.click(1, Qt::ControlModifier);
    EXPECT_EQ(chosen(), (QStringList{path("img2"), path("照片")}));
    EXPECT_EQ(browser.selectionCount(), 2);
    browser.click(4, Qt::ControlModifier);
    EXPECT_EQ(chosen(), QStringList{path("img2")});
    browser.click(0, Qt::NoModifier);
    EXPECT_EQ(chosen(), QStringList{path("empty")});
}

TEST_F(FolderBrowserTest, shiftSelectsFromTheLastPlainClick)
{
    open(m_place.path());
    browser.click(2, Qt::NoModifier);
    browser.click(4, Qt::ShiftModifier);
    EXPECT_EQ(selected(),
              (QStringList{QStringLiteral("img10"), QStringLiteral("link"), QStringLiteral("照片")}));
    browser.click(1, Qt::ShiftModifier);
    EXPECT_EQ(selected(), (QStringList{QStringLiteral("img2"), QStringLiteral("img10")}));
}

TEST_F(FolderBrowserTest, goesIntoAFolderAndBackToIt)
{
    open(m_place.path());
    browser.openRow(4);
    ASSERT_TRUE(waitUntil([this] { return browser.path() == path("照片"); }));
    EXPECT_EQ(names(), QStringList{QStringLiteral("inner")});
    EXPECT_EQ(browser.selectionCount(), 0);
    browser.openParent();
    ASSERT_TRUE(waitUntil([this] { return browser.path() == m_place.path(); }));
    EXPECT_EQ(selected(), QStringList{QStringLiteral("照片")});
}

TEST_F(FolderBrowserTest, everyNewListAnnouncesItsCurrentRow)
{
    open(m_place.path());
    EXPECT_EQ(browser.currentRow(), -1);
    browser.click(4, Qt::NoModifier);
    EXPECT_EQ(browser.currentRow(), 4);
    int announced = 0;
    QObject::connect(&browser, &FolderBrowser::currentRowChanged, [&] { ++announced; });
    browser.openCurrentRow();
    ASSERT_TRUE(waitUntil([this] { return browser.path() == path("照片"); }));
    EXPECT_EQ(browser.currentRow(), -1);
    EXPECT_EQ(announced, 1);
    open(path("empty"));
    EXPECT_EQ(announced, 2) << "also where it is the same as before";
    browser.openParent();
    ASSERT_TRUE(waitUntil([this] { return browser.path() == m_place.path(); }));
    EXPECT_EQ(browser.currentRow(), 0);
    EXPECT_EQ(announced, 3);
}

TEST_F(FolderBrowserTest, theCurrentRowStaysWithinTheList)
{
    open(path("empty"));
    browser.moveCurrentRow(1, Qt::NoModifier);
    EXPECT_EQ(browser.currentRow(), -1);
    open(m_place.path());
    browser.moveCurrentRow(-1, Qt::NoModifier);
    EXPECT_EQ(browser.currentRow(), 0);
    browser.moveCurrentRow(-1, Qt::NoModifier);
    EXPECT_EQ(browser.currentRow(), 0);
    browser.moveCurrentRow(9, Qt::NoModifier);
    EXPECT_EQ(browser.currentRow(), 4);
    EXPECT_EQ(selected(), QStringList{QStringLiteral("照片")});
}

TEST_F(FolderBrowserTest, endsAtTheRoot)
{
    open(QStringLiteral("/tmp"));
    EXPECT_TRUE(browser.hasParent());
    browser.openParent();
    ASSERT_TRUE(waitUntil([this] { return browser.path() == QStringLiteral("/"); }));
    EXPECT_FALSE(browser.hasParent());
    browser.openParent();
    EXPECT_EQ(browser.state(), FolderBrowser::Listed);
    EXPECT_EQ(selected(), QStringList{QStringLiteral("tmp")});
    EXPECT_EQ(chosen(), QStringList{QStringLiteral("/tmp")});
}

TEST_F(FolderBrowserTest, whatCannotBeReadLeavesTheListAsItWas)
{
    open(m_place.path());
    const QStringList before = names();
    ASSERT_TRUE(QDir(path("img2")).removeRecursively());
    browser.openRow(1);
    ASSERT_TRUE(waitUntil([this] { return browser.state() == FolderBrowser::Unreadable; }));
    EXPECT_EQ(names(), before);
    EXPECT_EQ(browser.path(), m_place.path());
    browser.click(0, Qt::NoModifier);
    EXPECT_EQ(browser.state(), FolderBrowser::Listed)
        << "another folder is selected than the one in question";
}

TEST_F(FolderBrowserTest, theLastFolderAskedForIsShown)
{
    browser.open(path("照片"));
    browser.open(m_place.path());
    LeavablePool::waitUntilIdle();
    drainMainQueue();
    EXPECT_EQ(browser.path(), m_place.path());
    EXPECT_EQ(browser.count(), 5);
}

TEST_F(FolderBrowserTest, rowsThatAreNotThereAreNotClicked)
{
    open(m_place.path());
    browser.click(-1, Qt::NoModifier);
    browser.click(5, Qt::ControlModifier);
    browser.openRow(5);
    EXPECT_EQ(browser.selectionCount(), 0);
    EXPECT_EQ(browser.state(), FolderBrowser::Listed);
}

TEST_F(HangingFolderTest, isLeftForTheNext)
{
    open("/dead/one");
    ASSERT_TRUE(waitForReads(1));
    open("/dead/two");
    ASSERT_TRUE(waitForReads(2));
    open("/alive");
    ASSERT_TRUE(waitUntil([this] { return browser->state() == FolderBrowser::Listed; }));
    EXPECT_EQ(browser->path(), QStringLiteral("/alive"));
    EXPECT_EQ(drive.answers(), 0);
}

TEST_F(HangingFolderTest, isNotShownWhenItAnswersAfterAnother)
{
    open("/dead");
    ASSERT_TRUE(waitForReads(1));
    open("/alive");
    ASSERT_TRUE(waitUntil([this] { return browser->state() == FolderBrowser::Listed; }));
    drive.comeBack();
    drainMainQueue();
    EXPECT_EQ(browser->path(), QStringLiteral("/alive"));
    EXPECT_EQ(browser->index(0).data().toString(), QStringLiteral("in /alive"));
}

TEST_F(HangingFolderTest, isShownWhenItAnswersInTheEnd)
{
    open("/dead");
    ASSERT_TRUE(waitForReads(1));
    EXPECT_EQ(browser->state(), FolderBrowser::Reading);
    drive.comeBack();
    drainMainQueue();
    EXPECT_EQ(browser->path(), QStringLiteral("/dead"));
}

// The background process ends when these queues are idle, and the library's lists are loaded by them.
TEST_F(HangingFolderTest, isNoWorkOfTheLibrarys)
{
    open("/dead");
    ASSERT_TRUE(waitForReads(1));
    EXPECT_TRUE(GlobalQueue::isIdle());
}

TEST_F(HangingFolderTest, doesNotHoldTheBrowserThatGoes)
{
    open("/dead");
    ASSERT_TRUE(waitForReads(1));
    browser.reset();
    EXPECT_EQ(drive.answers(), 0);
    drive.comeBack();
    drainMainQueue(); // and what it answers reaches nobody
    EXPECT_EQ(drive.answers(), 1);
}
