#include "decode-report/DecodeTable.h"

#include <QTextStream>

void DecodeTable::Tally::add(const Attempt &attempt)
{
    ++counts[attempt.outcome];
    slowest = qMax(slowest, attempt.milliseconds);
    peakKilobytes = qMax(peakKilobytes, attempt.peakKilobytes);
}

void DecodeTable::add(const QString &extension, const Attempt &attempt)
{
    m_extensions[extension].add(attempt);
    m_all.add(attempt);
}

void DecodeTable::print(QTextStream &out) const
{
    out << QStringLiteral("extension   decoded  refused  timed out  crashed  slowest ms  peak MB\n");
    for (auto it = m_extensions.cbegin(); it != m_extensions.cend(); ++it)
        printRow(out, it.key(), it.value());
    printRow(out, QStringLiteral("(all)"), m_all);
}

void DecodeTable::printRow(QTextStream &out, const QString &name, const Tally &tally)
{
    out << QStringLiteral("%1 %2 %3 %4 %5 %6 %7\n")
               .arg(name, -10)
               .arg(tally.counts.value(Outcome::decoded), 8)
               .arg(tally.counts.value(Outcome::refused), 8)
               .arg(tally.counts.value(Outcome::timedOut), 10)
               .arg(tally.counts.value(Outcome::crashed), 8)
               .arg(tally.slowest, 11)
               .arg(tally.peakKilobytes / 1024, 8);
}
