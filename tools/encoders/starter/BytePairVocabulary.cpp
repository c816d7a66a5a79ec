#include "encoders/starter/BytePairVocabulary.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace Qorvane::Encoders {

namespace {

constexpr int byteCount = 256;
// What of the list was used; it goes on for five times as long (Radford et al., 2021).
constexpr int mergeCount = 49152 - byteCount - 2;

// Bytes that have a visible character of their own keep it and come first; the others get one from U+0100 on.
QStringList byteTokens()
{
    const auto isVisible = [](int byte) {
        return (byte >= '!' && byte <= '~') || (byte >= 0xA1 && byte <= 0xAC) ||
               (byte >= 0xAE && byte <= 0xFF);
    };
    QStringList visible;
    QStringList others;
    for (int byte = 0; byte < byteCount; ++byte) {
        if (isVisible(byte))
            visible.append(QString(QChar(byte)));
        else
            others.append(QString(QChar(byteCount + int(others.size()))));
    }
    return visible + others;
}

} // namespace

Outcome<QStringList> bytePairVocabulary(const QByteArray &merges)
{
    const QString endOfWord = QStringLiteral("</w>");
    const QStringList bytes = byteTokens();
    QStringList tokens = bytes;
    for (const QString &byte : bytes)
        tokens.append(byte + endOfWord);
    // The first line is a title.
    qsizetype at = merges.indexOf('\n') + 1;
    for (int merge = 0; merge < mergeCount; ++merge) {
        const qsizetype end = merges.indexOf('\n', at);
        const QStringList pair =
            end < at ? QStringList() : QString::fromUtf8(merges.sliced(at, end - at)).split(u' ');
        if (pair.size() != 2)
            return problem(QStringLiteral("%1 pairs of tokens").arg(mergeCount),
                           QStringLiteral("only %1").arg(merge),
                           QStringLiteral("use the pinned package, unchanged"));
        tokens.append(pair.join(QString()).remove(u'\r'));
        at = end + 1;
    }
    return tokens << QStringLiteral("<|startoftext|>") << QStringLiteral("<|endoftext|>");
}

QByteArray vocabularyJson(const QStringList &tokens)
{
    QJsonObject object;
    for (qsizetype id = 0; id < tokens.size(); ++id)
        object.insert(tokens.at(id), int(id));
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

} // namespace Qorvane::Encoders
