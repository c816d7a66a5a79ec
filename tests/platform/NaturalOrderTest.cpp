#include "platform/NaturalOrder.h"

#include <QList>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

using namespace Qorvane;

namespace {

QStringList sorted(QStringList names, const QString &localeName = QStringLiteral("en_US"))
{
    const NaturalOrder order(localeName);
    std::sort(names.begin(), names.end(),
              [&order](const QString &a, const QString &b) { return order.compare(a, b) < 0; });
    return names;
}

TEST(NaturalOrder, numbersInNamesCompareByTheirValue)
{
    EXPECT_EQ(
        sorted({QStringLiteral("img10.jpg"), QStringLiteral("img2.jpg"), QStringLiteral("img1.jpg")}),
        (QStringList{QStringLiteral("img1.jpg"), QStringLiteral("img2.jpg"), QStringLiteral("img10.jpg")}));
}

TEST(NaturalOrder, numbersTooBigForAnyIntegerCompareToo)
{
    EXPECT_LT(localizedStandardCompare(QStringLiteral("a99999999999999999999.jpg"),
                                       QStringLiteral("a100000000000000000000.jpg")),
              0);
}

TEST(NaturalOrder, caseDoesNotDecideBeforeAnotherDifference)
{
    EXPECT_EQ(sorted({QStringLiteral("IMG10"), QStringLiteral("img2"), QStringLiteral("IMG1")}),
              (QStringList{QStringLiteral("IMG1"), QStringLiteral("img2"), QStringLiteral("IMG10")}));
}

TEST(NaturalOrder, worksUnderTheCLocaleThatTheTestsRunIn)
{
    EXPECT_LT(localizedStandardCompare(QStringLiteral("img2"), QStringLiteral("img10")), 0);
    EXPECT_LT(localizedStandardCompare(QStringLiteral("a"), QStringLiteral("B")), 0);
    EXPECT_LT(localizedStandardCompare(QStringLiteral("é"), QStringLiteral("f")), 0);
}

TEST(NaturalOrder, onlyEqualTextsCompareEqual)
{
    const QList<std::pair<QString, QString>> pairs{{QStringLiteral("img1"), QStringLiteral("IMG1")},
                                                   {QStringLiteral("img2"), QStringLiteral("img02")},
                                                   {QStringLiteral("\u00E9"), QStringLiteral("e\u0301")},
                                                   {QStringLiteral("a\u200B"), QStringLiteral("a")}};
    for (const auto &[a, b] : pairs) {
        const int forward = localizedStandardCompare(a, b);
        EXPECT_NE(forward, 0) << a.toStdString();
        EXPECT_EQ(forward<0, localizedStandardCompare(b, a)> 0) << a.toStdString();
    }
    EXPECT_EQ(localizedStandardCompare(QStringLiteral("img1"), QStringLiteral("img1")), 0);
}

TEST(NaturalOrder, chineseSortsByPinyinForAChineseReader)
{
    EXPECT_EQ(sorted({QStringLiteral("重庆"), QStringLiteral("北京"), QStringLiteral("上海")},
                     QStringLiteral("zh_CN")),
              (QStringList{QStringLiteral("北京"), QStringLiteral("重庆"), QStringLiteral("上海")}));
}

QStringList awkwardNames()
{
    const QStringList pieces{QStringLiteral("IMG"), QStringLiteral("img"),     QStringLiteral("_"),
                             QStringLiteral(" "),   QStringLiteral("0"),       QStringLiteral("1"),
                             QStringLiteral("01"),  QStringLiteral("10"),      QStringLiteral("é"),
                             QStringLiteral("照"),  QStringLiteral("🏖️"), QStringLiteral("."),
                             QStringLiteral("ß"),   QStringLiteral("e\u0301")};
    std::mt19937 random(7);
    QStringList names;
    for (int i = 0; i < 300; ++i) {
        QString name;
        for (auto length = random() % 5; length > 0; --length)
            name += pieces[qsizetype(random() % size_t(pieces.size()))];
        names.append(name);
    }
    return names;
}

TEST(NaturalOrder, isATotalOrder)
{
    // Transitivity follows from every pair of the sorted list standing the right way round.
    const NaturalOrder order(QStringLiteral("en_US"));
    const QStringList names = sorted(awkwardNames());
    for (qsizetype i = 0; i < names.size(); ++i) {
        for (qsizetype j = i; j < names.size(); ++j) {
            if (names[i] == names[j])
                EXPECT_EQ(order.compare(names[i], names[j]), 0);
            else
                EXPECT_LT(order.compare(names[i], names[j]), 0)
                    << names[i].toStdString() << " / " << names[j].toStdString();
        }
    }
}

TEST(NaturalOrder, sortKeysAgreeWithTheComparisonWhereTheyDiffer)
{
    const NaturalOrder order(QStringLiteral("zh_CN"));
    const QStringList names = awkwardNames();
    int decided = 0;
    for (qsizetype i = 0; i + 1 < names.size(); ++i) {
        const int byKey = order.sortKey(names[i]).compare(order.sortKey(names[i + 1]));
        if (byKey == 0)
            continue;
        ++decided;
        EXPECT_EQ(order.compare(names[i], names[i + 1]) < 0, byKey < 0)
            << names[i].toStdString() << " / " << names[i + 1].toStdString();
    }
    EXPECT_GT(decided, names.size() / 2);
}

TEST(NaturalOrder, sortKeysLeaveCaseAndLeadingZerosToTheComparison)
{
    const NaturalOrder order(QStringLiteral("en_US"));
    const auto key = [&order](const char *name) { return order.sortKey(QString::fromUtf8(name)); };
    EXPECT_EQ(key("IMG1").compare(key("img1")), 0);
    EXPECT_EQ(key("img2").compare(key("img02")), 0);
    EXPECT_NE(key("img2").compare(key("img10")), 0);
}

} // namespace
