#pragma once

#include "views/ContentViewFixture.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <semaphore>

namespace Qorvane {

/// The real window with a folder of photographs in its grid.
class GridFixture : public ContentViewFixture
{
protected:
    ~GridFixture() override { releaseThumbnails(); }

    // From now on no thumbnail arrives.
    void holdThumbnails()
    {
        const auto held = std::make_shared<std::atomic_int>(0);
        for (int thread = 0; thread < thumbnailThreads; ++thread)
            thumbnails->add(QStringLiteral("gate"), [held, gate = thumbnailGate] {
                ++*held;
                gate->acquire();
                return PictureQueue::Delivery();
            });
        ASSERT_TRUE(waitUntil([&held] { return *held == thumbnailThreads; }));
    }
    void releaseThumbnails(int threads = thumbnailThreads) { thumbnailGate->release(threads); }

    // Work for these files, asked for in this order while thumbnails are held: the order it is done in.
    QStringList orderOfWork(const QStringList &paths)
    {
        struct Done
        {
            std::mutex mutex;
            QStringList paths;
        };
        const auto done = std::make_shared<Done>();
        for (const QString &path : paths)
            thumbnails->add(path, [done, path] {
                const std::scoped_lock lock(done->mutex);
                done->paths.append(path);
                return PictureQueue::Delivery();
            });
        releaseThumbnails(1); // two threads would overtake each other
        const auto soFar = [&done] {
            const std::scoped_lock lock(done->mutex);
            return done->paths;
        };
        EXPECT_TRUE(waitUntil([&] { return soFar().size() == paths.size(); }));
        return soFar();
    }

    // Adds a folder of so many pictures and waits until its first cell can be clicked.
    void showFolder(int pictureCount)
    {
        folder = addFolder(QStringLiteral("Photos"), pictureCount);
        ASSERT_TRUE(waitUntil([this] { return cell("photoGrid", 0) != nullptr; }));
        waitForFrame();
    }

    // Searches, finding these pictures of the folder, and waits for their cells.
    void showResults(const QList<int> &pictures)
    {
        for (const int picture : pictures)
            found.append({FileUrl::file(fileUrl(folder, picture)), 0.4f, 0.1f});
        click(item("searchField"));
        type(QStringLiteral("x"));
        ASSERT_TRUE(waitUntil([this] { return item("resultsGrid")->isVisible(); }));
        ASSERT_TRUE(waitUntil([this] { return cell("resultsGrid", 0) != nullptr; }));
        waitForFrame();
    }

    FileUrl picture(int index) const { return FileUrl::file(fileUrl(folder, index)); }
    QSet<FileUrl> selected() { return state.selection().urls(); }

    QPoint middleOf(QQuickItem *target) const
    {
        auto *const body = target->findChild<QQuickItem *>(QStringLiteral("thumbnail"));
        return body->mapToScene(QPointF(body->width() / 2, body->height() / 2)).toPoint();
    }
    void clickPicture(const char *grid, int index, Qt::KeyboardModifiers modifiers = {},
                      Qt::MouseButton button = Qt::LeftButton)
    {
        QTest::mouseClick(window.get(), button, modifiers, middleOf(cell(grid, index)));
    }
    void doubleClickPicture(const char *grid, int index)
    {
        clickPicture(grid, index);
        QTest::mouseDClick(window.get(), Qt::LeftButton, {}, middleOf(cell(grid, index)));
    }

    int columns() const
    {
        int count = 1;
        const double top = cell("photoGrid", 0)->y();
        while (cell("photoGrid", count) && cell("photoGrid", count)->y() == top)
            ++count;
        return count;
    }

    QQuickItem *thumbnail(int index) const
    {
        return cell("photoGrid", index)->findChild<QQuickItem *>(QStringLiteral("thumbnail"));
    }

    // The first cell of the photographs, as far as cells exist, in which this shows; -1 for none.
    int rowWith(const char *name)
    {
        for (int row = 0; row < state.pages()->photos()->count(); ++row) {
            if (cell("photoGrid", row) && itemBelow(cell("photoGrid", row), name))
                return row;
        }
        return -1;
    }

    double position(const char *grid) const { return item(grid)->property("contentY").toDouble(); }
    // Scrolls as the scroll bar does, once a motion that is under way has ended.
    void setPosition(const char *grid, double position)
    {
        const QByteArray scrolling = QByteArray(grid) + "Scrolling";
        ASSERT_TRUE(waitUntil([&] { return !item(scrolling.constData())->property("isMoving").toBool(); }));
        item(grid)->setProperty("contentY", position);
        waitForFrame();
    }
    // The line of a cell lies in view as a whole.
    bool isInView(const char *grid, int index) const
    {
        QQuickItem *const target = cell(grid, index);
        if (!target)
            return false;
        const double top = target->mapToItem(item(grid), QPointF()).y();
        return top >= 0 && top + target->height() <= item(grid)->height();
    }
    // -1 for none.
    int firstInView(const char *grid) const
    {
        const int count = item(grid)->property("count").toInt();
        for (int index = 0; index < count; ++index) {
            if (isInView(grid, index))
                return index;
        }
        return -1;
    }

    QString folder;

private:
    static constexpr int thumbnailThreads = 2;
    // Shared with the threads, for which nobody waits.
    const std::shared_ptr<std::counting_semaphore<>> thumbnailGate =
        std::make_shared<std::counting_semaphore<>>(0);
};

} // namespace Qorvane
