#include "encoders/graph/OnnxGraph.h"

#include "encoders/graph/ExternalData.h"
#include "encoders/graph/GraphNames.h"

#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QStorageInfo>

#include <fcntl.h>
#include <google/protobuf/io/zero_copy_stream_impl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <optional>
#include <vector>

namespace Qorvane::Encoders {

namespace {

// The runtime maps the file into memory when weights begin at a page.
constexpr qint64 pageSize = 4096;
// What is copied at a time.
constexpr qint64 copyBlock = qint64(16) << 20;

tl::unexpected<Problem> notWritten(const QString &path, const QString &reason)
{
    return problem(QStringLiteral("room for %1").arg(path), reason,
                   QStringLiteral("make room on the disk, or choose another folder with --out"));
}

/// A constant that lies outside without a file's name would have the runtime look for it anywhere.
void setExternalPlace(onnx::TensorProto &tensor, const std::string &location, qint64 offset, qint64 length)
{
    tensor.clear_external_data();
    const auto add = [&tensor](const char *key, const std::string &value) {
        auto *entry = tensor.add_external_data();
        entry->set_key(key);
        entry->set_value(value);
    };
    add("location", location);
    add("offset", std::to_string(offset));
    add("length", std::to_string(length));
}

/// Parses from the file's own pages: nothing is copied twice.
bool parse(onnx::ModelProto &model, QByteArrayView bytes)
{
    return model.ParseFromArray(bytes.data(), static_cast<int>(bytes.size()));
}

bool flush(QFile &file)
{
    return file.flush() && fsync(file.handle()) == 0;
}

} // namespace

struct OnnxGraph::ExternalTensor
{
    onnx::TensorProto *tensor;
    ExternalPlace place;
};

OnnxGraph::OnnxGraph(onnx::ModelProto model)
    : m_model(std::make_unique<onnx::ModelProto>(std::move(model)))
{
}

Outcome<OnnxGraph> OnnxGraph::load(const QString &path, const ModelLimits &limits)
{
    QFile file(path);
    const QString name = QFileInfo(path).fileName();
    const QString expected = QStringLiteral("an ONNX model in %1").arg(name);
    const QString readable = QStringLiteral("look after the path and the file's permissions");
    if (!QFileInfo(path).isFile())
        return problem(expected, QStringLiteral("no such file: %1").arg(path), readable);
    if (!file.open(QIODevice::ReadOnly))
        return problem(expected, QStringLiteral("that it can't be read: %1").arg(file.errorString()),
                       readable);
    const qint64 size = file.size();
    // An empty file can't be mapped, and one of terabytes needn't be.
    const uchar *mapped = size > 0 && size <= limits.fileSize ? file.map(0, size) : nullptr;
    if (size > 0 && size <= limits.fileSize && !mapped)
        return problem(expected, QStringLiteral("that it can't be read: %1").arg(file.errorString()),
                       readable);
    const QByteArrayView bytes(mapped, mapped ? size : 0);
    if (size > limits.fileSize)
        return problem(expected,
                       QStringLiteral("a file of %1, more than the format can hold")
                           .arg(QLocale::c().formattedDataSize(size)),
                       QStringLiteral("use the export that keeps its weights in a file beside the model"));
    if (const auto scanned = scanModel(bytes, name, limits); !scanned)
        return tl::unexpected(scanned.error());

    OnnxGraph graph;
    graph.m_model = std::make_unique<onnx::ModelProto>();
    if (!parse(*graph.m_model, bytes))
        return problem(expected, QStringLiteral("a file that is cut off or damaged"),
                       QStringLiteral("fetch the file again and compare its size with the publisher's"));
    graph.m_path = path;
    graph.m_folder = QFileInfo(QFileInfo(path).absolutePath()).canonicalFilePath();
    const auto external = graph.externalTensors();
    if (!external)
        return tl::unexpected(external.error());
    qint64 total = 0;
    for (const ExternalTensor &tensor : *external)
        total += std::min(tensor.place.length, limits.externalData + 1);
    if (total > limits.externalData)
        return problem(QStringLiteral("weights of at most %1 beside %2")
                           .arg(QLocale::c().formattedDataSize(limits.externalData), name),
                       QStringLiteral("%1").arg(QLocale::c().formattedDataSize(total)),
                       QStringLiteral("use a smaller model"));
    return graph;
}

QString OnnxGraph::fileName() const
{
    return QFileInfo(m_path).fileName();
}

std::int64_t OnnxGraph::opset() const
{
    for (const auto &set : m_model->opset_import()) {
        if (set.domain().empty() || set.domain() == "ai.onnx")
            return set.version();
    }
    return 1;
}

OnnxGraph OnnxGraph::copy() const
{
    OnnxGraph other(*m_model);
    other.m_path = m_path;
    other.m_folder = m_folder;
    return other;
}

Outcome<std::vector<OnnxGraph::ExternalTensor>> OnnxGraph::externalTensors()
{
    std::vector<ExternalTensor> tensors;
    std::optional<Problem> firstProblem;
    forEachTensor(*m_model, [&](onnx::TensorProto &tensor) {
        if (firstProblem || !isExternal(tensor))
            return;
        if (auto place = externalPlace(tensor, m_folder))
            tensors.push_back({&tensor, *std::move(place)});
        else
            firstProblem = place.error();
    });
    if (firstProblem)
        return tl::unexpected(*std::move(firstProblem));
    return tensors;
}

Outcome<void> OnnxGraph::putInside(const std::vector<ExternalTensor> &tensors)
{
    ExternalReader reader;
    for (const auto &[tensor, place] : tensors) {
        const auto bytes = reader.read(place);
        if (!bytes)
            return tl::unexpected(bytes.error());
        tensor->set_raw_data(bytes->constData(), static_cast<size_t>(bytes->size()));
        tensor->clear_external_data();
        tensor->clear_data_location();
    }
    return {};
}

Outcome<void> OnnxGraph::putBeside(const std::vector<ExternalTensor> &tensors, const QString &path)
{
    qint64 needed = 0;
    for (const ExternalTensor &tensor : tensors)
        needed += tensor.place.length + pageSize;
    // A disk that is full to the last byte troubles all else that is at work.
    const qint64 left = QStorageInfo(QFileInfo(path).absolutePath()).bytesAvailable();
    if (left >= 0 && left < needed)
        return notWritten(
            path, QStringLiteral("%1 on the disk where %2 are needed")
                      .arg(QLocale::c().formattedDataSize(left), QLocale::c().formattedDataSize(needed)));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return notWritten(path, file.errorString());
    const std::string location = QFileInfo(path).fileName().toStdString();
    ExternalReader reader;
    for (const auto &[tensor, place] : tensors) {
        const qint64 start = (file.pos() + pageSize - 1) / pageSize * pageSize;
        if (!file.seek(start))
            return notWritten(path, file.errorString());
        for (qint64 done = 0; done < place.length; done += copyBlock) {
            const auto bytes =
                reader.read({place.path, place.offset + done, std::min(copyBlock, place.length - done)});
            if (!bytes)
                return tl::unexpected(bytes.error());
            if (file.write(*bytes) != bytes->size())
                return notWritten(path, file.errorString());
        }
        setExternalPlace(*tensor, location, start, place.length);
    }
    if (!flush(file))
        return notWritten(path, file.errorString());
    return {};
}

Outcome<QStringList> OnnxGraph::save(const QString &path, qint64 singleFile)
{
    auto tensors = externalTensors();
    if (!tensors)
        return tl::unexpected(tensors.error());
    qint64 total = static_cast<qint64>(m_model->ByteSizeLong());
    for (const ExternalTensor &tensor : *tensors)
        total += std::min(tensor.place.length, singleFile);

    QStringList written{path};
    Outcome<void> moved;
    if (total <= singleFile) {
        moved = putInside(*tensors);
    } else if (!tensors->empty()) {
        written.append(path + QStringLiteral(".data"));
        moved = putBeside(*tensors, written.constLast());
    }
    if (!moved)
        return tl::unexpected(moved.error());

    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return notWritten(path, file.errorString());
    // From here on weights that were put beside lie in the folder of the new file.
    if (written.size() > 1)
        m_folder = QFileInfo(QFileInfo(path).absolutePath()).canonicalFilePath();
    if (m_model->ByteSizeLong() > static_cast<size_t>(ModelLimits().fileSize))
        return problem(
            QStringLiteral("a model that fits into %1").arg(path),
            QStringLiteral("one that is larger than the file format can hold"),
            QStringLiteral("use an export that keeps the weights in a file beside the model, or one "
                           "with weights of half precision"));
    {
        google::protobuf::io::FileOutputStream stream(file.handle());
        if (!m_model->SerializeToZeroCopyStream(&stream) || !stream.Flush())
            return notWritten(path, QString::fromLocal8Bit(strerror(stream.GetErrno())));
    }
    if (fsync(file.handle()) != 0)
        return notWritten(path, QString::fromLocal8Bit(strerror(errno)));
    return written;
}

} // namespace Qorvane::Encoders
