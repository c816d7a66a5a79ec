#include "views/FolderListModel.h"

#include <QAbstractItemModelTester>
#include <QHash>
#include <QSignalSpy>

#include <gtest/gtest.h>

using namespace Qorvane;

namespace {

Folder folder(const QString &path, const std::optional<QList<Folder>> &children = std::nullopt)
{
    return {FileUrl::directory(path), children};
}

class FolderListModelTest : public testing::Test
{
protected:
    QStringList names() const
    {
        QStringList list;
        for (int row = 0; row < model.rowCount(); ++row)
            list.append(model.index(row).data(FolderListModel::NameRole).toString());
        return list;
    }

    QHash<QString, FolderProgress> progress;
    FolderListModel model{[this](const FileUrl &url) { return progress.value(url.path()); }};
    QAbstractItemModelTester tester{&model, QAbstractItemModelTester::FailureReportingMode::Fatal};
    const QList<Folder> roots{
        folder(QStringLiteral("/p/Photos"),
               QList<Folder>{folder(QStringLiteral("/p/Photos/旅行")),
                             folder(QStringLiteral("/p/Photos/Family"),
                                    QList<Folder>{folder(QStringLiteral("/p/Photos/Family/2024"))})}),
        folder(QStringLiteral("/p/Scans"))};
};

} // namespace

TEST_F(FolderListModelTest, beginsWithTheRootsFolded)
{
    model.setFolders(roots);
    EXPECT_EQ(names(), (QStringList{QStringLiteral("Photos"), QStringLiteral("Scans")}));
    EXPECT_TRUE(model.index(0).data(FolderListModel::HasChildrenRole).toBool());
    EXPECT_FALSE(model.index(1).data(FolderListModel::HasChildrenRole).toBool());
}

TEST_F(FolderListModelTest, unfoldsAndFoldsInPlace)
{
    model.setFolders(roots);
    QSignalSpy resets(&model, &QAbstractItemModel::modelReset);
    model.toggle(0);
    model.toggle(2);
    EXPECT_EQ(names(),
              (QStringList{QStringLiteral("Photos"), QStringLiteral("旅行"), QStringLiteral("Family"),
                           QStringLiteral("2024"), QStringLiteral("Scans")}));
    EXPECT_EQ(model.index(3).data(FolderListModel::DepthRole).toInt(), 2);
    model.toggle(0);
    EXPECT_EQ(names(), (QStringList{QStringLiteral("Photos"), QStringLiteral("Scans")}));
    EXPECT_EQ(resets.count(), 0);
}

TEST_F(FolderListModelTest, keepsWhatIsUnfoldedWhenTheFoldersAreReplaced)
{
    model.setFolders(roots);
    model.toggle(0);
    QList<Folder> more = roots;
    more.append(folder(QStringLiteral("/p/New")));
    model.setFolders(more);
    EXPECT_EQ(names(),
              (QStringList{QStringLiteral("Photos"), QStringLiteral("旅行"), QStringLiteral("Family"),
                           QStringLiteral("Scans"), QStringLiteral("New")}));
}

TEST_F(FolderListModelTest, toggleOfARowWithoutChildrenDoesNothing)
{
    model.setFolders(roots);
    model.toggle(1);
    model.toggle(-1);
    model.toggle(7);
    EXPECT_EQ(model.rowCount(), 2);
}

TEST_F(FolderListModelTest, marksTheSelectedRow)
{
    model.setFolders(roots);
    QSignalSpy changes(&model, &QAbstractItemModel::dataChanged);
    model.setSelectedId(QStringLiteral("library-file:///p/Scans/"));
    EXPECT_EQ(changes.count(), 1);
    EXPECT_FALSE(model.index(0).data(FolderListModel::IsSelectedRole).toBool());
    EXPECT_TRUE(model.index(1).data(FolderListModel::IsSelectedRole).toBool());
}

TEST_F(FolderListModelTest, announcesOnlyTheRowsWhoseProgressChanged)
{
    model.setFolders(roots);
    progress[QStringLiteral("/p/Scans")] = {FolderProcessingState::vectors, 0.5, QStringLiteral("向量: 1/2")};
    QSignalSpy changes(&model, &QAbstractItemModel::dataChanged);
    model.refreshProgress();
    ASSERT_EQ(changes.count(), 1);
    EXPECT_EQ(changes.at(0).at(0).toModelIndex().row(), 1);
    EXPECT_EQ(model.index(1).data(FolderListModel::StateRole).toInt(), int(FolderListModel::Vectors));
    EXPECT_EQ(model.index(1).data(FolderListModel::ProgressRole).toDouble(), 0.5);
    EXPECT_EQ(model.index(1).data(FolderListModel::DetailRole).toString(), QStringLiteral("向量: 1/2"));
}
