#include "views/style/KeyboardFocus.h"

#include <QKeyEvent>

namespace Qorvane {

namespace {

// Held while clicking, they are no sign of a keyboard's user.
bool isModifier(int key)
{
    switch (key) {
    case Qt::Key_Shift:
    case Qt::Key_Control:
    case Qt::Key_Meta:
    case Qt::Key_Alt:
    case Qt::Key_AltGr:
    case Qt::Key_CapsLock:
    case Qt::Key_NumLock:
        return true;
    default:
        return false;
    }
}

bool isShortcut(const QKeyEvent &event)
{
    return (event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) != 0;
}

} // namespace

void KeyboardFocus::follow(QQuickWindow *window, QQuickItem *popups)
{
    m_window = window;
    m_popups = popups;
    window->installEventFilter(this);
    connect(window, &QQuickWindow::activeFocusItemChanged, this, &KeyboardFocus::updateHolder);
    updateHolder();
}

bool KeyboardFocus::isWithin(const QQuickItem *item, const QQuickItem *ground) const
{
    return item && ground && (item == ground || ground->isAncestorOf(item));
}

bool KeyboardFocus::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    // Of a shortcut that is the only event.
    case QEvent::ShortcutOverride:
    case QEvent::KeyPress: {
        const auto &key = *static_cast<QKeyEvent *>(event);
        if (isModifier(key.key()) || isUnderPopup())
            break;
        m_isInShortcut = isShortcut(key);
        if (!m_isInShortcut)
            setVisible(true);
        break;
    }
    case QEvent::MouseButtonPress:
    case QEvent::TouchBegin:
    case QEvent::TabletPress:
        m_isInShortcut = false;
        setVisible(false);
        break;
    case QEvent::KeyRelease:
    case QEvent::FocusOut:
        m_isInShortcut = false;
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

bool KeyboardFocus::isUnderPopup() const
{
    return m_window && isWithin(m_window->activeFocusItem(), m_popups);
}

void KeyboardFocus::updateHolder()
{
    QQuickItem *const item = m_window ? m_window->activeFocusItem() : nullptr;
    if (!item || item == m_holder || isUnderPopup())
        return;
    if (m_isInShortcut)
        setVisible(true);
    m_holder = item;
    Q_EMIT holderChanged();
}

void KeyboardFocus::setVisible(bool isVisible)
{
    if (m_isVisible == isVisible)
        return;
    m_isVisible = isVisible;
    Q_EMIT isVisibleChanged();
}

} // namespace Qorvane
