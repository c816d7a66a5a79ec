#include "library/FolderTree.h"

#include "library/BoundByPermissions.h"
#include "library/LibraryHome.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qorvane;

namespace {

class FolderTreeTest : public testing::Test
{
protected:
    static QStringList childNames(const Folder &folder)
    {
        QStringList result;
        for (const Folder &child : folder.children.value_or(QList<Folder>()))
            result.append(child.url.lastPathComponent());
        result.sort(); // the order on disk is not ours to know
        return result;
    }

    void link(const QString &target, const QString &name) const
    {
        ASSERT_EQ(
            ::symlink(QFile::encodeName(target).constData(), QFile::encodeName(home.path(name)).constData()),
            0);
    }

    static qsizetype count(const Folder &folder)
    {
        qsizetype sum = 1;
        for (const Folder &child : folder.children.value_or(QList<Folder>()))
            sum += count(child);
        return sum;
    }

    LibraryHome home;
};

} // namespace

TEST_F(FolderTreeTest, holdsFoldersOfEveryDepthAndNoFiles)
{
    home.makeFolder(QStringLiteral("a/b/c"));
    home.makeFolder(QStringLiteral("d"));
    home.writeFile(QStringLiteral("a/1.jpg"));

    const Folder tree = FolderTree::buildFolderHierarchy(home.folder());

    EXPECT_EQ(tree.url, home.folder());
    EXPECT_EQ(childNames(tree), (QStringList{QStringLiteral("a"), QStringLiteral("d")}));
    const auto c = FolderTree::findFolder(home.folder(QStringLiteral("a/b/c")), {tree});
    ASSERT_TRUE(c);
    EXPECT_EQ(c->children, std::nullopt);
}

TEST_F(FolderTreeTest, aFolderWithOnlyHiddenSubFoldersHasNoChildren)
{
    home.makeFolder(QStringLiteral(".hidden/inside"));
    EXPECT_EQ(FolderTree::buildFolderHierarchy(home.folder()).children, std::nullopt);
}

TEST_F(FolderTreeTest, aFolderThatIsGoneHasNoChildrenAndLeavesALine)
{
    const Folder tree = FolderTree::buildFolderHierarchy(home.folder(QStringLiteral("gone")));
    EXPECT_EQ(tree, (Folder{home.folder(QStringLiteral("gone")), std::nullopt}));
    EXPECT_EQ(home.log().lines(),
              QStringList{QStringLiteral("Error building folder hierarchy: No such file or directory")});
}

TEST_F(FolderTreeTest, aFolderThatCannotBeReadKeepsItsSiblings)
{
    home.makeFolder(QStringLiteral("locked/inside"));
    home.makeFolder(QStringLiteral("open"));
    ASSERT_EQ(::chmod(QFile::encodeName(home.path(QStringLiteral("locked"))).constData(), 0), 0);
    const Folder tree = [this] {
        const BoundByPermissions bound;
        return FolderTree::buildFolderHierarchy(home.folder());
    }();
    ::chmod(QFile::encodeName(home.path(QStringLiteral("locked"))).constData(), 0700);
    EXPECT_EQ(childNames(tree), (QStringList{QStringLiteral("locked"), QStringLiteral("open")}));
    EXPECT_EQ(home.log().lines(),
              QStringList{QStringLiteral("Error building folder hierarchy: Permission denied")});
}

TEST_F(FolderTreeTest, aLinkToAFolderIsAFolder)
{
    home.makeFolder(QStringLiteral("real/inside"));
    link(home.path(QStringLiteral("real")), QStringLiteral("link"));
    link(home.path(QStringLiteral("nowhere")), QStringLiteral("dangling"));

    const Folder tree = FolderTree::buildFolderHierarchy(home.folder());

    EXPECT_EQ(childNames(tree), (QStringList{QStringLiteral("link"), QStringLiteral("real")}));
    EXPECT_TRUE(FolderTree::findFolder(home.folder(QStringLiteral("link/inside")), {tree}));
}

TEST_F(FolderTreeTest, aLinkBackUpIsShownAndNotEntered)
{
    home.makeFolder(QStringLiteral("a"));
    link(home.path(), QStringLiteral("a/up"));
    link(home.path(), QStringLiteral("a/up2"));

    const Folder tree = FolderTree::buildFolderHierarchy(home.folder());

    const auto a = FolderTree::findFolder(home.folder(QStringLiteral("a")), {tree});
    ASSERT_TRUE(a);
    EXPECT_EQ(childNames(*a), (QStringList{QStringLiteral("up"), QStringLiteral("up2")}));
    EXPECT_EQ(count(tree), 4);
}

TEST_F(FolderTreeTest, foldersThatAllLinkToEachOtherEndSoon)
{
    // 12 folders give 12! paths on which none is its own ancestor.
    constexpr int folders = 12;
    for (int i = 0; i < folders; ++i)
        home.makeFolder(QString::number(i));
    for (int i = 0; i < folders; ++i) {
        for (int j = 0; j < folders; ++j) {
            if (i != j)
                link(home.path(QString::number(j)), QStringLiteral("%1/to%2").arg(i).arg(j));
        }
    }
    const Folder tree = FolderTree::buildFolderHierarchy(home.folder());
    // Each folder is entered at most 64 times and shows 11 others then.
    EXPECT_LE(count(tree), 1 + 12 + 12 * 64 * 11);
}

TEST_F(FolderTreeTest, theFirstMatchIsFoundDepthFirst)
{
    const FileUrl url = FileUrl::directory(QStringLiteral("/x/b"));
    const Folder inside{url, QList<Folder>{}};
    const Folder later{url, std::nullopt};
    const QList<Folder> folders{Folder{FileUrl::directory(QStringLiteral("/x")), QList<Folder>{inside}},
                                later};
    EXPECT_EQ(FolderTree::findFolder(url, folders), inside);
    EXPECT_EQ(FolderTree::findFolder(QStringLiteral("file:///x/b/"), folders), inside);
    EXPECT_EQ(FolderTree::findFolder(FileUrl::directory(QStringLiteral("/y")), folders), std::nullopt);
}
