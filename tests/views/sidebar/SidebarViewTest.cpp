#include "store/EmbeddingStore.h"
#include "views/ContentViewFixture.h"
#include "views/style/ProgressRing.h"

#include <QAccessible>
#include <QDropEvent>
#include <QMimeData>
#include <QQmlComponent>
#include <QSignalSpy>

using namespace Qorvane;

namespace {

/// The sidebar in the real window, over a real library.
class SidebarViewTest : public ContentViewFixture
{
protected:
    ~SidebarViewTest() override
    {
        for (const QString &tag : EmbeddingStore::shared().listAllTags())
            EmbeddingStore::shared().deleteTagGlobally(tag);
    }

    QList<SidebarRow> rows() { return state.sidebar()->rows()->rows(); }

    int indexOf(const QString &name, SidebarRow::Kind kind)
    {
        const QList<SidebarRow> list = rows();
        const auto match = std::ranges::find_if(
            list, [&](const SidebarRow &row) { return row.name == name && row.kind == kind; });
        return match == list.cend() ? -1 : int(match - list.cbegin());
    }

    /// The row as it is drawn.
    QQuickItem *row(const QString &name, SidebarRow::Kind kind = SidebarRow::Kind::folder)
    {
        waitForFrame();
        return cell("sidebarList", indexOf(name, kind));
    }

    QString selected()
    {
        QStringList names;
        for (const SidebarRow &row : rows()) {
            if (state.sidebar()->rows()->isSelected(row))
                names.append(row.name);
        }
        return names.join(u' ');
    }

    void giveTags(const QStringList &tags)
    {
        for (const QString &tag : tags)
            EmbeddingStore::shared().addTag(QStringLiteral("/p/a.jpg"), tag);
        library.refreshAllTags();
        ASSERT_TRUE(waitUntil([&] { return library.allTags().size() == tags.size(); }));
    }

    // A folder without pictures in it is through with its run at once.
    QString addEmptyFolder(const QString &name, const QStringList &children = {})
    {
        const QString path = makeFolder(name, 0);
        for (const QString &child : children)
            QDir(path).mkpath(child);
        state.folderAdding()->add({QUrl::fromLocalFile(path)});
        EXPECT_TRUE(waitUntil([&] { return indexOf(name, SidebarRow::Kind::folder) >= 0; }));
        EXPECT_TRUE(waitUntil([&] { return library.selectedFolder().has_value(); }));
        EXPECT_TRUE(waitUntil([&] {
            return library.processingState(FileUrl::directory(path)) == FolderProcessingState::completed;
        }));
        return path;
    }

    void addFavorite(const QString &path)
    {
        const Folder folder = *library.folderWithAbsoluteString(FileUrl::directory(path).absoluteString());
        library.addToFavorites(folder);
        ASSERT_TRUE(waitUntil([&] { return library.favoriteFolders().contains(folder); }));
    }

    void rightClick(QQuickItem *target)
    {
        const QPointF middle(target->width() / 2, target->height() / 2);
        QTest::mouseClick(window.get(), Qt::RightButton, {}, target->mapToScene(middle).toPoint());
    }

    /// The entries that the open menu shows, by the names of the items.
    QStringList entries()
    {
        QStringList names;
        for (const char *name : {"removeFromFavorites", "addToFavorites", "openInFinder", "delete"}) {
            if (popupItem(name))
                names.append(QLatin1String(name));
        }
        return names;
    }

    bool isOpen() { return popupItem("openInFinder") || popupItem("delete"); }

    QStringList openMenuOf(QQuickItem *target)
    {
        rightClick(target);
        EXPECT_TRUE(waitUntil([this] { return isOpen(); }));
        waitForFrame();
        return entries();
    }

    void choose(const char *entry)
    {
        ASSERT_TRUE(waitUntil([&] { return popupItem(entry) != nullptr; }));
        waitForFrame();
        click(popupItem(entry));
        ASSERT_TRUE(waitUntil([this] { return !isOpen(); }));
    }

    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(window.get(), key, modifiers);
    }

    static QString textOf(QAccessible::Text kind, QQuickItem *target)
    {
        QAccessibleInterface *const interface = QAccessible::queryAccessibleInterface(target);
        return interface ? interface->text(kind) : QString();
    }

    static QList<QQuickItem *> allBelow(QQuickItem *top)
    {
        QList<QQuickItem *> items{top};
        for (QQuickItem *const child : top->childItems())
            items += allBelow(child);
        return items;
    }

