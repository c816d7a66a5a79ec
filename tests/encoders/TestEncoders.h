#pragma once

#include <QImage>
#include <QString>

namespace Qorvane {

/// The file `relativePath` of the made encoders, for instance "openai/ClipVisionEncoder.onnx".
QString testEncoderPath(const QString &relativePath);

/// Where the program looks for encoders that the user added; created when it isn't there.
QString userModelsFolder();

/// Puts the made file `relativePath` into `userModelsFolder()`, under `name` when given, else under its own.
/// False when it can't be copied.
bool installTestEncoder(const QString &relativePath, const QString &name = {});

/// Both encoders and the vocabulary of a family, "chinese" or "openai".
bool installTestFamily(const QString &family);

/// Takes everything out of `userModelsFolder()`.
void removeInstalledEncoders();

/// A picture of one colour.
QImage plainPicture(QColor colour, QSize size = {64, 48});

} // namespace Qorvane
