#include "clip/SearchVerification.h"

#include "platform/FixedDecimal.h"
#include "semantic/CosineSimilarity.h"

namespace Qorvane {

namespace {

QString fourDecimals(float value)
{
    return fixedDecimal(double(value), 4);
}

} // namespace

QString verificationLine(const FileUrl &url, float storedSimilarity, const std::vector<float> &features,
                         const std::vector<float> &textVector)
{
    const float live = cosineSimilarity(features, textVector);
    return QStringLiteral("   • ") + url.lastPathComponent() + QStringLiteral(": DB=") +
           fourDecimals(storedSimilarity) + QStringLiteral(" live=") + fourDecimals(live) +
           QStringLiteral(" Δ=") + fourDecimals(live - storedSimilarity);
}

} // namespace Qorvane
