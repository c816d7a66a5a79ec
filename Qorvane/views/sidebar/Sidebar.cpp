#include "views/sidebar/Sidebar.h"

#include "library/QorManage.h"
#include "platform/Workspace.h"
#include "views/sidebar/SidebarMovement.h"

#include <chrono>

namespace Qorvane {

namespace {

using namespace std::chrono_literals;

// A run reports every file, and skips thousands in a second; nobody sees more than a frame's worth of them.
constexpr auto frame = 16ms;
// Letters in quick succession are one word.
constexpr auto typingPause = 1s;

std::optional<SidebarMovement::Key> movementKey(int key)
{
    switch (key) {
    case Qt::Key_Up:
        return SidebarMovement::Key::up;
    case Qt::Key_Down:
        return SidebarMovement::Key::down;
    case Qt::Key_Home:
        return SidebarMovement::Key::home;
    case Qt::Key_End:
        return SidebarMovement::Key::end;
    case Qt::Key_Left:
        return SidebarMovement::Key::left;
    case Qt::Key_Right:
        return SidebarMovement::Key::right;
    default:
        return std::nullopt;
    }
}

} // namespace

Sidebar::Sidebar(QorManage &qorManager, QObject *parent)
    : QObject(parent)
    , m_qorManager(qorManager)
    , m_rows([this](const FileUrl &folder) { return progressOf(folder); })
    , m_cursor(m_rows)
    , m_selection(qorManager)
    , m_counts(SidebarCounts::readStore)
    , m_menu(qorManager, [](const FileUrl &folder) { Workspace::open(folder); })
{
    m_typingPause.setSingleShot(true);
    m_typingPause.setInterval(typingPause);
    connect(&m_cursor, &SidebarCursor::moved, this, &Sidebar::currentRowChanged);
    connect(&m_selection, &SidebarSelection::idChanged, this, &Sidebar::followSelection);
    connect(&m_counts, &SidebarCounts::changed, &m_rows, &SidebarListModel::setCounts);
    followLibrary();
    followSelection();
}

void Sidebar::followLibrary()
{
    const auto takeFolders = [this] {
        m_rows.setFolders(m_qorManager.favoriteFolders(), m_qorManager.libraryFolders());
    };
    connect(&m_qorManager, &QorManage::libraryFoldersChanged, this, &Sidebar::isLibraryEmptyChanged);
    connect(&m_qorManager, &QorManage::isLoadingFoldersChanged, this, &Sidebar::isLibraryEmptyChanged);
    const auto takeTags = [this] { m_rows.setTags(m_qorManager.allTags()); };
    connect(&m_qorManager, &QorManage::libraryFoldersChanged, this, takeFolders);
    connect(&m_qorManager, &QorManage::favoriteFoldersChanged, this, takeFolders);
    connect(&m_qorManager, &QorManage::allTagsChanged, this, takeTags);
    // Whatever changes the counts is announced, if only as a change of something.
    connect(&m_qorManager, &QorManage::objectWillChange, &m_counts, &SidebarCounts::refresh);
    // From the first report on, not from the last: a flood of them must not hold the refresh back.
    m_progressRefresh.setSingleShot(true);
    m_progressRefresh.setInterval(frame);
    connect(&m_progressRefresh, &QTimer::timeout, &m_rows, &SidebarListModel::refreshProgress);
    // The last of the three that every report writes: by then they belong together.
    connect(&m_qorManager, &QorManage::folderProcessingDetailsChanged, this, [this] {
        if (!m_progressRefresh.isActive())
            m_progressRefresh.start();
    });
    takeFolders();
    takeTags();
    m_counts.refresh();
}

bool Sidebar::isLibraryEmpty() const
{
    return m_qorManager.libraryFolders().isEmpty() && !m_qorManager.isLoadingFolders();
}

void Sidebar::followSelection()
{
    m_rows.setSelectedId(m_selection.id());
    const int row = m_cursor.row();
    const bool isThere = row >= 0 && m_rows.rows().at(row).id == m_selection.id();
    if (const int selected = m_rows.selectedRow(); selected >= 0 && !isThere) {
        m_cursor.set(selected);
        Q_EMIT currentRowChosen();
    }
}

void Sidebar::activate(int row)
{
    if (row < 0 || row >= m_rows.rowCount() || !m_rows.rows().at(row).isSelectable())
        return;
    m_cursor.set(row);
    Q_EMIT currentRowChosen();
    m_selection.select(QString(m_rows.rows().at(row).id)); // a copy: the rows may change under it
}

void Sidebar::deselect()
{
    m_selection.select(std::nullopt);
}

void Sidebar::toggle(int row)
{
    m_rows.toggle(row);
}

bool Sidebar::pressKey(int key, const QString &text)
{
    if (key == Qt::Key_Return || key == Qt::Key_Enter ||
        (key == Qt::Key_Space && !m_typingPause.isActive())) {
        activate(m_cursor.row());
        return true;
    }
    const std::optional<SidebarMovement::Key> movement = movementKey(key);
    if (!movement)
        return type(text);
    if (const auto step = SidebarMovement::move(m_rows.rows(), m_cursor.row(), *movement)) {
        if (step->isToggle) {
            toggle(step->row);
            Q_EMIT currentRowChosen();
        } else {
            activate(step->row);
        }
    }
    return true;
}

bool Sidebar::type(const QString &text)
{
    if (!m_typingPause.isActive())
        m_typed.clear();
    if (text.isEmpty() || !text.at(0).isPrint())
        return false;
    m_typed += text;
    m_typingPause.start();
    if (const std::optional<int> row = SidebarMovement::find(m_rows.rows(), m_cursor.row(), m_typed))
        activate(*row);
    return true;
}

bool Sidebar::openMenu(int row)
{
    return row >= 0 && row < m_rows.rowCount() && m_menu.openFor(m_rows.rows().at(row));
}

FolderProgress Sidebar::progressOf(const FileUrl &folder) const
{
    const QString &path = folder.path();
    return {m_qorManager.processingState(folder), m_qorManager.folderProcessingProgress().value(path, 0),
            m_qorManager.folderProcessingDetails().value(path)};
}

} // namespace Qorvane