    /// Every text that a row shows.
    static QStringList textsOf(QQuickItem *top)
    {
        QStringList texts;
        for (QQuickItem *const item : allBelow(top)) {
            if (item->isVisible() && item->inherits("QQuickLabel") &&
                !item->property("text").toString().isEmpty())
                texts.append(item->property("text").toString());
        }
        return texts;
    }
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
    ASSERT_TRUE(waitUntil([this] { return state.photos()->count() == 1; }));
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

TEST_F(SidebarViewTest, deletingTheSelectedTagLeavesNoRowSelected)
{
    giveTags({QStringLiteral("Beach"), QStringLiteral("Food")});
    click(row(QStringLiteral("Beach"), SidebarRow::Kind::tag));
    EXPECT_EQ(openMenuOf(row(QStringLiteral("Beach"), SidebarRow::Kind::tag)), QStringList{"delete"});
    choose("delete");
    ASSERT_TRUE(waitUntil([this] { return library.allTags() == QStringList{"Food"}; }));
    EXPECT_EQ(library.selectedTag(), std::nullopt);
    EXPECT_EQ(selected(), QString());
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

TEST_F(SidebarViewTest, aRunThatHasJustBegunShowsASliverAndZeroPercent)
{
    const QString path = addEmptyFolder(QStringLiteral("Photos"));
    library.setProcessing(path, FolderProcessingState::thumbnails, 0, QStringLiteral("缩略图: 0/9"));
    QQuickItem *const photos = row(QStringLiteral("Photos"));
    ASSERT_TRUE(waitUntil([&] { return textsOf(photos) == QStringList({"Photos", "Preview 0%"}); }));
    auto *const ring = photos->findChild<ProgressRing *>();
    ASSERT_TRUE(ring && ring->isVisible());
    EXPECT_EQ(ring->shownProgress(), 0);
    EXPECT_EQ(ProgressRing::drawnShare(ring->shownProgress()), 0.02);
    EXPECT_EQ(ring->size(), QSizeF(16, 16));

    library.setProcessing(path, FolderProcessingState::vectors, 0.625, std::nullopt);
    EXPECT_TRUE(waitUntil([&] { return textsOf(photos) == QStringList({"Photos", "AI Analysis 62%"}); }));
    EXPECT_TRUE(waitUntil([&] { return ring->isSweeping(); }));
    library.setProcessing(path, FolderProcessingState::completed, 1, std::nullopt);
    EXPECT_TRUE(waitUntil([&] { return textsOf(photos) == QStringList({"Photos"}); }));
    EXPECT_FALSE(ring->isSweeping());
}

TEST_F(SidebarViewTest, eachStateOfARunHasItsColour)
{
    const QString path = addEmptyFolder(QStringLiteral("Photos"));
    state.sidebar()->deselect();
    QQmlComponent component(&engine);
    component.setData("import QtQml\nimport QorvaneStyle\nQtObject { property QtObject theme: Theme }",
                      QUrl());
    const std::unique_ptr<QObject> holder(component.create());
    ASSERT_TRUE(holder);
    const auto *const theme = holder->property("theme").value<QObject *>();
    ASSERT_TRUE(theme);
    const auto colour = [theme](const char *name) { return theme->property(name).value<QColor>(); };
    QQuickItem *const photos = row(QStringLiteral("Photos"));
    auto *const ring = photos->findChild<ProgressRing *>();
    ASSERT_TRUE(ring);
    const auto captionColour = [&] {
        for (QQuickItem *const item : allBelow(photos)) {
            const QString text = item->property("text").toString();
            if (item->isVisible() &&
                (text == QStringLiteral("Preview 50%") || text == QStringLiteral("AI Analysis 50%")))
                return item->property("color").value<QColor>();
        }
        return QColor();
    };
    for (const auto &[stage, name] : {std::pair(FolderProcessingState::thumbnails, "orange"),
                                      std::pair(FolderProcessingState::vectors, "blue")}) {
        library.setProcessing(path, stage, 0.5, std::nullopt);
        EXPECT_TRUE(waitUntil([&] { return ring->isVisible() && ring->color() == colour(name); })) << name;
        EXPECT_EQ(captionColour(), colour(name));
        EXPECT_FALSE(itemBelow(photos, "completedMark"));
    }
    library.setProcessing(path, FolderProcessingState::completed, 1, std::nullopt);
    ASSERT_TRUE(waitUntil([&] { return itemBelow(photos, "completedMark") != nullptr; }));
    EXPECT_FALSE(ring->isVisible());
    QQuickItem *const mark = itemBelow(photos, "completedMark")->childItems().constFirst();
    EXPECT_EQ(mark->property("color").value<QColor>(), colour("green"));
    click(photos);
    const QColor ink = colour("accentInk");
    EXPECT_EQ(mark->property("color").value<QColor>(), ink) << "selected, everything is in one ink";
    library.setProcessing(path, FolderProcessingState::idle, 0, std::nullopt);
    EXPECT_TRUE(waitUntil([&] { return !itemBelow(photos, "completedMark"); }));
    EXPECT_FALSE(ring->isVisible());
}

TEST_F(SidebarViewTest, aRunThatIsScrolledAwayDrawsNothing)
{
    const QString path = addEmptyFolder(QStringLiteral("Photos"));
    QStringList tags;
    for (int i = 0; i < 50; ++i)
        tags.append(QStringLiteral("tag %1").arg(i));
    giveTags(tags);
    library.setProcessing(path, FolderProcessingState::vectors, 0, std::nullopt);
    QQuickItem *const photos = row(QStringLiteral("Photos"));
    ASSERT_TRUE(waitUntil([&] { return textsOf(photos).contains(QStringLiteral("AI Analysis 0%")); }));
    library.setProcessing(path, FolderProcessingState::vectors, 0.625, std::nullopt);
    QQuickItem *const list = item("sidebarList");
    const auto turningRings = [list] {
        int count = 0;
        for (QQuickItem *const item : allBelow(list)) {
            const auto *const ring = qobject_cast<ProgressRing *>(item);
            count += ring && ring->isSweeping() ? 1 : 0;
        }
        return count;
    };
    ASSERT_TRUE(waitUntil([&] { return turningRings() == 1; }));
    // Little by little: the row goes out of view, then out of the list, then into another place.
    QSignalSpy frames(window.get(), &QQuickWindow::frameSwapped);
    for (const int notches : {1, 3, 20}) {
        const double before = list->property("contentY").toDouble();
        turnWheel(list, -120 * notches);
        ASSERT_TRUE(waitUntil([&] { return list->property("contentY").toDouble() > before + 100; }));
        EXPECT_TRUE(waitUntil([&] { return turningRings() == 0; })) << notches;
    }
    const auto end = [list] {
        return list->property("originY").toDouble() + list->property("contentHeight").toDouble() +
               list->property("bottomMargin").toDouble() - list->height();
    };
    ASSERT_TRUE(waitUntil([&] { return list->property("contentY").toDouble() == end(); }));
    // A ring draws thirty frames in a second; a few come from elsewhere.
    const auto isStill = [&frames] {
        frames.clear();
        return !waitUntil([&frames] { return frames.count() >= 8; }, std::chrono::milliseconds(600));
    };
    EXPECT_TRUE(isStill() || isStill());
    turnWheel(list, 120 * 100);
    EXPECT_TRUE(waitUntil([&] { return turningRings() == 1; }));
    library.setProcessing(path, FolderProcessingState::completed, 1, std::nullopt);
}

TEST_F(SidebarViewTest, aLongNameGivesWayToTheRun)
{
    const QString name = QStringLiteral("A folder with a name that is much longer than the sidebar is wide");
    const QString path = addEmptyFolder(name);
    library.setProcessing(path, FolderProcessingState::vectors, 0.99, std::nullopt);
    QQuickItem *const folder = row(name);
    ASSERT_TRUE(waitUntil([&] { return textsOf(folder).size() == 2; }));
    waitForFrame();
    QQuickItem *label = nullptr;
    QQuickItem *caption = nullptr;
    for (QQuickItem *const item : allBelow(folder)) {
        const QString text = item->property("text").toString();
        if (item->isVisible() && item != folder && text == name)
            label = item;
        if (item->isVisible() && text == QStringLiteral("AI Analysis 99%"))
            caption = item;
    }
    ASSERT_TRUE(label && caption);
    EXPECT_TRUE(label->property("truncated").toBool());
    EXPECT_FALSE(caption->property("truncated").toBool());
    EXPECT_LE(label->mapToItem(folder, QPointF(label->width(), 0)).x(),
              folder->findChild<ProgressRing *>()->mapToItem(folder, QPointF()).x());
    EXPECT_LE(caption->mapToItem(folder, QPointF(caption->width(), 0)).x(), folder->width());
}

TEST_F(SidebarViewTest, theStarOfAFavouriteStandsInTheLibraryOnly)
{
    const QString path = addEmptyFolder(QStringLiteral("Photos"));
    EXPECT_FALSE(itemBelow(row(QStringLiteral("Photos")), "favoriteStar"));
    addFavorite(path);
    EXPECT_TRUE(itemBelow(row(QStringLiteral("Photos")), "favoriteStar"));
    EXPECT_FALSE(itemBelow(row(QStringLiteral("Photos"), SidebarRow::Kind::favorite), "favoriteStar"));
}

TEST_F(SidebarViewTest, theMenuOfAFolderAddsItToTheFavouritesAndTakesItOut)
{
    addEmptyFolder(QStringLiteral("Photos"));
    click(row(QStringLiteral("★"), SidebarRow::Kind::rating));
    EXPECT_EQ(openMenuOf(row(QStringLiteral("Photos"))),
              QStringList({"addToFavorites", "openInFinder", "delete"}));
    EXPECT_EQ(selected(), QStringLiteral("★")) << "a right click selects nothing";
    choose("addToFavorites");
    ASSERT_TRUE(waitUntil([this] { return library.favoriteFolders().size() == 1; }));
    EXPECT_EQ(openMenuOf(row(QStringLiteral("Photos"))),
              QStringList({"removeFromFavorites", "openInFinder", "delete"}));
    choose("removeFromFavorites");
    EXPECT_TRUE(waitUntil([this] { return library.favoriteFolders().isEmpty(); }));
}

TEST_F(SidebarViewTest, aFavouriteOffersNoDeleteAndNoChildren)
{
    const QString path = addEmptyFolder(QStringLiteral("Photos"), {QStringLiteral("2024")});
    addFavorite(path);
    EXPECT_EQ(openMenuOf(row(QStringLiteral("Photos"), SidebarRow::Kind::favorite)),
              QStringList({"removeFromFavorites", "openInFinder"}));
    press(Qt::Key_Escape);
    ASSERT_TRUE(waitUntil([this] { return !isOpen(); }));
    EXPECT_FALSE(row(QStringLiteral("Photos"), SidebarRow::Kind::favorite)->property("hasChildren").toBool());
    EXPECT_TRUE(row(QStringLiteral("Photos"))->property("hasChildren").toBool());
}

TEST_F(SidebarViewTest, deleteTakesAFolderOutOfTheLibraryUnasked)
{
    const QString path = addEmptyFolder(QStringLiteral("Photos"));
    openMenuOf(row(QStringLiteral("Photos")));
    choose("delete");
    EXPECT_TRUE(waitUntil([this] { return library.libraryFolders().isEmpty(); }));
    EXPECT_TRUE(QDir(path).exists());
}

TEST_F(SidebarViewTest, ratingsAndHeadersHaveNoMenu)
{
    rightClick(row(QStringLiteral("★"), SidebarRow::Kind::rating));
    rightClick(row(QStringLiteral("Tags"), SidebarRow::Kind::header));
    waitForFrame();
    EXPECT_FALSE(isOpen());
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

TEST_F(SidebarViewTest, theMenuKeysOpenTheMenuOfTheCurrentRow)
{
    addEmptyFolder(QStringLiteral("Photos"));
    click(row(QStringLiteral("Photos")));
    press(Qt::Key_Menu);
    EXPECT_TRUE(waitUntil([this] { return isOpen(); }));
    press(Qt::Key_Escape);
    ASSERT_TRUE(waitUntil([this] { return !isOpen(); }));
    press(Qt::Key_F10, Qt::ShiftModifier);
    EXPECT_TRUE(waitUntil([this] { return isOpen(); }));
}

TEST_F(SidebarViewTest, aKeyRightAfterTheMenuIsTheLists)
{
    addEmptyFolder(QStringLiteral("Photos"));
    click(row(QStringLiteral("Photos")));
    openMenuOf(row(QStringLiteral("Photos")));
    press(Qt::Key_Escape);
    press(Qt::Key_End);
    EXPECT_EQ(library.selectedRating(), 5);
    ASSERT_TRUE(waitUntil([this] { return !isOpen(); }));
    press(Qt::Key_Up);
    EXPECT_EQ(library.selectedRating(), 4);
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
    QSignalSpy steps(list, SIGNAL(contentYChanged()));
    turnWheel(list, -120);
    turnWheel(list, -120);
    EXPECT_TRUE(waitUntil([&] { return position() == top + 240; }));
    EXPECT_GT(steps.count(), 2) << "in a motion";
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
    state.sidebar()->rows()->setTags(tags);
    waitForFrame();
    const auto existing = [this] {
        int count = 0;
        for (int i = 0; i < rows().size(); ++i)
            count += cell("sidebarList", i) ? 1 : 0;
        return count;
    };
    EXPECT_TRUE(waitUntil([&] { return existing() > 10; })); // the frame may have been under way before
    EXPECT_LT(existing(), 60);
    state.sidebar()->activate(int(rows().size()) - 1);
    waitForFrame();
    EXPECT_TRUE(cell("sidebarList", int(rows().size()) - 1)) << "the current row is in view";
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
