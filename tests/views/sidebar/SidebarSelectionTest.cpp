#include "views/sidebar/SidebarSelection.h"

#include "library/QorManage.h"
#include "platform/UserDefaults.h"
#include "store/EmbeddingStore.h"
#include "support/LogCapture.h"
#include "support/Printing.h"
#include "support/Waiting.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qorvane;

namespace {

/// The rule over a real library, without a window.
class SidebarSelectionTest : public testing::Test
{
protected:
    SidebarSelectionTest()
    {
        QObject::connect(&library, &QorManage::selectedTagChanged, &library, [this] {
            writes.append(QStringLiteral("tag ") + library.selectedTag().value_or(QStringLiteral("none")));
        });
        QObject::connect(&library, &QorManage::selectedRatingChanged, &library, [this] {
            const std::optional<int> rating = library.selectedRating();
            writes.append(QStringLiteral("rating ") +
                          (rating ? QString::number(*rating) : QStringLiteral("none")));
        });
        QObject::connect(&library, &QorManage::selectedFolderChanged, &library, [this] {
            const std::optional<Folder> folder = library.selectedFolder();
            writes.append(QStringLiteral("folder ") +
                          (folder ? folder->url.lastPathComponent() : QStringLiteral("none")));
        });
    }

    ~SidebarSelectionTest() override
    {
        for (const QString &tag : EmbeddingStore::shared().listAllTags())
            EmbeddingStore::shared().deleteTagGlobally(tag);
        library.cancelAllTasks();
        UserDefaults::standard().remove(QStringLiteral("libraryFolders"));
    }

    void giveTags(const QStringList &tags)
    {
        for (const QString &tag : tags)
            EmbeddingStore::shared().addTag(QStringLiteral("/p/a.jpg"), tag);
        library.refreshAllTags();
        ASSERT_TRUE(waitUntil([&] { return library.allTags().size() == tags.size(); }));
    }

    Folder addFolder(const QString &name)
    {
        const QString path = place.filePath(name);
        QDir().mkpath(path);
        const FileUrl url = FileUrl::directory(path);
        const qsizetype count = library.libraryFolders().size();
        library.addFolder(url);
        EXPECT_TRUE(waitUntil([&] { return library.libraryFolders().size() == count + 1; }));
        // It selects the first one, a moment later.
        EXPECT_TRUE(waitUntil([&] { return count > 0 || library.selectedFolder().has_value(); }));
        return library.libraryFolders().constLast();
    }

    void addFavorite(const Folder &folder)
    {
        library.addToFavorites(folder);
        ASSERT_TRUE(waitUntil([this] { return library.favoriteFolders().size() == 1; }));
    }

    static QString rowOf(const Folder &folder, const char *section = "library")
    {
        return QLatin1String(section) + u'-' + folder.url.absoluteString();
    }

    QStringList takeWrites() { return std::exchange(writes, {}); }

    // Without a "-", which keeps the folders in it from being found by a row's id.
    const QTemporaryDir place{QDir::temp().filePath(QStringLiteral("QorvaneSelectionXXXXXX"))};
    const LogCapture log;
    QorManage library;
    QStringList writes;
    SidebarSelection selection{library};
};

} // namespace

TEST_F(SidebarSelectionTest, beginsWithoutAny)
{
    EXPECT_EQ(selection.id(), std::nullopt);
}

TEST_F(SidebarSelectionTest, aTagIsWrittenFirstAndThenTheOthersAreEmptied)
{
    giveTags({QStringLiteral("Beach")});
    selection.select(QStringLiteral("Beach"));
    EXPECT_EQ(takeWrites(), QStringList({"tag Beach", "folder none", "rating none"}));
    EXPECT_EQ(selection.id(), QStringLiteral("Beach"));
}

TEST_F(SidebarSelectionTest, aRatingIsWrittenFirstAndThenTheOthersAreEmptied)
{
    selection.select(QStringLiteral("rating-4"));
    EXPECT_EQ(takeWrites(), QStringList({"rating 4", "tag none", "folder none"}));
    EXPECT_EQ(selection.id(), QStringLiteral("rating-4"));
}

