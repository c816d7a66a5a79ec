#include "platform/Localization.h"
#include "store/EmbeddingStore.h"
#include "support/LogCapture.h"
#include "views/GridFixture.h"

#include <QSignalSpy>

using namespace Qorvane;

namespace {

class SearchResultsViewTest : public GridFixture
{
protected:
    ~SearchResultsViewTest() override
    {
        for (const QString &tag : EmbeddingStore::shared().listAllTags())
            EmbeddingStore::shared().deleteTagGlobally(tag);
    }

    void giveTags(const QStringList &tags)
    {
        for (const QString &tag : tags)
            EmbeddingStore::shared().addTag(picture(0).path(), tag);
        library.refreshAllTags();
        ASSERT_TRUE(waitUntil([&] { return library.allTags().size() == tags.size(); }));
    }

    QStringList shownHits() const
    {
        QStringList names;
        for (int i = 0; i < item("resultsGrid")->property("count").toInt(); ++i) {
            const QQuickItem *const hit = cell("resultsGrid", i);
            names.append(hit ? hit->property("name").toString() : QStringLiteral("no cell"));
        }
        return names;
    }
};

QStringList textsBelow(QQuickItem *top)
{
    QStringList texts;
    if (!top->isVisible())
        return texts;
    if (const QString text = top->property("text").toString(); !text.isEmpty())
        texts.append(text);
    for (QQuickItem *const child : top->childItems())
        texts += textsBelow(child);
    return texts;
}

} // namespace

TEST_F(SearchResultsViewTest, showsTheHitsInTheirRankWhateverTheSortOrder)
{
    showFolder(6);
    library.setSortOrder(SortOrder::descending);
    showResults({4, 0, 2});
    const QStringList ranked{QStringLiteral("img4.jpg"), QStringLiteral("img0.jpg"),
                             QStringLiteral("img2.jpg")};
    EXPECT_EQ(shownHits(), ranked);
    library.setSortOrder(SortOrder::ascending);
    ASSERT_TRUE(waitUntil([&] { return state.pages()->photos()->path(0) == picture(0).path(); }));
    waitForFrame();
    EXPECT_EQ(shownHits(), ranked);
}

TEST_F(SearchResultsViewTest, aQueryThatFindsNothingSaysSoUntilTheFieldIsEmptied)
{
    showFolder(3);
    click(item("searchField"));
    type(QStringLiteral("x"));
    ASSERT_TRUE(waitUntil([&] { return item("noResultsPage")->isVisible(); }));
    EXPECT_EQ(textsBelow(item("noResultsPage")),
              (QStringList{localized("没有找到匹配的图片"), localized("尝试使用不同的关键词")}));
    EXPECT_FALSE(item("photoGrid")->isVisible());
    QTest::keyClick(window.get(), Qt::Key_Backspace);
    EXPECT_TRUE(item("photoGrid")->isVisible());
    EXPECT_FALSE(item("noResultsPage")->isVisible());
}

TEST_F(SearchResultsViewTest, aRunningSearchHidesTheHitsOfTheOneBefore)
{
    showFolder(3);
    showResults({1});
    bool wasHidden = false;
    const QObject meanwhile;
    QObject::connect(state.pages(), &ContentPages::pageChanged, &meanwhile, [&] {
        wasHidden = wasHidden || (item("searchingPage")->isVisible() && !item("resultsGrid")->isVisible() &&
                                  state.pages()->results()->count() == 1);
    });
    QTest::keyClick(window.get(), Qt::Key_Y);
    EXPECT_TRUE(waitUntil([&] { return wasHidden && item("resultsGrid")->isVisible(); }));
}

TEST_F(SearchResultsViewTest, aClickSelectsAHitAndCommandAddsOne)
{
    showFolder(6);
    showResults({4, 0, 2});
    clickPicture("resultsGrid", 0);
    EXPECT_EQ(selected(), QSet<FileUrl>{picture(4)});
    EXPECT_TRUE(item("resultsGrid")->hasActiveFocus());
    clickPicture("resultsGrid", 2, Qt::ControlModifier);
    EXPECT_EQ(selected(), (QSet<FileUrl>{picture(4), picture(2)}));
}

