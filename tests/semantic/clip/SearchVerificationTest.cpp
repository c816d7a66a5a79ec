#include "clip/SearchVerification.h"

#include <gtest/gtest.h>

using namespace Qorvane;

TEST(SearchVerification, comparesTheStoredSimilarityWithTheFreshOne)
{
    const FileUrl url = FileUrl::file(QStringLiteral("/pictures/a.jpg"));
    EXPECT_EQ(verificationLine(url, 0.5f, {0.6f, 0.8f}, {1, 0}),
              QStringLiteral("   • a.jpg: DB=0.5000 live=0.6000 Δ=0.1000"));
}

TEST(SearchVerification, roundsHalvesToTheEvenDigit)
{
    const FileUrl url = FileUrl::file(QStringLiteral("/pictures/a.jpg"));
    EXPECT_EQ(verificationLine(url, 0.03125f, {0, 1}, {1, 0}),
              QStringLiteral("   • a.jpg: DB=0.0312 live=0.0000 Δ=-0.0312"));
}