TEST_F(SidebarSelectionTest, aFolderIsWrittenLast)
{
    addFolder(QStringLiteral("One"));
    const Folder two = addFolder(QStringLiteral("Two"));
    takeWrites();
    selection.select(rowOf(two));
    EXPECT_EQ(takeWrites(), QStringList({"tag none", "rating none", "folder Two"}));
}

TEST_F(SidebarSelectionTest, choosingNothingEmptiesAllThree)
{
    selection.select(QStringLiteral("rating-4"));
    takeWrites();
    selection.select(std::nullopt);
    EXPECT_EQ(takeWrites(), QStringList({"tag none", "rating none", "folder none"}));
}

TEST_F(SidebarSelectionTest, theRowThatIsSelectedAlreadyWritesNothing)
{
    selection.select(QStringLiteral("rating-4"));
    takeWrites();
    selection.select(QStringLiteral("rating-4"));
    EXPECT_EQ(takeWrites(), QStringList());
}

TEST_F(SidebarSelectionTest, aRatingThatIsNoNumberWritesNothing)
{
    selection.select(QStringLiteral("rating-"));
    selection.select(QStringLiteral("rating-many"));
    EXPECT_EQ(takeWrites(), QStringList());
    EXPECT_EQ(selection.id(), QStringLiteral("rating-many"));
}

TEST_F(SidebarSelectionTest, aTagNamedLikeARatingIsTheTag)
{
    giveTags({QStringLiteral("rating-3")});
    selection.select(QStringLiteral("rating-3"));
    EXPECT_EQ(library.selectedTag(), QStringLiteral("rating-3"));
    EXPECT_EQ(library.selectedRating(), std::nullopt);
    EXPECT_EQ(selection.id(), QStringLiteral("rating-3"));
}

TEST_F(SidebarSelectionTest, aTagNamedLikeARatingIsTheTagAfterARatingToo)
{
    giveTags({QStringLiteral("rating-3")});
    selection.select(QStringLiteral("rating-2"));
    selection.select(QStringLiteral("rating-3"));
    EXPECT_EQ(library.selectedTag(), QStringLiteral("rating-3"));
    EXPECT_EQ(library.selectedRating(), std::nullopt);
}

TEST_F(SidebarSelectionTest, aTagNamedLikeARatingIsTheTagWhenItsIdIsSelectedFromTheLibrary)
{
    giveTags({QStringLiteral("rating-3")});
    library.setSelectedTag(QStringLiteral("rating-3"));
    EXPECT_EQ(library.selectedTag(), QStringLiteral("rating-3"));
    EXPECT_EQ(library.selectedRating(), std::nullopt);
}

TEST_F(SidebarSelectionTest, theFirstFolderOfTheLibraryIsMarked)
{
    const Folder folder = addFolder(QStringLiteral("One"));
    EXPECT_EQ(selection.id(), rowOf(folder));
    EXPECT_EQ(library.selectedFolder(), folder);
}

TEST_F(SidebarSelectionTest, theFirstFolderTakesTheRowOfARating)
{
    selection.select(QStringLiteral("rating-3"));
    const Folder folder = addFolder(QStringLiteral("One"));
    EXPECT_EQ(library.selectedFolder(), folder);
    EXPECT_EQ(library.selectedRating(), std::nullopt);
    EXPECT_EQ(selection.id(), rowOf(folder));
}

TEST_F(SidebarSelectionTest, theFirstFolderTakesTheRowOfATag)
{
    giveTags({QStringLiteral("Beach")});
    selection.select(QStringLiteral("Beach"));
    const Folder folder = addFolder(QStringLiteral("my-photos"));
    EXPECT_EQ(library.selectedFolder(), folder);
    EXPECT_EQ(library.selectedTag(), std::nullopt);
    EXPECT_EQ(selection.id(), rowOf(folder));
}

TEST_F(SidebarSelectionTest, theFirstFolderStaysSelectedWithADashInItsName)
{
    const Folder folder = addFolder(QStringLiteral("my-photos"));
    EXPECT_EQ(selection.id(), rowOf(folder));
    EXPECT_EQ(library.selectedFolder(), folder);
}

