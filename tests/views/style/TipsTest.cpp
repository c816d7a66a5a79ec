#include "views/ContentViewFixture.h"

using namespace Qorvane;

namespace {

/// The short explanations that come up when the pointer rests on something.
class TipsTest : public ContentViewFixture
{
protected:
    // However a tip is made, it floats over the window's content.
    static void collect(QQuickItem *top, bool isFloating, QStringList &texts)
    {
        if (!top->isVisible() || top->opacity() == 0)
            return;
        isFloating = isFloating || top->inherits("QQuickOverlay");
        if (isFloating && top->inherits("QQuickLabel"))
            texts.append(top->property("text").toString());
        for (QQuickItem *const child : top->childItems())
            collect(child, isFloating, texts);
    }
    QStringList tips() const
    {
        QStringList texts;
        collect(window->contentItem(), false, texts);
        return texts;
    }
    bool waitForTip(const QString &text) const
    {
        return waitUntil([&] { return tips() == QStringList{text}; });
    }
    bool waitForNoTip() const
    {
        return waitUntil([this] { return tips().isEmpty(); });
    }

    void restOn(QQuickItem *target) const { QTest::mouseMove(window.get(), middleOf(target)); }
};

} // namespace

TEST_F(TipsTest, aToolbarsButtonIsExplainedByItsLabel)
{
    restOn(item("inspectorButton"));
    EXPECT_TRUE(waitForTip(QStringLiteral("Hide Info Panel")));
    restOn(item("contentTitle"));
    EXPECT_TRUE(waitForNoTip());
    click(item("inspectorButton"));
    ASSERT_TRUE(waitUntil([this] { return item("inspectorColumn")->width() == 0; })); // it has moved with it
    waitForFrame();
    restOn(item("contentTitle"));
    restOn(item("inspectorButton"));
    EXPECT_TRUE(waitForTip(QStringLiteral("Show Info Panel")));
}

TEST_F(TipsTest, aFolderTellsHowFarItsRunHasComeAndNothingWhereThereIsNothingToTell)
{
    const QString folder = makeFolder(QStringLiteral("Photos"), 0);
    state.folderAdding()->add({QUrl::fromLocalFile(folder)});
    ASSERT_TRUE(waitUntil([&] {
        return library.processingState(FileUrl::directory(folder)) == FolderProcessingState::completed;
    }));
    const auto tell = [&](const QString &detail) {
        library.setProcessing(folder, FolderProcessingState::thumbnails, 0.5, detail);
    };
    tell(QStringLiteral("缩略图: 1/2"));
    ASSERT_TRUE(waitUntil([this] { return cell("sidebarList", 2) != nullptr; }));
    waitForFrame();
    restOn(cell("sidebarList", 2));
    EXPECT_TRUE(waitForTip(QStringLiteral("缩略图: 1/2")));
    tell(QStringLiteral("缩略图: 2/2"));
    EXPECT_TRUE(waitForTip(QStringLiteral("缩略图: 2/2")));
    tell(QString());
    EXPECT_TRUE(waitForNoTip());
    tell(QStringLiteral("向量: 1/2"));
    EXPECT_TRUE(waitForTip(QStringLiteral("向量: 1/2")));
}
