#pragma once

#include "clip/WorkerPool.h"

#include <QCoroTask>
#include <QHash>
#include <QString>

#include <optional>
#include <vector>

namespace Qorvane {

class ChineseClipService;

/// The vectors of tags' texts, each encoded once: what was asked for stays in memory as long as the program
/// runs, and in the store beyond that. GUI thread, which never waits for the store.
class TagVectorCache
{
public:
    using Entries = QHash<QString, std::vector<float>>;

    /// `service`, which must own this, encodes; `workers` wait for the store.
    TagVectorCache(ChineseClipService &service, WorkerPool &workers);

    /// What is in memory, by the exact text. Nothing is ever taken out.
    const Entries &entries() const { return m_entries; }
    /// Takes `vector` into memory in place of what is there for `tag`.
    void insert(const QString &tag, std::vector<float> vector);

    /// From memory, else from the store, else from the encoder, and then kept in both. A stored vector is
    /// taken as it is, whatever its length. Nothing when the text can't be encoded.
    QCoro::Task<std::optional<std::vector<float>>> vectorOf(QString tag);

private:
    QCoro::Task<std::optional<std::vector<float>>> encode(QString tag);

    ChineseClipService &m_service;
    WorkerPool &m_workers;
    Entries m_entries;
};

} // namespace Qorvane