TEST_F(SidebarSelectionTest, aFolderWithADashInItsNameIsMarkedButNotOpened)
{
    addFolder(QStringLiteral("One"));
    const Folder dashed = addFolder(QStringLiteral("my-photos"));
    selection.select(rowOf(dashed));
    EXPECT_EQ(selection.id(), rowOf(dashed));
    EXPECT_EQ(library.selectedFolder(), std::nullopt);
}

TEST_F(SidebarSelectionTest, eitherRowOfAFavouriteSelectsTheFolder)
{
    const Folder folder = addFolder(QStringLiteral("One"));
    addFavorite(folder);
    for (const char *section : {"favorite", "library"}) {
        selection.select(std::nullopt);
        selection.select(rowOf(folder, section));
        EXPECT_EQ(library.selectedFolder(), folder) << section;
        EXPECT_EQ(selection.id(), rowOf(folder, section)) << section;
    }
}

TEST_F(SidebarSelectionTest, aFavouriteThatTheLibrarySelectsIsMarkedAmongTheFavourites)
{
    const Folder folder = addFolder(QStringLiteral("One"));
    addFavorite(folder);
    selection.select(std::nullopt);
    library.setSelectedFolder(folder);
    EXPECT_EQ(selection.id(), rowOf(folder, "favorite"));
}

TEST_F(SidebarSelectionTest, aFolderThatTheLibrarySelectsLeavesTheUsersRowMarked)
{
    addFolder(QStringLiteral("One"));
    const Folder two = addFolder(QStringLiteral("Two"));
    const std::optional<QString> before = selection.id();
    library.setSelectedFolder(two);
    EXPECT_EQ(selection.id(), before);
    EXPECT_EQ(library.selectedFolder(), two);
}

TEST_F(SidebarSelectionTest, aFolderThatCameBackCanBeChosenAgain)
{
    addFolder(QStringLiteral("One"));
    const Folder two = addFolder(QStringLiteral("Two"));
    selection.select(rowOf(two));
    library.removeFolderFromLibrary(two);
    ASSERT_TRUE(waitUntil([this] { return library.libraryFolders().size() == 1; }));
    EXPECT_EQ(selection.id(), std::nullopt);
    addFolder(QStringLiteral("Two"));
    selection.select(rowOf(two));
    EXPECT_EQ(library.selectedFolder(), two);
}

TEST_F(SidebarSelectionTest, theFolderAfterTheOnlyOneIsMarked)
{
    const Folder one = addFolder(QStringLiteral("One"));
    library.removeFolderFromLibrary(one);
    ASSERT_TRUE(
        waitUntil([this] { return library.libraryFolders().isEmpty() && !library.selectedFolder(); }));
    EXPECT_EQ(selection.id(), std::nullopt);
    const Folder two = addFolder(QStringLiteral("Two"));
    EXPECT_EQ(selection.id(), rowOf(two));
    EXPECT_EQ(library.selectedFolder(), two);
}

TEST_F(SidebarSelectionTest, aFavouriteThatGoesHandsTheMarkToItsFolderInSilence)
{
    const Folder one = addFolder(QStringLiteral("One"));
    const Folder two = addFolder(QStringLiteral("Two"));
    addFavorite(one);
    selection.select(rowOf(one, "favorite"));
    library.removeFolderFromLibrary(two);
    ASSERT_TRUE(waitUntil([this] { return library.libraryFolders().size() == 1; }));
    EXPECT_EQ(selection.id(), rowOf(one, "favorite"));
    takeWrites();
    library.removeFromFavorites(one);
    ASSERT_TRUE(waitUntil([this] { return library.favoriteFolders().isEmpty(); }));
    EXPECT_EQ(selection.id(), rowOf(one));
    EXPECT_EQ(library.selectedFolder(), one);
    EXPECT_EQ(takeWrites(), QStringList());

    selection.select(std::nullopt);
    EXPECT_EQ(selection.id(), std::nullopt);
    EXPECT_EQ(library.selectedFolder(), std::nullopt);
}

