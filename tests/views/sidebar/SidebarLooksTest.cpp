#include "views/SidebarFixture.h"
#include "views/style/ProgressRing.h"

#include <QFont>

using namespace Qorvane;

namespace {

/// The icons, inks and gaps of the sidebar's rows.
class SidebarLooksTest : public SidebarFixture
{
protected:
    static QColor inkOf(const QQuickItem *target) { return target->property("color").value<QColor>(); }

    /// The row of a rating or a tag, once its files have been counted.
    QQuickItem *countedRow(const QString &name, SidebarRow::Kind kind, int count)
    {
        EXPECT_TRUE(waitUntil([&] { return rows().at(indexOf(name, kind)).count == count; }));
        return row(name, kind);
    }

    /// A label's words fill it: nothing blank belongs to it.
    static bool isFilled(const QQuickItem *label)
    {
        return label->property("contentWidth").toDouble() == label->width();
    }
};

} // namespace

TEST_F(SidebarLooksTest, countsAndTheWordsInPlaceOfTagsAreSecondary)
{
    const QColor secondary = themedColor("secondaryText");
    ASSERT_NE(secondary, themedColor("text"));
    QQuickItem *const rating = countedRow(QStringLiteral("★★★"), SidebarRow::Kind::rating, 0);
    ASSERT_TRUE(labelOf(rating, QStringLiteral("0")));
    EXPECT_EQ(inkOf(labelOf(rating, QStringLiteral("0"))), secondary);
    EXPECT_EQ(inkOf(labelOf(rating, QStringLiteral("★★★"))), themedColor("text"));
    QQuickItem *const noTags = row(QStringLiteral("No tags"), SidebarRow::Kind::noTags);
    ASSERT_TRUE(labelOf(noTags, QStringLiteral("No tags")));
    EXPECT_EQ(inkOf(labelOf(noTags, QStringLiteral("No tags"))), secondary);

    giveTags({QStringLiteral("Beach")});
    QQuickItem *const tag = countedRow(QStringLiteral("Beach"), SidebarRow::Kind::tag, 1);
    ASSERT_TRUE(labelOf(tag, QStringLiteral("(1)")));
    EXPECT_EQ(inkOf(labelOf(tag, QStringLiteral("(1)"))), secondary);
}

TEST_F(SidebarLooksTest, eachKindOfRowHasItsIcon)
{
    const QString path = addEmptyFolder(QStringLiteral("Photos"), {QStringLiteral("2024")});
    giveTags({QStringLiteral("Beach")});
    library.setProcessing(path, FolderProcessingState::idle, 0, std::nullopt);
    ASSERT_TRUE(waitUntil([&] {
        return iconsOf(row(QStringLiteral("Photos"))) == QStringList({"chevron.right", "folder"});
    }));
    EXPECT_EQ(iconsOf(row(QStringLiteral("Beach"), SidebarRow::Kind::tag)), QStringList{"tag"});
    EXPECT_EQ(iconsOf(row(QStringLiteral("★"), SidebarRow::Kind::rating)), QStringList());
    EXPECT_EQ(iconsOf(row(QStringLiteral("Tags"), SidebarRow::Kind::header)), QStringList());

    addFavorite(path);
    EXPECT_EQ(iconsOf(row(QStringLiteral("Photos"), SidebarRow::Kind::favorite)), QStringList{"folder"});
    click(itemBelow(row(QStringLiteral("Photos")), "disclosure"));
    EXPECT_EQ(iconsOf(row(QStringLiteral("2024"))), QStringList{"folder"});
    EXPECT_EQ(iconsOf(row(QStringLiteral("Photos"))), QStringList({"chevron.down", "folder", "star.fill"}));
}

TEST_F(SidebarLooksTest, theStarOfAFavouriteIsYellow)
{
    addFavorite(addEmptyFolder(QStringLiteral("Photos")));
    state.sidebar()->deselect();
    QQuickItem *const star = itemBelow(row(QStringLiteral("Photos")), "favoriteStar");
    ASSERT_TRUE(star);
    EXPECT_EQ(inkOf(star), themedColor("star"));
    const QColor shown = shownAt(star->mapToScene(QPointF(star->width() / 2, star->height() / 2)));
    EXPECT_GT(shown.hsvHue(), 35);
    EXPECT_LT(shown.hsvHue(), 65);
    EXPECT_GT(shown.hsvSaturation(), 200);
}

TEST_F(SidebarLooksTest, aFinishedRunIsMarkedInTheMiddleOfTheRingsPlace)
{
    addEmptyFolder(QStringLiteral("Photos"));
    QQuickItem *const photos = row(QStringLiteral("Photos"));
    QQuickItem *frame = nullptr;
    ASSERT_TRUE(waitUntil([&] { return (frame = itemBelow(photos, "completedMark")) != nullptr; }));
    EXPECT_EQ(frame->size(), QSizeF(16, 16));
    EXPECT_EQ(iconsOf(frame), QStringList{"checkmark"});
    QQuickItem *const mark = itemBelow(frame, "checkMark");
    ASSERT_TRUE(mark);
    EXPECT_EQ(mark->mapToItem(frame, mark->boundingRect().center()), QPointF(8, 8));
}

TEST_F(SidebarLooksTest, theRingTakesASecondToANewProgressAndItsCaptionIsSmall)
{
    const QString path = addEmptyFolder(QStringLiteral("Photos"));
    library.setProcessing(path, FolderProcessingState::vectors, 0.5, std::nullopt);
    QQuickItem *const photos = row(QStringLiteral("Photos"));
    const QString words = QStringLiteral("AI Analysis 50%");
    ASSERT_TRUE(waitUntil([&] { return labelOf(photos, words) != nullptr; }));
    EXPECT_EQ(photos->findChild<ProgressRing *>()->sweepDuration(), 1000);
    const auto sizeOf = [&](const QString &text) {
        return labelOf(photos, text)->property("font").value<QFont>().pixelSize();
    };
    EXPECT_EQ(sizeOf(words), themed("caption2Size").toInt());
    EXPECT_EQ(sizeOf(QStringLiteral("Photos")), themed("bodySize").toInt());
    library.setProcessing(path, FolderProcessingState::completed, 1, std::nullopt);
    EXPECT_TRUE(waitUntil([&] { return !labelOf(photos, words); }));
}

TEST_F(SidebarLooksTest, noBlankIsBetweenATagAndItsCount)
{
    giveTags({QStringLiteral("Beach")});
    QQuickItem *const tag = countedRow(QStringLiteral("Beach"), SidebarRow::Kind::tag, 1);
    waitForFrame();
    const QQuickItem *const name = labelOf(tag, QStringLiteral("Beach"));
    const QQuickItem *const count = labelOf(tag, QStringLiteral("(1)"));
    ASSERT_TRUE(name && count);
    EXPECT_EQ(count->mapToItem(tag, QPointF()).x() - name->mapToItem(tag, QPointF(name->width(), 0)).x(), 0);
    EXPECT_TRUE(isFilled(name));
    EXPECT_TRUE(isFilled(count));
}
