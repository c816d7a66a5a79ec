#pragma once

#include "library/SortCriterion.h"

#include <QObject>
#include <QtQml/qqmlregistration.h>

namespace Qorvane {

class QorManage;

/// What the sort menu shows and sets: the library's own sort settings. GUI thread.
class Sorting : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the window's state.")
    Q_PROPERTY(
        Qorvane::Sorting::Criterion criterion READ criterion WRITE setCriterion NOTIFY criterionChanged)
    Q_PROPERTY(Qorvane::Sorting::Order order READ order WRITE setOrder NOTIFY orderChanged)

public:
    /// The library's cases under the names that QML can read.
    enum Criterion {
        FileName = int(SortCriterion::filename),
        CreationDate = int(SortCriterion::creationDate),
        ModificationDate = int(SortCriterion::modificationDate),
        Rating = int(SortCriterion::rating),
    };
    Q_ENUM(Criterion)
    enum Order { Ascending = int(SortOrder::ascending), Descending = int(SortOrder::descending) };
    Q_ENUM(Order)

    /// `qorManager` outlives this object.
    explicit Sorting(QorManage &qorManager, QObject *parent = nullptr);

    Criterion criterion() const;
    /// The library takes every write for a change, and sorts or even loads anew: what is set already isn't
    /// written.
    void setCriterion(Criterion criterion);
    Order order() const;
    void setOrder(Order order);

Q_SIGNALS:
    void criterionChanged();
    void orderChanged();

private:
    QorManage &m_qorManager;
};

} // namespace Qorvane
