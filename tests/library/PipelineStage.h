#pragma once

#include "library/LibrarySnapshot.h"
#include "library/LibraryState.h"
#include "library/ProcessingPipeline.h"
#include "library/ProcessingReports.h"
#include "library/ProcessingRun.h"

#include <memory>

namespace Qorvane {

/// What runs stand on, without the rest of the library.
struct PipelineStage
{
    explicit PipelineStage(const QList<FileUrl> &roots, double timeout = 10.0)
        : surroundings(std::make_shared<RunSurroundings>(
              RunSurroundings{snapshot, reports, EmbeddingRequest(timeout)}))
        , pipeline(surroundings)
    {
        QList<Folder> folders;
        for (const FileUrl &root : roots)
            folders.append(Folder{root, std::nullopt});
        state.publishLibraryFolders(folders);
    }

    std::shared_ptr<LibrarySnapshot> snapshot = std::make_shared<LibrarySnapshot>();
    LibraryState state{snapshot};
    std::shared_ptr<ProcessingReports> reports = std::make_shared<ProcessingReports>(state);
    std::shared_ptr<const RunSurroundings> surroundings;
    ProcessingPipeline pipeline;
};

} // namespace Qorvane
