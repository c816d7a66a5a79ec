#include "headless/SearchReport.h"

#include <gtest/gtest.h>

using namespace Qorvane;

TEST(SearchReportTest, RanksHitsWithTheirScores)
{
    const QList<SearchResult> results{{FileUrl::file(QStringLiteral("/p/a.jpg")), 0.31449F, 0.75F},
                                      {FileUrl::file(QStringLiteral("/p/b.jpg")), 0.15F, 0.25F}};
    EXPECT_EQ(searchReport(QStringLiteral("red"), results),
              QStringLiteral("\"red\": 2 found\n"
                             "   1.  similarity 0.314  probability 0.750  /p/a.jpg\n"
                             "   2.  similarity 0.150  probability 0.250  /p/b.jpg\n"));
}

TEST(SearchReportTest, SaysThatNothingWasFound)
{
    EXPECT_EQ(searchReport(QStringLiteral("red"), {}), QStringLiteral("\"red\": nothing found\n"));
}

TEST(SearchReportTest, LeavesOutAProbabilityThatIsNotThere)
{
    EXPECT_EQ(scoreText({FileUrl::file(QStringLiteral("/a")), 0.5F, std::nullopt}),
              QStringLiteral("similarity 0.500"));
}
