#pragma once

#include "encoders/Problem.h"
#include "encoders/compare/RetrievalScores.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

namespace Qorvane::Encoders {

/// A picture of a labelled set with its vector.
struct EmbeddedPicture
{
    QStringList labels;
    QStringList captions;
    std::vector<float> vector;
};

/// How well the pictures with one label were found by it.
struct CategoryScore
{
    QString name;
    std::size_t pictures = 0;
    double averagePrecision = 0;
    CutScore cut;
};

/// Among the pictures that have labels: every label that at least `smallestCategory` of them share is a
/// query.
struct CategoryScores
{
    std::size_t pictures = 0;
    std::vector<CategoryScore> categories; ///< by name
    double meanAveragePrecision = 0;
    CutScore cut; ///< of the application's own search: its threshold, its limit
};

/// Among the pictures that have captions: a caption is a query, its own picture the one right answer.
struct CaptionScores
{
    std::size_t pictures = 0;
    std::size_t captions = 0;
    double recallAt1 = 0;
    double recallAt5 = 0;
    double recallAt10 = 0;
    double medianRank = 0;
};

/// How many pictures of the whole set a text without meaning brought up.
struct NonsenseScore
{
    QString query;
    std::size_t hits = 0;
};

struct ComparisonResult
{
    CategoryScores categories;
    CaptionScores firstCaptions; ///< each picture's first caption
    CaptionScores allCaptions;   ///< every caption
    std::vector<NonsenseScore> nonsense;
};

/// A smaller category says more about its one picture than about the encoders.
inline constexpr std::size_t smallestCategory = 3;
/// As many as the search field asks for.
inline constexpr std::size_t searchLimit = 20;

/// The vector of a text, as `InstalledPair::embedText` gives it.
using EmbedText = std::function<Outcome<std::vector<float>>(const QString &)>;
/// Is told what share of the queries is done, from 0 to 1.
using QueryProgress = std::function<void(double)>;

/// Scores the pictures against their own labels and captions, and `nonsense` against all of them, by the
/// application's cosine, order, threshold and limit. The first text that can't be embedded ends it.
Outcome<ComparisonResult> compareSet(const std::vector<EmbeddedPicture> &pictures,
                                     const QStringList &nonsense, const EmbedText &embedText,
                                     const QueryProgress &progress = {});

} // namespace Qorvane::Encoders
