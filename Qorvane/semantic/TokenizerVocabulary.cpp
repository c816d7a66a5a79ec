#include "semantic/TokenizerVocabulary.h"

#include "platform/Bundle.h"
#include "platform/FileAttributes.h"
#include "platform/Log.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

#include <limits>

namespace Qorvane {

namespace {

// What an integer of JSON may be written as: 7, but 7.0 and 7e0 too.
std::optional<qint64> integer(const QJsonValue &value)
{
    // What is no integer answers with whatever it is offered.
    const qint64 number = value.toInteger(0);
    return number == value.toInteger(1) ? std::optional(number) : std::nullopt;
}

qint32 tokenId(qint64 number)
{
    if (number < std::numeric_limits<qint32>::min() || number > std::numeric_limits<qint32>::max())
        qFatal("The vocabulary holds a token id that doesn't fit 32 bits: %lld",
               static_cast<long long>(number));
    return static_cast<qint32>(number);
}

std::optional<TokenizerVocabulary> readVocabulary(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return parseVocabulary(file.readAll());
}

QStringList developmentPaths(const QString &fileName)
{
    return {QStringLiteral("Qorvane/") + fileName, fileName, QStringLiteral("../") + fileName,
            QStringLiteral("../../") + fileName};
}

QString tokenCount(const TokenizerVocabulary &vocabulary)
{
    return QString::number(vocabulary.size()) + QStringLiteral(" 个token");
}

} // namespace

TokenizerVocabulary baseVocabulary()
{
    return {
        {QStringLiteral("[CLS]"), 101}, {QStringLiteral("[SEP]"), 102},  {QStringLiteral("[PAD]"), 0},
        {QStringLiteral("[UNK]"), 100}, {QStringLiteral("[MASK]"), 103}, {QStringLiteral("柠"), 3387},
        {QStringLiteral("檬"), 3597},   {QStringLiteral("狗"), 4318},    {QStringLiteral("风"), 7599},
        {QStringLiteral("景"), 3250},   {QStringLiteral("食"), 7608},    {QStringLiteral("物"), 4289},
        {QStringLiteral("水"), 3717},   {QStringLiteral("果"), 3362},    {QStringLiteral("猫"), 4344},
        {QStringLiteral("人"), 782},
    };
}

std::optional<TokenizerVocabulary> parseVocabulary(const QByteArray &json)
{
    const QJsonDocument document = QJsonDocument::fromJson(json);
    if (!document.isObject())
        return std::nullopt;
    const QJsonObject object = document.object();
    TokenizerVocabulary vocabulary;
    vocabulary.reserve(static_cast<std::size_t>(object.size()));
    for (auto entry = object.begin(); entry != object.end(); ++entry) {
        if (const std::optional<qint64> number = integer(entry.value()))
            vocabulary.insert_or_assign(entry.key(), tokenId(*number));
    }
    return vocabulary;
}

TokenizerVocabulary loadVocabulary(bool isChinese, const QStringList &resourceDirectories)
{
    const QString name = isChinese ? QStringLiteral("chinese_vocab") : QStringLiteral("vocab");
    const QString extension = QStringLiteral("json");
    if (const auto path = Bundle::urlForResource(name, extension, resourceDirectories)) {
        if (auto vocabulary = readVocabulary(*path)) {
            Log::line((isChinese ? QStringLiteral("✅ 成功从Bundle加载中文词汇表 chinese_vocab.json，共 ")
                                 : QStringLiteral("✅ 成功从Bundle加载词汇表 vocab.json，共 ")) +
                      tokenCount(*vocabulary));
            return *std::move(vocabulary);
        }
    }
    if (!resourceDirectories.isEmpty()) {
        for (const QString &relative : developmentPaths(name + u'.' + extension)) {
            const QString path = resourceDirectories.constFirst() + u'/' + relative;
            if (!fileExists(path))
                continue;
            if (auto vocabulary = readVocabulary(path)) {
                Log::line(QStringLiteral("✅ 成功从开发路径加载词汇表：") + path + QStringLiteral("，共 ") +
                          tokenCount(*vocabulary));
                return *std::move(vocabulary);
            }
        }
    }
    Log::line(QStringLiteral(
        "⚠️ 未找到词汇表，使用基础词汇表（搜索质量可能受影响）。请将 "
        "`Qorvane/chinese_vocab.json` 或 "
        "`Qorvane/vocab.json` 加入目标资源。"));
    return baseVocabulary();
}

} // namespace Qorvane
