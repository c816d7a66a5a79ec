#pragma once

#include "encoders/Problem.h"

#include <QJsonObject>
#include <QStringList>

#include <optional>

namespace Qorvane::Encoders {

/// What lies in the folder, or among the files, that the user named: graphs and what describes them, whatever
/// its publisher calls it. Nothing is read but the descriptions.
struct ModelFolder
{
    QStringList graphs; ///< paths of .onnx files
    /// The descriptions, each by its own file's name; empty objects for those that aren't there.
    QJsonObject config;          ///< config.json, open_clip_config.json
    QJsonObject preprocessing;   ///< preprocessor_config.json, preprocess_cfg.json and kin
    QJsonObject tokenizerConfig; ///< tokenizer_config.json
    QJsonObject specialTokens;   ///< special_tokens_map.json
    /// Paths, empty when there is no such file.
    QString vocabularyJson;   ///< vocab.json, chinese_vocab.json: from token to id
    QString vocabularyText;   ///< vocab.txt: a token a line
    QString tokenizerJson;    ///< tokenizer.json
    QString licence;          ///< LICENSE and kin
    QString readme;           ///< README.md
    QStringList descriptions; ///< names of the descriptions that were read

    /// Looks at the files, and into the folders and those in them, but not into `leftOut` where it lies in
    /// one, in whatever way its path is written. A vocabulary that is named counts alone. For a file also
    /// beside it and, where the folder is one of those that publishers put graphs into, above it. A
    /// description that can't be read is a problem. Reads the disk; any thread.
    static Outcome<ModelFolder> open(const QStringList &paths, const QString &leftOut = {});
};

} // namespace Qorvane::Encoders
