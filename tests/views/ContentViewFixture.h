#pragma once

#include "library/QorManage.h"
#include "support/ConsoleWatch.h"
#include "support/Waiting.h"
#include "views/WindowDriver.h"
#include "views/pictures/PictureQueue.h"
#include "views/pictures/ThumbnailProvider.h"
#include "views/window/ContentViewState.h"
#include "views/window/ContentWindow.h"

#include <QCoroFuture>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>
#include <QWheelEvent>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <optional>

namespace Qorvane {

/// The real window over a real library in a home of its own; only the search is the test's.
class ContentViewFixture : public testing::Test, protected WindowDriver
{
protected:
    ContentViewFixture()
    {
        setUpEngine(engine, std::make_unique<ThumbnailProvider>(thumbnails));
        window = makeContentWindow(engine, state);
    }

    ~ContentViewFixture() override
    {
        window.reset();
        library.cancelAllTasks();
    }

    QQuickWindow *drivenWindow() const override { return window.get(); }

    void SetUp() override
    {
        ASSERT_TRUE(window);
        window->show();
        window->requestActivate();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    }

    QCoro::Task<QList<SearchResult>> search(QString text, QList<FileUrl> scope = {})
    {
        queries.append(text);
        scopes.append(scope);
        const QList<SearchResult> hits = found; // GCC 12 would move the member itself out
        co_return hits;
    }

    /// A value of the theme; none for a name that it doesn't have.
    QVariant themed(const char *name)
    {
        QQmlComponent component(&engine);
        component.setData("import QtQml\nimport QorvaneStyle\nQtObject { property QtObject theme: Theme }",
                          QUrl());
        const std::unique_ptr<QObject> holder(component.create());
        const auto *const theme = holder ? holder->property("theme").value<QObject *>() : nullptr;
        const QVariant value = theme ? theme->property(name) : QVariant();
        EXPECT_TRUE(value.isValid()) << name;
        return value;
    }
    QColor themedColor(const char *name) { return themed(name).value<QColor>(); }

    // A folder of small pictures, each in a colour of its own.
    QString makeFolder(const QString &name, int pictureCount)
    {
        const QString path = home.filePath(name);
        QDir().mkpath(path);
        for (int i = 0; i < pictureCount; ++i) {
            QImage picture(320, 240, QImage::Format_RGB32);
            picture.fill(QColor::fromHsv(i * 40 % 360, 200, 220));
            picture.save(QStringLiteral("%1/img%2.jpg").arg(path).arg(i));
        }
        return path;
    }

    // Adds it and waits until its photographs are in the grid.
    QString addFolder(const QString &name, int pictureCount)
    {
        const QString path = makeFolder(name, pictureCount);
        state.folderAdding()->add({QUrl::fromLocalFile(path)});
        EXPECT_TRUE(waitUntil([&] { return state.pages()->photos()->count() == pictureCount; }));
        EXPECT_TRUE(waitUntil([&] { return item("photoGrid")->isVisible(); }));
        return path;
    }

    void turnWheel(QQuickItem *over, int angle)
    {
        const QPointF place = over->mapToScene(QPointF(over->width() / 2, over->height() / 2));
        QTest::mouseMove(window.get(), place.toPoint());
        QWheelEvent event(place, window->mapToGlobal(place), {}, QPoint(0, angle), Qt::NoButton, {},
                          Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(window.get(), &event);
    }

    // Clicks the first row of that name in the sidebar.
    void clickSidebar(const QString &name)
    {
        const QList<SidebarRow> rows = state.sidebar()->rows()->rows();
        const auto match =
            std::ranges::find_if(rows, [&](const SidebarRow &row) { return row.name == name; });
        ASSERT_NE(match, rows.cend()) << qPrintable(name);
        waitForFrame();
        click(cell("sidebarList", int(match - rows.cbegin())));
    }

    // Draws up what lies at the middle of `target`, as far as it can.
    void dragUp(QQuickItem *target, int distance)
    {
        const QPointF middle(target->width() / 2, target->height() / 2);
        const QPoint start = target->mapToScene(middle).toPoint();
        constexpr int steps = 10;
        QTest::mouseMove(window.get(), start);
        QTest::mousePress(window.get(), Qt::LeftButton, {}, start);
        for (int step = 1; step <= steps; ++step)
            QTest::mouseMove(window.get(), start - QPoint(0, distance * step / steps));
        QTest::mouseRelease(window.get(), Qt::LeftButton, {}, start - QPoint(0, distance));
        waitForFrame();
    }

    // One for all tests: the toolkit keeps every touch screen that it is told of.
    static QPointingDevice *touchScreen()
    {
        static QPointingDevice *const screen = QTest::createTouchDevice();
        return screen;
    }

    // The same with a finger on the screen; the window gathers its steps until the next frame.
    void swipeUp(QQuickItem *target, int distance)
    {
        const QPointF middle(target->width() / 2, target->height() / 2);
        const QPoint start = target->mapToScene(middle).toPoint();
        constexpr int steps = 5;
        QTest::touchEvent(window.get(), touchScreen()).press(0, start);
        for (int step = 1; step <= steps; ++step) {
            QTest::touchEvent(window.get(), touchScreen())
                .move(0, start - QPoint(0, distance * step / steps));
            waitForFrame();
        }
        QTest::touchEvent(window.get(), touchScreen()).release(0, start - QPoint(0, distance));
        waitForFrame();
    }

    void type(const QString &text)
    {
        for (const QChar character : text)
            QTest::keyClick(window.get(), character.toLatin1());
    }

    void waitForFrame()
    {
        bool isSwapped = false;
        const auto connection = QObject::connect(window.get(), &QQuickWindow::frameSwapped, window.get(),
                                                 [&isSwapped] { isSwapped = true; });
        window->update();
        EXPECT_TRUE(waitUntil([&isSwapped] { return isSwapped; }));
        QObject::disconnect(connection);
    }

    QString fileUrl(const QString &folder, int index) const
    {
        return QStringLiteral("%1/img%2.jpg").arg(folder).arg(index);
    }

    const ConsoleWatch console;
    // Without a "-", which would keep the sidebar from opening the folders in it.
    const QTemporaryDir home{QDir::temp().filePath(QStringLiteral("QorvaneViewsXXXXXX"))};
    // Nobody embeds here: a run that waited for it in earnest would hold up the end of the program.
    QorManage library{nullptr, {.embeddingTimeout = 0.01}};
    QStringList queries;
    QList<QList<FileUrl>> scopes; ///< of each of the queries
    QList<SearchResult> found;
    std::shared_ptr<PictureQueue> thumbnails = std::make_shared<PictureQueue>(2);
    ContentViewState state{
        library,
        [this](const QString &text, const QList<FileUrl> &scope, int) { return search(text, scope); },
        thumbnails};
    QQmlEngine engine;
    std::unique_ptr<QQuickWindow> window;
};

} // namespace Qorvane
