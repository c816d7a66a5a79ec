#pragma once

#include <QImage>
#include <QList>
#include <QString>

namespace Qorvane {

/// One picture of a contact sheet with the two lines below it.
struct ContactSheetCell
{
    QImage picture; ///< null where there is none: the cell then says so
    QString title;  ///< one line, elided in the middle so that numbers at the end stay
    QString detail; ///< one line, may be empty
};

/// Pictures in rows under a heading, for looking at many at once. A QGuiApplication must exist, for the
/// fonts.
class ContactSheet
{
public:
    ContactSheet(QString heading, QString subheading);

    void add(ContactSheetCell cell) { m_cells.append(std::move(cell)); }
    qsizetype count() const { return m_cells.size(); }

    /// How many pictures stand beside each other: enough for a sheet that is about as wide as a screen.
    int columns() const;
    /// The drawn sheet, opaque.
    QImage draw() const;

private:
    QSize size() const;

    QString m_heading;
    QString m_subheading;
    QList<ContactSheetCell> m_cells;
};

} // namespace Qorvane
