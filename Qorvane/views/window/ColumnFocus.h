#pragma once

#include <QObject>
#include <QtQml/qqmlregistration.h>

#include <optional>

namespace Qorvane {

/// The columns of the main window that take the keys.
enum class FocusableField {
    sidebar,
    detail, ///< the middle column: grid or viewer
};

/// Which column the keys belong to: neither until the window has appeared. While the user is in the search
/// field the keys are lent to it, and `focusedField` is who gets them back. GUI thread.
class ColumnFocus : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the window's state.")
    Q_PROPERTY(bool isLentToSearch READ isLentToSearch WRITE setLentToSearch NOTIFY isLentToSearchChanged)

public:
    using QObject::QObject;

    std::optional<FocusableField> focusedField() const { return m_focusedField; }
    bool isOnSidebar() const { return m_focusedField == FocusableField::sidebar; }
    bool isOnDetail() const { return m_focusedField == FocusableField::detail; }

    bool isLentToSearch() const { return m_isLentToSearch; }
    void setLentToSearch(bool isLent);

    /// The user asks for a column, whoever has the keys.
    void focus(FocusableField field);
    Q_INVOKABLE void focusSidebar() { focus(FocusableField::sidebar); }
    Q_INVOKABLE void focusDetail() { focus(FocusableField::detail); }

    /// The user is through with the search field: the keys go back to the column that had them last.
    Q_INVOKABLE void giveBack();

    /// The program turns to a column. Doesn't take the keys from somebody who is typing a query.
    void settleOn(FocusableField field);

    /// The user is in a column already, by a click or the Tab key.
    Q_INVOKABLE void noteSidebar() { note(FocusableField::sidebar); }
    Q_INVOKABLE void noteDetail() { note(FocusableField::detail); }

Q_SIGNALS:
    void isLentToSearchChanged();
    /// The column is to take the keys now.
    void sidebarWanted();
    void detailWanted();

private:
    void note(FocusableField field) { m_focusedField = field; }

    std::optional<FocusableField> m_focusedField;
    bool m_isLentToSearch = false;
};

} // namespace Qorvane
