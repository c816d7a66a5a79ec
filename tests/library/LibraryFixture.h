#pragma once

#include "library/LibraryHome.h"
#include "library/QorManage.h"

#include <gtest/gtest.h>

#include <memory>

namespace Qorvane {

/// A library in a world of its own, started and settled, with waits of a few milliseconds. Nobody answers
/// embedding requests unless the test brings a FakeEncoder and a longer timeout.
class LibraryFixture : public testing::Test
{
protected:
    LibraryFixture() { start(); }

    /// Starts the library anew, as the program does.
    void start(const LibraryTimings &timings = {0.01, 0.01, 0.01, 0.01});

    /// Adds the folder and waits until it is a root.
    void addRoot(const FileUrl &url);
    QStringList rootNames() const;
    /// Waits for the end of the run under the folder's path.
    bool waitForRun(const FileUrl &folder);
    /// The progress lines that a start of a run under the folder's path logs.
    qsizetype startedRuns(const FileUrl &folder);

    LibraryHome home;
    std::unique_ptr<QorManage> qorManager;
};

} // namespace Qorvane
