#include "library/LibraryFixture.h"

#include "library/FolderTree.h"
#include "support/Waiting.h"

namespace Qorvane {

void LibraryFixture::start(const LibraryTimings &timings)
{
    qorManager.reset();
    qorManager = std::make_unique<QorManage>(nullptr, timings);
    settle();
    home.log().clear();
}

void LibraryFixture::addRoot(const FileUrl &url)
{
    qorManager->addFolder(url);
    ASSERT_TRUE(
        waitUntil([&] { return FolderTree::findFolder(url, qorManager->libraryFolders()).has_value(); }));
    settle();
}

QStringList LibraryFixture::rootNames() const
{
    QStringList result;
    for (const Folder &root : qorManager->libraryFolders())
        result.append(root.url.lastPathComponent());
    return result;
}

bool LibraryFixture::waitForRun(const FileUrl &folder)
{
    return waitUntil(
        [&] { return home.log().contains(QStringLiteral("✅ 状态更新为完成: ") + folder.path()); });
}

qsizetype LibraryFixture::startedRuns(const FileUrl &folder)
{
    return home.log().linesStartingWith(QStringLiteral("🔄 开始生成缩略图: ") + folder.path()).size();
}

} // namespace Qorvane
