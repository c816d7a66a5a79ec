#include "encoders/compare/ComparisonReport.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace Qorvane::Encoders {

namespace {

QString number(double value, int decimals = 3)
{
    return QString::number(value, 'f', decimals);
}

QString captionLine(const QString &name, const CaptionScores &scores)
{
    return QStringLiteral("%1: R@1 %2, R@5 %3, R@10 %4, median rank %5 (%6 queries)")
        .arg(name, number(scores.recallAt1), number(scores.recallAt5), number(scores.recallAt10),
             number(scores.medianRank, 1))
        .arg(scores.captions);
}

QJsonObject cutJson(const CutScore &cut)
{
    return {{QStringLiteral("queries"), qint64(cut.queries)},
            {QStringLiteral("hits"), qint64(cut.hits)},
            {QStringLiteral("relevantHits"), qint64(cut.relevantHits)},
            {QStringLiteral("reachable"), qint64(cut.reachable)},
            {QStringLiteral("precision"), cut.precision()},
            {QStringLiteral("recall"), cut.recall()}};
}

QJsonObject captionJson(const CaptionScores &scores)
{
    return {{QStringLiteral("pictures"), qint64(scores.pictures)},
            {QStringLiteral("queries"), qint64(scores.captions)},
            {QStringLiteral("recallAt1"), scores.recallAt1},
            {QStringLiteral("recallAt5"), scores.recallAt5},
            {QStringLiteral("recallAt10"), scores.recallAt10},
            {QStringLiteral("medianRank"), scores.medianRank}};
}

QJsonObject categoriesJson(const CategoryScores &scores)
{
    QJsonArray categories;
    for (const CategoryScore &category : scores.categories) {
        categories.append(QJsonObject{{QStringLiteral("name"), category.name},
                                      {QStringLiteral("pictures"), qint64(category.pictures)},
                                      {QStringLiteral("averagePrecision"), category.averagePrecision},
                                      {QStringLiteral("cut"), cutJson(category.cut)}});
    }
    return {{QStringLiteral("pictures"), qint64(scores.pictures)},
            {QStringLiteral("meanAveragePrecision"), scores.meanAveragePrecision},
            {QStringLiteral("cut"), cutJson(scores.cut)},
            {QStringLiteral("each"), categories}};
}

} // namespace

QStringList comparisonLines(const ComparisonResult &result)
{
    QStringList lines;
    const CategoryScores &categories = result.categories;
    if (categories.categories.empty()) {
        lines += QStringLiteral("categories: no label is shared by %1 pictures").arg(smallestCategory);
    } else {
        lines += QStringLiteral("categories: mAP %1 (%2 categories of %3 or more, among %4 pictures)")
                     .arg(number(categories.meanAveragePrecision))
                     .arg(categories.categories.size())
                     .arg(smallestCategory)
                     .arg(categories.pictures);
        lines += QStringLiteral("categories, as searched (cut at 0.15, at most %1): precision %2, recall %3 "
                                "(%4 right of %5 shown, %6 within reach)")
                     .arg(searchLimit)
                     .arg(number(categories.cut.precision()), number(categories.cut.recall()))
                     .arg(categories.cut.relevantHits)
                     .arg(categories.cut.hits)
                     .arg(categories.cut.reachable);
    }
    if (result.firstCaptions.pictures == 0) {
        lines += QStringLiteral("captions: no picture has one");
    } else {
        const QString among = QStringLiteral(" among %1 pictures").arg(result.firstCaptions.pictures);
        lines += captionLine(QStringLiteral("first captions") + among, result.firstCaptions);
        lines += captionLine(QStringLiteral("all captions") + among, result.allCaptions);
    }
    for (const NonsenseScore &score : result.nonsense)
        lines += QStringLiteral("nonsense \"%1\": %2 hits").arg(score.query).arg(score.hits);
    return lines;
}

QByteArray comparisonJson(const ComparisonResult &result)
{
    QJsonArray nonsense;
    for (const NonsenseScore &score : result.nonsense) {
        nonsense.append(QJsonObject{{QStringLiteral("query"), score.query},
                                    {QStringLiteral("hits"), qint64(score.hits)}});
    }
    const QJsonObject whole{{QStringLiteral("categories"), categoriesJson(result.categories)},
                            {QStringLiteral("firstCaptions"), captionJson(result.firstCaptions)},
                            {QStringLiteral("allCaptions"), captionJson(result.allCaptions)},
                            {QStringLiteral("nonsense"), nonsense}};
    return QJsonDocument(whole).toJson();
}

} // namespace Qorvane::Encoders
