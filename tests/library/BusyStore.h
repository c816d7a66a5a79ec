#pragma once

#include "store/EmbeddingStore.h"

#include <semaphore>
#include <thread>

namespace Qorvane {

/// Keeps the store at one operation while it lives, as a scan of all vectors does.
class BusyStore
{
public:
    BusyStore()
    {
        // A scan of nothing shows nothing to its visitor.
        const QString path = QStringLiteral("/busy.jpg");
        EmbeddingStore::shared().upsert(path, std::nullopt, {1.0F}, 1, 0);
        std::binary_semaphore isBusy(0);
        m_scan = std::thread([this, &isBusy, path] {
            EmbeddingStore::shared().scanVectors({path}, [&](const ImageVectorView &) {
                isBusy.release();
                m_end.acquire();
            });
        });
        isBusy.acquire();
    }
    ~BusyStore() { end(); }
    BusyStore(const BusyStore &) = delete;
    BusyStore &operator=(const BusyStore &) = delete;

    void end()
    {
        if (!m_scan.joinable())
            return;
        m_end.release();
        m_scan.join();
    }

private:
    std::binary_semaphore m_end{0};
    std::thread m_scan;
};

} // namespace Qorvane
