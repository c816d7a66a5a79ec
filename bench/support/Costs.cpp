#include "support/Costs.h"

#include <algorithm>
#include <chrono>
#include <ctime>

namespace Qorvane {

namespace {

double processorNow()
{
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return double(now.tv_sec) + double(now.tv_nsec) * 1e-9;
}

double middle(std::vector<double> values)
{
    const auto half = values.begin() + std::ptrdiff_t(values.size() / 2);
    std::nth_element(values.begin(), half, values.end());
    return *half;
}

} // namespace

Cost costOf(const std::function<void()> &work)
{
    const double processor = processorNow();
    const auto wall = std::chrono::steady_clock::now();
    work();
    return {std::chrono::duration<double>(std::chrono::steady_clock::now() - wall).count(),
            processorNow() - processor};
}

void Costs::add(const Cost &cost)
{
    m_wall.push_back(cost.wall);
    m_processor.push_back(cost.processor);
}

Cost Costs::median() const
{
    return {middle(m_wall), middle(m_processor)};
}

Cost Costs::least() const
{
    return {*std::min_element(m_wall.begin(), m_wall.end()),
            *std::min_element(m_processor.begin(), m_processor.end())};
}

void reportCost(benchmark::State &state, const std::string &name, const Costs &costs)
{
    state.counters[name + "_ms"] = costs.median().wall * 1e3;
    state.counters[name + "_cpu_ms"] = costs.median().processor * 1e3;
}

void reportRatio(benchmark::State &state, const std::string &ratio, const Costs &costs, const Costs &floor)
{
    state.counters[ratio] = costs.median().wall / floor.median().wall;
    state.counters[ratio + "_cpu"] = costs.median().processor / floor.median().processor;
    state.counters[ratio + "_least"] = costs.least().wall / floor.least().wall;
    state.counters[ratio + "_least_cpu"] = costs.least().processor / floor.least().processor;
}

} // namespace Qorvane
