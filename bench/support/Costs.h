#pragma once

#include <benchmark/benchmark.h>

#include <functional>
#include <string>
#include <vector>

// What is compared is measured in turns, within one run: on a machine that also does other things, only the
// ratio of two things measured side by side says something.

namespace Qorvane {

struct Cost
{
    double wall = 0;      ///< seconds
    double processor = 0; ///< seconds of all threads of the process
};

Cost costOf(const std::function<void()> &work);

class Costs
{
public:
    void add(const Cost &cost);
    Cost median() const;
    /// What is left when nothing else ran on the machine.
    Cost least() const;

private:
    std::vector<double> m_wall;
    std::vector<double> m_processor;
};

/// Adds the medians to the report, as "<name>_ms" and "<name>_cpu_ms".
void reportCost(benchmark::State &state, const std::string &name, const Costs &costs);

/// Adds a cost and what it is to `floor`, called `ratio`: "<ratio>" and "<ratio>_cpu" of the medians,
/// "<ratio>_least" and "<ratio>_least_cpu" of the quickest rounds.
void reportRatio(benchmark::State &state, const std::string &ratio, const Costs &costs, const Costs &floor);

} // namespace Qorvane
