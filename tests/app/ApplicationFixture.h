#pragma once

#include "QorvaneApp.h"
#include "library/QorManage.h"
#include "support/ConsoleWatch.h"
#include "support/LogCapture.h"
#include "support/Waiting.h"
#include "views/WindowDriver.h"
#include "views/window/ContentView.h"

#include <QDir>
#include <QDropEvent>
#include <QImage>
#include <QMimeData>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <utility>

namespace Qorvane {

/// The whole application with real encoders over real folders, driven by what a user's hands do.
class ApplicationFixture : public testing::Test, protected WindowDriver
{
protected:
    QString makeFolder(const QString &name, const QList<std::pair<QString, QImage>> &pictures) const
    {
        const QString path = m_home.filePath(name);
        QDir().mkpath(path);
        for (const auto &[file, image] : pictures)
            EXPECT_TRUE(image.save(path + QLatin1Char('/') + file));
        return path;
    }

    void open()
    {
        ASSERT_TRUE(m_app.openMainWindow());
        ASSERT_TRUE(QTest::qWaitForWindowActive(drivenWindow()));
        ASSERT_TRUE(waitUntil([this] { return state().focus()->isOnSidebar(); }));
    }

    QQuickWindow *drivenWindow() const override { return m_app.contentView()->window(); }
    ContentViewState &state() { return m_app.contentView()->state(); }
    QorManage &library() { return m_app.qorManager(); }

    // No faster than it is searched: the last search to end wins, and of overlapping ones that may be an
    // earlier one.
    void type(const QString &text)
    {
        for (const QChar letter : text) {
            QTest::keyClick(drivenWindow(), letter.toLatin1());
            EXPECT_TRUE(waitUntil([this] { return !state().search()->isSearching(); }));
        }
    }

    void dropFolder(const QString &path)
    {
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile(path)});
        const QPoint position(700, 400);
        QDragEnterEvent enter(position, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(drivenWindow(), &enter);
        QDropEvent drop(position, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(drivenWindow(), &drop);
    }

    QStringList shownNames(MediaListModel *media)
    {
        QStringList names;
        for (const FileUrl &url : media->urls())
            names.append(url.lastPathComponent());
        return names;
    }

    bool isDone(const QString &folder)
    {
        return library().processingState(FileUrl::directory(folder)) == FolderProcessingState::completed;
    }

    // The sidebar's row that begins with this name, once it is there.
    QQuickItem *sidebarRow(const QString &name)
    {
        QQuickItem *found = nullptr;
        waitUntil([&] {
            const int count = item("sidebarList")->property("count").toInt();
            for (int row = 0; row < count && !found; ++row) {
                QQuickItem *const candidate = cell("sidebarList", row);
                if (candidate && candidate->property("name").toString() == name)
                    found = candidate;
            }
            return found != nullptr;
        });
        EXPECT_TRUE(found) << qPrintable(name);
        return found;
    }

private:
    const ConsoleWatch m_console;
    const LogCapture m_log; // and keeps what the library says off the console
    // Without a "-", which would keep the sidebar from opening the folders in it.
    const QTemporaryDir m_home{QDir::temp().filePath(QStringLiteral("QorvaneFoldersXXXXXX"))};
    QorvaneApp m_app;
};

} // namespace Qorvane
