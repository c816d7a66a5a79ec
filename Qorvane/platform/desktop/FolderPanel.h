#pragma once

#include <QList>
#include <QObject>
#include <QUrl>
#include <QVariantMap>
#include <qwindowdefs.h>

namespace Qorvane {

/// The desktop's own panel for choosing folders, several at a time, through its file-chooser portal.
/// GUI thread.
class FolderPanel : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// The portal's name for a window, for the desktop to keep its panel above it; empty where the window
    /// system `platformName` (QGuiApplication's) has none that can be known without asking it.
    static QString handleOf(const QString &platformName, WId window);

    /// Asks the desktop to show its panel over the window with the portal handle `parentWindow` (empty for
    /// none). One of the signals follows, later. A second call while a panel is open does nothing.
    void open(const QString &title, const QString &parentWindow = {});

Q_SIGNALS:
    /// The user's answer, in the panel's order; empty when the panel was dismissed. A panel may show other
    /// machines too: not every address need be a file's.
    void chosen(const QList<QUrl> &folders);
    /// This desktop has no such panel, or lost it while it was open: the program has to show one of its own.
    void unavailable();

private Q_SLOTS:
    void onResponse(uint response, const QVariantMap &results);

private:
    void watchPortal();
    void listenTo(const QString &requestPath);
    void finish();

    bool m_isOpen = false;
    bool m_watchesPortal = false;
    int m_openings = 0;
    QString m_requestPath;
};

} // namespace Qorvane
