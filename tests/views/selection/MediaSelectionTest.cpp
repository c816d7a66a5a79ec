#include "views/selection/MediaSelection.h"

#include <QSignalSpy>

#include <gtest/gtest.h>

using namespace Qorvane;

namespace {

const FileUrl a = FileUrl::file(QStringLiteral("/photos/a.jpg"));
const FileUrl b = FileUrl::file(QStringLiteral("/photos/b.jpg"));
const FileUrl c = FileUrl::file(QStringLiteral("/photos/c.jpg"));

} // namespace

TEST(MediaSelection, plainClickReducesTheSelectionToThatCell)
{
    MediaSelection selection;
    selection.setUrls({a, b});
    selection.click(b, false);
    EXPECT_EQ(selection.urls(), QSet<FileUrl>{b});
}

TEST(MediaSelection, commandClickPutsInAndTakesOut)
{
    MediaSelection selection;
    selection.click(a, true);
    selection.click(b, true);
    EXPECT_EQ(selection.urls(), (QSet<FileUrl>{a, b}));
    selection.click(a, true);
    EXPECT_EQ(selection.urls(), QSet<FileUrl>{b});
}

TEST(MediaSelection, commandClickOnTheOnlySelectedCellLeavesNothing)
{
    MediaSelection selection;
    selection.click(a, false);
    selection.click(a, true);
    EXPECT_TRUE(selection.urls().isEmpty());
}

TEST(MediaSelection, tellsWhatWasSelectedBefore)
{
    MediaSelection selection;
    selection.click(a, false);
    QSet<FileUrl> before;
    QObject::connect(&selection, &MediaSelection::changed, &selection,
                     [&before](const QSet<FileUrl> &urls) { before = urls; });
    selection.click(b, false);
    EXPECT_EQ(before, QSet<FileUrl>{a});
}
