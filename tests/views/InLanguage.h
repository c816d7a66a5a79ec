#pragma once

#include "platform/Languages.h"
#include "platform/Localization.h"

#include <QString>

namespace Qorvane {

/// The interface in one of its languages, which has to be in before the window is made: the fixture's first
/// base.
class InLanguage
{
protected:
    explicit InLanguage(const QString &language)
    {
        Languages::overrideForTests({language}, language.left(2));
        Localization::install();
    }
    ~InLanguage()
    {
        Localization::remove();
        Languages::endOverrideForTests();
    }
    InLanguage(const InLanguage &) = delete;
    InLanguage &operator=(const InLanguage &) = delete;
};

} // namespace Qorvane
