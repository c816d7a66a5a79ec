#include "encoders/layout/PublishedVocabulary.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <limits>

namespace Qorvane::Encoders {

namespace {

// A hundred times CLIP's own.
constexpr qint64 greatestFile = qint64(128) << 20;

tl::unexpected<Problem> noVocabulary(const QString &path, const QString &found)
{
    return problem(QStringLiteral("a vocabulary in %1").arg(QFileInfo(path).fileName()), found,
                   QStringLiteral("give the model's own vocab.json, vocab.txt or tokenizer.json"));
}

/// The entries that the application can take: it ends when it meets an id of more than 32 bits.
Outcome<QJsonObject> checkedEntries(const QString &path, const QJsonObject &entries)
{
    qsizetype count = 0;
    for (auto entry = entries.begin(); entry != entries.end(); ++entry) {
        if (!entry.value().isDouble())
            continue;
        const double id = entry.value().toDouble();
        if (id < 0 || id > std::numeric_limits<qint32>::max())
            return noVocabulary(path, QStringLiteral("the id %1 for \"%2\"").arg(id).arg(entry.key()));
        ++count;
    }
    if (count == 0)
        return noVocabulary(path, QStringLiteral("no token with an id"));
    return entries;
}

Outcome<QJsonObject> fromLines(const QString &path, const QByteArray &bytes)
{
    QVariantMap entries;
    int id = 0;
    QList<QByteArray> lines = bytes.split('\n');
    if (lines.constLast().isEmpty())
        lines.removeLast();
    for (QByteArray line : lines) {
        if (line.endsWith('\r'))
            line.chop(1);
        // A line's number is its token's id, so an empty one counts.
        if (!line.isEmpty())
            entries.insert(QString::fromUtf8(line), id);
        ++id;
    }
    return checkedEntries(path, QJsonObject::fromVariantMap(entries));
}

Outcome<QJsonObject> fromJson(const QString &path, const QByteArray &bytes)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(bytes, &error);
    if (!document.isObject())
        return noVocabulary(path, error.error == QJsonParseError::NoError ? QStringLiteral("no object")
                                                                          : error.errorString());
    const QJsonObject object = document.object();
    const QJsonValue model = object.value(u"model");
    if (!model.isObject())
        return checkedEntries(path, object);
    if (!model[u"vocab"].isObject())
        return noVocabulary(path,
                            QStringLiteral("a tokenizer of the kind \"%1\", which has no ids of whole tokens")
                                .arg(model[u"type"].toString(QStringLiteral("unknown"))));
    QJsonObject entries = model[u"vocab"].toObject();
    // Some keep what isn't text apart.
    for (const QJsonValue &token : object.value(u"added_tokens").toArray()) {
        if (token[u"content"].isString() && token[u"id"].isDouble())
            entries.insert(token[u"content"].toString(), token[u"id"]);
    }
    return checkedEntries(path, entries);
}

} // namespace

Outcome<PublishedVocabulary> readVocabularyFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return noVocabulary(path, file.errorString());
    if (file.size() > greatestFile)
        return noVocabulary(path, QStringLiteral("%1 bytes").arg(file.size()));
    const QByteArray bytes = file.readAll();
    const auto entries = path.endsWith(QStringLiteral(".txt"), Qt::CaseInsensitive) ? fromLines(path, bytes)
                                                                                    : fromJson(path, bytes);
    if (!entries)
        return tl::unexpected(entries.error());

    PublishedVocabulary vocabulary;
    vocabulary.json = QJsonDocument(*entries).toJson(QJsonDocument::Compact);
    vocabulary.size = entries->size();
    vocabulary.source = path;
    // As the application decides it.
    if (entries->contains(u"[CLS]") && entries->contains(u"[SEP]")) {
        vocabulary.family = Family::chinese;
        vocabulary.endToken = entries->value(u"[SEP]").toInt();
    } else if (entries->contains(u"<|endoftext|>")) {
        vocabulary.endToken = entries->value(u"<|endoftext|>").toInt();
    }
    return vocabulary;
}

Outcome<std::optional<PublishedVocabulary>> publishedVocabulary(const ModelFolder &folder)
{
    for (const QString &path : {folder.vocabularyJson, folder.vocabularyText, folder.tokenizerJson}) {
        if (path.isEmpty())
            continue;
        auto vocabulary = readVocabularyFile(path);
        if (!vocabulary)
            return tl::unexpected(vocabulary.error());
        return *std::move(vocabulary);
    }
    return std::optional<PublishedVocabulary>();
}

} // namespace Qorvane::Encoders
