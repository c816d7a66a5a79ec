#pragma once

#include "clip/TagCandidates.h"

#include <QCoroTask>
#include <QFuture>
#include <QHash>
#include <QString>

#include <vector>

namespace Qorvane {

class ChineseClipService;

/// The vectors of tags' texts, each encoded once: what was asked for stays in memory as long as the program
/// runs, and in the store beyond that. GUI thread, which never waits for the store.
class TagVectorCache
{
public:
    using Entries = QHash<QString, SharedTagVector>;

    /// `service`, which must own this, encodes.
    explicit TagVectorCache(ChineseClipService &service);

    /// What is in memory, by the exact text. Nothing is ever taken out.
    const Entries &entries() const { return m_entries; }
    /// Takes `vector` into memory in place of what is there for `tag`.
    void insert(const QString &tag, std::vector<float> vector);

    /// From memory, else from the store, else from the encoder, and then kept in both. A stored vector is
    /// taken as it is, whatever its length. Null when the text can't be encoded. Who asks while another waits
    /// for the same text gets what that one gets.
    QCoro::Task<SharedTagVector> vectorOf(QString tag);

private:
    QCoro::Task<SharedTagVector> fetch(QString tag);
    QCoro::Task<SharedTagVector> encode(QString tag);

    ChineseClipService &m_service;
    Entries m_entries;
    QHash<QString, QFuture<SharedTagVector>> m_fetching;
};

} // namespace Qorvane
