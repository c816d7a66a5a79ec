#include "platform/NaturalOrder.h"

#include "platform/Languages.h"

#include <QLocale>

namespace Qorvane {

NaturalOrder::NaturalOrder()
    : NaturalOrder(Languages::localeName(Languages::Aspect::collation))
{
}

NaturalOrder::NaturalOrder(const QString &localeName)
    : m_collator(QLocale(localeName))
    , m_tieBreaker(QLocale(localeName))
{
    m_collator.setNumericMode(true);
    m_collator.setCaseSensitivity(Qt::CaseInsensitive);
    m_tieBreaker.setNumericMode(true);
    m_tieBreaker.setCaseSensitivity(Qt::CaseSensitive);
}

int NaturalOrder::compare(const QString &a, const QString &b) const
{
    if (const int result = m_collator.compare(a, b))
        return result;
    if (const int result = m_tieBreaker.compare(a, b))
        return result;
    return a.compare(b);
}

int localizedStandardCompare(const QString &a, const QString &b)
{
    thread_local const NaturalOrder order;
    return order.compare(a, b);
}

} // namespace Qorvane
