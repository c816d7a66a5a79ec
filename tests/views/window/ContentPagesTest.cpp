#include "platform/Localization.h"
#include "store/EmbeddingStore.h"
#include "views/ContentViewFixture.h"

using namespace Qorvane;

namespace {

struct Words
{
    QString text;
    int size = 0;
    int weight = QFont::Normal;

    bool operator==(const Words &) const = default;
};

void PrintTo(const Words &words, std::ostream *out)
{
    *out << '"' << words.text.toStdString() << "\" at " << words.size << ", weight " << words.weight;
}

/// What the middle column shows where it shows no photographs.
class ContentPagesTest : public ContentViewFixture
{
protected:
    ~ContentPagesTest() override { EmbeddingStore::shared().deleteTagGlobally(tag); }

    static QList<QQuickItem *> visibleBelow(QQuickItem *top)
    {
        QList<QQuickItem *> items;
        if (!top->isVisible())
            return items;
        items.append(top);
        for (QQuickItem *const child : top->childItems())
            items += visibleBelow(child);
        return items;
    }

    // In their order from top to bottom; all of them in the secondary ink.
    static QList<Words> wordsOn(QQuickItem *page)
    {
        QList<Words> words;
        for (QQuickItem *const item : visibleBelow(page)) {
            if (!item->inherits("QQuickLabel") || item->parentItem()->inherits("QQuickButton"))
                continue;
            const QFont font = item->property("font").value<QFont>();
            words.append({item->property("text").toString(), font.pixelSize(), font.weight()});
            EXPECT_EQ(item->property("color").value<QColor>(), QColor(0x62, 0x62, 0x67))
                << qPrintable(words.last().text);
        }
        return words;
    }

    static QStringList iconsOn(QQuickItem *page)
    {
        QStringList icons;
        for (QQuickItem *const item : visibleBelow(page)) {
            if (item->property("source").toString().startsWith(QStringLiteral("image://icons/")))
                icons.append(item->property("name").toString() + QLatin1Char(' ') +
                             QString::number(item->width()));
        }
        return icons;
    }

    // Of the column's pages, the one that shows.
    QString shownPage() const
    {
        QStringList shown;
        for (const char *name : {"photoGrid", "resultsGrid", "loadingPage", "searchingPage", "noResultsPage",
                                 "emptyPage", "nothingSelectedPage"}) {
            if (item(name)->isVisible())
                shown.append(QLatin1String(name));
        }
        return shown.join(QLatin1Char(' '));
    }
    bool waitForPage(const QString &name) const
    {
        return waitUntil([&] { return shownPage() == name; });
    }

    // Its content is as far from the top as from the bottom.
    static bool isInTheMiddle(QQuickItem *page)
    {
        QQuickItem *const column = page->childItems().constFirst();
        const QPointF middle = column->mapToItem(page, QPointF(column->width() / 2, column->height() / 2));
        return std::abs(middle.x() - page->width() / 2) <= 1 &&
               std::abs(middle.y() - page->height() / 2) <= 1;
    }

    const QString tag = QStringLiteral("Beach");
};

} // namespace

TEST_F(ContentPagesTest, withNothingSelectedAFolderIsAskedFor)
{
    ASSERT_EQ(shownPage(), QStringLiteral("nothingSelectedPage"));
    QQuickItem *const page = item("nothingSelectedPage");
    EXPECT_EQ(iconsOn(page), QStringList{QStringLiteral("folder 56")});
    EXPECT_EQ(wordsOn(page).value(0),
              (Words{localized("Select a folder to view media files."), 17, QFont::DemiBold}));
    EXPECT_TRUE(isInTheMiddle(page));
    EXPECT_EQ(page->childItems().constFirst()->width(), page->width() - 2 * 32);
}