// Its own selection is all that the library takes back with a root.
TEST_F(SidebarSelectionTest, aFolderWhoseRootGoesHasNoRowAndCanStillBeLeft)
{
    QDir().mkpath(place.filePath(QStringLiteral("One/Sub")));
    const Folder one = addFolder(QStringLiteral("One"));
    ASSERT_TRUE(one.children && one.children->size() == 1);
    const Folder sub = one.children->constFirst();
    selection.select(rowOf(sub));
    ASSERT_EQ(library.selectedFolder(), sub);
    takeWrites();
    library.removeFolderFromLibrary(one);
    ASSERT_TRUE(waitUntil([this] { return library.libraryFolders().isEmpty(); }));
    EXPECT_EQ(selection.id(), std::nullopt);
    EXPECT_EQ(library.selectedFolder(), sub);
    EXPECT_EQ(takeWrites(), QStringList());

    selection.select(std::nullopt);
    EXPECT_EQ(library.selectedFolder(), std::nullopt);
    takeWrites();
    selection.select(std::nullopt);
    EXPECT_EQ(takeWrites(), QStringList()) << "nothing was left to deselect";
}

TEST_F(SidebarSelectionTest, aSubFolderTakenOutByItselfKeepsItsRowAndCanBeChosenAgain)
{
    QDir().mkpath(place.filePath(QStringLiteral("One/Sub")));
    const Folder one = addFolder(QStringLiteral("One"));
    ASSERT_TRUE(one.children && one.children->size() == 1);
    const Folder sub = one.children->constFirst();
    selection.select(rowOf(sub));
    library.removeFolderFromLibrary(sub);
    ASSERT_TRUE(waitUntil([this] { return !library.selectedFolder(); }));
    EXPECT_EQ(selection.id(), rowOf(sub));
    selection.select(rowOf(sub));
    EXPECT_EQ(library.selectedFolder(), sub);
}

TEST_F(SidebarSelectionTest, aFavouriteWhoseRootGoesKeepsItsRowAndCanBeChosenAgain)
{
    const Folder one = addFolder(QStringLiteral("One"));
    addFolder(QStringLiteral("Two"));
    addFavorite(one);
    selection.select(rowOf(one, "favorite"));
    library.removeFolderFromLibrary(one);
    ASSERT_TRUE(waitUntil([this] { return library.libraryFolders().size() == 1; }));
    ASSERT_TRUE(waitUntil([this] { return !library.selectedFolder(); }));
    EXPECT_EQ(selection.id(), rowOf(one, "favorite"));
    takeWrites();
    selection.select(rowOf(one, "favorite"));
    EXPECT_EQ(library.selectedFolder(), one);
}

TEST_F(SidebarSelectionTest, aFolderWhoseRootGoesKeepsItsMarkAmongTheFavourites)
{
    QDir().mkpath(place.filePath(QStringLiteral("One/Sub")));
    const Folder one = addFolder(QStringLiteral("One"));
    ASSERT_TRUE(one.children && one.children->size() == 1);
    const Folder sub = one.children->constFirst();
    addFavorite(sub);
    selection.select(rowOf(sub));
    library.removeFolderFromLibrary(one);
    ASSERT_TRUE(waitUntil([this] { return library.libraryFolders().isEmpty(); }));
    EXPECT_EQ(selection.id(), rowOf(sub, "favorite"));
    EXPECT_EQ(library.selectedFolder(), sub);
}

TEST_F(SidebarSelectionTest, deletingTheSelectedTagSelectsNothing)
{
    giveTags({QStringLiteral("Beach"), QStringLiteral("Food")});
    selection.select(QStringLiteral("Beach"));
    library.deleteTagGlobally(QStringLiteral("Beach"));
    ASSERT_TRUE(waitUntil([this] { return !library.selectedTag(); }));
    EXPECT_EQ(selection.id(), std::nullopt);
    EXPECT_TRUE(waitUntil([this] { return library.allTags() == QStringList{QStringLiteral("Food")}; }));
    EXPECT_EQ(selection.id(), std::nullopt);
}

