#include "platform/NotificationCenter.h"
#include "views/GridFixture.h"
#include "views/pictures/ThumbnailUrl.h"

#include <QAccessible>
#include <QFile>
#include <QSignalSpy>

#include <algorithm>

using namespace Qorvane;

namespace {

class PhotoGridTest : public GridFixture
{
protected:
    QColor shownColour(int index) { return shownAt(middleOf(cell("photoGrid", index))); }
};

} // namespace

TEST_F(PhotoGridTest, aPlainClickOnOneOfSeveralLeavesItAlone)
{
    showFolder(4);
    clickPicture("photoGrid", 0);
    clickPicture("photoGrid", 1, Qt::ControlModifier);
    clickPicture("photoGrid", 2, Qt::ControlModifier);
    ASSERT_EQ(selected().size(), 3);
    clickPicture("photoGrid", 1);
    EXPECT_EQ(selected(), QSet<FileUrl>{picture(1)});
}

TEST_F(PhotoGridTest, aCommandClickOnTheOnlySelectedOneLeavesNothing)
{
    showFolder(2);
    clickPicture("photoGrid", 1);
    clickPicture("photoGrid", 1, Qt::ControlModifier);
    EXPECT_TRUE(selected().isEmpty());
}

TEST_F(PhotoGridTest, shiftMeansNothing)
{
    showFolder(4);
    clickPicture("photoGrid", 0);
    clickPicture("photoGrid", 3, Qt::ShiftModifier);
    EXPECT_EQ(selected(), QSet<FileUrl>{picture(3)});
    clickPicture("photoGrid", 2, Qt::ShiftModifier | Qt::ControlModifier);
    EXPECT_EQ(selected(), (QSet<FileUrl>{picture(2), picture(3)}));
}

TEST_F(PhotoGridTest, aClickTakesTheKeys)
{
    showFolder(3);
    click(item("searchField"));
    clickPicture("photoGrid", 0);
    EXPECT_TRUE(item("photoGrid")->hasActiveFocus());
    QTest::keyClick(window.get(), Qt::Key_Right);
    EXPECT_EQ(selected(), QSet<FileUrl>{picture(1)});
}

TEST_F(PhotoGridTest, aDoubleClickSelectsFirstAndThenOpens)
{
    showFolder(3);
    clickPicture("photoGrid", 0);
    drainMainQueue();
    const QPoint place = middleOf(cell("photoGrid", 2));
    QTest::mousePress(window.get(), Qt::LeftButton, Qt::ControlModifier, place);
    QTest::mouseRelease(window.get(), Qt::LeftButton, Qt::ControlModifier, place);
    EXPECT_EQ(selected(), (QSet<FileUrl>{picture(0), picture(2)}));
    EXPECT_FALSE(state.isDetailViewActive());
    QTest::mouseDClick(window.get(), Qt::LeftButton, Qt::ControlModifier, place);
    EXPECT_EQ(selected(), QSet<FileUrl>{picture(2)});
    EXPECT_TRUE(state.isDetailViewActive());
}

TEST_F(PhotoGridTest, anotherSortOrderBeginsAtTheTop)
{
    showFolder(60);
    const double top = position("photoGrid");
    setPosition("photoGrid", 900);
    library.setSortOrder(SortOrder::descending);
    EXPECT_TRUE(waitUntil(
        [&] { return cell("photoGrid", 0) && state.pages()->photos()->urls().at(0) == picture(59); }));
    EXPECT_EQ(position("photoGrid"), top);

    setPosition("photoGrid", 900);
    library.setSortCriterion(SortCriterion::modificationDate);
    EXPECT_TRUE(waitUntil([&] { return position("photoGrid") == top; }));
}

TEST_F(PhotoGridTest, anotherFolderBeginsAtTheTop)
{
    showFolder(60);
    const double top = position("photoGrid");
    const QString second = makeFolder(QStringLiteral("Second"), 60);
    state.folderAdding()->add({QUrl::fromLocalFile(second)});
    ASSERT_TRUE(waitUntil([&] { return library.libraryFolders().size() == 2; }));
    const auto choose = [this](const QString &path) {
        const QList<Folder> folders = library.libraryFolders();
        const auto chosen =
            std::ranges::find_if(folders, [&](const Folder &one) { return one.url.path() == path; });
        ASSERT_NE(chosen, folders.end());
        library.setSelectedFolder(*chosen);
        ASSERT_TRUE(waitUntil([&] {
            return state.pages()->photos()->count() == 60 &&
                   state.pages()->photos()->path(0).startsWith(path + QLatin1Char('/'));
        }));
    };
    choose(second);
    for (const QString &path : {folder, second}) {
        setPosition("photoGrid", 900);
        choose(path);
        EXPECT_EQ(position("photoGrid"), top);
    }
}

