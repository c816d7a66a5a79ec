#include "library/ProcessingReports.h"

#include "library/LibraryState.h"
#include "platform/Log.h"
#include "platform/MainQueue.h"

#include <QLocale>

#include <algorithm>

namespace Qorvane {

namespace {

// The shortest text that reads back as the same number, and never without a decimal: "0.0", "0.5", "1.0".
QString numberText(double number)
{
    QString text = QString::number(number, 'g', QLocale::FloatingPointShortest);
    const bool isPlainInteger =
        std::ranges::all_of(text, [](QChar character) { return character.isDigit() || character == u'-'; });
    return isPlainInteger ? text + QStringLiteral(".0") : text;
}

} // namespace

ProcessingReports::ProcessingReports(LibraryState &state)
    : m_state(&state)
{
}

void ProcessingReports::setProcessing(const QString &path, std::optional<FolderProcessingState> state,
                                      std::optional<double> progress,
                                      const std::optional<QString> &detail) const
{
    const QString none = QStringLiteral("nil");
    Log::line(QStringLiteral("🔄 setProcessing: ") + path + QStringLiteral(" -> state: ") +
              (state ? caseName(*state) : none) + QStringLiteral(", progress: ") +
              (progress ? numberText(*progress) : none) + QStringLiteral(", detail: ") +
              detail.value_or(none));
    MainQueue::async([target = m_state, path, state, progress, detail] {
        if (target)
            target->publishProcessing(path, state, progress, detail);
    });
}

FolderProcessingState ProcessingReports::processingState(const FileUrl &folderUrl) const
{
    if (!m_state)
        return FolderProcessingState::idle;
    const QString &path = folderUrl.path();
    const QHash<QString, FolderProcessingState> &status = m_state->folderProcessingStatus();
    const FolderProcessingState state = status.value(path, FolderProcessingState::idle);
    if (state != FolderProcessingState::completed)
        return state;
    const bool isBelowCompletedRoot = std::ranges::any_of(m_state->libraryFolders(), [&](const Folder &root) {
        const QString &rootPath = root.url.path();
        return rootPath != path && path.startsWith(rootPath) &&
               status.value(rootPath, FolderProcessingState::idle) == FolderProcessingState::completed;
    });
    return isBelowCompletedRoot ? FolderProcessingState::idle : FolderProcessingState::completed;
}

} // namespace Qorvane
