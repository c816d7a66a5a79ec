#pragma once

#include <QCollator>
#include <QString>

namespace Qorvane {

/// How people expect names to be listed: numbers by value ("img2" before "img10"), upper and lower case
/// alike, letters by the rules of a language. Names that come out equal that way ("IMG1" and "img1", "img2"
/// and "img02") are told apart by case and digits, then by their code units, so the order is total.
/// Not to be shared between threads.
class NaturalOrder
{
public:
    /// What a name weighs; made once a name, it makes a long list sort several times faster. Keys are equal
    /// too where only case, digits or code units tell the names apart: those are then to be compared.
    using SortKey = QCollatorSortKey;

    /// Follows the collation locale of the user's environment.
    NaturalOrder();
    /// Follows `localeName` ("en_US").
    explicit NaturalOrder(const QString &localeName);
    NaturalOrder(const NaturalOrder &) = delete;
    NaturalOrder &operator=(const NaturalOrder &) = delete;

    /// Below 0 when `a` comes first, 0 only for equal texts, above 0 otherwise.
    int compare(const QString &a, const QString &b) const;

    /// Compares with keys of this order and of others for the same locale.
    SortKey sortKey(const QString &text) const { return m_collator.sortKey(text); }

private:
    QCollator m_collator;
    QCollator m_tieBreaker;
};

/// Compares as `NaturalOrder` does, by the rules of the user's environment when the thread first asked.
/// Any thread.
int localizedStandardCompare(const QString &a, const QString &b);

} // namespace Qorvane
