#pragma once

#include <QObject>
#include <QPointer>
#include <QQuickItem>
#include <QQuickWindow>
#include <QtQml/qqmlregistration.h>

namespace Qorvane {

/// Who has the keys in a window, and whether that has to show. GUI thread.
class KeyboardFocus : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the window's state.")
    /// The user goes by keys: only who does needs to see where the next one goes. A key on its own begins it,
    /// a shortcut when it takes the keys elsewhere, and the pointer ends it. What is pressed in a popup is
    /// the popup's, and another window's keys are that window's.
    Q_PROPERTY(bool isVisible READ isVisible NOTIFY isVisibleChanged)
    /// Who has the keys, or had them before a popup or another window took them and will have them again.
    Q_PROPERTY(QQuickItem *holder READ holder NOTIFY holderChanged)

public:
    using QObject::QObject;

    bool isVisible() const { return m_isVisible; }
    QQuickItem *holder() const { return m_holder; }

    /// Follows what happens in `window`; what is in a popup lies below `popups`. The window may be gone
    /// first.
    Q_INVOKABLE void follow(QQuickWindow *window, QQuickItem *popups);

    /// Whether `item` is `ground` or lies in it; false where either is nothing.
    Q_INVOKABLE bool isWithin(const QQuickItem *item, const QQuickItem *ground) const;

    bool eventFilter(QObject *watched, QEvent *event) override;

Q_SIGNALS:
    void isVisibleChanged();
    void holderChanged();

private:
    void updateHolder();
    void setVisible(bool isVisible);
    bool isUnderPopup() const;

    QPointer<QQuickWindow> m_window;
    QPointer<QQuickItem> m_popups;
    QPointer<QQuickItem> m_holder;
    bool m_isVisible = false;
    bool m_isInShortcut = false;
};

} // namespace Qorvane
