#pragma once

#include <QObject>
#include <QtQml/qqmlregistration.h>

namespace Qorvane {

/// How the window's width is shared between sidebar, content and inspector: the outer two are as wide as the
/// user drew them, the middle takes the rest, and beyond what it may have leaves a margin on either side.
/// Where the window is too narrow for the wishes, first the sidebar gives way, then the inspector; a wider
/// one brings both back. All in logical pixels, whole ones. GUI thread.
class ColumnWidths : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(double windowWidth READ windowWidth WRITE setWindowWidth NOTIFY changed)
    /// How much of the inspector shows: 1 all of it, 0 none, while it is collapsed; between them on its way.
    Q_PROPERTY(double inspectorShare READ inspectorShare WRITE setInspectorShare NOTIFY changed)
    Q_PROPERTY(int sidebar READ sidebar NOTIFY changed)
    /// Between sidebar and inspector, margins included.
    Q_PROPERTY(int middle READ middle NOTIFY changed)
    /// On either side of the content.
    Q_PROPERTY(int contentMargin READ contentMargin NOTIFY changed)
    /// Of what shows of the inspector.
    Q_PROPERTY(int inspector READ inspector NOTIFY changed)
    /// Of the whole inspector, whatever of it shows.
    Q_PROPERTY(int fullInspector READ fullInspector NOTIFY changed)

public:
    static constexpr int minimumSidebar = 200;
    static constexpr int idealSidebar = 230; // no maximum: what the others leave
    static constexpr int minimumContent = 400;
    static constexpr int idealContent = 690;
    static constexpr int maximumContent = 1200;
    static constexpr int minimumInspector = 240;
    static constexpr int idealInspector = 300;
    static constexpr int maximumInspector = 500;

    /// For QML.
    enum Limit { WidestContent = maximumContent };
    Q_ENUM(Limit)

    using QObject::QObject;

    double windowWidth() const { return m_windowWidth; }
    void setWindowWidth(double width);
    double inspectorShare() const { return m_inspectorShare; }
    void setInspectorShare(double share);

    int sidebar() const;
    int inspector() const;
    int fullInspector() const;
    int middle() const { return int(m_windowWidth) - sidebar() - inspector(); }
    int content() const { return middle() - 2 * contentMargin(); }
    int contentMargin() const;

    /// The user draws the column's inner edge by so much to the right.
    Q_INVOKABLE void moveSidebarEdge(double distance);
    Q_INVOKABLE void moveInspectorEdge(double distance);
    /// Back to the column's ideal width.
    Q_INVOKABLE void resetSidebar();
    Q_INVOKABLE void resetInspector();

Q_SIGNALS:
    void changed();

private:
    int roomForSidebar(int inspector) const;
    int roomForInspector() const;

    double m_windowWidth = idealSidebar + idealContent + idealInspector;
    double m_inspectorShare = 1;
    double m_sidebarWish = idealSidebar;
    double m_inspectorWish = idealInspector;
};

} // namespace Qorvane
