#include "views/SidebarFixture.h"

#include <QAccessible>
#include <QDropEvent>
#include <QMimeData>

using namespace Qorvane;

namespace {

/// The sidebar in the real window, over a real library.
class SidebarViewTest : public SidebarFixture
{
};

} // namespace

TEST_F(SidebarViewTest, clicksSelectFoldersRatingsAndTags)
{
    addEmptyFolder(QStringLiteral("Photos"));
    giveTags({QStringLiteral("Beach")});
    click(row(QStringLiteral("★★"), SidebarRow::Kind::rating));
    EXPECT_EQ(library.selectedRating(), 2);
    click(row(QStringLiteral("Beach"), SidebarRow::Kind::tag));
    EXPECT_EQ(library.selectedTag(), QStringLiteral("Beach"));
    EXPECT_EQ(library.selectedRating(), std::nullopt);
    click(row(QStringLiteral("Photos")));
    EXPECT_TRUE(library.selectedFolder().has_value());
    EXPECT_EQ(selected(), QStringLiteral("Photos"));
}

TEST_F(SidebarViewTest, theFirstFolderIsSelectedOverARatingToo)
{
    click(row(QStringLiteral("★★★"), SidebarRow::Kind::rating));
    ASSERT_EQ(library.selectedRating(), 3);
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(makeFolder(QStringLiteral("Photos"), 1))});
    const QPoint position(700, 400);
    QDragEnterEvent enter(position, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(window.get(), &enter);
    QDropEvent drop(position, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(window.get(), &drop);
    ASSERT_TRUE(waitUntil([this] { return state.pages()->photos()->count() == 1; }));
    EXPECT_EQ(library.selectedFolder()->url.lastPathComponent(), QStringLiteral("Photos"));
    EXPECT_EQ(selected(), QStringLiteral("Photos"));
}

TEST_F(SidebarViewTest, aClickOnEitherRowOfAFavouriteMarksTheClickedOne)
{
    const QString path = addEmptyFolder(QStringLiteral("Photos"));
    addFavorite(path);
    for (const SidebarRow::Kind kind : {SidebarRow::Kind::favorite, SidebarRow::Kind::folder}) {
        click(row(QStringLiteral("Photos"), kind));
        EXPECT_EQ(library.selectedFolder()->url.path(), path);
        EXPECT_EQ(state.sidebar()->rows()->selectedRow(), indexOf(QStringLiteral("Photos"), kind));
        EXPECT_EQ(selected(), QStringLiteral("Photos")) << "one row only";
    }
}

TEST_F(SidebarViewTest, withoutTagsNothingCanBeSelectedThere)
{
    click(row(QStringLiteral("★"), SidebarRow::Kind::rating));
    click(row(QStringLiteral("No tags"), SidebarRow::Kind::noTags));
    EXPECT_EQ(selected(), QStringLiteral("★"));
    click(row(QStringLiteral("Ratings"), SidebarRow::Kind::header));
    EXPECT_EQ(selected(), QStringLiteral("★"));
}

TEST_F(SidebarViewTest, aClickBesideTheRowsSelectsNothing)
{
    click(row(QStringLiteral("★"), SidebarRow::Kind::rating));
    const QQuickItem *const list = item("sidebarList");
    const QPointF below = list->mapToScene(QPointF(list->width() / 2, list->height() - 4));
    QTest::mouseClick(window.get(), Qt::LeftButton, {}, below.toPoint());
    EXPECT_EQ(selected(), QString());
    EXPECT_EQ(library.selectedRating(), std::nullopt);
}

TEST_F(SidebarViewTest, aTagAndAFolderShowWhatTheyAre)
{
    addEmptyFolder(QStringLiteral("Photos"));
    EmbeddingStore::shared().addTag(QStringLiteral("/p/b.jpg"), QStringLiteral("Beach"));
    giveTags({QStringLiteral("Beach")});
    ASSERT_TRUE(waitUntil(
        [this] { return rows().at(indexOf(QStringLiteral("Beach"), SidebarRow::Kind::tag)).count == 2; }));
    EXPECT_EQ(textsOf(row(QStringLiteral("Beach"), SidebarRow::Kind::tag)), QStringList({"Beach", "(2)"}));
    EXPECT_EQ(textsOf(row(QStringLiteral("★★"), SidebarRow::Kind::rating)), QStringList({"★★", "0"}));
    EXPECT_EQ(textsOf(row(QStringLiteral("Photos"))), QStringList({"Photos"}));
}

TEST_F(SidebarViewTest, countsFollowARatingAtOnce)
{
    const auto count = [this] {
        return rows().at(indexOf(QStringLiteral("★★★★"), SidebarRow::Kind::rating)).count;
    };
    ASSERT_TRUE(waitUntil([&] { return count() == 0; }));
    library.setRating(4, FileUrl::file(QStringLiteral("/p/a.jpg")));
    EXPECT_TRUE(waitUntil([&] { return count() == 1; }));
    library.clearRating(FileUrl::file(QStringLiteral("/p/a.jpg")));
    EXPECT_TRUE(waitUntil([&] { return count() == 0; }));
}

TEST_F(SidebarViewTest, theStarOfAFavouriteStandsInTheLibraryOnly)
{
    const QString path = addEmptyFolder(QStringLiteral("Photos"));
    EXPECT_FALSE(itemBelow(row(QStringLiteral("Photos")), "favoriteStar"));
    addFavorite(path);
    EXPECT_TRUE(itemBelow(row(QStringLiteral("Photos")), "favoriteStar"));
    EXPECT_FALSE(itemBelow(row(QStringLiteral("Photos"), SidebarRow::Kind::favorite), "favoriteStar"));
}

TEST_F(SidebarViewTest, theMarkUnfoldsAFolderWithoutSelectingIt)
{
    addEmptyFolder(QStringLiteral("Photos"), {QStringLiteral("2024")});
    click(row(QStringLiteral("★"), SidebarRow::Kind::rating));
    click(itemBelow(row(QStringLiteral("Photos")), "disclosure"));
    ASSERT_TRUE(row(QStringLiteral("2024")));
    EXPECT_EQ(selected(), QStringLiteral("★"));
    click(row(QStringLiteral("2024")));
    EXPECT_EQ(library.selectedFolder()->url.lastPathComponent(), QStringLiteral("2024"));
    click(itemBelow(row(QStringLiteral("Photos")), "disclosure"));
    EXPECT_EQ(indexOf(QStringLiteral("2024"), SidebarRow::Kind::folder), -1);
}

TEST_F(SidebarViewTest, keysMoveFoldAndSelect)
{
    addEmptyFolder(QStringLiteral("Photos"), {QStringLiteral("2024")});
    giveTags({QStringLiteral("Beach"), QStringLiteral("Bird")});
    click(row(QStringLiteral("Photos")));
    ASSERT_TRUE(item("sidebarList")->hasActiveFocus());
    press(Qt::Key_Right);
    ASSERT_GE(indexOf(QStringLiteral("2024"), SidebarRow::Kind::folder), 0);
    press(Qt::Key_Right);
    EXPECT_EQ(selected(), QStringLiteral("2024"));
    press(Qt::Key_Left);
    EXPECT_EQ(selected(), QStringLiteral("Photos"));
    press(Qt::Key_Left);
    EXPECT_EQ(indexOf(QStringLiteral("2024"), SidebarRow::Kind::folder), -1);
    press(Qt::Key_Down);
    EXPECT_EQ(library.selectedRating(), 1);
    press(Qt::Key_End);
    EXPECT_EQ(library.selectedTag(), QStringLiteral("Bird"));
    press(Qt::Key_Up);
    EXPECT_EQ(library.selectedTag(), QStringLiteral("Beach"));
    press(Qt::Key_Home);
    EXPECT_EQ(selected(), QStringLiteral("Photos"));
    type(QStringLiteral("bi"));
    EXPECT_EQ(library.selectedTag(), QStringLiteral("Bird"));
}

TEST_F(SidebarViewTest, theRowThatTheKeysAreOnShowsIt)
{
    addEmptyFolder(QStringLiteral("Photos"));
    click(row(QStringLiteral("Photos")));
    EXPECT_FALSE(row(QStringLiteral("Photos"))->property("showsFocus").toBool()) << "not for the pointer";
    press(Qt::Key_Down);
    QQuickItem *const rating = row(QStringLiteral("★"), SidebarRow::Kind::rating);
    EXPECT_TRUE(rating->hasActiveFocus());
    EXPECT_TRUE(rating->property("showsFocus").toBool());
}

TEST_F(SidebarViewTest, unfoldingAFolderLeavesTheListWhereItIs)
{
    QStringList children;
    for (int i = 0; i < 40; ++i)
        children.append(QStringLiteral("Child %1").arg(i));
    addEmptyFolder(QStringLiteral("First"), children);
    addEmptyFolder(QStringLiteral("Second"), children);
    click(row(QStringLiteral("First")));
    press(Qt::Key_Right);
    QQuickItem *const list = item("sidebarList");
    const int second = indexOf(QStringLiteral("Second"), SidebarRow::Kind::folder);
    QMetaObject::invokeMethod(list, "positionViewAtIndex", Q_ARG(int, second), Q_ARG(int, 0));
    waitForFrame();
    // What the user sees; the list counts its position from a row of its own choice.
    constexpr double nowhere = -1'000;
    const auto top = [&](const char *name) {
        const QQuickItem *const drawn = row(QString::fromLatin1(name));
        return drawn ? drawn->mapToItem(list, QPointF()).y() : nowhere;
    };
    ASSERT_LT(top("First"), 0) << "scrolled away";
    ASSERT_GE(top("Second"), 0);
    const double before = top("Second");
    for (int i = 0; i < 2; ++i) {
        click(itemBelow(row(QStringLiteral("Second")), "disclosure"));
        waitForFrame();
        EXPECT_EQ(top("Second"), before) << "toggle " << i;
    }
    EXPECT_EQ(selected(), QStringLiteral("First"));
    press(Qt::Key_Left);
    waitForFrame();
    EXPECT_GE(top("First"), 0) << "the keys go to the row they are on";
}

TEST_F(SidebarViewTest, scrollsLikeThePhotographs)
{
    QStringList tags;
    for (int i = 0; i < 50; ++i)
        tags.append(QStringLiteral("tag %1").arg(i));
    giveTags(tags);
    QQuickItem *const list = item("sidebarList");
    const auto position = [list] { return list->property("contentY").toDouble(); };
    ASSERT_TRUE(waitUntil([list] { return list->property("contentHeight").toDouble() > 1'200; }));
    waitForFrame();
    const double top = position();
    turnWheel(list, -120);
    turnWheel(list, -120);
    EXPECT_LT(position(), top + 240) << "in a motion";
    EXPECT_TRUE(waitUntil([&] { return position() == top + 240; }));
    dragUp(list, 150);
    EXPECT_EQ(position(), top + 240) << "a mouse draws nothing";
    swipeUp(list, 150);
    EXPECT_GT(position(), top + 240) << "a finger does";
    turnWheel(list, -120 * 100);
    const auto begin = [list] { return list->property("originY").toDouble(); };
    const auto end = [&] {
        return begin() + list->property("contentHeight").toDouble() +
               list->property("bottomMargin").toDouble() - list->height();
    };
    EXPECT_TRUE(waitUntil([&] { return position() == end(); }));
    EXPECT_TRUE(cell("sidebarList", int(rows().size()) - 1));
    turnWheel(list, 120 * 100);
    EXPECT_TRUE(waitUntil([&] { return position() == begin(); }));
    // The keys don't wait for the wheel.
    turnWheel(list, -120 * 100);
    list->forceActiveFocus();
    press(Qt::Key_Home);
    EXPECT_EQ(position(), begin());
    waitForFrame();
    waitForFrame();
    EXPECT_EQ(position(), begin());
}

TEST_F(SidebarViewTest, ofThousandsOfTagsOnlyThoseInViewExist)
{
    constexpr int tagCount = 5'000;
    QStringList tags;
    for (int i = 0; i < tagCount; ++i)
        tags.append(QStringLiteral("tag %1").arg(i, 5, 10, QLatin1Char('0')));
    // What the library reads at its start would take the place of these.
    ASSERT_TRUE(QObject::disconnect(&library, &QorManage::allTagsChanged, state.sidebar(), nullptr));
    state.sidebar()->rows()->setTags(tags);
    const auto existing = [this] {
        int count = 0;
        for (int i = 0; i < rows().size(); ++i)
            count += cell("sidebarList", i) ? 1 : 0;
        return count;
    };
    EXPECT_TRUE(waitUntil([&] { return existing() > 10; }));
    EXPECT_LT(existing(), 60);
    state.sidebar()->activate(int(rows().size()) - 1);
    EXPECT_TRUE(waitUntil([&] { return cell("sidebarList", int(rows().size()) - 1) != nullptr; }))
        << "the current row is in view";
}

TEST_F(SidebarViewTest, rowsHaveNamesRolesAndStatesForScreenReaders)
{
    addEmptyFolder(QStringLiteral("Photos"), {QStringLiteral("2024")});
    ASSERT_TRUE(waitUntil(
        [this] { return rows().at(indexOf(QStringLiteral("★★★"), SidebarRow::Kind::rating)).count == 0; }));
    QQuickItem *const photos = row(QStringLiteral("Photos"));
    QAccessibleInterface *const interface = QAccessible::queryAccessibleInterface(photos);
    ASSERT_TRUE(interface);
    EXPECT_EQ(interface->role(), QAccessible::TreeItem);
    EXPECT_TRUE(interface->state().selected);
    EXPECT_EQ(textOf(QAccessible::Name, photos), QStringLiteral("Photos"));
    EXPECT_TRUE(textOf(QAccessible::Description, photos).startsWith(QStringLiteral("Collapsed")));
    EXPECT_EQ(textOf(QAccessible::Name, row(QStringLiteral("★★★"), SidebarRow::Kind::rating)),
              QStringLiteral("3 stars, 0 items"));
    EXPECT_EQ(QAccessible::queryAccessibleInterface(item("sidebarList"))->role(), QAccessible::Tree);
}
