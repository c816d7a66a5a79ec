#pragma once

#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>

namespace Qorvane {

/// Finds the items of a window and does to them what a user's hands do.
class WindowDriver
{
protected:
    WindowDriver() = default;
    virtual ~WindowDriver() = default;

    virtual QQuickWindow *drivenWindow() const = 0;

    QQuickItem *item(const char *name) const
    {
        return drivenWindow()->findChild<QQuickItem *>(QString::fromLatin1(name));
    }

    // What is in a popup lies under the window's overlay.
    QQuickItem *popupItem(const char *name) const { return itemBelow(drivenWindow()->contentItem(), name); }

    /// The first that shows.
    static QQuickItem *itemBelow(QQuickItem *top, const char *name)
    {
        if (top->objectName() == QLatin1String(name) && top->isVisible())
            return top;
        for (QQuickItem *const child : top->childItems()) {
            if (QQuickItem *const found = itemBelow(child, name))
                return found;
        }
        return nullptr;
    }

    /// The one that shows an entry of a list or a grid; null while there is none.
    static QQuickItem *cellOf(QQuickItem *view, int index)
    {
        QQuickItem *delegate = nullptr;
        QMetaObject::invokeMethod(view, "itemAtIndex", Q_RETURN_ARG(QQuickItem *, delegate),
                                  Q_ARG(int, index));
        return delegate;
    }
    QQuickItem *cell(const char *view, int index) const { return cellOf(item(view), index); }

    /// What is drawn there, in the window's own coordinates, whatever the screen's density.
    QColor shownAt(QPointF place) const
    {
        return drivenWindow()->grabWindow().pixelColor(
            (place * drivenWindow()->effectiveDevicePixelRatio()).toPoint());
    }

    static QPoint middleOf(QQuickItem *target)
    {
        return target->mapToScene(QPointF(target->width() / 2, target->height() / 2)).toPoint();
    }

    void click(QQuickItem *target, Qt::KeyboardModifiers modifiers = {}) const
    {
        QTest::mouseClick(drivenWindow(), Qt::LeftButton, modifiers, middleOf(target));
    }

    void doubleClick(QQuickItem *target) const
    {
        click(target);
        QTest::mouseDClick(drivenWindow(), Qt::LeftButton, {}, middleOf(target));
    }
};

} // namespace Qorvane
