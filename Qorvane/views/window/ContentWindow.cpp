#include "views/window/ContentWindow.h"

#include "views/pictures/PictureProvider.h"
#include "views/pictures/PictureQueue.h"
#include "views/pictures/PictureUrl.h"
#include "views/pictures/ThumbnailProvider.h"
#include "views/pictures/ThumbnailUrl.h"
#include "views/style/IconProvider.h"
#include "views/style/ShadowProvider.h"
#include "views/window/ContentViewState.h"

#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickWindow>
#include <QtQml/QQmlExtensionPlugin>

#include <cmath>

Q_IMPORT_QML_PLUGIN(QorvaneStylePlugin)
Q_IMPORT_QML_PLUGIN(QorvaneViewsPlugin)

namespace Qorvane {

void setUpEngine(QQmlEngine &engine, std::unique_ptr<ThumbnailProvider> thumbnails)
{
    // Qt before 6.5 doesn't look there by itself.
    engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
    engine.addImageProvider(QString::fromLatin1(IconProvider::providerId),
                            std::make_unique<IconProvider>().release());
    engine.addImageProvider(QString::fromLatin1(ShadowProvider::providerId),
                            std::make_unique<ShadowProvider>().release());
    auto pictures = std::make_unique<PictureProvider>();
    // While the engine's reader, whose thread ends with the engine, can still be told of an answer.
    QObject::connect(&engine, &QObject::destroyed,
                     [thumbnailQueue = thumbnails->queue(), pictureQueues = pictures->queues()] {
                         thumbnailQueue->close();
                         for (const std::shared_ptr<PictureQueue> &queue : pictureQueues)
                             queue->close();
                     });
    engine.addImageProvider(QString::fromLatin1(ThumbnailRequest::providerId), thumbnails.release());
    engine.addImageProvider(QString::fromLatin1(PictureRequest::providerId), pictures.release());
}

std::unique_ptr<QQuickWindow> makeContentWindow(QQmlEngine &engine, ContentViewState &state)
{
    // The system's own rendering is crisper at the small sizes of an interface, but only on whole pixels.
    const double ratio = qGuiApp->devicePixelRatio();
    if (ratio == std::floor(ratio))
        QQuickWindow::setTextRenderType(QQuickWindow::NativeTextRendering);
    // By the module's name rather than by the file's address: only a module's import registers its C++ types.
    QQmlComponent component(&engine);
    component.setData("import QorvaneViews\nContentView {}", QUrl());
    // Asked first: before Qt 6.5 a component with errors can't even be tried.
    std::unique_ptr<QObject> root;
    if (component.isReady()) {
        root.reset(component.createWithInitialProperties(
            {{QStringLiteral("viewState"), QVariant::fromValue(&state)}}));
    }
    auto *const window = qobject_cast<QQuickWindow *>(root.get());
    if (!window) {
        qWarning("%s", qUtf8Printable(component.errorString()));
        return nullptr;
    }
    root.release(); // NOLINT(bugprone-unused-return-value): the same object, under its own type
    return std::unique_ptr<QQuickWindow>(window);
}

} // namespace Qorvane
