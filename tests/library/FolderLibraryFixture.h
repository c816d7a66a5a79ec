#pragma once

#include "library/DeferredWrites.h"
#include "library/LibraryFixture.h"
#include "platform/UserDefaults.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

namespace Qorvane {

/// A library with three empty folders to add, and a look at what was stored of them.
class FolderLibraryFixture : public LibraryFixture
{
protected:
    static std::optional<QList<QByteArray>> stored(const char *key)
    {
        DeferredWrites::waitUntilIdle();
        return UserDefaults::standard().dataArray(QLatin1String(key));
    }

    // As the application does when it is asked to end, in the middle of what it is at.
    static void tellOfTheEnd()
    {
        ASSERT_TRUE(
            QMetaObject::invokeMethod(QCoreApplication::instance(), "aboutToQuit", Qt::DirectConnection));
    }

    QByteArray bookmark(const QString &name) const { return home.path(name).toUtf8(); }

    const FileUrl one = home.makeFolder(QStringLiteral("one"));
    const FileUrl two = home.makeFolder(QStringLiteral("two"));
    const FileUrl three = home.makeFolder(QStringLiteral("three"));
};

} // namespace Qorvane
