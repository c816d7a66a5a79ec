#include "platform/QuotedList.h"

namespace Qorvane {

namespace {

QString escaped(QChar unit)
{
    switch (unit.unicode()) {
    case u'"':
        return QStringLiteral("\\\"");
    case u'\\':
        return QStringLiteral("\\\\");
    case u'\n':
        return QStringLiteral("\\n");
    case u'\r':
        return QStringLiteral("\\r");
    case u'\t':
        return QStringLiteral("\\t");
    case u'\0':
        return QStringLiteral("\\0");
    default:
        return QStringLiteral("\\u{%1}").arg(unit.unicode(), 0, 16);
    }
}

bool needsEscape(QChar unit)
{
    switch (unit.category()) {
    case QChar::Other_Control:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return true;
    default:
        return unit == u'"' || unit == u'\\';
    }
}

QString quoted(const QString &text)
{
    QString result(u'"');
    for (const QChar unit : text) {
        if (needsEscape(unit))
            result += escaped(unit);
        else
            result += unit;
    }
    return result + u'"';
}

} // namespace

QString quotedList(const QStringList &texts)
{
    QStringList items;
    items.reserve(texts.size());
    for (const QString &text : texts)
        items.append(quoted(text));
    return u'[' + items.join(QStringLiteral(", ")) + u']';
}

} // namespace Qorvane
