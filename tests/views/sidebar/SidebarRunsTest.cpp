#include "views/SidebarFixture.h"
#include "views/style/ProgressRing.h"

#include <QSignalSpy>

using namespace Qorvane;

namespace {

/// What a folder's row says of its run.
class SidebarRunsTest : public SidebarFixture
{
};

} // namespace

TEST_F(SidebarRunsTest, aRunThatHasJustBegunShowsASliverAndZeroPercent)
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

TEST_F(SidebarRunsTest, eachStateOfARunHasItsColour)
{
    const QString path = addEmptyFolder(QStringLiteral("Photos"));
    state.sidebar()->deselect();
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
        const QColor colour = themedColor(name);
        library.setProcessing(path, stage, 0.5, std::nullopt);
        EXPECT_TRUE(waitUntil([&] { return ring->isVisible() && ring->color() == colour; })) << name;
        EXPECT_EQ(captionColour(), colour);
        EXPECT_FALSE(itemBelow(photos, "completedMark"));
    }
    library.setProcessing(path, FolderProcessingState::completed, 1, std::nullopt);
    ASSERT_TRUE(waitUntil([&] { return itemBelow(photos, "completedMark") != nullptr; }));
    EXPECT_FALSE(ring->isVisible());
    QQuickItem *const mark = itemBelow(photos, "completedMark")->childItems().constFirst();
    EXPECT_EQ(mark->property("color").value<QColor>(), themedColor("green"));
    click(photos);
    const QColor ink = themedColor("accentInk");
    EXPECT_EQ(mark->property("color").value<QColor>(), ink) << "selected, everything is in one ink";
    library.setProcessing(path, FolderProcessingState::idle, 0, std::nullopt);
    EXPECT_TRUE(waitUntil([&] { return !itemBelow(photos, "completedMark"); }));
    EXPECT_FALSE(ring->isVisible());
}

TEST_F(SidebarRunsTest, belowARootThatIsThroughWithItsRunNoFolderHasACheckMark)
{
    const QString path = addEmptyFolder(QStringLiteral("Photos"), {QStringLiteral("2024")});
    const QString childPath = path + QStringLiteral("/2024");
    click(itemBelow(row(QStringLiteral("Photos")), "disclosure"));
    const auto isChecked = [this](const char *name) {
        return itemBelow(row(QString::fromLatin1(name)), "completedMark") != nullptr;
    };
    auto *const childRing = row(QStringLiteral("2024"))->findChild<ProgressRing *>();
    ASSERT_TRUE(childRing);
    library.setProcessing(childPath, FolderProcessingState::vectors, 0.5, std::nullopt);
    ASSERT_TRUE(waitUntil([&] { return childRing->isVisible(); }));
    library.setProcessing(childPath, FolderProcessingState::completed, 1, std::nullopt);
    ASSERT_TRUE(waitUntil([&] { return !childRing->isVisible(); }));
    EXPECT_TRUE(isChecked("Photos"));
    EXPECT_FALSE(isChecked("2024")) << "the root's says it";

    library.setProcessing(path, FolderProcessingState::vectors, 0.5, std::nullopt);
    EXPECT_TRUE(waitUntil([&] { return isChecked("2024"); }));
    EXPECT_FALSE(isChecked("Photos"));
    library.setProcessing(path, FolderProcessingState::completed, 1, std::nullopt);
    EXPECT_TRUE(waitUntil([&] { return isChecked("Photos"); }));
    EXPECT_FALSE(isChecked("2024"));
}

TEST_F(SidebarRunsTest, aRunThatIsScrolledAwayDrawsNothing)
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

TEST_F(SidebarRunsTest, aLongNameGivesWayToTheRun)
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

TEST_F(SidebarRunsTest, inADeepFolderTheNameCanStillBeRead)
{
    const QStringList names{QStringLiteral("Trips"),  QStringLiteral("2024"),    QStringLiteral("Summer"),
                            QStringLiteral("France"), QStringLiteral("Seaside"), QStringLiteral("Weeks"),
                            QStringLiteral("First"),  QStringLiteral("Days"),    QStringLiteral("Monday"),
                            QStringLiteral("Noon"),   QStringLiteral("Lunches"), QStringLiteral("Melons")};
    const QString root = addEmptyFolder(QStringLiteral("Photos"), {names.join(u'/')});
    state.sidebar()->toggle(indexOf(QStringLiteral("Photos"), SidebarRow::Kind::folder));
    QString path = root;
    for (const QString &name : names) {
        path += u'/' + name;
        if (name == QStringLiteral("Lunches"))
            addFavorite(path);
        library.setProcessing(path, FolderProcessingState::vectors, 1, std::nullopt);
        QQuickItem *const folder = row(name);
        ASSERT_TRUE(folder) << qPrintable(name);
        auto *const ring = folder->findChild<ProgressRing *>();
        ASSERT_TRUE(waitUntil([&] { return ring->isVisible(); })) << qPrintable(name);
        waitForFrame();
        QQuickItem *label = nullptr;
        for (QQuickItem *const item : allBelow(folder)) {
            if (item != folder && item->isVisible() && item->inherits("QQuickLabel") &&
                item->property("text").toString() == name)
                label = item;
        }
        ASSERT_TRUE(label) << qPrintable(name);
        EXPECT_GE(label->width(), std::min(56.0, label->implicitWidth())) << qPrintable(name);
        EXPECT_LE(label->mapToItem(folder, QPointF(label->width(), 0)).x(),
                  ring->mapToItem(folder, QPointF()).x())
            << qPrintable(name);
        library.setProcessing(path, FolderProcessingState::completed, 1, std::nullopt);
        state.sidebar()->toggle(indexOf(name, SidebarRow::Kind::folder));
    }
}
