#include "headless/SearchReport.h"

namespace Qorvane {

namespace {

QString number(float value)
{
    return QString::number(double(value), 'f', 3);
}

} // namespace

QString scoreText(const SearchResult &result)
{
    QString text = QStringLiteral("similarity %1").arg(number(result.similarity));
    if (result.probability)
        text += QStringLiteral("  probability %1").arg(number(*result.probability));
    return text;
}

QString searchReport(const QString &query, const QList<SearchResult> &results)
{
    if (results.isEmpty())
        return QStringLiteral("\"%1\": nothing found\n").arg(query);
    QString report = QStringLiteral("\"%1\": %2 found\n").arg(query).arg(results.size());
    int rank = 0;
    for (const SearchResult &result : results)
        report += QStringLiteral("%1.  %2  %3\n").arg(++rank, 4).arg(scoreText(result), result.url.path());
    return report;
}

} // namespace Qorvane
