#include "store/ImageVectorRow.h"

#include "store/Statement.h"

#include <cstring>

namespace Qorvane {

namespace {

constexpr int dimColumn = 2; // path and vector stand before it

} // namespace

int ImageVectorView::dim() const
{
    return statement.integer(dimColumn);
}

ImageVectorRow ImageVectorView::copy() const
{
    ImageVectorRow row;
    row.path = QString::fromUtf8(path.data(), qsizetype(path.size()));
    row.vector.resize(floatCount());
    if (!row.vector.empty())
        std::memcpy(row.vector.data(), blob.data(), row.vector.size() * sizeof(float));
    row.dim = dim();
    return row;
}

} // namespace Qorvane
