#include "platform/NotificationCenter.h"
#include "views/DesktopSettings.h"
#include "views/GridFixture.h"

#include <QAccessible>
#include <QFile>
#include <QSignalSpy>

#include <algorithm>
#include <chrono>
#include <future>

using namespace Qorvane;

namespace {

class PhotoGridTest : public GridFixture
{
protected:
    int columns() const
    {
        int count = 1;
        const double top = cell("photoGrid", 0)->y();
        while (cell("photoGrid", count) && cell("photoGrid", count)->y() == top)
            ++count;
        return count;
    }

    void goToGridByTab()
    {
        click(item("searchField"));
        QTest::keyClick(window.get(), Qt::Key_Tab);
        ASSERT_TRUE(item("photoGrid")->hasActiveFocus());
    }

    // The cell that the ring lies on, as far as cells exist; -1 for none.
    int ringed()
    {
        for (int row = 0; row < state.photos()->count(); ++row) {
            if (cell("photoGrid", row) && itemBelow(cell("photoGrid", row), "focusRing"))
                return row;
        }
        return -1;
    }

    QQuickItem *thumbnail(int index) const
    {
        return cell("photoGrid", index)->findChild<QQuickItem *>(QStringLiteral("thumbnail"));
    }
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

TEST_F(PhotoGridTest, returnAndSpaceOpenNothing)
{
    showFolder(3);
    clickPicture("photoGrid", 1);
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space, Qt::Key_PageDown, Qt::Key_End})
        QTest::keyClick(window.get(), key);
    EXPECT_EQ(selected(), QSet<FileUrl>{picture(1)});
    EXPECT_FALSE(state.isDetailViewActive());
}

TEST_F(PhotoGridTest, downFromTheLineBeforeAShorterOneLandsOnTheLastCell)
{
    showFolder(12);
    const int inLine = columns();
    ASSERT_GT(inLine, 1);
    const int last = 2 * inLine; // alone in the third line
    for (int i = last + 1; i < 12; ++i)
        ASSERT_TRUE(QFile::remove(picture(i).path()));
    library.loadImages();
    ASSERT_TRUE(waitUntil([&] { return state.photos()->count() == last + 1 && cell("photoGrid", last); }));
    waitForFrame();
    clickPicture("photoGrid", last - 1);
    QTest::keyClick(window.get(), Qt::Key_Down);
    EXPECT_EQ(selected(), QSet<FileUrl>{picture(last)});
}

TEST_F(PhotoGridTest, anArrowStartsFromTheFirstOfSeveral)
{
    showFolder(8);
    clickPicture("photoGrid", 3);
    clickPicture("photoGrid", 1, Qt::ControlModifier);
    QTest::keyClick(window.get(), Qt::Key_Right);
    EXPECT_EQ(selected(), QSet<FileUrl>{picture(2)});
}

TEST_F(PhotoGridTest, arrowsStayAtTheEdgesAndRepeatWhileHeld)
{
    showFolder(5);
    clickPicture("photoGrid", 1);
    clickPicture("photoGrid", 0, Qt::ControlModifier);
    for (const Qt::Key key : {Qt::Key_Left, Qt::Key_Up}) {
        QTest::keyClick(window.get(), key);
        EXPECT_EQ(selected(), QSet<FileUrl>{picture(0)});
    }
    for (int i = 0; i < 9; ++i) {
        QKeyEvent repeat(QEvent::KeyPress, Qt::Key_Right, {}, QString(), i > 0);
        QCoreApplication::sendEvent(window.get(), &repeat);
    }
    EXPECT_EQ(selected(), QSet<FileUrl>{picture(4)});
}

TEST_F(PhotoGridTest, anArrowBringsItsCellIntoViewInAMotion)
{
    showFolder(60);
    clickPicture("photoGrid", 0);
    // Sent past the event loop, without which no motion gets on.
    for (int i = 0; i < 5; ++i) {
        QKeyEvent press(QEvent::KeyPress, Qt::Key_Down, {});
        QCoreApplication::sendEvent(window.get(), &press);
    }
    const int row = state.photos()->firstSelectedRow();
    ASSERT_EQ(row, 5 * columns());
    EXPECT_FALSE(isInView("photoGrid", row));
    EXPECT_TRUE(waitUntil([&] { return isInView("photoGrid", row); }));
}

TEST_F(PhotoGridTest, withoutMotionAnArrowBringsItsCellIntoViewAtOnce)
{
    const WithoutMotion withoutMotion;
    showFolder(60);
    clickPicture("photoGrid", 0);
    for (int i = 0; i < 5; ++i)
        QTest::keyClick(window.get(), Qt::Key_Down);
    const double place = position("photoGrid");
    EXPECT_GT(place, 100);
    waitForFrame();
    EXPECT_EQ(position("photoGrid"), place);
    EXPECT_TRUE(isInView("photoGrid", state.photos()->firstSelectedRow()));
}

