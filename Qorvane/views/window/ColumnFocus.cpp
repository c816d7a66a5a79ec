#include "views/window/ColumnFocus.h"

namespace Qorvane {

void ColumnFocus::focus(FocusableField field)
{
    note(field);
    switch (field) {
    case FocusableField::sidebar:
        Q_EMIT sidebarWanted();
        return;
    case FocusableField::detail:
        Q_EMIT detailWanted();
        return;
    }
}

void ColumnFocus::giveBack()
{
    focus(m_focusedField.value_or(FocusableField::sidebar));
}

void ColumnFocus::settleOn(FocusableField field)
{
    if (m_isLentToSearch)
        note(field);
    else
        focus(field);
}

void ColumnFocus::setLentToSearch(bool isLent)
{
    if (m_isLentToSearch == isLent)
        return;
    m_isLentToSearch = isLent;
    Q_EMIT isLentToSearchChanged();
}

} // namespace Qorvane
