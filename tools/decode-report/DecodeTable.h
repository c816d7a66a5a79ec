#pragma once

#include "decode-report/Attempt.h"

#include <QMap>

class QTextStream;

/// Counts what came of the files of each extension.
class DecodeTable
{
public:
    void add(const QString &extension, const Attempt &attempt);
    void print(QTextStream &out) const;

private:
    struct Tally
    {
        QMap<Outcome, int> counts;
        qint64 slowest = 0;
        long peakKilobytes = 0;

        void add(const Attempt &attempt);
    };

    static void printRow(QTextStream &out, const QString &name, const Tally &tally);

    QMap<QString, Tally> m_extensions;
    Tally m_all;
};