TEST_F(SidebarSelectionTest, aTagThatLeavesWithItsLastFileLeavesNoRowSelected)
{
    giveTags({QStringLiteral("Beach"), QStringLiteral("Food")});
    selection.select(QStringLiteral("Beach"));
    library.removeTag(QStringLiteral("Beach"), FileUrl::file(QStringLiteral("/p/a.jpg")));
    ASSERT_TRUE(waitUntil([this] { return !library.selectedTag(); }));
    EXPECT_EQ(selection.id(), std::nullopt);
    giveTags({QStringLiteral("Beach"), QStringLiteral("Food")});
    EXPECT_EQ(selection.id(), std::nullopt);
    selection.select(QStringLiteral("Beach"));
    EXPECT_EQ(library.selectedTag(), QStringLiteral("Beach"));
}

TEST_F(SidebarSelectionTest, aNewWindowMarksWhatIsSelectedAndWritesNothing)
{
    const auto idInNewWindow = [this] {
        takeWrites();
        const SidebarSelection reopened(library);
        EXPECT_EQ(takeWrites(), QStringList());
        return reopened.id();
    };
    giveTags({QStringLiteral("Beach")});
    EXPECT_EQ(idInNewWindow(), std::nullopt);
    const Folder folder = addFolder(QStringLiteral("One"));
    EXPECT_EQ(idInNewWindow(), rowOf(folder));
    library.setSelectedRating(2);
    EXPECT_EQ(idInNewWindow(), QStringLiteral("rating-2"));
    library.setSelectedTag(QStringLiteral("Beach"));
    EXPECT_EQ(idInNewWindow(), QStringLiteral("Beach"));
}

TEST_F(SidebarSelectionTest, aTagThatTheLibrarySelectsIsMarkedAndTakesTheOthersPlace)
{
    giveTags({QStringLiteral("Beach")});
    addFolder(QStringLiteral("One"));
    library.setSelectedTag(QStringLiteral("Beach"));
    EXPECT_EQ(selection.id(), QStringLiteral("Beach"));
    EXPECT_EQ(library.selectedFolder(), std::nullopt);
    EXPECT_EQ(library.selectedTag(), QStringLiteral("Beach"));
}

TEST_F(SidebarSelectionTest, aRatingThatTheLibrarySelectsIsMarkedUntilItGoes)
{
    library.setSelectedRating(2);
    EXPECT_EQ(selection.id(), QStringLiteral("rating-2"));
    EXPECT_EQ(library.selectedRating(), 2);
    library.setSelectedRating(std::nullopt);
    EXPECT_EQ(selection.id(), std::nullopt);
}

TEST_F(SidebarSelectionTest, aRatingThatGoesLeavesAFoldersRowMarked)
{
    const Folder folder = addFolder(QStringLiteral("One"));
    library.setSelectedRating(std::nullopt);
    EXPECT_EQ(selection.id(), rowOf(folder));
}

TEST_F(SidebarSelectionTest, equalWritesOfTheLibraryAreNoChange)
{
    const Folder folder = addFolder(QStringLiteral("One"));
    selection.select(std::nullopt);
    library.setSelectedFolder(std::nullopt);
    library.setSelectedFolder(folder);
    selection.select(std::nullopt);
    takeWrites();
    library.setSelectedFolder(std::nullopt);
    EXPECT_EQ(takeWrites(), QStringList{QStringLiteral("folder none")});
}

TEST_F(SidebarSelectionTest, changesBetweenTheKindsLeaveOneSelected)
{
    giveTags({QStringLiteral("Beach")});
    const Folder folder = addFolder(QStringLiteral("One"));
    selection.select(QStringLiteral("Beach"));
    selection.select(QStringLiteral("rating-5"));
    EXPECT_EQ(selection.id(), QStringLiteral("rating-5"));
    EXPECT_EQ(library.selectedTag(), std::nullopt);
    EXPECT_EQ(library.selectedRating(), 5);
    selection.select(QStringLiteral("Beach"));
    EXPECT_EQ(selection.id(), QStringLiteral("Beach"));
    EXPECT_EQ(library.selectedTag(), QStringLiteral("Beach"));
    EXPECT_EQ(library.selectedRating(), std::nullopt);
    selection.select(rowOf(folder));
    EXPECT_EQ(selection.id(), rowOf(folder));
    EXPECT_EQ(library.selectedFolder(), folder);
    EXPECT_EQ(library.selectedTag(), std::nullopt);
}
