#pragma once

#include "encoders/starter/NpmPackage.h"

#include <vector>

/// Where the parts of the starter pair come from. The hashes are the registry's own integrity values, but for
/// the Chinese vocabulary.
namespace Qorvane::Encoders::StarterPackages {

/// A residual network of 50 layers for ImageNet's 1,000 classes, in the Keras layers format.
NpmPackage classifier();
/// A small English sentence encoder, and its WordPiece tokens.
NpmPackage englishEncoder();
/// A small Chinese sentence encoder.
NpmPackage chineseEncoder();
/// The merges that make CLIP's tokens.
NpmPackage englishVocabulary();
/// The tokens of the Chinese BERT family. They stand at the beginning of a large archive, of which only that
/// is downloaded.
NpmPackage chineseVocabulary();

/// All of them, in the order in which they are fetched.
std::vector<NpmPackage> all();

} // namespace Qorvane::Encoders::StarterPackages
