#include "library/Folder.h"

#include "library/SidebarItem.h"

#include <gtest/gtest.h>

using namespace Qorvane;

namespace {

Folder folder(const QString &path, std::optional<QList<Folder>> children = std::nullopt)
{
    return {FileUrl::directory(path), std::move(children)};
}

} // namespace

TEST(Folder, isToldApartByTheAbsoluteTextOfItsAddress)
{
    EXPECT_EQ(folder(QStringLiteral("/a b")).id(), QStringLiteral("file:///a%20b/"));
}

TEST(Folder, noChildrenDifferFromAnyList)
{
    EXPECT_NE(folder(QStringLiteral("/a")), folder(QStringLiteral("/a"), QList<Folder>{}));
    EXPECT_NE(qHash(folder(QStringLiteral("/a"))), qHash(folder(QStringLiteral("/a"), QList<Folder>{})));
}

TEST(Folder, childrenCompareInOrder)
{
    const Folder one = folder(QStringLiteral("/a/1"));
    const Folder two = folder(QStringLiteral("/a/2"));
    const Folder parent = folder(QStringLiteral("/a"), QList<Folder>{one, two});
    EXPECT_EQ(parent, folder(QStringLiteral("/a"), QList<Folder>{one, two}));
    EXPECT_EQ(qHash(parent), qHash(folder(QStringLiteral("/a"), QList<Folder>{one, two})));
    EXPECT_NE(parent, folder(QStringLiteral("/a"), QList<Folder>{two, one}));
}

TEST(Folder, comesBackFromItsSerialisedForm)
{
    const Folder tree = folder(QStringLiteral("/照片 100%"),
                               QList<Folder>{folder(QStringLiteral("/照片 100%/b"), QList<Folder>{})});
    const QJsonObject object = tree.toJson();
    EXPECT_EQ(object.keys(), (QStringList{QStringLiteral("children"), QStringLiteral("url")}));
    EXPECT_EQ(Folder::fromJson(object), tree);
    EXPECT_FALSE(Folder::fromJson(QJsonObject{}).has_value());
}

TEST(SidebarItem, rowsOfOneFolderInTwoSectionsHaveTwoIds)
{
    const Folder pictures = folder(QStringLiteral("/Users/me/Pictures"));
    const SidebarItem favorite{pictures, SidebarItem::ItemType::favorite};
    const SidebarItem library{pictures, SidebarItem::ItemType::library};
    EXPECT_EQ(favorite.id(), QStringLiteral("favorite-file:///Users/me/Pictures/"));
    EXPECT_EQ(library.id(), QStringLiteral("library-file:///Users/me/Pictures/"));
    EXPECT_NE(favorite, library);
}
