#include "views/folders/FolderAdding.h"

#include "library/QorManage.h"
#include "platform/UserDefaults.h"
#include "support/LogCapture.h"
#include "support/Waiting.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qorvane;

namespace {

class FolderAddingTest : public testing::Test
{
protected:
    FolderAddingTest()
    {
        for (const char *name : {"one", "two", "three"})
            QDir(m_place.path()).mkdir(QString::fromLatin1(name));
    }
    ~FolderAddingTest() override { UserDefaults::standard().remove(QStringLiteral("libraryFolders")); }

    QUrl url(const QString &name) const { return QUrl::fromLocalFile(m_place.filePath(name)); }

    QStringList added() const
    {
        QStringList names;
        for (const Folder &folder : m_library.libraryFolders())
            names.append(folder.url.lastPathComponent());
        return names;
    }

    const QTemporaryDir m_place;
    const LogCapture m_log;
    QorManage m_library;
    FolderAdding m_adding{m_library};
};

} // namespace

TEST_F(FolderAddingTest, theFoldersChosenInTheDesktopsPanelAreAddedInItsOrder)
{
    auto *const panel = m_adding.findChild<FolderPanel *>();
    ASSERT_NE(panel, nullptr);
    Q_EMIT panel->chosen(
        {url(QStringLiteral("two")), url(QStringLiteral("three")), url(QStringLiteral("one"))});
    ASSERT_TRUE(waitUntil([this] { return m_library.libraryFolders().size() == 3; }));
    EXPECT_EQ(added(), QStringList({QStringLiteral("two"), QStringLiteral("three"), QStringLiteral("one")}));
}

TEST_F(FolderAddingTest, foldersChosenRightBeforeTheWindowClosesAreAdded)
{
    {
        FolderAdding closing(m_library);
        closing.add({url(QStringLiteral("one")), url(QStringLiteral("two"))});
    }
    EXPECT_TRUE(waitUntil([this] { return m_library.libraryFolders().size() == 2; }));
}

TEST_F(FolderAddingTest, onlyFoldersOfThisMachineAreAdded)
{
    m_adding.add({QUrl(QStringLiteral("sftp://server/photographs")),
                  QUrl(QStringLiteral("https://qorvane.example/one")), url(QStringLiteral("two")),
                  url(QStringLiteral("absent")), QUrl(), url(QStringLiteral("one"))});
    ASSERT_TRUE(waitUntil([this] { return m_library.libraryFolders().size() == 2; }));
    EXPECT_EQ(added(), QStringList({QStringLiteral("two"), QStringLiteral("one")}));
}

TEST_F(FolderAddingTest, aDragMayHoldFoldersWhenSomethingInItIsOfThisMachine)
{
    const QUrl elsewhere(QStringLiteral("sftp://server/photographs"));
    EXPECT_TRUE(m_adding.mayHold({elsewhere, url(QStringLiteral("absent"))}));
    EXPECT_FALSE(m_adding.mayHold({elsewhere}));
    EXPECT_FALSE(m_adding.mayHold({}));
}
