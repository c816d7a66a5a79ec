#include "app/ApplicationFixture.h"
#include "encoders/TestEncoders.h"
#include "platform/Languages.h"

#include <algorithm>

using namespace Qorvane;

namespace {

class FolderSearchTest : public ApplicationFixture
{
protected:
    FolderSearchTest()
    {
        Languages::overrideForTests({QStringLiteral("en-US")}, QStringLiteral("en"));
        EXPECT_TRUE(installTestFamily(QStringLiteral("openai")));
    }
    ~FolderSearchTest() override
    {
        removeInstalledEncoders();
        Languages::endOverrideForTests();
    }

    QString addPictures(const QString &name, int count, QColor colour)
    {
        QList<std::pair<QString, QImage>> pictures;
        for (int i = 0; i < count; ++i)
            pictures.append({QStringLiteral("%1.png").arg(i), plainPicture(colour)});
        const QString folder = makeFolder(name, pictures);
        dropFolder(folder);
        return folder;
    }

    // Selects the folder of so many pictures in the sidebar and types into the field.
    QList<FileUrl> hitsIn(const QString &folder, int pictureCount, const QString &query)
    {
        click(sidebarRow(folder));
        EXPECT_TRUE(waitUntil([&] {
            return state().pages()->title() == folder && state().pages()->photos()->count() == pictureCount;
        }));
        click(item("searchField"));
        type(query);
        EXPECT_TRUE(waitUntil([this] { return item("resultsGrid")->isVisible(); }));
        return state().pages()->results()->urls();
    }

    static bool areBelow(const QString &folder, const QList<FileUrl> &urls)
    {
        return std::ranges::all_of(
            urls, [&](const FileUrl &url) { return url.path().startsWith(folder + QLatin1Char('/')); });
    }
};

} // namespace

// No vector comes but from the window itself, which answers the runs of the folders.
TEST_F(FolderSearchTest, findsTheFirstTwentyOfTheSelectedFolderAndNothingElse)
{
    open();
    // Of the whole library the few would be the best hits, and the many the rest of the first twenty.
    const QString few = addPictures(QStringLiteral("Few"), 3, Qt::red);
    const QString many = addPictures(QStringLiteral("Many"), 23, QColor(200, 120, 120));
    ASSERT_TRUE(waitUntil([&] { return isDone(few) && isDone(many); }));
    const QList<FileUrl> amongFew = hitsIn(QStringLiteral("Few"), 3, QStringLiteral("red"));
    EXPECT_EQ(amongFew.size(), 3);
    EXPECT_TRUE(areBelow(few, amongFew));
    const QList<FileUrl> amongMany = hitsIn(QStringLiteral("Many"), 23, QStringLiteral("red"));
    EXPECT_EQ(amongMany.size(), 20);
    EXPECT_TRUE(areBelow(many, amongMany));
}
