#pragma once

#include "platform/Directories.h"
#include "support/Waiting.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringList>
#include <QUrl>

#include <gtest/gtest.h>

namespace Qorvane {

inline void writeFile(const QString &path, const QByteArray &content)
{
    ASSERT_TRUE(QDir().mkpath(QFileInfo(path).path()));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(content);
}

/// Where the test's own desktop looks for entries.
inline QString applications()
{
    return Directories::applicationSupport().value() + QStringLiteral("/applications");
}

inline QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The desktop may hand a file over as its address or as its path, a folder with or without the last "/".
inline QString localPath(const QString &argument)
{
    return QDir::cleanPath(argument.startsWith(u"file:") ? QUrl(argument).toLocalFile() : argument);
}

/// An application that notes what it was started with, one argument a line, all at once.
class RecordingApplication
{
public:
    explicit RecordingApplication(const QString &folder)
        : m_record(folder + QStringLiteral("/record"))
        , m_script(folder + QStringLiteral("/editor"))
    {
        writeFile(m_script, "#!/bin/sh\nprintf '%s\\n' \"$@\" > '" + QFile::encodeName(m_record) +
                                ".part'\nmv '" + QFile::encodeName(m_record) + ".part' '" +
                                QFile::encodeName(m_record) + "'\n");
        QFile::setPermissions(m_script, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

    QByteArray entry(const char *mimeTypes) const
    {
        return "[Desktop Entry]\nType=Application\nName=Editor\nExec=" + QFile::encodeName(m_script) +
               " %U\nMimeType=" + mimeTypes + "\n";
    }

    bool waitUntilStarted() const
    {
        return waitUntil([this] { return QFile::exists(m_record); });
    }
    QStringList arguments() const
    {
        return QString::fromUtf8(readFile(m_record)).split(u'\n', Qt::SkipEmptyParts);
    }
    void forget() const { QFile::remove(m_record); }

private:
    QString m_record;
    QString m_script;
};

} // namespace Qorvane
