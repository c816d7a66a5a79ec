#pragma once

#include "media/decoders/ByteSource.h"

#include <QString>

#include <memory>

namespace Qorvane {

/// A regular file opened for reading; closed when it goes.
class InputFile : public ByteSource
{
public:
    /// Nothing for what is missing, unreadable, empty or no regular file (folder, pipe, device); the reason
    /// is then put into `reason`. Never waits for the other end of a pipe.
    static std::shared_ptr<const InputFile> open(const QString &path, QString &reason);
    ~InputFile() override;

    const QString &path() const { return m_path; }
    /// The path as the file system's own bytes, for libraries that open files by themselves.
    QByteArray nativePath() const;
    /// What follows the last dot of the name, in lower case.
    QString extension() const;

    qint64 size() const override { return m_size; }
    qint64 readAt(qint64 offset, void *buffer, qint64 count) const override;

private:
    InputFile(QString path, int descriptor, qint64 size);

    QString m_path;
    int m_descriptor;
    qint64 m_size;
};

} // namespace Qorvane
