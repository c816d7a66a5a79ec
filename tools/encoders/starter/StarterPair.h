#pragma once

#include "encoders/starter/NpmPackage.h"
#include "encoders/starter/PackageArchive.h"

#include <onnx/onnx_pb.h>

namespace Qorvane::Encoders {

/// Makes the starter pair: encoders for both families out of a picture classifier and two sentence encoders,
/// none of which was made for searching pictures.
class StarterPair
{
public:
    /// Progress from 0 to 1 within what `activity` names.
    using Report = std::function<void(double fraction, const QString &activity)>;

    StarterPair(NpmCache cache, Report report);

    /// Puts the encoders, vocabularies and licences of both families into `folder`, which is made when it
    /// isn't there, each family as one. Takes half a minute, downloads apart.
    Outcome<void> build(const QString &folder) const;

private:
    /// What the families don't share.
    struct Language
    {
        onnx::ModelProto textEncoder;
        QByteArray vocabulary;
    };

    Outcome<PackageFiles> read(const NpmPackage &package, const QStringList &wanted) const;
    Outcome<Language> english() const;
    Outcome<Language> chinese() const;
    Outcome<onnx::ModelProto> vision() const;
    QByteArray licences() const;

    NpmCache m_cache;
    Report m_report;
};

} // namespace Qorvane::Encoders
