#include "library/PendingLoads.h"

#include <gtest/gtest.h>

using namespace Qorvane;

namespace {

class PendingLoadsTest : public testing::Test
{
protected:
    /// A load of the given selection.
    PendingLoads::Number begin(const QString &of)
    {
        return loads.begin([this, of] { return selection == of; }, [](const QList<FileUrl> &) {});
    }

    void finish(PendingLoads::Number number) { loads.finish(number, {{}, SortSettings()}); }

    /// The number of the load whose turn it is; 0 when it is nobody's.
    PendingLoads::Number next()
    {
        const std::optional<PendingLoads::Load> load = loads.takeNext();
        return load ? load->number : 0;
    }

    QString selection = QStringLiteral("a");
    PendingLoads loads;
};

} // namespace

TEST_F(PendingLoadsTest, aLaterLoadWaitsForTheEarlierOne)
{
    const auto first = begin(QStringLiteral("a"));
    const auto second = begin(QStringLiteral("a"));
    finish(second);
    EXPECT_EQ(next(), 0u);
    finish(first);
    EXPECT_EQ(next(), first);
    EXPECT_EQ(next(), second);
    EXPECT_EQ(next(), 0u);
}

TEST_F(PendingLoadsTest, aLoadThatIsNoLongerWantedKeepsNobodyWaiting)
{
    begin(QStringLiteral("b"));
    const auto second = begin(QStringLiteral("a"));
    finish(second);
    EXPECT_EQ(next(), second);
}

TEST_F(PendingLoadsTest, aLoadWantedAgainBeforeItEndedIsShown)
{
    const auto first = begin(QStringLiteral("b"));
    EXPECT_EQ(next(), 0u);
    selection = QStringLiteral("b");
    finish(first);
    EXPECT_EQ(next(), first);
}

TEST_F(PendingLoadsTest, aLoadThatEndedUnwantedIsDroppedForGood)
{
    finish(begin(QStringLiteral("b")));
    EXPECT_EQ(next(), 0u);
    selection = QStringLiteral("b");
    EXPECT_EQ(next(), 0u);
}

TEST_F(PendingLoadsTest, aReopenedLoadKeepsItsTurn)
{
    const auto first = begin(QStringLiteral("a"));
    const auto second = begin(QStringLiteral("a"));
    finish(first);
    finish(second);
    std::optional<PendingLoads::Load> load = loads.takeNext();
    ASSERT_TRUE(load);
    EXPECT_TRUE(loads.isAnyWanted());
    loads.reopen(std::move(*load));
    EXPECT_EQ(next(), 0u);
    finish(first);
    EXPECT_EQ(next(), first);
    EXPECT_EQ(next(), second);
    EXPECT_FALSE(loads.isAnyWanted());
}