TEST_F(SearchResultsViewTest, arrowsWalkTheHits)
{
    showFolder(6);
    showResults({4, 0, 2});
    clickPicture("resultsGrid", 0);
    QTest::keyClick(window.get(), Qt::Key_Right);
    EXPECT_EQ(selected(), QSet<FileUrl>{picture(0)});
    QTest::keyClick(window.get(), Qt::Key_Down);
    EXPECT_EQ(selected(), QSet<FileUrl>{picture(2)});
}

TEST_F(SearchResultsViewTest, aDoubleClickOpensAHitFromOutsideTheFolder)
{
    showFolder(3);
    const QString elsewhere = makeFolder(QStringLiteral("Elsewhere"), 1);
    found.append({FileUrl::file(fileUrl(elsewhere, 0)), 0.5f, 0.2f});
    showResults({1});
    ASSERT_FALSE(state.pages()->photos()->urls().contains(FileUrl::file(fileUrl(elsewhere, 0))));
    doubleClickPicture("resultsGrid", 0);
    EXPECT_EQ(selected(), QSet<FileUrl>{FileUrl::file(fileUrl(elsewhere, 0))});
    EXPECT_TRUE(state.isDetailViewActive());
    EXPECT_TRUE(waitUntil([this] { return item("fullPicture")->isVisible(); }));
    EXPECT_EQ(item("contentTitle")->property("text").toString(), QStringLiteral("img0.jpg"));
}

TEST_F(SearchResultsViewTest, aHitWhoseFileIsGoneKeepsItsCellAndItsCachedPicture)
{
    showFolder(2);
    const QString cached = QorManage::thumbnailURL(picture(1))->path();
    ASSERT_TRUE(waitUntil([&] { return QFile::exists(cached); }));
    ASSERT_TRUE(QFile::remove(picture(1).path()));
    showResults({1, 0});
    auto *const thumbnail = cell("resultsGrid", 0)->findChild<QQuickItem *>(QStringLiteral("thumbnail"));
    EXPECT_TRUE(waitUntil([&] { return thumbnail->property("isLoaded").toBool(); }));
}

TEST_F(SearchResultsViewTest, deletedFilesLeaveAtOnceAndTheSelectionStays)
{
    showFolder(4);
    showResults({3, 1, 0});
    clickPicture("resultsGrid", 1);
    NotificationCenter::defaultCenter().post(QStringLiteral("ImagesDeleted"),
                                             {{QStringLiteral("paths"), QStringList{picture(1).path()}}});
    EXPECT_TRUE(waitUntil([&] {
        return shownHits() == QStringList{QStringLiteral("img3.jpg"), QStringLiteral("img0.jpg")};
    }));
    EXPECT_EQ(selected(), QSet<FileUrl>{picture(1)});
}

TEST_F(SearchResultsViewTest, aCellIsAPictureOverItsName)
{
    showFolder(1);
    const QString name = QStringLiteral("一张名字非常非常非常非常非常非常非常非常长的照片 🐶🎉.jpg");
    ASSERT_TRUE(QFile::copy(picture(0).path(), home.filePath(name)));
    found.append({FileUrl::file(home.filePath(name)), 0.5f, 0.2f});
    showResults({});
    auto *const thumbnail = cell("resultsGrid", 0)->findChild<QQuickItem *>(QStringLiteral("thumbnail"));
    EXPECT_EQ(QSizeF(thumbnail->width(), thumbnail->height()), QSizeF(180, 120));
    EXPECT_TRUE(waitUntil([&] { return thumbnail->property("isLoaded").toBool(); }));
    auto *const caption = cell("resultsGrid", 0)->findChild<QQuickItem *>(QStringLiteral("caption"));
    EXPECT_EQ(caption->property("text").toString(), name);
    EXPECT_TRUE(caption->property("truncated").toBool());
    EXPECT_EQ(caption->property("elide").toInt(), int(Qt::ElideMiddle));
    EXPECT_LE(caption->y() + caption->height(), cell("resultsGrid", 0)->height());
    // Neither number of a hit is shown.
    EXPECT_EQ(textsBelow(cell("resultsGrid", 0)), QStringList{name});
}

TEST_F(SearchResultsViewTest, anotherSearchBeginsAtTheTop)
{
    showFolder(60);
    QList<int> all;
    for (int i = 0; i < 60; ++i)
        all.append(i);
    showResults(all);
    const double top = position("resultsGrid");
    setPosition("resultsGrid", 700);
    QTest::keyClick(window.get(), Qt::Key_Y);
    ASSERT_TRUE(waitUntil([&] { return queries.size() == 2 && item("resultsGrid")->isVisible(); }));
    EXPECT_EQ(position("resultsGrid"), top);
}

