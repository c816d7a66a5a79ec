#include "media/SupportedExtensions.h"

#include "platform/FileUrl.h"

#include <gtest/gtest.h>

namespace Qorvane {

TEST(SupportedExtensionsTest, thereAre56ImageAnd19VideoExtensions)
{
    EXPECT_EQ(supportedImageExtensions().size(), 56);
    EXPECT_EQ(supportedVideoExtensions().size(), 19);
    EXPECT_FALSE(supportedImageExtensions().intersects(supportedVideoExtensions()));
}

TEST(SupportedExtensionsTest, theyAreLowerCase)
{
    for (const QString &extension : supportedImageExtensions() + supportedVideoExtensions())
        EXPECT_EQ(extension, extension.toLower());
}

TEST(SupportedExtensionsTest, aFileIsJudgedByItsExtensionInAnyCase)
{
    EXPECT_TRUE(isMediaFile(FileUrl::file(QStringLiteral("/a/IMG_1.JPG"))));
    EXPECT_FALSE(isVideoFile(FileUrl::file(QStringLiteral("/a/IMG_1.JPG"))));
    EXPECT_TRUE(isMediaFile(FileUrl::file(QStringLiteral("/a/clip.MoV"))));
    EXPECT_TRUE(isVideoFile(FileUrl::file(QStringLiteral("/a/clip.MoV"))));
    EXPECT_FALSE(isMediaFile(FileUrl::file(QStringLiteral("/a/__IMG_1.jpg.bak"))));
    EXPECT_FALSE(isMediaFile(FileUrl::file(QStringLiteral("/a/jpg"))));
}

TEST(SupportedExtensionsTest, theFileNeedNotExistOrBeAFile)
{
    EXPECT_TRUE(isMediaFile(FileUrl::directory(QStringLiteral("/a/b.jpg"))));
}

} // namespace Qorvane
