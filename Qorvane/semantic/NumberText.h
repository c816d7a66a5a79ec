#pragma once

#include <QString>

#include <algorithm>
#include <span>
#include <vector>

namespace Qorvane {

/// Numbers as the log lines show them: the shortest digits that read back as the same number. A float is told
/// from an integer by its fraction ("1.0", "100000.0") or, below 0.0001 and above 2^24, by its exponent
/// ("1e-05", "1e+08"). Any thread.
QString numberText(float value);
QString numberText(qint32 value);

/// "[a, b, c]".
template <typename Number>
QString listText(std::span<const Number> values)
{
    QString text = QStringLiteral("[");
    for (const Number &value : values)
        text += (text.size() > 1 ? QStringLiteral(", ") : QString()) + numberText(value);
    return text + u']';
}

/// The first `count` of `values`, or all when there are fewer.
template <typename Number>
std::span<const Number> head(const std::vector<Number> &values, size_t count)
{
    return std::span(values).first(std::min(count, values.size()));
}

} // namespace Qorvane
