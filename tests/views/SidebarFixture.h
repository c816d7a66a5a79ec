#pragma once

#include "store/EmbeddingStore.h"
#include "views/ContentViewFixture.h"

namespace Qorvane {

/// The sidebar in the real window, over a real library.
class SidebarFixture : public ContentViewFixture
{
protected:
    ~SidebarFixture() override
    {
        for (const QString &tag : EmbeddingStore::shared().listAllTags())
            EmbeddingStore::shared().deleteTagGlobally(tag);
    }

    QList<SidebarRow> rows() { return state.sidebar()->rows()->rows(); }

    int indexOf(const QString &name, SidebarRow::Kind kind)
    {
        const QList<SidebarRow> list = rows();
        const auto match = std::ranges::find_if(
            list, [&](const SidebarRow &row) { return row.name == name && row.kind == kind; });
        return match == list.cend() ? -1 : int(match - list.cbegin());
    }

    /// The row as it is drawn.
    QQuickItem *row(const QString &name, SidebarRow::Kind kind = SidebarRow::Kind::folder)
    {
        waitForFrame();
        return cell("sidebarList", indexOf(name, kind));
    }

    QString selected()
    {
        QStringList names;
        for (const SidebarRow &row : rows()) {
            if (state.sidebar()->rows()->isSelected(row))
                names.append(row.name);
        }
        return names.join(u' ');
    }

    void giveTags(const QStringList &tags)
    {
        for (const QString &tag : tags)
            EmbeddingStore::shared().addTag(QStringLiteral("/p/a.jpg"), tag);
        library.refreshAllTags();
        ASSERT_TRUE(waitUntil([&] { return library.allTags().size() == tags.size(); }));
    }

    // A folder without pictures in it is through with its run at once.
    QString addEmptyFolder(const QString &name, const QStringList &children = {})
    {
        const QString path = makeFolder(name, 0);
        for (const QString &child : children)
            QDir(path).mkpath(child);
        state.folderAdding()->add({QUrl::fromLocalFile(path)});
        EXPECT_TRUE(waitUntil([&] { return indexOf(name, SidebarRow::Kind::folder) >= 0; }));
        EXPECT_TRUE(waitUntil([&] { return library.selectedFolder().has_value(); }));
        EXPECT_TRUE(waitUntil([&] {
            return library.processingState(FileUrl::directory(path)) == FolderProcessingState::completed;
        }));
        return path;
    }

    void addFavorite(const QString &path)
    {
        const Folder folder = *library.folderWithAbsoluteString(FileUrl::directory(path).absoluteString());
        library.addToFavorites(folder);
        ASSERT_TRUE(waitUntil([&] { return library.favoriteFolders().contains(folder); }));
    }

    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(window.get(), key, modifiers);
    }

    static QString textOf(QAccessible::Text kind, QQuickItem *target)
    {
        QAccessibleInterface *const interface = QAccessible::queryAccessibleInterface(target);
        return interface ? interface->text(kind) : QString();
    }
};

} // namespace Qorvane
