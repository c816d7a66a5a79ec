#include "store/TagSpelling.h"

namespace Qorvane {

bool differOnlyInSpelling(const QString &left, const QString &right)
{
    const auto folded = [](const QString &text) {
        return text.toCaseFolded().normalized(QString::NormalizationForm_D);
    };
    return folded(left) == folded(right);
}

} // namespace Qorvane
