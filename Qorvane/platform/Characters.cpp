#include "platform/Characters.h"

#include <unicode/ubrk.h>

#include <memory>

namespace Qorvane {

namespace {

using BreakIterator = std::unique_ptr<UBreakIterator, decltype(&ubrk_close)>;

// ICU rather than the toolkit's own finder, which cuts the Thai and Lao vowel AM off its letter.
BreakIterator makeBreakIterator()
{
    UErrorCode status = U_ZERO_ERROR;
    UBreakIterator *iterator = ubrk_open(UBRK_CHARACTER, "", nullptr, 0, &status);
    return {U_SUCCESS(status) ? iterator : nullptr, &ubrk_close};
}

} // namespace

QStringList characters(const QString &text)
{
    const QList<qsizetype> boundaries = characterBoundaries(text);
    QStringList result;
    result.reserve(boundaries.size() - 1);
    for (qsizetype i = 1; i < boundaries.size(); ++i)
        result.append(text.mid(boundaries[i - 1], boundaries[i] - boundaries[i - 1]));
    return result;
}

qsizetype characterCount(const QString &text)
{
    return characterBoundaries(text).size() - 1;
}

QList<qsizetype> characterBoundaries(const QString &text)
{
    // Opening one costs far more than walking a query with it.
    thread_local const BreakIterator iterator = makeBreakIterator();
    QList<qsizetype> boundaries{0};
    UErrorCode status = U_ZERO_ERROR;
    if (iterator)
        ubrk_setText(iterator.get(), reinterpret_cast<const UChar *>(text.utf16()),
                     static_cast<qint32>(text.size()), &status);
    // Without ICU's data there are no rules to cut by.
    if (!iterator || U_FAILURE(status))
        return text.isEmpty() ? boundaries : boundaries << text.size();
    for (qint32 at = ubrk_next(iterator.get()); at != UBRK_DONE; at = ubrk_next(iterator.get()))
        boundaries.append(at);
    return boundaries;
}

} // namespace Qorvane
