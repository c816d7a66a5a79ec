#pragma once

#include "platform/PredefinedTags.h"

#include <QStringList>

#include <utility>

namespace Qorvane {

/// Puts a list of its own in place of the predefined tags while it lives.
class PredefinedTagsOverride
{
public:
    explicit PredefinedTagsOverride(QStringList tags)
        : m_tags(std::move(tags))
        , m_former(overridePredefinedTagsForTests(&m_tags))
    {
    }
    ~PredefinedTagsOverride() { overridePredefinedTagsForTests(m_former); }
    PredefinedTagsOverride(const PredefinedTagsOverride &) = delete;
    PredefinedTagsOverride &operator=(const PredefinedTagsOverride &) = delete;

private:
    const QStringList m_tags;
    const QStringList *const m_former;
};

} // namespace Qorvane
