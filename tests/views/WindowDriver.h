#pragma once

#include "support/Printing.h"

#include <QMap>
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

    static QList<QQuickItem *> allBelow(QQuickItem *top)
    {
        QList<QQuickItem *> items{top};
        for (QQuickItem *const child : top->childItems())
            items += allBelow(child);
        return items;
    }

    /// The labels that show something, and what they show.
    static QList<QQuickItem *> labelsOf(QQuickItem *top)
    {
        QList<QQuickItem *> labels;
        for (QQuickItem *const item : allBelow(top)) {
            if (item->isVisible() && item->inherits("QQuickLabel") &&
                !item->property("text").toString().isEmpty())
                labels.append(item);
        }
        return labels;
    }
    static QStringList textsOf(QQuickItem *top)
    {
        QStringList texts;
        for (const QQuickItem *const label : labelsOf(top))
            texts.append(label->property("text").toString());
        return texts;
    }
    /// Null while no such text shows.
    static QQuickItem *labelOf(QQuickItem *top, const QString &text)
    {
        for (QQuickItem *const label : labelsOf(top)) {
            if (label->property("text").toString() == text)
                return label;
        }
        return nullptr;
    }

    /// The names of the icons that show.
    static QStringList iconsOf(QQuickItem *top)
    {
        QStringList names;
        for (const QQuickItem *const item : allBelow(top)) {
            const QString source = item->property("source").toString();
            if (item->isVisible() && source.startsWith(QLatin1String("image://icons/")))
                names.append(source.section(u'/', 3, 3));
        }
        return names;
    }

    /// What an open menu shows, from top to bottom; "-" is a line between its entries.
    static QStringList shownBy(QObject *menu)
    {
        QMap<double, QString> shown;
        for (int i = 0; i < menu->property("count").toInt(); ++i) {
            QQuickItem *entry = nullptr;
            QMetaObject::invokeMethod(menu, "itemAt", Q_RETURN_ARG(QQuickItem *, entry), Q_ARG(int, i));
            if (entry->isVisible())
                shown.insert(entry->mapToScene(QPointF()).y(), entry->inherits("QQuickMenuSeparator")
                                                                   ? QStringLiteral("-")
                                                                   : textsOf(entry).join(u' '));
        }
        return shown.values();
    }

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
