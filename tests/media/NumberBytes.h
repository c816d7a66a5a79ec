#pragma once

#include <QByteArray>
#include <QtEndian>

namespace Qorvane {

// The bytes of a number as a file format wants them, for tests that write files by hand. As many as its type
// has.

template <typename Number>
QByteArray little(Number number)
{
    const Number bytes = qToLittleEndian(number);
    return QByteArray(reinterpret_cast<const char *>(&bytes), sizeof bytes);
}

template <typename Number>
QByteArray big(Number number)
{
    const Number bytes = qToBigEndian(number);
    return QByteArray(reinterpret_cast<const char *>(&bytes), sizeof bytes);
}

} // namespace Qorvane
