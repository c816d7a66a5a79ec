#pragma once

#include <QString>
#include <QStringList>

#include <ostream>

// How the test framework shows Qt's texts when an expectation fails; found by the type's own namespace.

inline void PrintTo(const QString &text, std::ostream *stream)
{
    *stream << '"' << text.toStdString() << '"';
}

inline void PrintTo(const QStringList &texts, std::ostream *stream)
{
    *stream << '[';
    for (const QString &text : texts) {
        *stream << "\n  ";
        PrintTo(text, stream);
    }
    *stream << ']';
}
