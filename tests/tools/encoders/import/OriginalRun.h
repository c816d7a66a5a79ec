#pragma once

#include "encoders/graph/GraphRun.h"

#include <QImage>

#include <array>
#include <vector>

/// What an original model gives for what the application sends, computed apart from the program: the
/// published file run as it is, with the picture and the tokens brought to its own form in double precision.
/// A graph with both towers gets something without meaning for the other one.
namespace Qorvane::Encoders::Synthetic {

enum class Kernel { bilinear, bicubic };

struct PictureForm
{
    int side = 224;
    Kernel kernel = Kernel::bicubic;
    double scale = 1; ///< of colours from 0 to 1
    std::array<double, 3> mean{0.48145466, 0.4578275, 0.40821073};
    std::array<double, 3> deviation{0.26862954, 0.26130258, 0.27577711};
    bool isChannelsLast = false;
    bool isBlueFirst = false;
    bool isLeftMirrored = false; ///< a mistake, to see that the comparison notices it
};

/// The application's tensor put right way up, resized, and normalised; in the order that the form says.
std::vector<double> originalPixels(const std::vector<float> &applicationTensor, const PictureForm &form);

/// The vector of the graph at `path` for those pixels.
std::vector<float> originalPicture(const QString &path, const std::vector<float> &applicationTensor,
                                   const PictureForm &form);

struct TokensForm
{
    int context = 77;
    int endToken = 49407;
    int padding = 0;
};

/// The vector of the graph at `path` for the application's tokens, cut or padded to the form's context with
/// the end token kept; each input by its name: ids, a mask, zeros as token types, 0, 1, 2... as positions.
std::vector<float> originalText(const QString &path, const std::vector<qint32> &ids,
                                const std::vector<qint32> &mask, const TokensForm &form);

double cosine(const std::vector<float> &one, const std::vector<float> &other);

/// A picture like a photograph, of soft and sharp parts, different for each `seed`.
QImage photograph(int width, int height, unsigned seed);

} // namespace Qorvane::Encoders::Synthetic
