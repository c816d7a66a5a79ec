#pragma once

#include <QString>

namespace Qorvane {

/// `value` with exactly `decimals` digits behind a ".", as printf("%.*f") writes it in the C locale: rounded
/// from the exact binary value, halves to even, whatever the user's locale. (QString::number rounds halves
/// up.) Any thread.
QString fixedDecimal(double value, int decimals);

} // namespace Qorvane