TEST_F(PhotoGridTest, tellsWhatIsInViewAfterAnotherOrderToo)
{
    showFolder(60);
    QSet<QString> visible;
    QObject::connect(state.pages()->photos(), &MediaListModel::visiblePathsChanged, &state,
                     [&visible](const QSet<QString> &paths) { visible = paths; });
    library.setSortOrder(SortOrder::descending);
    EXPECT_TRUE(waitUntil([&] { return visible.contains(picture(59).path()); }));
    EXPECT_FALSE(visible.contains(picture(0).path()));
}

TEST_F(PhotoGridTest, aHiddenGridTellsNothingUntilItIsBack)
{
    showFolder(60);
    showResults({1, 2});
    QSignalSpy told(state.pages()->photos(), &MediaListModel::visiblePathsChanged);
    window->resize(window->width(), window->height() - 250);
    waitForFrame();
    library.setSortOrder(SortOrder::descending);
    ASSERT_TRUE(waitUntil([&] { return state.pages()->photos()->path(0) == picture(59).path(); }));
    waitForFrame();
    EXPECT_EQ(told.count(), 0);
    QTest::keyClick(window.get(), Qt::Key_Escape);
    ASSERT_TRUE(waitUntil([&] { return item("photoGrid")->isVisible() && told.count() > 0; }));
    EXPECT_TRUE(told.last().at(0).value<QSet<QString>>().contains(picture(59).path()));
}

TEST_F(PhotoGridTest, theSameSortOrderAgainLeavesThePlace)
{
    showFolder(60);
    setPosition("photoGrid", 900);
    library.setSortOrder(library.sortOrder());
    library.setSortCriterion(library.sortCriterion());
    waitForFrame();
    EXPECT_EQ(position("photoGrid"), 900);
}

TEST_F(PhotoGridTest, aChangedPictureIsLoadedAgainAndTheOldOneStaysUntilThen)
{
    showFolder(2);
    ASSERT_TRUE(waitUntil([&] { return thumbnail(0)->property("isLoaded").toBool(); }));
    const QString cached = QorManage::thumbnailURL(picture(0))->path();
    // The run makes thumbnails too, and would put its own in the place of the changed one.
    ASSERT_TRUE(waitUntil([&] {
        const FolderProcessingState run = library.processingState(FileUrl::directory(folder));
        return run == FolderProcessingState::vectors || run == FolderProcessingState::completed;
    }));
    QImage green(320, 240, QImage::Format_RGB32);
    green.fill(QColor(0, 200, 0));
    ASSERT_TRUE(green.save(cached));
    bool wasEmpty = false;
    const int before = thumbnail(0)->property("shownRevision").toInt();
    QSignalSpy emptied(thumbnail(0), SIGNAL(isLoadedChanged()));
    NotificationCenter::defaultCenter().post(QStringLiteral("ImageTransformed"),
                                             {{QStringLiteral("url"), QVariant::fromValue(picture(0))}});
    EXPECT_TRUE(waitUntil([&] {
        wasEmpty = wasEmpty || !thumbnail(0)->property("isLoaded").toBool();
        return thumbnail(0)->property("shownRevision").toInt() == before + 1;
    }));
    waitForFrame();
    EXPECT_TRUE(waitUntil([&] {
        const QColor colour = shownColour(0);
        return colour.green() > 150 && colour.red() < 60;
    }));
    EXPECT_FALSE(wasEmpty);
    EXPECT_EQ(emptied.count(), 0);
    EXPECT_GT(shownColour(1).red(), 150); // the other cell keeps its own
}

TEST_F(PhotoGridTest, aPictureThatCouldNotBeReadIsAskedForAnew)
{
    folder = makeFolder(QStringLiteral("Photos"), 2);
    const FileUrl mended = picture(0);
    const QString good = home.filePath(QStringLiteral("good.jpg"));
    ASSERT_TRUE(QFile::rename(mended.path(), good));
    QFile broken(mended.path());
    ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
    broken.write("not a picture");
    broken.close();
    const ThumbnailUrl sources;
    const auto sourceOf = [&] { return sources.source(mended.path(), 200, 200, 8, 0); };
    const QString before = sourceOf();
    state.folderAdding()->add({QUrl::fromLocalFile(folder)});
    ASSERT_TRUE(waitUntil([&] { return sourceOf() != before; }));
    EXPECT_FALSE(thumbnail(0)->property("isLoaded").toBool());

    ASSERT_TRUE(QFile::remove(mended.path()));
    ASSERT_TRUE(QFile::rename(good, mended.path()));
    clickSidebar(QStringLiteral("★"));
    ASSERT_TRUE(waitUntil([this] { return state.pages()->photos()->count() == 0; }));
    clickSidebar(QStringLiteral("Photos"));
    EXPECT_TRUE(
        waitUntil([this] { return cell("photoGrid", 0) && thumbnail(0)->property("isLoaded").toBool(); }));
}