TEST_F(ContentPagesTest, anEmptyTagAnEmptyRatingAndAnEmptyFolderEachSaySo)
{
    EmbeddingStore::shared().addTag(home.filePath(QStringLiteral("gone.jpg")), tag);
    library.refreshAllTags();
    ASSERT_TRUE(waitUntil([this] { return !library.allTags().isEmpty(); }));
    state.folderAdding()->add({QUrl::fromLocalFile(makeFolder(QStringLiteral("Empty"), 0))});
    ASSERT_TRUE(waitForPage(QStringLiteral("emptyPage")));
    QQuickItem *const page = item("emptyPage");
    for (const auto &[row, text] :
         {std::pair(QStringLiteral("Empty"), localized("No media files in this folder")),
          std::pair(tag, localized("该标签下没有媒体文件")),
          std::pair(QStringLiteral("★★"), localized("No media files with this rating"))}) {
        clickSidebar(row);
        EXPECT_TRUE(waitUntil([&] {
            return wordsOn(page) == QList<Words>{{text, 22, QFont::Normal}};
        })) << qPrintable(text);
        EXPECT_EQ(shownPage(), QStringLiteral("emptyPage"));
        EXPECT_TRUE(iconsOn(page).isEmpty());
        EXPECT_TRUE(isInTheMiddle(page));
    }
}

TEST_F(ContentPagesTest, aFolderThatIsStillReadShowsOnlyThatItIs)
{
    const QUrl folder = QUrl::fromLocalFile(makeFolder(QStringLiteral("Photos"), 2));
    QStringList seen;
    bool isRunning = false;
    const QObject meanwhile; // the page changes once more when the window has gone
    QObject::connect(state.pages(), &ContentPages::pageChanged, &meanwhile, [&] {
        seen.append(shownPage());
        isRunning = isRunning ||
                    (item("loadingPage")->isVisible() && item("loadingPage")->property("running").toBool());
    });
    state.folderAdding()->add({folder});
    ASSERT_TRUE(waitForPage(QStringLiteral("photoGrid")));
    EXPECT_TRUE(seen.contains(QStringLiteral("loadingPage"))) << qPrintable(seen.join(QStringLiteral(", ")));
    EXPECT_TRUE(isRunning);
    EXPECT_FALSE(item("loadingPage")->property("running").toBool()) << "it would draw on, unseen";
}

TEST_F(ContentPagesTest, aRunningSearchTurnsOverItsWords)
{
    QQuickItem *const page = item("searchingPage");
    QList<Words> words;
    QSizeF markSize;
    bool isCentred = false;
    const QObject meanwhile; // the page changes once more when the window has gone
    QObject::connect(state.pages(), &ContentPages::pageChanged, &meanwhile, [&] {
        if (shownPage() != QStringLiteral("searchingPage"))
            return;
        words = wordsOn(page);
        QQuickItem *const mark = itemBelow(page, "searchingMark");
        markSize = mark ? mark->size() : QSizeF();
        isCentred = isInTheMiddle(page);
    });
    click(item("searchField"));
    type(QStringLiteral("x"));
    ASSERT_TRUE(waitForPage(QStringLiteral("noResultsPage")));
    EXPECT_EQ(words, (QList<Words>{{localized("搜索中..."), 13, QFont::DemiBold}}));
    EXPECT_EQ(markSize, QSizeF(30, 30));
    EXPECT_TRUE(isCentred);
}

TEST_F(ContentPagesTest, aSearchWithoutHitsSaysSoUnderAGlass)
{
    click(item("searchField"));
    type(QStringLiteral("x"));
    ASSERT_TRUE(waitForPage(QStringLiteral("noResultsPage")));
    QQuickItem *const page = item("noResultsPage");
    EXPECT_EQ(iconsOn(page), QStringList{QStringLiteral("magnifyingglass 48")});
    EXPECT_EQ(wordsOn(page), (QList<Words>{{localized("没有找到匹配的图片"), 13, QFont::DemiBold},
                                           {localized("尝试使用不同的关键词"), 12, QFont::Normal}}));
    EXPECT_TRUE(isInTheMiddle(page));
}

TEST_F(ContentPagesTest, theFieldSaysWhatItSearches)
{
    EXPECT_EQ(item("searchField")->property("placeholderText").toString(), localized("Search Photos"));
}

TEST_F(ContentPagesTest, anInspectorWithoutASelectionSaysSo)
{
    QQuickItem *const page = item("inspectorEmptyState");
    EXPECT_EQ(iconsOn(page), QStringList{QStringLiteral("photo.on.rectangle.angled 36")});
    EXPECT_EQ(wordsOn(page), (QList<Words>{{localized("Inspector.Empty.Title"), 15, QFont::DemiBold},
                                           {localized("Inspector.Empty.Subtitle"), 12, QFont::Normal}}));
}
