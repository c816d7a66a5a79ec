#include "encoders/import/SelfTest.h"

#include "semantic/CosineSimilarity.h"
#include "semantic/Encoder.h"
#include "semantic/FeatureVector.h"
#include "semantic/Preprocessing.h"
#include "semantic/TokenizerService.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>

namespace Qorvane::Encoders {

namespace {

// Larger than what the encoders see, as thumbnails are.
constexpr int drawingSide = 320;
constexpr int tokenCount = 77;

using Painter = QRgb (*)(double x, double y);

/// Colours by the place from 0 to 1, without a window system's painter.
QImage drawn(Painter colour)
{
    QImage picture(drawingSide, drawingSide, QImage::Format_RGB32);
    for (int y = 0; y < drawingSide; ++y) {
        for (int x = 0; x < drawingSide; ++x)
            picture.setPixel(x, y, colour(double(x) / drawingSide, double(y) / drawingSide));
    }
    return picture;
}

QRgb mixed(QRgb from, QRgb to, double share)
{
    const auto part = [share](int a, int b) { return int(a + (b - a) * share); };
    return qRgb(part(qRed(from), qRed(to)), part(qGreen(from), qGreen(to)), part(qBlue(from), qBlue(to)));
}

QRgb sunset(double x, double y)
{
    constexpr double horizon = 0.6;
    if (y < horizon && std::hypot(x - 0.5, y - horizon) < 0.14)
        return qRgb(255, 235, 150);
    if (y < horizon)
        return mixed(qRgb(70, 50, 110), qRgb(255, 140, 50), y / horizon);
    const bool isGlitter = std::abs(x - 0.5) < 0.12 && int(y * 60) % 2 == 0;
    return isGlitter ? qRgb(255, 190, 90) : qRgb(60, 40, 70);
}

QRgb field(double x, double y)
{
    const double hills = 0.5 + 0.04 * std::sin(x * 7);
    if (y > hills)
        return mixed(qRgb(110, 170, 60), qRgb(50, 110, 30), (y - hills) * 2);
    const bool isCloud =
        std::hypot((x - 0.3) / 2, y - 0.2) < 0.06 || std::hypot((x - 0.7) / 2, y - 0.28) < 0.05;
    return isCloud ? qRgb(250, 250, 250) : mixed(qRgb(60, 130, 220), qRgb(150, 200, 250), y / hills);
}

QRgb chessboard(double x, double y)
{
    return (int(x * 8) + int(y * 8)) % 2 == 0 ? qRgb(240, 240, 235) : qRgb(25, 25, 25);
}

/// Whether the place lies within `width` of the line from the middle towards `angle` (from the top,
/// clockwise).
bool isHand(double x, double y, double angle, double length, double width)
{
    const double along = x * std::sin(angle) - y * std::cos(angle);
    const double aside = x * std::cos(angle) + y * std::sin(angle);
    return along > 0 && along < length && std::abs(aside) < width;
}

QRgb clockFace(double x, double y)
{
    constexpr int hours = 12;
    const double across = x - 0.5;
    const double down = y - 0.5;
    const double radius = std::hypot(across, down);
    if (radius > 0.44)
        return qRgb(190, 200, 205);
    bool isDark =
        radius > 0.4 || isHand(across, down, 5.24, 0.2, 0.016) || isHand(across, down, 1.05, 0.3, 0.01);
    for (int hour = 0; hour < hours && radius > 0.33 && radius < 0.38; ++hour)
        isDark = isDark || isHand(across, down, hour * 2 * std::numbers::pi / hours, 1, 0.012);
    return isDark ? qRgb(20, 20, 25) : qRgb(250, 250, 245);
}

QRgb trafficLight(double x, double y)
{
    const auto isLamp = [x, y](double height) { return std::hypot(x - 0.5, y - height) < 0.09; };
    if (isLamp(0.24))
        return qRgb(255, 40, 30);
    if (isLamp(0.47))
        return qRgb(90, 70, 10);
    if (isLamp(0.7))
        return qRgb(10, 70, 30);
    const bool isHousing = std::abs(x - 0.5) < 0.14 && y > 0.1 && y < 0.84;
    const bool isPole = std::abs(x - 0.5) < 0.03 && y >= 0.84;
    return isHousing || isPole ? qRgb(25, 28, 28) : mixed(qRgb(120, 170, 225), qRgb(200, 220, 240), y);
}

struct Vectors
{
    std::vector<std::vector<float>> pictures;
    std::vector<std::vector<float>> texts;
};

tl::unexpected<Problem> refused(const QString &path, const QString &expected, const QString &found)
{
    return problem(QStringLiteral("%1 from %2").arg(expected, QFileInfo(path).fileName()), found,
                   QStringLiteral("use another export of the model"));
}

Outcome<std::vector<float>> checkedVector(const QString &path, const EncoderResult &first,
                                          const EncoderResult &second)
{
    const QString expected = QStringLiteral("a vector");
    switch (first.outcome) {
    case EncoderResult::Outcome::failed:
        return refused(path, expected, QStringLiteral("that it can't be run: ") + first.error);
    case EncoderResult::Outcome::featureMissing:
        return refused(path, expected, QStringLiteral("no output of the required name"));
    case EncoderResult::Outcome::succeeded:
        break;
    }
    if (first.features.empty())
        return refused(path, expected, QStringLiteral("an empty one"));
    if (!std::ranges::all_of(first.features, [](float value) { return std::isfinite(value); }))
        return refused(path, QStringLiteral("finite numbers"), QStringLiteral("some that are not"));
    if (first != second)
        return refused(path, QStringLiteral("the same vector in every run"),
                       QStringLiteral("two that differ"));
    return normalised(first.features).values;
}

/// A vocabulary of another model has ids that this one never learnt.
Outcome<void> checkToken(const QString &path, const TextEncoder &encoder, qint32 id)
{
    std::vector<qint32> ids(tokenCount, 0);
    std::vector<qint32> mask(tokenCount, 0);
    ids[0] = id;
    mask[0] = 1;
    const EncoderResult result = encoder.predict(ids, mask);
    if (result.outcome == EncoderResult::Outcome::succeeded)
        return {};
    return problem(
        QStringLiteral("a vector from %1 for token %2, which goes with the vocabulary")
            .arg(QFileInfo(path).fileName())
            .arg(id),
        result.error,
        QStringLiteral("name the vocabulary that belongs to the model, its vocab.json or vocab.txt, "
                       "as a further PATH of the import; if the model is a Chinese one, add "
                       "--family chinese"));
}

Outcome<void> checkDifference(const QString &path, const std::vector<std::vector<float>> &vectors,
                              const QString &what)
{
    const bool isAllTheSame = std::ranges::all_of(
        vectors, [&vectors](const std::vector<float> &vector) { return vector == vectors.front(); });
    if (!isAllTheSame)
        return {};
    return refused(path, QStringLiteral("different vectors for different %1").arg(what),
                   QStringLiteral("the same for all"));
}

Outcome<TokenizerVocabulary> vocabularyOf(const QString &path)
{
    QFile file(path);
    if (file.open(QIODevice::ReadOnly)) {
        if (auto vocabulary = parseVocabulary(file.readAll()))
            return *std::move(vocabulary);
    }
    return problem(QStringLiteral("a vocabulary in %1").arg(path), QStringLiteral("that it can't be read"),
                   QStringLiteral("import the model again with its vocab.json, vocab.txt or tokenizer.json"));
}

SelfTestReport ranked(const Vectors &vectors)
{
    SelfTestReport report;
    report.dimension = qsizetype(vectors.texts.front().size());
    report.pairs = int(vectors.texts.size());
    for (size_t caption = 0; caption < vectors.texts.size(); ++caption) {
        std::vector<float> similarities;
        for (const auto &picture : vectors.pictures)
            similarities.push_back(cosineSimilarity(vectors.texts[caption], picture));
        const auto best = std::ranges::max_element(similarities);
        report.ranked += size_t(best - similarities.begin()) == caption;
    }
    return report;
}

} // namespace

QList<CaptionedDrawing> captionedDrawings()
{
    return {
        {drawn(sunset), QStringLiteral("a sunset over the sea"), QStringLiteral("海上的日落")},
        {drawn(field), QStringLiteral("a green field under a blue sky"), QStringLiteral("蓝天下的绿色田野")},
        {drawn(chessboard), QStringLiteral("a black and white chessboard"), QStringLiteral("黑白棋盘")},
        {drawn(clockFace), QStringLiteral("the face of a clock"), QStringLiteral("一个时钟的钟面")},
        {drawn(trafficLight), QStringLiteral("a traffic light"), QStringLiteral("交通信号灯")},
    };
}

Outcome<SelfTestReport> selfTest(const QString &vision, const QString &text, const QString &vocabulary)
{
    auto tokens = vocabularyOf(vocabulary);
    if (!tokens)
        return tl::unexpected(tokens.error());
    const auto byId = [](const auto &one, const auto &other) { return one.second < other.second; };
    const auto greatest = std::ranges::max_element(*tokens, byId);
    qint32 greatestId = greatest == tokens->end() ? 0 : greatest->second;
    const TokenizerService tokenizer(*std::move(tokens));
    // Start and end aren't looked up in every vocabulary.
    greatestId = std::max(greatestId, std::ranges::max(tokenizer.encode({}, tokenCount).ids));
    const bool isChinese = tokenizer.mode() == TokenizerService::Mode::chineseClip;

    QString error;
    const auto visionEncoder = VisionEncoder::load(vision, &error);
    if (!visionEncoder)
        return refused(vision, QStringLiteral("an encoder"), error);
    const auto textEncoder = TextEncoder::load(text, &error);
    if (!textEncoder)
        return refused(text, QStringLiteral("an encoder"), error);

    // Before the captions, which wouldn't tell what the matter is.
    if (auto known = checkToken(text, *textEncoder, greatestId); !known)
        return tl::unexpected(known.error());

    Vectors vectors;
    for (const CaptionedDrawing &drawing : captionedDrawings()) {
        const auto pixels = preprocessImage(drawing.picture);
        if (!pixels)
            return refused(vision, QStringLiteral("a picture's tensor"), QStringLiteral("no memory for it"));
        auto picture =
            checkedVector(vision, visionEncoder->predict(*pixels), visionEncoder->predict(*pixels));
        if (!picture)
            return tl::unexpected(picture.error());
        vectors.pictures.push_back(*std::move(picture));

        const auto encoded = tokenizer.encode(isChinese ? tokenizer.tokenizeChinese(drawing.chinese)
                                                        : tokenizer.tokenizeOpenAI(drawing.english),
                                              tokenCount);
        auto caption = checkedVector(text, textEncoder->predict(encoded.ids, encoded.mask),
                                     textEncoder->predict(encoded.ids, encoded.mask));
        if (!caption)
            return tl::unexpected(caption.error());
        vectors.texts.push_back(*std::move(caption));
    }
    const qsizetype pictureLength = qsizetype(vectors.pictures.front().size());
    const qsizetype textLength = qsizetype(vectors.texts.front().size());
    if (pictureLength != textLength)
        return problem(
            QStringLiteral("vectors of one length from both towers"),
            QStringLiteral("%1 numbers for a picture and %2 for a text").arg(pictureLength).arg(textLength),
            QStringLiteral("use both towers of the same model, each with its projection"));
    if (auto different = checkDifference(vision, vectors.pictures, QStringLiteral("pictures")); !different)
        return tl::unexpected(different.error());
    if (auto different = checkDifference(text, vectors.texts, QStringLiteral("texts")); !different)
        return tl::unexpected(different.error());
    return ranked(vectors);
}

} // namespace Qorvane::Encoders
