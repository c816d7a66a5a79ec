#include "library/FolderLibraryFixture.h"
#include "media/ThumbnailPaths.h"
#include "platform/DetachedTask.h"
#include "support/Waiting.h"

#include <QDir>
#include <QLockFile>

using namespace Qorvane;

using State = FolderProcessingState;

class FolderSavingTest : public FolderLibraryFixture
{
};

namespace {

/// Keeps the user's settings from being written, as a disk that doesn't answer does.
class HeldSettings
{
public:
    HeldSettings()
        : m_lock(qEnvironmentVariable("XDG_CONFIG_HOME") + QStringLiteral("/Qorvane/Qorvane.ini.lock"))
    {
        m_lock.setStaleLockTime(0); // never taken over
        EXPECT_TRUE(m_lock.tryLock());
    }
    void letGo() { m_lock.unlock(); }

private:
    QLockFile m_lock;
};

} // namespace

TEST_F(FolderSavingTest, aSaveThatHangsKeepsNeitherTheWindowNorTheNewFolderWaiting)
{
    start({.bookmarkPatience = 0.01});
    addRoot(two);
    HeldSettings settings;
    qorManager->addFolder(one);
    ASSERT_TRUE(waitUntil([&] {
        return qorManager->folderProcessingStatus().value(one.path(), State::idle) == State::completed;
    }));
    qorManager->removeFolderFromLibrary(qorManager->libraryFolders().first());
    EXPECT_EQ(rootNames(), QStringList{QStringLiteral("one")});
    settings.letGo();
    EXPECT_EQ(stored("libraryFolders"), QList<QByteArray>{bookmark(QStringLiteral("one"))});
}

TEST_F(FolderSavingTest, whatFollowsASaveComesAfterIt)
{
    addRoot(two);
    home.log().clear();
    HeldSettings settings;
    qorManager->addFolder(one);
    ASSERT_TRUE(waitUntil([&] { return rootNames().size() == 2; }));
    EXPECT_FALSE(qorManager->folderProcessingStatus().contains(one.path()));
    EXPECT_EQ(home.log().lines(), QStringList());
    settings.letGo();
    ASSERT_TRUE(waitUntil([&] { return qorManager->folderProcessingStatus().contains(one.path()); }));
    EXPECT_EQ(UserDefaults::standard().dataArray(QStringLiteral("libraryFolders")),
              (QList<QByteArray>{bookmark(QStringLiteral("two")), bookmark(QStringLiteral("one"))}));
}

TEST_F(FolderSavingTest, theProgramsEndWaitsForWhatIsToBeSaved)
{
    HeldSettings settings;
    QCoreApplication *application = QCoreApplication::instance();
    const auto release = QObject::connect(application, &QCoreApplication::aboutToQuit, application,
                                          [&settings] { settings.letGo(); });
    // Anew, so that the library hears of the end after the settings can be written.
    qorManager = std::make_unique<QorManage>();
    qorManager->addToFavorites({one, std::nullopt});

    tellOfTheEnd();

    EXPECT_EQ(UserDefaults::standard().dataArray(QStringLiteral("favoriteFolders")),
              QList<QByteArray>{bookmark(QStringLiteral("one"))});
    QObject::disconnect(release);
}

TEST_F(FolderSavingTest, theProgramsEndStoresFoldersWhoseTreesAreStillRead)
{
    addRoot(two);
    qorManager->addFolder(one);
    qorManager->addFolder(two);
    qorManager->addFolder(three);
    tellOfTheEnd();
    EXPECT_EQ(UserDefaults::standard().dataArray(QStringLiteral("libraryFolders")),
              (QList<QByteArray>{bookmark(QStringLiteral("two")), bookmark(QStringLiteral("one")),
                                 bookmark(QStringLiteral("three"))}));
}

TEST_F(FolderSavingTest, theProgramsEndStoresARemovalThatWaitsForAFolderBeingAdded)
{
    addRoot(two);
    qorManager->addFolder(one);
    qorManager->removeFolderFromLibrary({two, std::nullopt});
    qorManager->removeFolderFromLibrary({three, std::nullopt});
    tellOfTheEnd();
    EXPECT_EQ(UserDefaults::standard().dataArray(QStringLiteral("libraryFolders")),
              QList<QByteArray>{bookmark(QStringLiteral("one"))});
}

