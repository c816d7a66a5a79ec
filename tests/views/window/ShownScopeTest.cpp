#include "views/window/ShownScope.h"

#include <gtest/gtest.h>

#include <optional>
#include <set>

using namespace Qorvane;

namespace {

const std::optional<QString> tag = QStringLiteral("海滩");
const std::optional<int> rating = 3;
const std::optional<Folder> folder = Folder{FileUrl::directory(QStringLiteral("/photos/海滩")), {}};

} // namespace

TEST(ShownScope, isTheTagBeforeTheRatingBeforeTheFolder)
{
    EXPECT_EQ(ShownScope::of(tag, rating, folder).kind, ShownScope::Kind::tag);
    EXPECT_EQ(ShownScope::of({}, rating, folder).kind, ShownScope::Kind::rating);
    EXPECT_EQ(ShownScope::of({}, {}, folder).kind, ShownScope::Kind::folder);
    EXPECT_EQ(ShownScope::of({}, {}, {}).kind, ShownScope::Kind::nothing);
}

TEST(ShownScope, saysWhatIsShown)
{
    EXPECT_EQ(ShownScope::of(tag, {}, {}).title, *tag);
    EXPECT_EQ(ShownScope::of({}, rating, {}).title, QStringLiteral("★★★"));
    EXPECT_EQ(ShownScope::of({}, {}, folder).title, QStringLiteral("海滩"));
    EXPECT_TRUE(ShownScope::of({}, {}, {}).title.isEmpty());
}

TEST(ShownScope, tellsATagARatingAndAFolderOfOneNameApart)
{
    const QString name = QStringLiteral("★");
    const std::set<QString> keys{
        ShownScope::of(name, {}, {}).key,
        ShownScope::of({}, 1, {}).key,
        ShownScope::of({}, 2, {}).key,
        ShownScope::of({}, {}, Folder{FileUrl::directory(QStringLiteral("/a/★")), {}}).key,
        ShownScope::of({}, {}, Folder{FileUrl::directory(QStringLiteral("/b/★")), {}}).key,
        ShownScope::of({}, {}, {}).key,
    };
    EXPECT_EQ(keys.size(), 6);
}
