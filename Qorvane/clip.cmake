# The semantic service: it joins semantic, store and media, so it stands above all three, and the library below knows
# nothing of it.
qorvane_add_library(QorvaneClip
    SOURCES
        ChineseClipService.cpp ChineseClipService.h
        EmbeddingResponder.cpp EmbeddingResponder.h
        clip/DatabaseCandidates.cpp clip/DatabaseCandidates.h
        clip/DetachedWork.h
        clip/EmbeddingPicture.cpp clip/EmbeddingPicture.h
        clip/MemorySearch.cpp clip/MemorySearch.h
        clip/PredefinedTagVectors.cpp clip/PredefinedTagVectors.h
        clip/SearchVerification.cpp clip/SearchVerification.h
        clip/TagCandidates.cpp clip/TagCandidates.h
        clip/TagRecommender.cpp clip/TagRecommender.h
        clip/TagVectorCache.cpp clip/TagVectorCache.h
        clip/WorkerPool.h
    PUBLIC QorvaneMedia QorvanePlatform QorvaneSemantic QorvaneStore QCoro6::Core Qt6::Concurrent
)
