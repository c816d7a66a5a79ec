#include "store/EmbeddingStore.h"
#include "views/ContentViewFixture.h"
#include "views/InLanguage.h"

#include <algorithm>

using namespace Qorvane;

namespace {

/// Every text of the interface has the room it needs, in the smallest window too.
class TextFitTest : public testing::WithParamInterface<const char *>,
                    protected InLanguage,
                    public ContentViewFixture
{
protected:
    TextFitTest()
        : InLanguage(QLatin1String(GetParam()))
    {
    }
    ~TextFitTest() override { EmbeddingStore::shared().deleteTagGlobally(QStringLiteral("Beach")); }

    void SetUp() override
    {
        ContentViewFixture::SetUp();
        window->resize(window->minimumSize());
        waitForFrame();
    }

    struct Part
    {
        QString name;
        QRectF frame;
    };

    static bool isLabel(const QQuickItem *item) { return item->inherits("QQuickLabel"); }
    // What takes a click has to lie clear of the rest as a whole.
    static bool isControl(const QQuickItem *item)
    {
        return item->inherits("QQuickAbstractButton") || item->inherits("QQuickTextField");
    }

    // Where a label's words are: it may reserve more room than they take.
    static QRectF wordsOf(QQuickItem *label)
    {
        const double width = std::min(label->property("contentWidth").toDouble(), label->width());
        const double height = label->property("contentHeight").toDouble();
        const int alignment = label->property("effectiveHorizontalAlignment").toInt();
        const double left = alignment & Qt::AlignHCenter ? (label->width() - width) / 2
                            : alignment & Qt::AlignRight ? label->width() - width
                                                         : 0;
        return label->mapRectToScene(QRectF(left, 0, width, height));
    }

    void look(QQuickItem *top, bool isInControl, QList<Part> &parts)
    {
        if (!top->isVisible() || top->opacity() == 0)
            return;
        if (isLabel(top) && !top->property("text").toString().isEmpty()) {
            const QString text = top->property("text").toString();
            EXPECT_FALSE(top->property("truncated").toBool()) << qPrintable(text) << " is cut short";
            EXPECT_LE(top->property("contentWidth").toDouble(), top->width() + 1) << qPrintable(text);
            const QRectF frame = wordsOf(top);
            EXPECT_TRUE(QRectF(QPointF(), window->size()).contains(frame)) << qPrintable(text);
            if (!isInControl)
                parts.append({text, frame});
            ++labels;
        }
        if (isControl(top) && !isInControl) {
            isInControl = true;
            parts.append({top->objectName(), top->mapRectToScene(top->boundingRect())});
        }
        for (QQuickItem *const child : top->childItems())
            look(child, isInControl, parts);
    }

    // Looks at everything below `top`; returns how many texts there were.
    int check(QQuickItem *top)
    {
        labels = 0;
        QList<Part> parts;
        look(top, false, parts);
        for (qsizetype i = 0; i < parts.size(); ++i) {
            for (qsizetype j = i + 1; j < parts.size(); ++j) {
                const QRectF common = parts.at(i).frame & parts.at(j).frame;
                EXPECT_FALSE(common.width() > 1 && common.height() > 1)
                    << qPrintable(parts.at(i).name) << " and " << qPrintable(parts.at(j).name)
                    << " lie over each other";
            }
        }
        return labels;
    }

    // The open popup that this item is in, as a whole.
    QQuickItem *popupOf(const char *name) const
    {
        QQuickItem *part = popupItem(name);
        while (part && part->parentItem() && !part->parentItem()->inherits("QQuickOverlay"))
            part = part->parentItem();
        return part;
    }

    int labels = 0;
};

} // namespace

TEST_P(TextFitTest, ofTheGreeting)
{
    EXPECT_GE(check(window->contentItem()), 12);
}

