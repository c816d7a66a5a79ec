#include "views/selection/SelectedMedia.h"

#include <QSignalSpy>

#include <gtest/gtest.h>

using namespace Qorvane;

namespace {

FileUrl url(const char *path)
{
    return FileUrl::file(QString::fromUtf8(path));
}

} // namespace

TEST(SelectedMedia, isEmptyWithNothingSelected)
{
    const MediaSelection selection;
    const SelectedMedia media(selection);
    EXPECT_EQ(media.count(), 0);
    EXPECT_EQ(media.path(), QString());
    EXPECT_EQ(media.name(), QString());
    EXPECT_FALSE(media.isVideo());
}

TEST(SelectedMedia, namesTheOneFile)
{
    MediaSelection selection;
    const SelectedMedia media(selection);
    const QSignalSpy changes(&media, &SelectedMedia::changed);
    selection.setUrls({url("/旅行/日落 🌅.JPG")});
    EXPECT_EQ(changes.count(), 1);
    EXPECT_EQ(media.count(), 1);
    EXPECT_EQ(media.path(), QStringLiteral("/旅行/日落 🌅.JPG"));
    EXPECT_EQ(media.name(), QStringLiteral("日落 🌅.JPG"));
    EXPECT_FALSE(media.isVideo());
    selection.setUrls({url("/a/clip.MP4")});
    EXPECT_TRUE(media.isVideo());
}

TEST(SelectedMedia, takesOneOfSeveral)
{
    MediaSelection selection;
    const SelectedMedia media(selection);
    selection.setUrls({url("/c.jpg"), url("/a.jpg"), url("/b.jpg")});
    EXPECT_EQ(media.count(), 3);
    EXPECT_EQ(media.path(), QStringLiteral("/a.jpg"));
    selection.clear();
    EXPECT_EQ(media.path(), QString());
}
