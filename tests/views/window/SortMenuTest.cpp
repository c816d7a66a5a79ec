#include "views/ContentViewFixture.h"

using namespace Qorvane;

namespace {

/// The menu of the toolbar's button that sorts the photographs.
class SortMenuTest : public ContentViewFixture
{
protected:
    QObject *menu() const { return window->findChild<QObject *>(QStringLiteral("sortMenu")); }

    void open()
    {
        click(item("sortButton"));
        ASSERT_TRUE(waitUntil([this] { return menu()->property("opened").toBool(); }));
    }

    void choose(const char *entry)
    {
        open();
        ASSERT_TRUE(popupItem(entry));
        click(popupItem(entry));
        ASSERT_TRUE(waitUntil([this] { return !menu()->property("visible").toBool(); }));
    }

    void close()
    {
        QTest::keyClick(window.get(), Qt::Key_Escape);
        ASSERT_TRUE(waitUntil([this] { return !menu()->property("visible").toBool(); }));
    }

    /// The texts of the open menu's entries with a check mark, by what they say of themselves and by what
    /// they show.
    QStringList chosen()
    {
        return entriesThat([](QQuickItem *entry) { return isChosen(entry); });
    }
    QStringList checked()
    {
        return entriesThat([](QQuickItem *entry) { return isChecked(entry); });
    }

private:
    static bool isChosen(QQuickItem *entry) { return entry->property("isChosen").toBool(); }
    static bool isChecked(QQuickItem *entry) { return iconsOf(entry) == QStringList{"checkmark"}; }

    QStringList entriesThat(const std::function<bool(QQuickItem *)> &hold)
    {
        QStringList texts;
        for (int i = 0; i < menu()->property("count").toInt(); ++i) {
            QQuickItem *entry = nullptr;
            QMetaObject::invokeMethod(menu(), "itemAt", Q_RETURN_ARG(QQuickItem *, entry), Q_ARG(int, i));
            if (hold(entry))
                texts += textsOf(entry);
        }
        return texts;
    }
};

struct Choice
{
    const char *entry;
    const char *text;
    SortSettings settings;
    QStringList marked;
};

} // namespace

TEST_F(SortMenuTest, criteriaAndOrdersStandUnderTheirHeadings)
{
    open();
    EXPECT_EQ(shownBy(menu()), QStringList({"Sort by", "File Name", "Creation Date", "Modification Date",
                                            "Rating", "-", "Order", "Ascending", "Descending"}));
    close();
}

TEST_F(SortMenuTest, eachEntrySetsWhatItSaysAndIsMarkedThen)
{
    using enum SortCriterion;
    using enum SortOrder;
    // In an order in which each of them changes something.
    const QList<Choice> choices{
        {"sortByCreationDate", "Creation Date", {creationDate, ascending}, {"Creation Date", "Ascending"}},
        {"sortDescending", "Descending", {creationDate, descending}, {"Creation Date", "Descending"}},
        {"sortByModificationDate",
         "Modification Date",
         {modificationDate, descending},
         {"Modification Date", "Descending"}},
        {"sortByRating", "Rating", {rating, descending}, {"Rating", "Descending"}},
        {"sortAscending", "Ascending", {rating, ascending}, {"Rating", "Ascending"}},
        {"sortByFileName", "File Name", {filename, ascending}, {"File Name", "Ascending"}},
    };
    ASSERT_EQ(library.sortCriterion(), filename);
    ASSERT_EQ(library.sortOrder(), ascending);
    for (const Choice &choice : choices) {
        choose(choice.entry);
        EXPECT_EQ(library.sortCriterion(), choice.settings.criterion) << choice.entry;
        EXPECT_EQ(library.sortOrder(), choice.settings.order) << choice.entry;
        open();
        EXPECT_EQ(textsOf(popupItem(choice.entry)), QStringList{choice.text});
        EXPECT_EQ(chosen(), choice.marked) << choice.entry;
        EXPECT_EQ(checked(), choice.marked) << choice.entry;
        close();
    }
}

TEST_F(SortMenuTest, whatIsChosenAlreadyStaysChosen)
{
    for (const char *entry : {"sortByFileName", "sortAscending"}) {
        choose(entry);
        open();
        EXPECT_EQ(chosen(), QStringList({"File Name", "Ascending"})) << entry;
        close();
    }
    EXPECT_EQ(library.sortCriterion(), SortCriterion::filename);
    EXPECT_EQ(library.sortOrder(), SortOrder::ascending);
}
