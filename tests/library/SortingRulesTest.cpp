#include "library/SortingRules.h"

#include "library/LibraryHome.h"
#include "platform/FileAttributes.h"
#include "platform/NaturalOrder.h"
#include "store/EmbeddingStore.h"

#include <QFile>

#include <gtest/gtest.h>

#include <algorithm>

using namespace Qorvane;

namespace {

class SortingRulesTest : public testing::Test
{
protected:
    QList<FileUrl> files(const QStringList &fileNames) const
    {
        QList<FileUrl> urls;
        for (const QString &name : fileNames)
            urls.append(home.writeFile(name));
        return urls;
    }

    LibraryHome home;
};

const QString img1 = QStringLiteral("img1.jpg");
const QString img2 = QStringLiteral("img2.jpg");
const QString img10 = QStringLiteral("img10.jpg");

} // namespace

TEST_F(SortingRulesTest, namesCompareByTheNumbersInThem)
{
    const QList<FileUrl> urls = files({img10, img2, img1});
    EXPECT_EQ(names(SortingRules::sortURLs(urls, SortCriterion::filename, SortOrder::ascending)),
              (QStringList{img1, img2, img10}));
    EXPECT_EQ(names(SortingRules::sortURLs(urls, SortCriterion::filename, SortOrder::descending)),
              (QStringList{img10, img2, img1}));
}

TEST_F(SortingRulesTest, equalNamesKeepTheirOrderAndTurnItWhenDescending)
{
    const QList<FileUrl> urls =
        files({QStringLiteral("b/x.jpg"), QStringLiteral("a/x.jpg"), QStringLiteral("c/x.jpg")});
    EXPECT_EQ(SortingRules::sortURLs(urls, SortCriterion::filename, SortOrder::ascending), urls);
    EXPECT_EQ(SortingRules::sortURLs(urls, SortCriterion::filename, SortOrder::descending),
              (QList<FileUrl>{urls[2], urls[1], urls[0]}));
}

// Long enough for several threads, each of which weighs a part of the names.
TEST_F(SortingRulesTest, aLongListComesOutAsIfItsNamesWereComparedOneByOne)
{
    constexpr int count = 20'011;
    const QStringList kinds{QStringLiteral("IMG_%1.jpg"), QStringLiteral("img_%1.JPG"),
                            QStringLiteral("été %1.png"), QStringLiteral("照片%1.heic"),
                            QStringLiteral("0%1.mp4")};
    QList<FileUrl> urls;
    for (int i = 0; i < count; ++i)
        urls.append(FileUrl::file(QStringLiteral("/p/") + QString::number(i % 7) + u'/' +
                                  kinds.at(i % 5).arg(i * 7'919 % 997)));
    QList<FileUrl> expected = urls;
    const NaturalOrder order;
    std::ranges::stable_sort(expected, [&order](const FileUrl &a, const FileUrl &b) {
        return order.compare(a.lastPathComponent(), b.lastPathComponent()) < 0;
    });
    EXPECT_TRUE(SortingRules::sortURLs(urls, SortCriterion::filename, SortOrder::ascending) == expected);
}

TEST_F(SortingRulesTest, modificationDatesDecideToTheNanosecond)
{
    const QList<FileUrl> urls = files({img1, img2, img10});
    LibraryHome::setModificationTime(urls[0], 1000.5);
    LibraryHome::setModificationTime(urls[1], 1000.25);
    LibraryHome::setModificationTime(urls[2], 999);
    EXPECT_EQ(names(SortingRules::sortURLs(urls, SortCriterion::modificationDate, SortOrder::ascending)),
              (QStringList{img10, img2, img1}));
    EXPECT_EQ(names(SortingRules::sortURLs(urls, SortCriterion::modificationDate, SortOrder::descending)),
              (QStringList{img1, img2, img10}));
}

TEST_F(SortingRulesTest, creationDatesDecideWhateverTheModificationDates)
{
    QList<FileUrl> urls = files({QStringLiteral("first.jpg")});
    const std::optional<double> first = fileAttributes(urls[0].path())->creationTime;
    if (!first)
        GTEST_SKIP() << "this file system keeps no birth times";
    // The clock of the file system ticks coarsely; a file counts once its birth can be told from the first's.
    do {
        QFile::remove(home.path(QStringLiteral("second.jpg")));
        home.writeFile(QStringLiteral("second.jpg"));
    } while (fileAttributes(home.path(QStringLiteral("second.jpg")))->creationTime <= first);
    urls.prepend(home.file(QStringLiteral("second.jpg")));
    LibraryHome::setModificationTime(urls[0], 1);
    EXPECT_EQ(names(SortingRules::sortURLs(urls, SortCriterion::creationDate, SortOrder::ascending)),
              (QStringList{QStringLiteral("first.jpg"), QStringLiteral("second.jpg")}));
}

TEST_F(SortingRulesTest, filesThatAreGoneStayWhereTheyAreAmongThemselves)
{
    const QList<FileUrl> gone{home.file(img10), home.file(img2), home.file(img1)};
    EXPECT_EQ(SortingRules::sortURLs(gone, SortCriterion::modificationDate, SortOrder::ascending), gone);
}

TEST_F(SortingRulesTest, filesThatAreGoneLoseNoOther)
{
    QList<FileUrl> urls;
    for (int i = 0; i < 300; ++i) {
        const QString name = QStringLiteral("%1.jpg").arg(i);
        urls.append(i % 3 ? home.writeFile(name) : home.file(name));
        if (i % 3)
            LibraryHome::setModificationTime(urls.last(), (i * 37) % 101);
    }
    QList<FileUrl> sorted =
        SortingRules::sortURLs(urls, SortCriterion::modificationDate, SortOrder::ascending);
    ASSERT_EQ(sorted.size(), urls.size());
    EXPECT_EQ(QSet<FileUrl>(sorted.begin(), sorted.end()), QSet<FileUrl>(urls.begin(), urls.end()));
}

TEST_F(SortingRulesTest, unratedFilesComeFirstThenTheStarsAndNamesWithin)
{
    const QList<FileUrl> urls = files({img10, img2, QStringLiteral("five.jpg"), QStringLiteral("b.jpg"),
                                       QStringLiteral("a.jpg"), QStringLiteral("one.jpg")});
    EmbeddingStore &store = EmbeddingStore::shared();
    store.setRating(urls[0].path(), 3);
    store.setRating(urls[1].path(), 3);
    store.setRating(urls[2].path(), 5);
    store.setRating(urls[5].path(), 1);
    const QStringList ascending{
        QStringLiteral("a.jpg"),   QStringLiteral("b.jpg"), QStringLiteral("one.jpg"), img2, img10,
        QStringLiteral("five.jpg")};
    EXPECT_EQ(names(SortingRules::sortURLs(urls, SortCriterion::rating, SortOrder::ascending)), ascending);
    QStringList descending(ascending.rbegin(), ascending.rend());
    EXPECT_EQ(names(SortingRules::sortURLs(urls, SortCriterion::rating, SortOrder::descending)), descending);
}

TEST_F(SortingRulesTest, anEmptyListStaysEmpty)
{
    for (const SortCriterion criterion : allSortCriteria)
        EXPECT_TRUE(SortingRules::sortURLs({}, criterion, SortOrder::descending).isEmpty());
}
