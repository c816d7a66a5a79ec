#include "encoders/layout/PublishedSettings.h"

#include <QJsonArray>

#include <algorithm>
#include <cmath>
#include <limits>

namespace Qorvane::Encoders {

namespace {

// Longer than any text encoder's.
constexpr int greatestContext = 4096;
// Larger than any vision encoder's picture.
constexpr int greatestSide = 2048;

std::optional<int> whole(const QJsonValue &value, int greatest)
{
    const double number = value.toDouble(-1);
    // Some say "as long as you like" with a number of thirty digits.
    return number >= 1 && number <= greatest && number == std::floor(number) ? std::optional(int(number))
                                                                             : std::nullopt;
}

QJsonValue firstOf(const QJsonObject &object, std::initializer_list<const char *> keys)
{
    for (const char *key : keys) {
        if (const QJsonValue value = object.value(QLatin1StringView(key)); !value.isUndefined())
            return value;
    }
    return QJsonValue::Undefined;
}

std::optional<std::array<double, 3>> threeNumbers(const QJsonValue &value)
{
    const QJsonArray array = value.toArray();
    if (array.size() != 3)
        return std::nullopt;
    std::array<double, 3> numbers{};
    for (int index = 0; index < 3; ++index) {
        if (!array[index].isDouble())
            return std::nullopt;
        numbers[size_t(index)] = array[index].toDouble();
    }
    return numbers;
}

/// A side, a pair of them with the height first, or an object that names them.
void readSize(const QJsonValue &value, PublishedSettings &settings)
{
    if (value.isDouble()) {
        settings.height = settings.width = whole(value, greatestSide);
    } else if (value.isArray() && value.toArray().size() == 2) {
        settings.height = whole(value.toArray()[0], greatestSide);
        settings.width = whole(value.toArray()[1], greatestSide);
    } else if (value.isObject()) {
        const QJsonObject size = value.toObject();
        settings.height = whole(firstOf(size, {"height", "shortest_edge"}), greatestSide);
        settings.width = whole(firstOf(size, {"width", "shortest_edge"}), greatestSide);
    }
}

std::optional<ResamplingFilter> filterOf(const QJsonValue &value)
{
    if (value.isString()) {
        const QString name = value.toString().toLower();
        return name == QStringLiteral("bicubic")    ? std::optional(ResamplingFilter::bicubic)
               : name == QStringLiteral("bilinear") ? std::optional(ResamplingFilter::bilinear)
               : name == QStringLiteral("lanczos")  ? std::optional(ResamplingFilter::lanczos)
                                                    : std::nullopt;
    }
    switch (value.toInt()) {
    case int(ResamplingFilter::lanczos):
        return ResamplingFilter::lanczos;
    case int(ResamplingFilter::bilinear):
        return ResamplingFilter::bilinear;
    case int(ResamplingFilter::bicubic):
        return ResamplingFilter::bicubic;
    default: // nearest, box and Hamming suit no photograph
        return std::nullopt;
    }
}

void readPictures(const QJsonObject &said, PublishedSettings &settings)
{
    const bool isCropped = said.value(u"do_center_crop").toBool(true);
    const QJsonValue crop = firstOf(said, {"crop_size"});
    readSize(isCropped && !crop.isUndefined() ? crop : firstOf(said, {"size", "image_size"}), settings);
    settings.mean = threeNumbers(firstOf(said, {"image_mean", "mean"}));
    settings.deviation = threeNumbers(firstOf(said, {"image_std", "std"}));
    if (said.value(u"do_normalize").isBool() && !said.value(u"do_normalize").toBool()) {
        settings.mean = std::array<double, 3>{0, 0, 0};
        settings.deviation = std::array<double, 3>{1, 1, 1};
    }
    for (const double deviation : settings.deviation.value_or(std::array<double, 3>{1, 1, 1})) {
        if (!(deviation > 0))
            settings.deviation = std::nullopt;
    }
    if (said.value(u"rescale_factor").isDouble())
        settings.rescaling = said.value(u"rescale_factor").toDouble();
    if (said.value(u"do_rescale").isBool() && !said.value(u"do_rescale").toBool())
        settings.rescaling = 1;
    settings.filter = filterOf(firstOf(said, {"resample", "interpolation"}));
    settings.isBlueFirst = said.value(u"do_flip_channel_order").toBool() ||
                           said.value(u"mode").toString().toUpper() == QStringLiteral("BGR");
}

/// An object inside of another, or inside of its "model_cfg".
QJsonObject section(const QJsonObject &config, std::initializer_list<const char *> keys)
{
    const QJsonObject own = firstOf(config, keys).toObject();
    return own.isEmpty() ? firstOf(config.value(u"model_cfg").toObject(), keys).toObject() : own;
}

} // namespace

PublishedSettings publishedSettings(const ModelFolder &folder)
{
    PublishedSettings settings;
    // One that has its description in that of the whole model, and one that has both in the processor's.
    QJsonObject pictures = folder.preprocessing;
    if (pictures.value(u"image_processor").isObject())
        pictures = pictures.value(u"image_processor").toObject();
    if (pictures.isEmpty())
        pictures = section(folder.config, {"preprocess_cfg"});
    readPictures(pictures, settings);
    if (!settings.height || !settings.width)
        readSize(firstOf(section(folder.config, {"vision_config", "vision_cfg"}), {"image_size"}), settings);

    const QJsonObject texts = section(folder.config, {"text_config", "text_cfg"});
    for (const QJsonValue &context :
         {firstOf(texts, {"context_length", "max_position_embeddings"}),
          folder.config.value(u"context_length"), folder.tokenizerConfig.value(u"model_max_length")}) {
        if (const auto length = whole(context, greatestContext))
            settings.context = std::min(settings.context.value_or(*length), *length);
    }
    settings.padToken = whole(firstOf(texts, {"pad_token_id"}), std::numeric_limits<int>::max());
    return settings;
}

} // namespace Qorvane::Encoders
