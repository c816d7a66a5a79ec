#include "library/LibraryFixture.h"
#include "store/EmbeddingStore.h"
#include "support/Waiting.h"

using namespace Qorvane;

class SelectionRulesTest : public LibraryFixture
{
};

TEST_F(SelectionRulesTest, aFolderTakesThePlaceOfTheRatingBeforeItsListLoads)
{
    const FileUrl root = home.makeFolder(QStringLiteral("root"));
    home.writePicture(QStringLiteral("root/1.png"));
    qorManager->setSelectedRating(3);
    settle();
    home.log().clear();
    bool isRatingChangeLogged = false;
    QObject::connect(qorManager.get(), &QorManage::imageURLsChanged, qorManager.get(), [&] {
        if (!qorManager->imageURLs().isEmpty())
            isRatingChangeLogged =
                home.log().contains(QStringLiteral("⭐️ selectedRating changed from 3 to nil"));
    });

    qorManager->setSelectedFolder(Folder{root, std::nullopt});

    EXPECT_EQ(home.log().lines(), QStringList{QStringLiteral("⭐️ selectedRating changed from 3 to nil")});
    EXPECT_EQ(qorManager->selectedRating(), std::nullopt);
    ASSERT_TRUE(waitUntil([&] { return !qorManager->imageURLs().isEmpty(); }));
    EXPECT_TRUE(isRatingChangeLogged);
}

TEST_F(SelectionRulesTest, aFolderTakesThePlaceOfTheTag)
{
    qorManager->setSelectedTag(QStringLiteral("cat"));
    home.log().clear();
    qorManager->setSelectedFolder(Folder{home.folder(), std::nullopt});
    EXPECT_EQ(qorManager->selectedTag(), std::nullopt);
    EXPECT_TRUE(home.log().contains(QStringLiteral("🏷️ selectedTag changed from cat to nil")));
}

TEST_F(SelectionRulesTest, noFolderLeavesTagAndRatingAlone)
{
    EmbeddingStore::shared().addTag(QStringLiteral("/x.jpg"), QStringLiteral("cat"));
    qorManager->setSelectedTag(QStringLiteral("cat"));
    qorManager->setSelectedRating(2);
    qorManager->setSelectedFolder(std::nullopt);
    EXPECT_EQ(qorManager->selectedTag(), QStringLiteral("cat"));
    EXPECT_EQ(qorManager->selectedRating(), 2);
}

TEST_F(SelectionRulesTest, aFolderOverBothClearsTheTagFirstAndLoadsThreeTimes)
{
    EmbeddingStore::shared().addTag(QStringLiteral("/x.jpg"), QStringLiteral("cat"));
    qorManager->setSelectedTag(QStringLiteral("cat"));
    qorManager->setSelectedRating(2);
    settle();
    home.log().clear();
    int loads = 0;
    QObject::connect(qorManager.get(), &QorManage::isLoadingChanged, qorManager.get(),
                     [&] { loads += qorManager->isLoading() ? 1 : 0; });
    qorManager->setSelectedFolder(Folder{home.folder(), std::nullopt});
    EXPECT_EQ(loads, 3);
    EXPECT_EQ(qorManager->selectedTag(), std::nullopt);
    EXPECT_EQ(qorManager->selectedRating(), std::nullopt);
    QStringList changes;
    for (const QString &line : home.log().lines()) {
        if (line.contains(QStringLiteral(" changed from ")))
            changes.append(line);
    }
    EXPECT_EQ(changes, (QStringList{QStringLiteral("🏷️ selectedTag changed from cat to nil"),
                                    QStringLiteral("⭐️ selectedRating changed from 2 to nil")}));
}

TEST_F(SelectionRulesTest, tagAndRatingLeaveTheFolderSelected)
{
    const Folder folder{home.folder(), std::nullopt};
    qorManager->setSelectedFolder(folder);
    qorManager->setSelectedTag(QStringLiteral("cat"));
    qorManager->setSelectedRating(2);
    EXPECT_EQ(qorManager->selectedFolder(), folder);
}

TEST_F(SelectionRulesTest, theChangesAreLoggedWithOldAndNewValue)
{
    qorManager->setSelectedTag(QStringLiteral("cat"));
    qorManager->setSelectedTag(QStringLiteral("dog"));
    EXPECT_EQ(home.log().linesStartingWith(QStringLiteral("🏷️ selectedTag")),
              (QStringList{QStringLiteral("🏷️ selectedTag changed from nil to cat"),
                           QStringLiteral("🏷️ selectedTag changed from cat to dog")}));
}

TEST_F(SelectionRulesTest, anEqualValueLoadsTheListAgain)
{
    qorManager->setSelectedRating(2);
    settle();
    int loads = 0;
    QObject::connect(qorManager.get(), &QorManage::isLoadingChanged, qorManager.get(),
                     [&] { loads += qorManager->isLoading() ? 1 : 0; });
    qorManager->setSelectedRating(2);
    EXPECT_EQ(loads, 1);
    EXPECT_TRUE(home.log().contains(QStringLiteral("⭐️ selectedRating changed from 2 to 2")));
    qorManager->setSelectedTag(QStringLiteral("cat"));
    qorManager->setSelectedTag(QStringLiteral("cat"));
    EXPECT_EQ(loads, 3);
    EXPECT_TRUE(home.log().contains(QStringLiteral("🏷️ selectedTag changed from cat to cat")));
}

TEST_F(SelectionRulesTest, aSelectionIsAnnouncedBeforeItIsWritten)
{
    QList<std::optional<int>> seen;
    const auto look = [&] { seen.append(qorManager->selectedRating()); };
    QObject::connect(qorManager.get(), &QorManage::objectWillChange, qorManager.get(), look);
    QObject::connect(qorManager.get(), &QorManage::selectedRatingChanged, qorManager.get(), look);
    qorManager->setSelectedRating(4);
    EXPECT_EQ(seen.value(0), std::nullopt);
    EXPECT_EQ(seen.value(1), 4);
}
