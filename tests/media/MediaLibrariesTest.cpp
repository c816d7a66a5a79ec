// A program of its own: only the first start of the libraries in a process shows what they do to it.

#include "media/ImageSource.h"
#include "media/OffMainThread.h"

#include <QDir>
#include <QProcessEnvironment>

#include <gtest/gtest.h>
#include <unistd.h>

using namespace Qorvane;

// A variable that comes to the others moves them all, under the eyes of the threads that read them.
TEST(MediaLibrariesTest, nobodyWritesTheEnvironmentOnceTheProgramRuns)
{
    char **const place = environ;
    const QProcessEnvironment before = QProcessEnvironment::systemEnvironment();

    int shown = 0;
    for (const QFileInfo &file : QDir(QStringLiteral(QORVANE_TEST_DATA)).entryInfoList(QDir::Files)) {
        shown += offMainThread([&] {
            QString reason;
            const auto source = ImageSource::open(file.filePath(), &reason);
            return source && source->thumbnail(800, &reason) ? 1 : 0;
        });
    }
    EXPECT_GT(shown, 40);

    EXPECT_EQ(environ, place);
    EXPECT_TRUE(QProcessEnvironment::systemEnvironment() == before);
}
