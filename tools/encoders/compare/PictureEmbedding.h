#pragma once

#include "encoders/InstalledEncoders.h"

#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <functional>
#include <optional>
#include <vector>

namespace Qorvane::Encoders {

/// A thumbnail cache of its own for as long as this lives, so that neither the user's is filled nor an old
/// thumbnail in it taken for the picture. Changes the environment: made before any thread begins.
class TemporaryThumbnails
{
public:
    TemporaryThumbnails();
    ~TemporaryThumbnails();
    TemporaryThumbnails(const TemporaryThumbnails &) = delete;
    TemporaryThumbnails &operator=(const TemporaryThumbnails &) = delete;

    bool isValid() const { return m_folder.isValid(); }

private:
    QTemporaryDir m_folder;
    QByteArray m_before;
    bool m_wasSet;
};

/// A picture's vector, or why there is none.
using EmbeddedFile = Outcome<std::vector<float>>;

/// Embeds the picture or video at `path` as an indexing run does: by the thumbnail that is made of it and
/// stored in the thumbnail cache. Any thread but the GUI's.
EmbeddedFile embedFile(const QString &path, const InstalledPair &pair);

/// The same for many, on all cores, in their order. `progress` is called by the calling thread.
std::vector<EmbeddedFile> embedFiles(const QStringList &paths, const InstalledPair &pair,
                                     const std::function<void(double)> &progress);

} // namespace Qorvane::Encoders
