#include "semantic/FeatureVector.h"

#include "semantic/NumberText.h"

#include <algorithm>
#include <cmath>

namespace Qorvane {

float l2Norm(const std::vector<float> &values)
{
    float sum = 0;
    for (const float value : values)
        sum += value * value;
    return std::sqrt(sum);
}

FeatureVector normalised(std::vector<float> features)
{
    std::ranges::replace_if(
        features, [](float value) { return !std::isfinite(value); }, 0.0f);
    const float norm = l2Norm(features);
    if (norm > 0) {
        for (float &value : features)
            value /= norm;
    }
    return {.values = std::move(features), .normBefore = norm};
}

QString normLine(const FeatureVector &vector)
{
    constexpr size_t headLength = 5;
    QString line = QStringLiteral("📏 特征向量L2范数: ") + numberText(vector.normBefore);
    if (vector.values.empty())
        return line;
    const auto [smallest, largest] = std::ranges::minmax(vector.values);
    return line + QStringLiteral(", min=") + numberText(smallest) + QStringLiteral(", max=") +
           numberText(largest) + QStringLiteral(", head=") + listText(head(vector.values, headLength));
}

} // namespace Qorvane
