#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace Qorvane {

/// The text cut into what a reader calls characters: extended grapheme clusters (Unicode Standard Annex
/// #29), so that an accent stays with its letter and a family emoji is one. Any thread.
QStringList characters(const QString &text);

/// How many there are. Any thread.
qsizetype characterCount(const QString &text);

/// Where each begins, in UTF-16 units, and last the text's own length: one more entry than characters.
/// Any thread.
QList<qsizetype> characterBoundaries(const QString &text);

} // namespace Qorvane