TEST_P(TextFitTest, ofAFullLibraryWhileItIsGoneThrough)
{
    const QString folder = addFolder(QStringLiteral("Photos"), 3);
    EmbeddingStore::shared().addTag(fileUrl(folder, 0), QStringLiteral("Beach"));
    library.refreshAllTags();
    ASSERT_TRUE(waitUntil([this] { return !library.allTags().isEmpty(); }));
    for (const FolderProcessingState stage :
         {FolderProcessingState::thumbnails, FolderProcessingState::vectors}) {
        library.setProcessing(folder, stage, 1, std::nullopt);
        waitForFrame();
        EXPECT_GE(check(window->contentItem()), 12);
    }
    state.selection().setUrls({FileUrl::file(fileUrl(folder, 0)), FileUrl::file(fileUrl(folder, 1))});
    waitForFrame();
    EXPECT_GE(check(window->contentItem()), 12);
    state.selection().setUrls({FileUrl::file(fileUrl(folder, 0))});
    state.setDetailViewActive(true);
    ASSERT_TRUE(waitUntil([this] { return item("fullPicture")->isVisible(); }));
    waitForFrame();
    EXPECT_GE(check(window->contentItem()), 12);
}

TEST_P(TextFitTest, ofThePagesWithoutPhotographs)
{
    state.folderAdding()->add({QUrl::fromLocalFile(makeFolder(QStringLiteral("Empty"), 0))});
    ASSERT_TRUE(waitUntil([this] { return item("emptyPage")->isVisible(); }));
    EXPECT_EQ(check(item("emptyPage")), 1);
    click(item("searchField"));
    type(QStringLiteral("x"));
    ASSERT_TRUE(waitUntil([this] { return item("noResultsPage")->isVisible(); }));
    waitForFrame();
    EXPECT_EQ(check(item("noResultsPage")), 2);
}

TEST_P(TextFitTest, ofTheMenus)
{
    addFolder(QStringLiteral("Photos"), 1);
    waitForFrame();
    const auto checkMenu = [this](const char *entry, int texts) {
        ASSERT_TRUE(waitUntil([&] { return popupItem(entry) != nullptr; }));
        ASSERT_TRUE(waitUntil([&] { return popupOf(entry)->opacity() == 1; }));
        waitForFrame();
        EXPECT_GE(check(popupOf(entry)), texts) << entry;
        QTest::keyClick(window.get(), Qt::Key_Escape);
        ASSERT_TRUE(waitUntil([&] { return popupItem(entry) == nullptr; }));
    };
    click(item("sortButton"));
    checkMenu("sortByModificationDate", 8);
    QTest::mouseClick(window.get(), Qt::RightButton, {}, middleOf(cell("sidebarList", 2)));
    checkMenu("addToFavorites", 3);
    QTest::mouseClick(window.get(), Qt::RightButton, {}, middleOf(cell("photoGrid", 0)));
    checkMenu("openInFinder", 1);
}

TEST_P(TextFitTest, ofTheDialogForFolders)
{
    const QByteArray homeBefore = qgetenv("HOME");
    makeFolder(QStringLiteral("One"), 0);
    makeFolder(QStringLiteral("Two"), 0);
    // The library may still look for the folders of the test before.
    ASSERT_TRUE(waitUntil([this] { return item("firstFolderButton")->isVisible(); }));
    waitForFrame();
    qputenv("HOME", home.path().toLocal8Bit());
    click(item("firstFolderButton"));
    const bool isThere = waitUntil(
        [this] { return popupItem("folderBrowserList") && cellOf(popupItem("folderBrowserList"), 1); });
    qputenv("HOME", homeBefore);
    ASSERT_TRUE(isThere);
    waitForFrame();
    EXPECT_GE(check(popupOf("folderBrowserList")), 6);
    QTest::keyClick(window.get(), Qt::Key_A, Qt::ControlModifier);
    waitForFrame();
    EXPECT_GE(check(popupOf("folderBrowserList")), 6);
}

INSTANTIATE_TEST_SUITE_P(Languages, TextFitTest, testing::Values("en-US", "zh-Hans-CN"),
                         [](const auto &language) { return std::string(language.param).substr(0, 2); });