TEST_F(FolderSavingTest, theProgramsEndStoresAFolderBesideThoseThatAreStillLoaded)
{
    // One whose disk isn't there at the moment: as long as nothing was loaded, nothing is forgotten.
    const QList<QByteArray> earlier{bookmark(QStringLiteral("two")), bookmark(QStringLiteral("absent"))};
    UserDefaults::standard().setDataArray(QStringLiteral("libraryFolders"), earlier);
    qorManager = std::make_unique<QorManage>(nullptr, LibraryTimings{0.01, 0.01, 0.01, 0.01});
    qorManager->addFolder(one);
    qorManager->addFolder(two);
    tellOfTheEnd();
    EXPECT_EQ(UserDefaults::standard().dataArray(QStringLiteral("libraryFolders")),
              earlier + QList<QByteArray>{bookmark(QStringLiteral("one"))});
}

TEST_F(FolderSavingTest, theProgramsEndTellsOfASaveThatItGaveUp)
{
    HeldSettings settings;
    qorManager->addToFavorites({one, std::nullopt});
    home.log().clear();
    tellOfTheEnd();
    settings.letGo();
    EXPECT_EQ(home.log().linesStartingWith(QStringLiteral("Error saving bookmarks: ")).size(), 1);
    EXPECT_TRUE(home.log().linesStartingWith(QStringLiteral("Error saving tags")).isEmpty());
}

TEST_F(FolderSavingTest, theFoldersAreChangingUntilAnAddedOneIsStored)
{
    EXPECT_FALSE(qorManager->isChangingFolders());
    HeldSettings settings;
    qorManager->addFolder(one);
    EXPECT_TRUE(qorManager->isChangingFolders());
    ASSERT_TRUE(waitUntil([&] { return rootNames().size() == 1; }));
    EXPECT_TRUE(qorManager->isChangingFolders());
    settings.letGo();
    EXPECT_TRUE(waitUntil([&] { return !qorManager->isChangingFolders(); }));
    EXPECT_EQ(stored("libraryFolders"), QList<QByteArray>{bookmark(QStringLiteral("one"))});
}

TEST_F(FolderSavingTest, aFirstFolderIsPublishedThenStoredThenSelectedThenPrepared)
{
    QStringList steps;
    const auto stored = [] {
        return UserDefaults::standard()
            .dataArray(QStringLiteral("libraryFolders"))
            .value_or(QList<QByteArray>())
            .size();
    };
    QObject::connect(qorManager.get(), &QorManage::libraryFoldersChanged, qorManager.get(),
                     [&] { steps.append(QStringLiteral("published %1").arg(rootNames().size())); });
    QObject::connect(qorManager.get(), &QorManage::selectedFolderChanged, qorManager.get(),
                     [&] { steps.append(QStringLiteral("selected, stored %1").arg(stored())); });
    QObject::connect(qorManager.get(), &QorManage::isLoadingChanged, qorManager.get(), [&] {
        if (qorManager->isLoading())
            steps.append(QStringLiteral("loading"));
    });
    QObject::connect(qorManager.get(), &QorManage::folderProcessingStatusChanged, qorManager.get(), [&] {
        if (qorManager->folderProcessingStatus().value(one.path(), State::idle) == State::thumbnails)
            steps.append(QStringLiteral("prepared"));
    });
    addRoot(one);
    EXPECT_EQ(steps, (QStringList{QStringLiteral("published 1"), QStringLiteral("selected, stored 1"),
                                  QStringLiteral("loading"), QStringLiteral("prepared")}));
}

TEST_F(FolderSavingTest, loadedRootsArePublishedAndStoredBeforeTheLoadCallsBack)
{
    addRoot(one);
    addRoot(two);
    DetachedTask::waitUntilIdle();
    settle();
    QDir(one.path()).removeRecursively();
    QStringList steps;
    QObject::connect(qorManager.get(), &QorManage::libraryFoldersChanged, qorManager.get(),
                     [&] { steps.append(QStringLiteral("published ") + rootNames().join(u' ')); });
    qorManager->loadBookmarks([&] {
        const auto roots = UserDefaults::standard().dataArray(QStringLiteral("libraryFolders"));
        steps.append(
            QStringLiteral("called back, stored %1").arg(roots.value_or(QList<QByteArray>()).size()));
    });
    ASSERT_TRUE(waitUntil([&] { return steps.size() == 2; }));
    EXPECT_EQ(steps, (QStringList{QStringLiteral("published two"), QStringLiteral("called back, stored 1")}));
}
