#include "views/ContentViewState.h"

#include "library/QorManage.h"
#include "platform/UserDefaults.h"
#include "support/LogCapture.h"
#include "support/Waiting.h"
#include "views/ThumbnailQueue.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qorvane;

namespace {

/// The window's state without the window, over a real library.
class ContentViewStateTest : public testing::Test
{
protected:
    ContentViewStateTest()
    {
        for (const char *name : {"one", "two", "three"})
            QDir(m_place.path()).mkdir(QString::fromLatin1(name));
    }
    ~ContentViewStateTest() override { UserDefaults::standard().remove(QStringLiteral("libraryFolders")); }

    static QCoro::Task<QList<SearchResult>> findNothing() { co_return {}; }

    QUrl url(const QString &name) const { return QUrl::fromLocalFile(m_place.filePath(name)); }

    // Without a "-", which would keep the sidebar from opening the folders in it.
    const QTemporaryDir m_place{QDir::temp().filePath(QStringLiteral("QorvaneStateXXXXXX"))};
    const LogCapture m_log;
    QorManage m_library;
    ContentViewState m_state{m_library, [](auto &&...) { return findNothing(); },
                             std::make_shared<ThumbnailQueue>(1)};
};

} // namespace

TEST_F(ContentViewStateTest, onlyFoldersOfThisMachineAreAdded)
{
    m_state.addFolders({QUrl(QStringLiteral("sftp://server/photographs")),
                        QUrl(QStringLiteral("https://qorvane.example/one")), url(QStringLiteral("two")),
                        url(QStringLiteral("absent")), QUrl(), url(QStringLiteral("one"))});
    ASSERT_TRUE(waitUntil([this] { return m_library.libraryFolders().size() == 2; }));
    EXPECT_EQ(m_library.libraryFolders().at(0).url.path(), m_place.filePath(QStringLiteral("two")));
    EXPECT_EQ(m_library.libraryFolders().at(1).url.path(), m_place.filePath(QStringLiteral("one")));
}
