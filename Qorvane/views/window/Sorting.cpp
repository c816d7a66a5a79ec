#include "views/window/Sorting.h"

#include "library/QorManage.h"

namespace Qorvane {

Sorting::Sorting(QorManage &qorManager, QObject *parent)
    : QObject(parent)
    , m_qorManager(qorManager)
{
    connect(&m_qorManager, &QorManage::sortCriterionChanged, this, &Sorting::criterionChanged);
    connect(&m_qorManager, &QorManage::sortOrderChanged, this, &Sorting::orderChanged);
}

Sorting::Criterion Sorting::criterion() const
{
    return Criterion(m_qorManager.sortCriterion());
}

void Sorting::setCriterion(Criterion criterion)
{
    if (this->criterion() != criterion)
        m_qorManager.setSortCriterion(SortCriterion(criterion));
}

Sorting::Order Sorting::order() const
{
    return Order(m_qorManager.sortOrder());
}

void Sorting::setOrder(Order order)
{
    if (this->order() != order)
        m_qorManager.setSortOrder(SortOrder(order));
}

} // namespace Qorvane
