#include "tools/encoders/import/OriginalRun.h"

#include <onnx/onnx_pb.h>

#include <algorithm>
#include <cmath>
#include <random>

namespace Qorvane::Encoders::Synthetic {

namespace {

constexpr int side = 224;
// The application's normalisation.
constexpr std::array<double, 3> clipMean{0.48145467, 0.4578275, 0.40821072};
constexpr std::array<double, 3> clipDeviation{0.26862955, 0.2613026, 0.2757771};

double kernelAt(Kernel kernel, double distance)
{
    const double x = std::abs(distance);
    if (kernel == Kernel::bilinear)
        return std::max(0.0, 1 - x);
    if (x < 1)
        return 1.5 * x * x * x - 2.5 * x * x + 1;
    return x < 2 ? -0.5 * x * x * x + 2.5 * x * x - 4 * x + 2 : 0;
}

/// One pixel of the plane brought to another size, straight from the definition.
double sampled(const std::vector<double> &plane, int to, Kernel kernel, int row, int column)
{
    const double ratio = double(side) / to;
    const double widening = std::max(1.0, ratio);
    const double reach = (kernel == Kernel::bicubic ? 2 : 1) * widening;
    const double middleRow = (row + 0.5) * ratio;
    const double middleColumn = (column + 0.5) * ratio;
    double sum = 0;
    double weights = 0;
    for (int y = std::max(0, int(middleRow - reach) - 1); y < std::min(side, int(middleRow + reach) + 2);
         ++y) {
        for (int x = std::max(0, int(middleColumn - reach) - 1);
             x < std::min(side, int(middleColumn + reach) + 2); ++x) {
            const double weight = kernelAt(kernel, (y + 0.5 - middleRow) / widening) *
                                  kernelAt(kernel, (x + 0.5 - middleColumn) / widening);
            sum += weight * plane[size_t(y * side + x)];
            weights += weight;
        }
    }
    return sum / weights;
}

/// Something for the other tower of a joint graph.
Tensor dummyPicture(int type)
{
    return Tensor::of(type, {1, 3, side, side}, std::vector<double>(size_t(3) * side * side, 0.5));
}

Tensor dummyTokens(int type)
{
    constexpr int count = 5;
    return Tensor::of(type, {1, count}, std::vector<double>(count, 1));
}

std::vector<float> runOriginal(const QString &path, const std::string &wanted,
                               const std::function<Tensor(const ValueForm &)> &tensorFor)
{
    auto run = GraphRun::open(path);
    if (!run)
        qFatal("%s", qPrintable(run.error().text()));
    QHash<QString, Tensor> inputs;
    for (const ValueForm &input : run->inputs())
        inputs.insert(QString::fromStdString(input.name), tensorFor(input));
    // Of a joint graph the vector that the caller wants is named for its kind of input.
    std::string output = run->outputs().front().name;
    for (const ValueForm &candidate : run->outputs()) {
        if (run->outputs().size() > 1 && candidate.name == wanted)
            output = candidate.name;
    }
    const auto result = run->run(inputs, output);
    if (!result)
        qFatal("%s", qPrintable(result.error().text()));
    return result->values;
}

} // namespace

std::vector<double> originalPixels(const std::vector<float> &applicationTensor, const PictureForm &form)
{
    std::vector<double> pixels(size_t(3 * form.side * form.side));
    for (int channel = 0; channel < 3; ++channel) {
        std::vector<double> upright(size_t(side) * side);
        for (int y = 0; y < side; ++y) {
            const int from = form.isLeftMirrored ? y : side - 1 - y;
            for (int x = 0; x < side; ++x)
                upright[size_t(y * side + x)] =
                    double(applicationTensor[size_t((channel * side + from) * side + x)]) *
                        clipDeviation[size_t(channel)] +
                    clipMean[size_t(channel)];
        }
        const int place = form.isBlueFirst ? 2 - channel : channel;
        for (int y = 0; y < form.side; ++y) {
            for (int x = 0; x < form.side; ++x) {
                const double colour = form.side == side ? upright[size_t(y * side + x)]
                                                        : sampled(upright, form.side, form.kernel, y, x);
                const double value =
                    (colour * form.scale - form.mean[size_t(channel)]) / form.deviation[size_t(channel)];
                const size_t at = form.isChannelsLast ? size_t((y * form.side + x) * 3 + place)
                                                      : size_t((place * form.side + y) * form.side + x);
                pixels[at] = value;
            }
        }
    }
    return pixels;
}

std::vector<float> originalPicture(const QString &path, const std::vector<float> &applicationTensor,
                                   const PictureForm &form)
{
    const std::vector<double> pixels = originalPixels(applicationTensor, form);
    return runOriginal(path, "image_embeds", [&](const ValueForm &input) {
        if (input.shape.size() == 2)
            return dummyTokens(input.type);
        return Tensor::of(input.type,
                          form.isChannelsLast ? std::vector<std::int64_t>{1, form.side, form.side, 3}
                                              : std::vector<std::int64_t>{1, 3, form.side, form.side},
                          pixels);
    });
}

std::vector<float> originalText(const QString &path, const std::vector<qint32> &ids,
                                const std::vector<qint32> &mask, const TokensForm &form)
{
    // The text itself, without padding; the end token closes it also when it doesn't fit.
    std::vector<double> tokens;
    for (size_t index = 0; index < ids.size() && mask[index] == 1; ++index)
        tokens.push_back(ids[index]);
    if (tokens.back() != form.endToken || tokens.size() > size_t(form.context)) {
        tokens.resize(std::min(tokens.size(), size_t(form.context)));
        tokens.back() = form.endToken;
    }
    const size_t count = tokens.size();
    tokens.resize(size_t(form.context), form.padding);
    return runOriginal(path, "text_embeds", [&](const ValueForm &input) {
        if (input.shape.size() == 4)
            return dummyPicture(input.type);
        std::vector<double> values = tokens;
        for (size_t index = 0; index < values.size(); ++index) {
            if (input.name == "attention_mask")
                values[index] = index < count ? 1 : 0;
            else if (input.name == "token_type_ids")
                values[index] = 0;
            else if (input.name == "position_ids")
                values[index] = double(index);
        }
        return Tensor::of(input.type, {1, form.context}, values);
    });
}

double cosine(const std::vector<float> &one, const std::vector<float> &other)
{
    if (one.size() != other.size())
        return -2;
    double product = 0;
    double oneSquares = 0;
    double otherSquares = 0;
    for (size_t index = 0; index < one.size(); ++index) {
        product += double(one[index]) * double(other[index]);
        oneSquares += double(one[index]) * double(one[index]);
        otherSquares += double(other[index]) * double(other[index]);
    }
    return product / std::sqrt(oneSquares * otherSquares);
}

QImage photograph(int width, int height, unsigned seed)
{
    std::mt19937 random(seed);
    const auto number = [&random] { return double(random()) / double(random.max()); };
    struct Blob
    {
        double x, y, size;
        std::array<double, 3> colour;
    };
    std::vector<Blob> blobs(12);
    for (Blob &blob : blobs)
        blob = {number(), number(), 0.05 + number() * 0.25, {number(), number(), number()}};
    QImage picture(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            std::array<double, 3> colour{double(y) / height, double(x) / width, 0.4};
            for (const Blob &blob : blobs) {
                const double distance = std::hypot(double(x) / width - blob.x, double(y) / height - blob.y);
                // Half of them end sharply.
                const double share = blob.size > 0.15
                                         ? (distance < blob.size ? 0.8 : 0)
                                         : std::exp(-distance * distance / (blob.size * blob.size));
                for (size_t channel = 0; channel < 3; ++channel)
                    colour[channel] += share * (blob.colour[channel] - colour[channel]);
            }
            picture.setPixel(x, y, qRgb(int(colour[0] * 255), int(colour[1] * 255), int(colour[2] * 255)));
        }
    }
    return picture;
}

} // namespace Qorvane::Encoders::Synthetic
