#pragma once

#include "encoders/graph/Resampling.h"
#include "encoders/layout/ModelFolder.h"

#include <array>
#include <optional>

namespace Qorvane::Encoders {

/// What a model's descriptions say of pictures and texts; nothing where they don't.
struct PublishedSettings
{
    std::optional<int> height;
    std::optional<int> width;
    std::optional<std::array<double, 3>> mean;
    std::optional<std::array<double, 3>> deviation;
    /// What a colour from 0 to 255 is multiplied by.
    std::optional<double> rescaling;
    std::optional<ResamplingFilter> filter;
    bool isBlueFirst = false;
    std::optional<int> context;
    std::optional<int> padToken;

    friend bool operator==(const PublishedSettings &, const PublishedSettings &) = default;
};

/// Reads them out of the descriptions, by any of the names that publishers have for each. What makes no sense
/// counts as not said. Any thread.
PublishedSettings publishedSettings(const ModelFolder &folder);

} // namespace Qorvane::Encoders