TEST_F(PhotoGridTest, theSelectedOneIsRinged)
{
    showFolder(3);
    ASSERT_TRUE(waitUntil([&] { return thumbnail(1)->property("isLoaded").toBool(); }));
    clickPicture("photoGrid", 1);
    QTest::mouseMove(window.get(), QPoint(5, 5));
    waitForFrame();
    const QPointF edge = thumbnail(1)->mapToScene(QPointF(1, 100));
    EXPECT_EQ(shownAt(edge), QColor(QStringLiteral("#0A6CFF")));
    EXPECT_EQ(shownAt(edge + QPointF(1, 0)), QColor(QStringLiteral("#0A6CFF")));
    EXPECT_NE(shownAt(edge + QPointF(4, 0)), QColor(QStringLiteral("#0A6CFF")));
}

TEST_F(PhotoGridTest, videosAreMarked)
{
    const QString path = makeFolder(QStringLiteral("Videos"), 1);
    QFile video(path + QStringLiteral("/clip.mp4"));
    ASSERT_TRUE(video.open(QIODevice::WriteOnly));
    video.write("not a video");
    video.close();
    state.folderAdding()->add({QUrl::fromLocalFile(path)});
    ASSERT_TRUE(waitUntil([&] { return state.pages()->photos()->count() == 2 && cell("photoGrid", 1); }));
    waitForFrame();
    // Sorted by name, the video is first.
    EXPECT_TRUE(itemBelow(cell("photoGrid", 0), "videoWord"));
    EXPECT_TRUE(itemBelow(cell("photoGrid", 0), "videoDisc"));
    EXPECT_FALSE(itemBelow(cell("photoGrid", 1), "videoWord"));
    QAccessibleInterface *const interface = QAccessible::queryAccessibleInterface(cell("photoGrid", 0));
    EXPECT_EQ(interface->text(QAccessible::Name), QStringLiteral("clip.mp4, video"));
    EXPECT_EQ(shownAt(thumbnail(0)->mapToScene(QPointF(8, 9))), QColor(QStringLiteral("#E0352B")));
}

TEST_F(PhotoGridTest, cellsTellScreenReadersWhatTheyAre)
{
    showFolder(2);
    clickPicture("photoGrid", 1);
    QAccessibleInterface *const interface = QAccessible::queryAccessibleInterface(cell("photoGrid", 1));
    EXPECT_EQ(interface->role(), QAccessible::ListItem);
    EXPECT_EQ(interface->text(QAccessible::Name), QStringLiteral("img1.jpg"));
    EXPECT_TRUE(interface->state().selected);
    interface->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(selected(), QSet<FileUrl>{picture(1)});
    QAccessibleInterface *const other = QAccessible::queryAccessibleInterface(cell("photoGrid", 0));
    EXPECT_FALSE(other->state().selected);
    other->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(selected(), QSet<FileUrl>{picture(0)});
}

TEST_F(PhotoGridTest, theWheelScrollsInAMotionAndStopsAtTheEnds)
{
    showFolder(60);
    const double top = position("photoGrid");
    turnWheel(item("photoGrid"), -120);
    EXPECT_TRUE(waitUntil([&] { return position("photoGrid") == top + 120; }));
    // Turned on before it arrived, it adds up.
    turnWheel(item("photoGrid"), -120);
    turnWheel(item("photoGrid"), -120);
    EXPECT_TRUE(waitUntil([&] { return position("photoGrid") == top + 360; }));
    turnWheel(item("photoGrid"), 120 * 50);
    EXPECT_TRUE(waitUntil([&] { return position("photoGrid") == top; }));
    turnWheel(item("photoGrid"), -120 * 500);
    EXPECT_TRUE(waitUntil([&] { return isInView("photoGrid", 59); }));
}

TEST_F(PhotoGridTest, draggingAPictureWithTheMouseMovesNothing)
{
    showFolder(60);
    const double top = position("photoGrid");
    dragUp(cell("photoGrid", 4), 150);
    EXPECT_EQ(position("photoGrid"), top);
}

TEST_F(PhotoGridTest, aFingerDrawsThePicturesUp)
{
    showFolder(60);
    const double top = position("photoGrid");
    swipeUp(cell("photoGrid", 4), 150);
    EXPECT_GT(position("photoGrid"), top);
    EXPECT_TRUE(selected().isEmpty());
}

