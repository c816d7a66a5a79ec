#include "platform/PredefinedTags.h"

#include "platform/ChineseLocale.h"

#include <atomic>

namespace Qorvane {

namespace {

std::atomic<const QStringList *> currentOverride = nullptr;

} // namespace

const QStringList &predefinedTags()
{
    if (const QStringList *override = currentOverride)
        return *override;
    return isChineseLocale() ? predefinedTagsChinese() : predefinedTagsEnglish();
}

const QStringList *overridePredefinedTagsForTests(const QStringList *tags)
{
    return currentOverride.exchange(tags);
}

} // namespace Qorvane
