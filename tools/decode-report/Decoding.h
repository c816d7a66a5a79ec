#pragma once

#include <QByteArray>
#include <QString>

struct DecodingOptions
{
    QString outputFolder; ///< where the pictures go, as PNG; empty for nowhere
    bool isFullSize = false;
};

/// Decodes the file at `path` as the library does: a frame of it when its extension is a video's, else a
/// picture. "+" and what it is, or "-" and the reason. `index` begins the name of the picture that is put
/// into the output folder.
QByteArray decodeFile(const QString &path, const DecodingOptions &options, int index);
