#pragma once

#include "encoders/graph/GraphBuilder.h"

#include <vector>

/// The space in which the starter pair compares pictures and texts: one coordinate for each label of the
/// classifier, and one more. A picture lies where the classifier puts it. A text lies at the labels whose
/// texts mean nearly the same. That is ConSE (Norouzi et al., 2013) with the comparison of meanings made
/// sharp: a text is compared with a few labels instead of with the mean of many.
///
/// Neither side depends on the language, so that the vectors of one family serve the other.
namespace Qorvane::Encoders::LabelSpace {

/// Vectors of `width` elements, one behind the other.
struct Rows
{
    std::size_t width = 0;
    std::vector<float> values;

    std::size_t count() const { return width == 0 ? 0 : values.size() / width; }
};

/// Adds the nodes that turn `probabilities` (1 x labels) into a picture's vector; gives its name.
std::string appendPicture(GraphBuilder &builder, const std::string &probabilities);

/// Adds the nodes that turn `sentence` (1 x width, what a sentence encoder gives) into a text's vector; gives
/// its name. `labels`: the same encoder's vectors of the labels' texts, of any length.
std::string appendText(GraphBuilder &builder, const std::string &sentence, const Rows &labels);

/// A label's vector from those of its name and its phrase.
std::vector<float> mixed(const std::vector<float> &name, const std::vector<float> &phrase, float phraseShare);

} // namespace Qorvane::Encoders::LabelSpace
