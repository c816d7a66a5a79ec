#pragma once

#include <QString>

#include <vector>

namespace Qorvane::Encoders {

/// What is said of pictures that the classifier gives a class: its name, with the everyday word behind it
/// where it has another one, and the sentence that one would most likely write below such a photograph.
struct LabelText
{
    QString englishName;
    QString englishPhrase;
    QString chineseName;
    QString chinesePhrase;

    friend bool operator==(const LabelText &, const LabelText &) = default;
};

/// The texts of the classifier's 1,000 classes, in its order (ImageNet, Russakovsky et al., 2015).
std::vector<LabelText> labelTexts();

} // namespace Qorvane::Encoders
