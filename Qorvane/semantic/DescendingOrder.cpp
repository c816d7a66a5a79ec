#include "semantic/DescendingOrder.h"

#include <array>
#include <bit>
#include <cstddef>
#include <utility>

namespace Qorvane {

namespace {

struct Item
{
    std::uint32_t key;
    std::uint32_t index;
};

// Three digits make up a key, and the counts of one digit fit into the first-level cache.
constexpr int digitBits = 11;
constexpr int digitCount = 3;
constexpr std::size_t digitValues = std::size_t(1) << digitBits;
constexpr std::uint32_t digitMask = digitValues - 1;

// An integer that is the smaller the larger the value is. The bits of positive floats are ordered like
// integers and those of negative ones the other way round.
std::uint32_t descendingKey(float value)
{
    constexpr std::uint32_t signBit = 0x80000000;
    const auto bits = std::bit_cast<std::uint32_t>(value + 0.0F); // makes the negative zero positive
    return bits & signBit ? bits : ~bits & ~signBit;
}

std::uint32_t digit(std::uint32_t key, int place)
{
    return (key >> (place * digitBits)) & digitMask;
}

using Counts = std::array<std::array<std::uint32_t, digitValues>, digitCount>;

// How many items have each value of each digit, turned into where the first of them goes.
void turnIntoStarts(Counts &counts)
{
    for (auto &counted : counts) {
        std::uint32_t start = 0;
        for (std::uint32_t &count : counted)
            start += std::exchange(count, start);
    }
}

} // namespace

std::vector<std::uint32_t> descendingOrder(std::span<const float> values)
{
    std::vector<Item> items(values.size());
    std::vector<Item> sorted(values.size());
    Counts starts{};
    for (std::size_t i = 0; i < values.size(); ++i) {
        items[i] = {descendingKey(values[i]), std::uint32_t(i)};
        for (int place = 0; place < digitCount; ++place)
            ++starts[std::size_t(place)][digit(items[i].key, place)];
    }
    turnIntoStarts(starts);
    for (int place = 0; place + 1 < digitCount; ++place) {
        for (const Item &item : items)
            sorted[starts[std::size_t(place)][digit(item.key, place)]++] = item;
        items.swap(sorted);
    }
    std::vector<std::uint32_t> order(items.size());
    constexpr int lastPlace = digitCount - 1;
    for (const Item &item : items)
        order[starts[lastPlace][digit(item.key, lastPlace)]++] = item.index;
    return order;
}

} // namespace Qorvane
