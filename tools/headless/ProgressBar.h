#pragma once

#include <QString>

#include <cstdio>

namespace Qorvane {

/// How far a long job has come, on a text stream: one line drawn over and over on a terminal, a line for
/// every tenth elsewhere, so that a file or a pipe stays readable. One thread.
class ProgressBar
{
public:
    /// `stream` must outlive this.
    ProgressBar(std::FILE *stream, bool isTerminal);

    /// Shows `fraction` (0 to 1; anything beyond counts as the nearer end) and what is being done.
    void show(double fraction, const QString &activity);
    /// Ends the line on a terminal, so that what follows begins on a fresh one.
    void finish();

    /// The bar itself: "[######------------------]  25 %  thumbnails".
    static QString text(double fraction, const QString &activity);

private:
    std::FILE *m_stream;
    bool m_isTerminal;
    QString m_shown;
    int m_tenth = -1;
    QString m_activity;
};

} // namespace Qorvane
