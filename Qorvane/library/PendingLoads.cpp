#include "library/PendingLoads.h"

#include <algorithm>
#include <utility>

namespace Qorvane {

PendingLoads::Number PendingLoads::begin(std::function<bool()> isWanted,
                                         std::function<void(const QList<FileUrl> &urls)> show)
{
    m_loads.push_back({std::move(isWanted), std::move(show), ++m_lastNumber, std::nullopt});
    return m_lastNumber;
}

void PendingLoads::finish(Number number, List list)
{
    const auto load =
        std::ranges::find_if(m_loads, [number](const Load &one) { return one.number == number; });
    if (load != m_loads.end())
        load->list = std::move(list);
}

std::optional<PendingLoads::Load> PendingLoads::takeNext()
{
    std::erase_if(m_loads, [](const Load &load) { return load.list && !load.isWanted(); });
    const auto next = std::ranges::find_if(m_loads, [](const Load &load) { return load.isWanted(); });
    if (next == m_loads.end() || !next->list)
        return std::nullopt;
    Load load = std::move(*next);
    m_loads.erase(next);
    return load;
}

void PendingLoads::reopen(Load load)
{
    load.list.reset();
    m_loads.push_front(std::move(load));
}

bool PendingLoads::isAnyWanted() const
{
    return std::ranges::any_of(m_loads, [](const Load &load) { return load.isWanted(); });
}

} // namespace Qorvane
