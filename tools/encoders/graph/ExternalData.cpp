#include "encoders/graph/ExternalData.h"

#include <QDir>
#include <QFileInfo>

#include <limits>
#include <optional>

namespace Qorvane::Encoders {

namespace {

/// What an entry without an end of its own takes: all that is left of the file.
struct Entries
{
    QString location;
    std::optional<qint64> offset;
    std::optional<qint64> length;
    bool isReadable = true;
};

Entries entriesOf(const onnx::TensorProto &tensor)
{
    Entries entries;
    for (const auto &entry : tensor.external_data()) {
        if (entry.key() == "location") {
            entries.location = QString::fromStdString(entry.value());
        } else if (entry.key() == "offset" || entry.key() == "length") {
            bool isNumber = false;
            const qint64 number = QString::fromStdString(entry.value()).toLongLong(&isNumber);
            (entry.key() == "offset" ? entries.offset : entries.length) = number;
            entries.isReadable &= isNumber && number >= 0;
        }
    }
    return entries;
}

std::optional<qint64> elementBytes(int type)
{
    switch (type) {
    case onnx::TensorProto::BOOL:
    case onnx::TensorProto::INT8:
    case onnx::TensorProto::UINT8:
        return 1;
    case onnx::TensorProto::INT16:
    case onnx::TensorProto::UINT16:
    case onnx::TensorProto::FLOAT16:
    case onnx::TensorProto::BFLOAT16:
        return 2;
    case onnx::TensorProto::INT32:
    case onnx::TensorProto::UINT32:
    case onnx::TensorProto::FLOAT:
        return 4;
    case onnx::TensorProto::INT64:
    case onnx::TensorProto::UINT64:
    case onnx::TensorProto::DOUBLE:
    case onnx::TensorProto::COMPLEX64:
        return 8;
    case onnx::TensorProto::COMPLEX128:
        return 16;
    default: // texts, and types that later releases of the format add
        return std::nullopt;
    }
}

tl::unexpected<Problem> badPlace(const onnx::TensorProto &tensor, const QString &found)
{
    return problem(QStringLiteral("the weights \"%1\" in a file of the model's own folder")
                       .arg(QString::fromStdString(tensor.name())),
                   found,
                   QStringLiteral("fetch the model with all its files into one folder, as plain files"));
}

} // namespace

bool isExternal(const onnx::TensorProto &tensor)
{
    return tensor.data_location() == onnx::TensorProto::EXTERNAL;
}

std::optional<qint64> rawByteCount(const onnx::TensorProto &tensor)
{
    const std::optional<qint64> bytes = elementBytes(tensor.data_type());
    if (!bytes)
        return std::nullopt;
    qint64 count = *bytes;
    for (const qint64 size : tensor.dims()) {
        if (size < 0 || __builtin_mul_overflow(count, size, &count))
            return std::nullopt;
    }
    return count;
}

Outcome<ExternalPlace> externalPlace(const onnx::TensorProto &tensor, const QString &folder)
{
    const Entries entries = entriesOf(tensor);
    if (!entries.isReadable)
        return badPlace(tensor, QStringLiteral("a place in the file that is no number"));
    // A zero in the name would end it early for the system.
    if (entries.location.isEmpty() || entries.location.contains(QChar(0)))
        return badPlace(tensor, QStringLiteral("no file name"));
    const QString cleaned = QDir::cleanPath(entries.location);
    if (QDir::isAbsolutePath(entries.location) || cleaned == QStringLiteral("..") ||
        cleaned.startsWith(QStringLiteral("../")))
        return badPlace(
            tensor, QStringLiteral("the path \"%1\", which leaves the model's folder").arg(entries.location));

    const QFileInfo file(folder + u'/' + cleaned);
    const QString path = file.canonicalFilePath();
    if (path.isEmpty())
        return badPlace(tensor, QStringLiteral("that \"%1\" is missing").arg(entries.location));
    if (!path.startsWith(folder.endsWith(u'/') ? folder : folder + u'/'))
        return badPlace(
            tensor, QStringLiteral("the link \"%1\", which leaves the model's folder").arg(entries.location));
    // Of the model itself or a device there is nothing to be read in peace.
    if (!file.isFile())
        return badPlace(tensor, QStringLiteral("that \"%1\" is no plain file").arg(entries.location));

    const qint64 offset = entries.offset.value_or(0);
    const qint64 left = file.size() - offset;
    const std::optional<qint64> wanted = rawByteCount(tensor);
    const qint64 length = entries.length.value_or(wanted.value_or(left));
    if (left < 0 || length > left)
        return badPlace(tensor, QStringLiteral("that \"%1\" has %2 bytes where at least %3 are needed")
                                    .arg(entries.location)
                                    .arg(file.size())
                                    .arg(double(offset) + double(length), 0, 'f', 0));
    // Of types that this doesn't know the runtime knows the size.
    if (wanted ? length != *wanted : !entries.length)
        return badPlace(tensor, QStringLiteral("%1 bytes in \"%2\" that don't fit the weights' shape")
                                    .arg(length)
                                    .arg(entries.location));
    return ExternalPlace{path, offset, length};
}

Outcome<QByteArray> ExternalReader::read(const ExternalPlace &place)
{
    std::shared_ptr<QFile> &file = m_files[place.path];
    if (!file) {
        file = std::make_shared<QFile>(place.path);
        // Whether it opened shows in the reading.
        static_cast<void>(file->open(QIODevice::ReadOnly));
    }
    if (file->isOpen() && file->seek(place.offset)) {
        QByteArray bytes = file->read(place.length);
        if (bytes.size() == place.length)
            return bytes;
    }
    return problem(QStringLiteral("the weights in %1").arg(place.path),
                   QStringLiteral("that they can't be read: %1").arg(file->errorString()),
                   QStringLiteral("look after the file's permissions and the disk"));
}

} // namespace Qorvane::Encoders
