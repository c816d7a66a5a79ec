#include "headless/ShownText.h"

#include <QChar>
#include <QList>

#include <utility>

namespace Qorvane {

namespace {

// Formats that only join characters: emoji, the letters of Persian and Indian scripts, and the flags of
// England, Scotland and Wales are written with them.
bool joinsCharacters(char32_t character)
{
    constexpr char32_t nonJoiner = 0x200c;
    constexpr char32_t joiner = 0x200d;
    constexpr char32_t firstTag = 0xe0020;
    constexpr char32_t lastTag = 0xe007f;
    return character == nonJoiner || character == joiner || (character >= firstTag && character <= lastTag);
}

bool isHarmless(char32_t character)
{
    switch (QChar::category(character)) {
    case QChar::Other_Control:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return false;
    case QChar::Other_Format:
        return joinsCharacters(character);
    default:
        return true;
    }
}

} // namespace

QString shown(const QString &text)
{
    QList<uint> characters = text.toUcs4();
    for (uint &character : characters) {
        if (!isHarmless(character))
            character = QChar::ReplacementCharacter;
    }
    QString result;
    for (const uint character : std::as_const(characters))
        result += QChar::fromUcs4(character);
    return result;
}

} // namespace Qorvane