TEST_F(PhotoGridTest, anotherSortOrderBeginsAtTheTop)
{
    showFolder(60);
    const double top = position("photoGrid");
    setPosition("photoGrid", 900);
    library.setSortOrder(SortOrder::descending);
    EXPECT_TRUE(
        waitUntil([&] { return cell("photoGrid", 0) && state.photos()->urls().at(0) == picture(59); }));
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
    state.addFolders({QUrl::fromLocalFile(second)});
    ASSERT_TRUE(waitUntil([&] { return library.libraryFolders().size() == 2; }));
    const auto choose = [this](const QString &path) {
        const QList<Folder> folders = library.libraryFolders();
        const auto chosen =
            std::ranges::find_if(folders, [&](const Folder &one) { return one.url.path() == path; });
        ASSERT_NE(chosen, folders.end());
        library.setSelectedFolder(*chosen);
        ASSERT_TRUE(waitUntil([&] {
            return state.photos()->count() == 60 &&
                   state.photos()->path(0).startsWith(path + QLatin1Char('/'));
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
    QObject::connect(state.photos(), &MediaListModel::visiblePathsChanged, &state,
                     [&visible](const QSet<QString> &paths) { visible = paths; });
    library.setSortOrder(SortOrder::descending);
    EXPECT_TRUE(waitUntil([&] { return visible.contains(picture(59).path()); }));
    EXPECT_FALSE(visible.contains(picture(0).path()));
}

TEST_F(PhotoGridTest, aHiddenGridTellsNothingUntilItIsBack)
{
    showFolder(60);
    showResults({1, 2});
    QSignalSpy told(state.photos(), &MediaListModel::visiblePathsChanged);
    window->resize(window->width(), window->height() - 250);
    waitForFrame();
    library.setSortOrder(SortOrder::descending);
    ASSERT_TRUE(waitUntil([&] { return state.photos()->path(0) == picture(59).path(); }));
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
    QSignalSpy emptied(thumbnail(0), SIGNAL(isLoadedChanged()));
    NotificationCenter::defaultCenter().post(QStringLiteral("ImageTransformed"),
                                             {{QStringLiteral("url"), QVariant::fromValue(picture(0))}});
    EXPECT_TRUE(waitUntil([&] {
        wasEmpty = wasEmpty || !thumbnail(0)->property("isLoaded").toBool();
        return thumbnail(0)->property("shownRevision").toInt() == 1;
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
    state.addFolders({QUrl::fromLocalFile(path)});
    ASSERT_TRUE(waitUntil([&] { return state.photos()->count() == 2 && cell("photoGrid", 1); }));
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

TEST_F(PhotoGridTest, theCellThatArrowsStartFromShowsToWhoeverCameByKeyboard)
{
    showFolder(8);
    goToGridByTab();
    EXPECT_EQ(ringed(), 0);
    QTest::keyClick(window.get(), Qt::Key_Right);
    EXPECT_EQ(ringed(), 1);
    clickPicture("photoGrid", 3);
    EXPECT_EQ(ringed(), -1) << "the pointer is there already";
    clickPicture("photoGrid", 2, Qt::ControlModifier);
    click(item("searchField"));
    QTest::keyClick(window.get(), Qt::Key_Return);
    EXPECT_EQ(ringed(), 2) << "the first of several";
    QTest::keyClick(window.get(), Qt::Key_Backtab);
    EXPECT_EQ(ringed(), -1);
}

TEST_F(PhotoGridTest, theRingIsDrawnAroundThePictureOfASelectedOneToo)
{
    showFolder(3);
    ASSERT_TRUE(waitUntil([&] { return thumbnail(0)->property("isLoaded").toBool(); }));
    const QColor accent(QStringLiteral("#0A6CFF"));
    const auto colourBeside = [&](int distance) {
        waitForFrame();
        return shownAt(thumbnail(0)->mapToScene(QPointF(-distance, 100)));
    };
    EXPECT_EQ(colourBeside(3), QColor(Qt::white));
    goToGridByTab();
    EXPECT_EQ(colourBeside(3), accent);
    EXPECT_EQ(colourBeside(2), QColor(Qt::white));
    EXPECT_EQ(colourBeside(5), QColor(Qt::white));
    QTest::keyClick(window.get(), Qt::Key_Left);
    EXPECT_EQ(colourBeside(3), accent);
    EXPECT_EQ(colourBeside(2), QColor(Qt::white));
    EXPECT_EQ(colourBeside(-1), accent);
}

TEST_F(PhotoGridTest, whoeverComesByKeyboardSeesWhereTheKeysAre)
{
    showFolder(60);
    setPosition("photoGrid", 1500);
    goToGridByTab();
    EXPECT_TRUE(waitUntil([&] { return isInView("photoGrid", 0); }));
    EXPECT_EQ(ringed(), 0);

    setPosition("photoGrid", 1500);
    int row = 0;
    while (!isInView("photoGrid", row))
        ++row;
    clickPicture("photoGrid", row);
    setPosition("photoGrid", 0);
    goToGridByTab();
    EXPECT_TRUE(waitUntil([&] { return isInView("photoGrid", row); }));
    EXPECT_EQ(ringed(), row);
}

TEST_F(PhotoGridTest, comingBackToTheWindowLeavesTheGridAsItWas)
{
    showFolder(60);
    goToGridByTab();
    ASSERT_TRUE(waitUntil([&] { return isInView("photoGrid", 0); }));
    const auto leaveAndComeBack = [this] {
        QQuickWindow other;
        other.show();
        other.requestActivate();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
        window->requestActivate();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
        waitForFrame();
        waitForFrame();
    };
    setPosition("photoGrid", 1500);
    leaveAndComeBack();
    EXPECT_EQ(position("photoGrid"), 1500);
    EXPECT_TRUE(item("photoGrid")->hasActiveFocus());
    setPosition("photoGrid", 0);
    clickPicture("photoGrid", 0);
    leaveAndComeBack();
    EXPECT_TRUE(item("photoGrid")->hasActiveFocus());
    EXPECT_EQ(ringed(), -1);
}

TEST_F(PhotoGridTest, theSidebarsSelectedRowStandsOutWhereverTheKeysAre)
{
    showFolder(3);
    QQuickItem *const row = cell("sidebarList", state.sidebar()->rows()->selectedRow());
    ASSERT_TRUE(row);
    const QPoint ground = row->mapToScene(QPointF(row->width() - 14, row->height() / 2)).toPoint();
    const auto hue = [&] {
        QTest::mouseMove(window.get(), QPoint(600, 780));
        waitForFrame();
        return shownAt(ground).hsvHue();
    };
    const int accent = QColor(QStringLiteral("#0A6CFF")).hsvHue();
    click(row);
    EXPECT_EQ(hue(), accent);
    clickPicture("photoGrid", 1);
    EXPECT_EQ(hue(), accent);
    click(item("searchField"));
    EXPECT_EQ(hue(), accent);
}

TEST_F(PhotoGridTest, screenReadersFollowTheKeys)
{
    showFolder(8);
    clickPicture("photoGrid", 2);
    QTest::keyClick(window.get(), Qt::Key_Right);
    QTest::keyClick(window.get(), Qt::Key_Right);
    EXPECT_EQ(window->activeFocusItem(), cell("photoGrid", 4));
    for (int row = 0; row < 8; ++row) {
        const QAccessible::State told =
            QAccessible::queryAccessibleInterface(cell("photoGrid", row))->state();
        EXPECT_EQ(bool(told.focused), row == 4) << row;
        EXPECT_EQ(bool(told.selected), row == 4) << row;
    }
    click(item("searchField"));
    EXPECT_FALSE(QAccessible::queryAccessibleInterface(cell("photoGrid", 4))->state().focused);
}

TEST_F(PhotoGridTest, theCurrentCellStaysTheFirstSelectedWhenOthersGo)
{
    showFolder(8);
    const auto current = [this] { return item("photoGrid")->property("currentIndex").toInt(); };
    EXPECT_EQ(current(), 0);
    clickPicture("photoGrid", 5);
    EXPECT_EQ(current(), 5);
    for (const int gone : {1, 3})
        ASSERT_TRUE(QFile::remove(picture(gone).path()));
    library.loadImages();
    ASSERT_TRUE(waitUntil([&] { return state.photos()->count() == 6; }));
    EXPECT_EQ(current(), 3);
    EXPECT_TRUE(cell("photoGrid", 3)->hasActiveFocus());
    library.setSortOrder(SortOrder::descending);
    ASSERT_TRUE(waitUntil([&] { return state.photos()->urls().constFirst() == picture(7); }));
    EXPECT_EQ(current(), 2);
    ASSERT_TRUE(QFile::remove(picture(5).path()));
    library.loadImages();
    ASSERT_TRUE(waitUntil([&] { return state.photos()->count() == 5; }));
    EXPECT_EQ(current(), 0);
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
    state.addFolders({QUrl::fromLocalFile(path)});
    ASSERT_TRUE(waitUntil([&] { return state.photos()->count() == 1 && cell("photoGrid", 0); }));
    ASSERT_TRUE(waitUntil([&] { return itemBelow(cell("photoGrid", 0), "progress") != nullptr; }));
    EXPECT_FALSE(thumbnail(0)->property("isLoaded").toBool());
    ASSERT_TRUE(waitUntil(
        [&] { return !itemBelow(cell("photoGrid", 0), "progress")->property("isTurning").toBool(); }));
    EXPECT_TRUE(itemBelow(cell("photoGrid", 0), "progress"));
}

TEST_F(PhotoGridTest, marksTurnInViewOnly)
{
    std::promise<void> gate;
    const std::shared_future<void> isOpen = gate.get_future().share();
    for (int thread = 0; thread < 2; ++thread)
        thumbnails->add(QStringLiteral("gate"), [isOpen] {
            isOpen.wait();
            return ThumbnailQueue::Delivery();
        });
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
    gate.set_value();
    EXPECT_TRUE(waitUntil([&] { return thumbnail(far)->property("isLoaded").toBool(); }));
}
