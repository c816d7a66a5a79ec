#pragma once

#include "platform/FileUrl.h"

#include <QList>
#include <QString>
#include <QUrl>

#include <functional>
#include <optional>

/// The desktop around the program: its file manager and the other applications.
namespace Qorvane::Workspace {

/// Shows the files in the desktop's file manager, selected; where it can't select, opens the folders they
/// lie in. Returns at once. Any thread.
void showInFileManager(const QList<FileUrl> &files);

/// Opens a file or a folder in the application that is the default for it. Returns at once. Any thread.
void open(const FileUrl &file);

/// Opens a web page in the user's browser. Returns at once. Any thread.
void open(const QUrl &page);

/// The path of the desktop entry "<identifier>.desktop" of an application that is installed and can be run.
/// Any thread; reads the disk.
std::optional<QString> applicationWithIdentifier(const QString &identifier);

/// The path of the desktop entry of the default application for files of this name, which need not exist:
/// its extension decides. Any thread; reads the disk.
std::optional<QString> applicationToOpen(const QString &fileName);

/// Called on a background thread; `error` is in the system's words, nothing on success.
using Completion = std::function<void(const std::optional<QString> &error)>;

/// Starts the application of that desktop entry with the files, and brings it to the front. Returns at once.
/// Any thread.
void open(const QList<FileUrl> &files, const QString &desktopEntryPath, const Completion &completion);

} // namespace Qorvane::Workspace
