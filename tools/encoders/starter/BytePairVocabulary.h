#pragma once

#include "encoders/Problem.h"

#include <QByteArray>
#include <QStringList>

namespace Qorvane::Encoders {

/// The 49,408 tokens of CLIP's text encoders, by id, from the list of merges that they were made by: a line
/// of title, then a pair a line. Ids are places: 256 bytes, the same at a word's end ("</w>"), one token for
/// each merge, and the two marks of beginning and end.
Outcome<QStringList> bytePairVocabulary(const QByteArray &merges);

/// A vocabulary file as the application reads it: one JSON object from token to id.
QByteArray vocabularyJson(const QStringList &tokens);

} // namespace Qorvane::Encoders
