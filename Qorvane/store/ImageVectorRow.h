#pragma once

#include <QString>

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

namespace Qorvane {

/// One row of image vectors.
struct ImageVectorRow
{
    QString path;              ///< the file's absolute path
    std::vector<float> vector; ///< as many floats as the blob holds, whatever `dim` says
    int dim = 0;               ///< the stored number of floats, not checked against the blob

    friend bool operator==(const ImageVectorRow &, const ImageVectorRow &) = default;
};

class Statement;

/// The same row in place, inside the database's own memory: good until the visitor that was given it returns.
struct ImageVectorView
{
    std::string_view path;           ///< UTF-8
    std::span<const std::byte> blob; ///< 32-bit floats in the machine's order, perhaps not aligned
    const Statement &statement;      ///< stands at the row

    /// Read on demand: SQLite takes a lock for every value of a row, and a scan doesn't need this one.
    int dim() const;
    /// The number of whole floats in the blob; up to three bytes left over don't count.
    std::size_t floatCount() const { return blob.size() / sizeof(float); }
    ImageVectorRow copy() const;
};

} // namespace Qorvane