TEST_F(SearchResultsViewTest, anotherTagLeavesTheHitsOfTheOneBeforeOnTheScreen)
{
    showFolder(3);
    giveTags({QStringLiteral("Beach"), QStringLiteral("Food")});
    clickSidebar(QStringLiteral("Beach"));
    ASSERT_TRUE(waitUntil([this] { return state.pages()->photos()->count() == 1; }));
    showResults({2, 1});
    const QStringList hits = shownHits();
    ASSERT_EQ(hits.size(), 2);
    QSignalSpy pages(state.pages(), &ContentPages::pageChanged);
    clickSidebar(QStringLiteral("Food"));
    ASSERT_EQ(library.selectedTag(), QStringLiteral("Food"));
    ASSERT_TRUE(waitUntil([this] { return state.pages()->photos()->count() == 1 && !library.isLoading(); }));
    waitForFrame();
    EXPECT_TRUE(item("resultsGrid")->isVisible());
    EXPECT_EQ(shownHits(), hits);
    EXPECT_EQ(item("searchField")->property("text").toString(), QStringLiteral("x"));
    EXPECT_EQ(queries, QStringList{QStringLiteral("x")}) << "nothing was searched again";
    EXPECT_TRUE(pages.isEmpty());
}

// Together with the tag the sidebar takes the folder away, and a change of the folder ends a search.
TEST_F(SearchResultsViewTest, aTagChosenInPlaceOfAFolderEndsTheSearch)
{
    showFolder(3);
    giveTags({QStringLiteral("Beach")});
    showResults({2, 1});
    clickSidebar(QStringLiteral("Beach"));
    EXPECT_EQ(item("searchField")->property("text").toString(), QString());
    EXPECT_TRUE(waitUntil(
        [this] { return state.pages()->photos()->count() == 1 && item("photoGrid")->isVisible(); }));
    EXPECT_FALSE(item("resultsGrid")->isVisible());
}

TEST_F(SearchResultsViewTest, aRatingDoesNotNarrowTheSearch)
{
    showFolder(2);
    clickSidebar(QStringLiteral("★★★"));
    ASSERT_EQ(library.selectedRating(), 3);
    const LogCapture log;
    showResults({1});
    EXPECT_EQ(scopes, QList<QList<FileUrl>>{{}});
    EXPECT_TRUE(log.contains(QStringLiteral("🔍 搜索全部照片")));
}

TEST_F(SearchResultsViewTest, aSearchKeepsToTheSelectedFolder)
{
    showFolder(3);
    const QString others = makeFolder(QStringLiteral("Others"), 2);
    state.folderAdding()->add({QUrl::fromLocalFile(others)});
    ASSERT_TRUE(waitUntil([this] { return library.libraryFolders().size() == 2; }));
    clickSidebar(QStringLiteral("Others"));
    const QList<FileUrl> itsFiles{FileUrl::file(fileUrl(others, 0)), FileUrl::file(fileUrl(others, 1))};
    ASSERT_TRUE(waitUntil([&] { return library.imageURLs() == itsFiles; }));
    const LogCapture log;
    click(item("searchField"));
    type(QStringLiteral("x"));
    ASSERT_TRUE(waitUntil([this] { return item("noResultsPage")->isVisible(); }));
    EXPECT_EQ(scopes, QList<QList<FileUrl>>{itsFiles});
    EXPECT_EQ(log.linesStartingWith(QStringLiteral("🔍 在文件夹")),
              QStringList{QStringLiteral("🔍 在文件夹 'Others' 下的 2 张照片中搜索")});
}

TEST_F(SearchResultsViewTest, thumbnailsOfHitsInViewAreMadeFirst)
{
    holdThumbnails();
    showFolder(60);
    QList<int> all;
    for (int i = 0; i < 60; ++i)
        all.append(i);
    showResults(all);
    setPosition("resultsGrid", 700);
    const int inView = firstInView("resultsGrid");
    ASSERT_GT(inView, 0);
    const QStringList files{picture(inView).path(), picture(0).path()};
    EXPECT_EQ(orderOfWork(files), files) << "the last to be asked for came first";
}
