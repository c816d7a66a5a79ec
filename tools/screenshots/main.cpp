#include "QorvaneApp.h"
#include "library/QorManage.h"
#include "platform/Localization.h"
#include "platform/desktop/InterfaceFont.h"
#include "views/window/ContentView.h"

#include <QEventLoop>
#include <QGuiApplication>
#include <QPalette>
#include <QQuickWindow>
#include <QTimer>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>

// Takes the documentation's pictures of the program: opens the main window over the library at hand, shows
// its first folder, then a search, and saves what the window draws, light and dark. scripts/screenshots.sh
// makes the library and calls this once a language.

using namespace Qorvane;

namespace {

// A laptop's screen.
constexpr QSize windowSize(1440, 900);
// Longer than any animation of the window: no picture is taken in the middle of one.
constexpr auto stillness = std::chrono::milliseconds(600);
constexpr auto patience = std::chrono::minutes(2);
// Photographs show no loss at this quality, and the files stay small enough for a repository.
constexpr int jpegQuality = 88;
// Neither in the corner, where it would look like the start of something, nor hidden in the crowd.
constexpr int selectedPhoto = 8;

[[noreturn]] void fail(const QString &reason)
{
    std::fprintf(stderr, "qorvane-screenshots: %s\n", qUtf8Printable(reason));
    std::_Exit(EXIT_FAILURE);
}

/// Runs the program until `isThere` holds and the window has drawn nothing more for a while.
void waitFor(QQuickWindow &window, const char *what, const std::function<bool()> &isThere)
{
    QEventLoop loop;
    QTimer still;
    still.setInterval(stillness);
    QObject::connect(&window, &QQuickWindow::frameSwapped, &still, qOverload<>(&QTimer::start));
    QObject::connect(&still, &QTimer::timeout, &loop, [&] {
        if (isThere())
            loop.quit();
    });
    QTimer::singleShot(patience, &loop,
                       [what] { fail(QStringLiteral("waited in vain for ") + QLatin1String(what)); });
    still.start();
    loop.exec();
}

void setDark(bool isDark)
{
    QPalette palette;
    palette.setColor(QPalette::Window, isDark ? Qt::black : Qt::white);
    palette.setColor(QPalette::WindowText, isDark ? Qt::white : Qt::black);
    QGuiApplication::setPalette(palette);
}

class Photographer
{
public:
    Photographer(QQuickWindow &window, QString folder, QString language)
        : m_window(window)
        , m_folder(std::move(folder))
        , m_language(std::move(language))
    {
    }

    /// Saves FOLDER/NAME-light-LANGUAGE.jpg and the dark one.
    void take(const QString &name)
    {
        for (const bool isDark : {false, true}) {
            setDark(isDark);
            waitFor(m_window, "the colours", [] { return true; });
            const QString file =
                QStringLiteral("%1/%2-%3-%4.jpg")
                    .arg(m_folder, name, QLatin1String(isDark ? "dark" : "light"), m_language);
            if (!m_window.grabWindow().save(file, nullptr, jpegQuality))
                fail(QStringLiteral("can't write ") + file);
        }
    }

private:
    QQuickWindow &m_window;
    const QString m_folder;
    const QString m_language;
};

bool isIndexed(const QorManage &library, const Folder &folder)
{
    return library.processingState(folder.url) == FolderProcessingState::completed;
}

void unfold(Sidebar &sidebar, const Folder &folder)
{
    const QList<SidebarRow> &rows = sidebar.rows()->rows();
    for (int row = 0; row < rows.size(); ++row) {
        if (rows.at(row).kind == SidebarRow::Kind::folder && rows.at(row).url == folder.url)
            sidebar.toggle(row);
    }
}

} // namespace

int main(int argc, char **argv)
{
    QGuiApplication application(argc, argv);
    QGuiApplication::setApplicationName(QStringLiteral("Qorvane"));
    InterfaceFont::install();
    Localization::install();
    const QStringList arguments = QGuiApplication::arguments();
    if (arguments.size() != 4)
        fail(QStringLiteral("usage: qorvane-screenshots FOLDER LANGUAGE QUERY"));

    QorvaneApp app;
    if (!app.openMainWindow())
        fail(QStringLiteral("the window can't be opened"));
    ContentView &view = *app.contentView();
    QQuickWindow &window = *view.window();
    QorManage &library = app.qorManager();
    window.resize(windowSize);
    waitFor(window, "the library", [&] { return !library.libraryFolders().isEmpty(); });
    waitFor(window, "the encoders", [&] { return view.clipService().modelsLoaded(); });

    const Folder root = library.libraryFolders().constFirst();
    if (root.children)
        library.addToFavorites(root.children->constFirst());
    library.setSelectedFolder(root);
    waitFor(window, "the photographs",
            [&] { return library.imageURLs().size() > selectedPhoto && isIndexed(library, root); });
    unfold(*view.state().sidebar(), root);
    view.state().selection().setUrls({library.imageURLs().at(selectedPhoto)});

    Photographer photographer(window, arguments.at(1), arguments.at(2));
    photographer.take(QStringLiteral("grid"));
    SearchController &search = *view.state().search();
    search.setText(arguments.at(3));
    waitFor(window, "the hits", [&] { return !search.isSearching() && !search.results().isEmpty(); });
    photographer.take(QStringLiteral("search"));
    std::fflush(nullptr);
    std::_Exit(EXIT_SUCCESS); // as the program itself ends
}
