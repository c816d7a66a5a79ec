#pragma once

#include "encoders/import/SelfTest.h"
#include "encoders/layout/PublishedVocabulary.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace Qorvane::Encoders {

/// How long one embedding takes on this machine, preparation included, as the application does it: one
/// thread.
struct EmbeddingTimes
{
    double picture = 0; ///< milliseconds, the median of several
    double text = 0;    ///< likewise
};

/// What is known of one family's files.
struct FamilyCheck
{
    Family family = Family::openai;
    QString vision;      ///< path; empty when there is none
    QString text;        ///< likewise
    QString vocabulary;  ///< likewise
    QStringList missing; ///< names of the files that aren't there
    qsizetype vocabularySize = 0;
    QString licence;                                 ///< path; empty when none was found
    std::optional<Outcome<SelfTestReport>> selfTest; ///< nothing when a file is missing
    std::optional<EmbeddingTimes> times;             ///< nothing unless the self-test and every run passed

    bool isAbsent() const { return vision.isEmpty() && text.isEmpty(); }
    bool isSound() const { return selfTest && selfTest->has_value(); }
};

/// Looks a family up in `directories`, the first that has a file giving it.
FamilyCheck foundFamily(Family family, const QStringList &directories);

/// The same, and tries it out. Takes seconds; not on a thread that waits. A damaged model may end the
/// process.
FamilyCheck checkFamily(Family family, const QStringList &directories);

/// The findings in lines for a reader.
QStringList checkLines(const FamilyCheck &check);

} // namespace Qorvane::Encoders
