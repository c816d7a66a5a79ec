#include "semantic/FeatureDiagnostics.h"

#include "semantic/NumberText.h"

#include <algorithm>
#include <cmath>

namespace Qorvane {

namespace {

// Below this in every element, two vectors count as the same: well above what rounding does to one picture,
// well below what sets two pictures apart.
constexpr float sameElementTolerance = 0.0001f;

using Vectors = std::vector<std::span<const float>>;

bool isSame(std::span<const float> left, std::span<const float> right)
{
    return std::ranges::equal(left, right, [](float leftElement, float rightElement) {
        return std::abs(leftElement - rightElement) < sameElementTolerance;
    });
}

QString samenessLine(const Vectors &vectors)
{
    const bool areAllSame = std::ranges::all_of(
        vectors, [&vectors](std::span<const float> vector) { return isSame(vectors.front(), vector); });
    return areAllSame
               ? QStringLiteral("⚠️ 警告：所有图片特征都相同！这是问题的根源！")
               : QStringLiteral("✅ 图片特征各不相同");
}

QString differenceLine(const Vectors &vectors)
{
    float largest = 0;
    double sum = 0;
    qint64 count = 0;
    for (size_t i = 0; i < vectors.size(); ++i) {
        for (size_t j = i + 1; j < vectors.size(); ++j) {
            const size_t length = std::min(vectors[i].size(), vectors[j].size());
            for (size_t index = 0; index < length; ++index) {
                const float difference = std::abs(vectors[i][index] - vectors[j][index]);
                largest = std::max(largest, difference);
                sum += difference;
            }
            count += static_cast<qint64>(length);
        }
    }
    const double mean = count > 0 ? sum / static_cast<double>(count) : 0;
    return QStringLiteral("📏 特征差异统计: 最大差异=") + numberText(largest) + QStringLiteral(", 平均差异=") +
           numberText(static_cast<float>(mean));
}

QStringList firstPicturesLines(const ImageFeatures &features)
{
    constexpr int pictureCount = 5;
    constexpr size_t headLength = 3;
    QStringList lines;
    for (auto picture = features.cbegin(); picture != features.cend() && lines.size() < pictureCount;
         ++picture) {
        lines.append(QStringLiteral("📊 图片%1 (").arg(lines.size() + 1) + picture.key().lastPathComponent() +
                     QStringLiteral("): 前3个特征值=") + listText(head(picture->features, headLength)) +
                     QStringLiteral(", L2范数=") + numberText(picture->l2Norm));
    }
    return lines;
}

} // namespace

QStringList featureDiagnostics(const ImageFeatures &features)
{
    if (features.size() < 2)
        return {};
    Vectors vectors;
    for (const ImageFeature &feature : features)
        vectors.emplace_back(feature.features);
    return QStringList{samenessLine(vectors), differenceLine(vectors)} + firstPicturesLines(features);
}

} // namespace Qorvane