TEST_F(PhotoGridTest, theScrollBarFollowsTheMouse)
{
    showFolder(100);
    const double top = position("photoGrid");
    QQuickItem *const bar = item("photoGridScrollBar");
    ASSERT_TRUE(bar && bar->isVisible());
    const QPoint head = bar->mapToScene(QPointF(bar->width() / 2, 6)).toPoint();
    QTest::mouseMove(window.get(), head);
    QTest::mousePress(window.get(), Qt::LeftButton, {}, head);
    QTest::mouseMove(window.get(), head + QPoint(0, 60));
    QTest::mouseMove(window.get(), head + QPoint(0, 200));
    QTest::mouseRelease(window.get(), Qt::LeftButton, {}, head + QPoint(0, 200));
    const double dragged = position("photoGrid");
    EXPECT_GT(dragged, top + 300);
    // A click in the groove goes there.
    const QPoint low = bar->mapToScene(QPointF(bar->width() / 2, bar->height() - 4)).toPoint();
    QTest::mouseClick(window.get(), Qt::LeftButton, {}, low);
    EXPECT_GT(position("photoGrid"), dragged + 300);
}

TEST_F(PhotoGridTest, pagesInTheMiddleOfAWideColumnAndScrollsBesideThem)
{
    showFolder(60);
    auto *const view = item("photoGrid")->parentItem()->parentItem();
    view->setProperty("sideMargin", 150);
    waitForFrame();
    EXPECT_EQ(item("photoGrid")->width(), view->width() - 300);
    EXPECT_EQ(
        item("photoGridScrollBar")->mapToItem(view, QPointF(item("photoGridScrollBar")->width(), 0)).x(),
        view->width());
    const double top = position("photoGrid");
    const QPointF beside = view->mapToScene(QPointF(60, 300));
    QTest::mouseMove(window.get(), beside.toPoint());
    QWheelEvent event(beside, window->mapToGlobal(beside), {}, QPoint(0, -120), Qt::NoButton, {},
                      Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(window.get(), &event);
    EXPECT_TRUE(waitUntil([&] { return position("photoGrid") == top + 120; }));
}

TEST_F(PhotoGridTest, aFileWithoutAPictureKeepsItsMarkWhichStandsStill)
{
    const QString path = makeFolder(QStringLiteral("Broken"), 0);
    QFile broken(path + QStringLiteral("/broken.jpg"));
    ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
    broken.write("no picture");
    broken.close();
    state.folderAdding()->add({QUrl::fromLocalFile(path)});
    ASSERT_TRUE(waitUntil([&] { return state.pages()->photos()->count() == 1 && cell("photoGrid", 0); }));
    ASSERT_TRUE(waitUntil([&] { return itemBelow(cell("photoGrid", 0), "progress") != nullptr; }));
    EXPECT_FALSE(thumbnail(0)->property("isLoaded").toBool());
    ASSERT_TRUE(waitUntil(
        [&] { return !itemBelow(cell("photoGrid", 0), "progress")->property("isTurning").toBool(); }));
    EXPECT_TRUE(itemBelow(cell("photoGrid", 0), "progress"));
}

TEST_F(PhotoGridTest, marksTurnInViewOnly)
{
    holdThumbnails();
    showFolder(60);
    int below = 0;
    while (isInView("photoGrid", below))
        ++below;
    const int far = below + columns(); // the line after may be cut by the edge
    const auto turns = [this](int index) {
        QQuickItem *const mark =
            cell("photoGrid", index) ? itemBelow(cell("photoGrid", index), "progress") : nullptr;
        return mark && mark->property("isTurning").toBool();
    };
    EXPECT_TRUE(waitUntil([&] { return turns(0); }));
    ASSERT_TRUE(
        waitUntil([&] { return cell("photoGrid", far) && itemBelow(cell("photoGrid", far), "progress"); }));
    EXPECT_FALSE(turns(far));
    setPosition("photoGrid", position("photoGrid") + 420);
    EXPECT_TRUE(turns(far));
    releaseThumbnails();
    EXPECT_TRUE(waitUntil([&] { return thumbnail(far)->property("isLoaded").toBool(); }));
}

TEST_F(PhotoGridTest, thumbnailsInViewAreMadeFirst)
{
    holdThumbnails();
    showFolder(60);
    setPosition("photoGrid", 900);
    const int inView = firstInView("photoGrid");
    ASSERT_GT(inView, 0);
    const QStringList files{picture(inView).path(), picture(0).path()};
    EXPECT_EQ(orderOfWork(files), files) << "the last to be asked for came first";
}
