#pragma once

#include "clip/ClipTest.h"
#include "store/EmbeddingStore.h"

#include <latch>
#include <thread>

namespace Qorvane {

/// Holds the store, as somebody else's scan does, until told otherwise.
class BusyStore
{
public:
    /// `row`: the file whose vector is scanned.
    explicit BusyStore(const FileUrl &row)
    {
        storeVector(row, vectorWithCosine(Axis::red, 0.5f));
        m_thread = std::thread([this] {
            EmbeddingStore::shared().scanVectors({}, [this](const ImageVectorView &) {
                m_isHolding.count_down();
                m_mayGo.wait();
            });
        });
        m_isHolding.wait();
    }
    ~BusyStore()
    {
        release();
        m_thread.join();
    }
    BusyStore(const BusyStore &) = delete;
    BusyStore &operator=(const BusyStore &) = delete;

    void release()
    {
        if (!m_mayGo.try_wait())
            m_mayGo.count_down();
    }

private:
    std::latch m_isHolding{1};
    std::latch m_mayGo{1};
    std::thread m_thread;
};

} // namespace Qorvane
