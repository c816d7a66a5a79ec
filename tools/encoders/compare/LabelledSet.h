#pragma once

#include "encoders/Problem.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <vector>

namespace Qorvane::Encoders {

/// The language of the texts that a set is searched with, and of the encoders that answer.
enum class Language { english, chinese };

/// One row of a labelled set.
struct LabelledPicture
{
    QString path; ///< as the row has it
    QString set;
    QStringList labels;   ///< in the language asked for; each once
    QStringList captions; ///< likewise
    int line = 0;         ///< of the file, from 1

    friend bool operator==(const LabelledPicture &, const LabelledPicture &) = default;
};

/// Reads a table of tab-separated values in UTF-8. Its first line names the columns: `path` is needed, `set`,
/// `labels_en`, `captions_en`, `labels_zh` and `captions_zh` are used, others are passed over, in any order.
/// Labels are separated by commas, captions by " | ". Empty lines count for nothing; a row with another
/// number of cells than the first line, without a path, with the path of a row before, or not in UTF-8 is a
/// problem, which names the line.
Outcome<std::vector<LabelledPicture>> readLabelledSet(const QByteArray &table, Language language);

/// The file that `path` of a row means, for pictures below the absolute `folder`: relative to the folder or
/// to one of those above it; or, when the pictures were copied out of their tree, with folders taken off the
/// path's beginning. Only a file below `folder` counts; empty when there is none. Looks at the disk.
QString labelledFile(const QString &folder, const QString &path);

} // namespace Qorvane::Encoders
