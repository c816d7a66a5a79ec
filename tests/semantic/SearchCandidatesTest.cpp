#include "semantic/SearchCandidates.h"

#include "support/Printing.h"

#include <gtest/gtest.h>

#include <string>

using namespace Qorvane;

namespace {

SearchCandidates candidatesOf(const QStringList &paths)
{
    SearchCandidates candidates;
    for (const QString &path : paths)
        candidates.append(FileUrl::file(path), 0);
    return candidates;
}

void expectPaths(const SearchCandidates &candidates, const QStringList &paths)
{
    ASSERT_EQ(candidates.size(), std::size_t(paths.size()));
    for (qsizetype i = 0; i < paths.size(); ++i) {
        const FileUrl expected = FileUrl::file(paths[i]);
        EXPECT_EQ(candidates.url(std::size_t(i)), expected);
        const std::string_view name = candidates.name(std::size_t(i));
        EXPECT_EQ(QString::fromUtf8(name.data(), qsizetype(name.size())), expected.lastPathComponent());
    }
}

} // namespace

TEST(SearchCandidates, givePathsBackAsTheyCame)
{
    const QStringList paths{
        QStringLiteral("/a/1.jpg"),
        QStringLiteral("/a/2.jpg"),
        QStringLiteral("/a/b/1.jpg"),
        QStringLiteral("/a/3.jpg"),
        QStringLiteral("/ab/1.jpg"),
        QStringLiteral("/1.jpg"),
        QStringLiteral("/"),
        QStringLiteral("/2.jpg"),
        QStringLiteral("/a/b/"),
        QStringLiteral("/a/b"),
        QStringLiteral("/a//b/1.jpg"),
        QStringLiteral("/a//b/2.jpg"),
        QStringLiteral("//"),
        QStringLiteral("/照片/山.jpg"),
        QStringLiteral("/照片/🌄 1.jpg"),
        QStringLiteral("no folder"),
        QStringLiteral("no/folder"),
        QStringLiteral("no folder"),
        QStringLiteral("x"),
        QString(),
        QStringLiteral("/a/1.jpg"),
    };
    expectPaths(candidatesOf(paths), paths);
    for (const QString &path : paths)
        expectPaths(candidatesOf({path, path}), {path, path});
}

TEST(SearchCandidates, keepTheirOrderAroundTheSizesOfPortions)
{
    for (const int count : {0, 1, 1023, 1024, 1025, 2048, 2049}) {
        QStringList paths;
        for (int i = 0; i < count; ++i)
            paths.append(QStringLiteral("/p/%1/%2.jpg").arg(i / 700).arg(i));
        expectPaths(candidatesOf(paths), paths);
    }
}

TEST(SearchCandidates, keepASimilarityForEach)
{
    SearchCandidates candidates;
    for (int i = 0; i < 1500; ++i)
        candidates.append("/p/" + std::to_string(i), float(i));
    candidates.setSimilarity(1200, -1);
    ASSERT_EQ(candidates.similarities().size(), 1500U);
    for (std::size_t i = 0; i < 1500; ++i)
        EXPECT_EQ(candidates.similarity(i), i == 1200 ? -1 : float(i));
}

TEST(SearchCandidates, areCopiedWhole)
{
    const QStringList paths{QStringLiteral("/a/1.jpg"), QStringLiteral("/a/2.jpg")};
    SearchCandidates original = candidatesOf(paths);
    const SearchCandidates copy = original;
    original.append("/a/3.jpg", 0);
    expectPaths(copy, paths);
    expectPaths(original, paths + QStringList{QStringLiteral("/a/3.jpg")});
}
