#include "encoders/starter/KerasModel.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>
#include <cstring>

namespace Qorvane::Encoders {

namespace {

tl::unexpected<Problem> unreadable(const QString &what)
{
    return problem(QStringLiteral("a Keras layers model"), what,
                   QStringLiteral("use the pinned package, unchanged"));
}

KerasModel::Layer layerOf(const QJsonObject &json)
{
    KerasModel::Layer layer{.name = json[QLatin1String("name")].toString(),
                            .kind = json[QLatin1String("class_name")].toString(),
                            .config = json[QLatin1String("config")].toObject(),
                            .inputs = {}};
    // One node per layer: none of these networks uses a layer twice. Each input is [name, node, tensor, {}].
    const QJsonArray inputs = json[QLatin1String("inbound_nodes")].toArray().at(0).toArray();
    for (const QJsonValue &input : inputs)
        layer.inputs.append(input.toArray().at(0).toString());
    return layer;
}

Outcome<KerasModel::Weight> weightOf(const QJsonObject &entry, const QByteArray &bytes, qsizetype &offset)
{
    const QString name = entry[QLatin1String("name")].toString();
    if (entry[QLatin1String("dtype")].toString() != QLatin1String("float32") ||
        entry.contains(QLatin1String("quantization")))
        return unreadable(QStringLiteral("the weight %1 isn't float32").arg(name));
    KerasModel::Weight weight;
    std::int64_t count = 1;
    for (const QJsonValue &size : entry[QLatin1String("shape")].toArray()) {
        weight.shape.push_back(size.toInteger());
        count *= size.toInteger();
        if (count < 0 || count > bytes.size())
            return unreadable(QStringLiteral("the weight %1 is larger than its shards").arg(name));
    }
    const qsizetype length = qsizetype(count) * qsizetype(sizeof(float));
    if (length > bytes.size() - offset)
        return unreadable(QStringLiteral("the shards end before the weight %1").arg(name));
    weight.values.resize(size_t(count));
    std::memcpy(weight.values.data(), bytes.constData() + offset, size_t(length));
    offset += length;
    return weight;
}

} // namespace

QStringList KerasModel::shardPaths(const QByteArray &modelJson)
{
    QStringList paths;
    const QJsonObject model = QJsonDocument::fromJson(modelJson).object();
    for (const QJsonValue &group : model[QLatin1String("weightsManifest")].toArray()) {
        for (const QJsonValue &path : group[QLatin1String("paths")].toArray())
            paths.append(path.toString());
    }
    return paths;
}

Outcome<KerasModel> KerasModel::read(const QByteArray &modelJson,
                                     const std::function<QByteArray(const QString &)> &shard)
{
    const QJsonObject json = QJsonDocument::fromJson(modelJson).object();
    const QJsonObject config =
        json[QLatin1String("modelTopology")][QLatin1String("model_config")][QLatin1String("config")]
            .toObject();
    KerasModel model;
    for (const QJsonValue &layer : config[QLatin1String("layers")].toArray())
        model.m_layers.push_back(layerOf(layer.toObject()));
    if (model.m_layers.empty())
        return unreadable(QStringLiteral("no layers in model.json"));

    for (const QJsonValue &group : json[QLatin1String("weightsManifest")].toArray()) {
        QByteArray bytes;
        for (const QJsonValue &path : group[QLatin1String("paths")].toArray())
            bytes.append(shard(path.toString()));
        qsizetype offset = 0;
        for (const QJsonValue &entry : group[QLatin1String("weights")].toArray()) {
            Outcome<Weight> weight = weightOf(entry.toObject(), bytes, offset);
            if (!weight)
                return tl::unexpected(weight.error());
            model.m_weights[entry[QLatin1String("name")].toString()] = *std::move(weight);
        }
    }
    return model;
}

const KerasModel::Layer *KerasModel::firstOfKind(const QString &kind) const
{
    const auto found = std::ranges::find(m_layers, kind, &Layer::kind);
    return found == m_layers.end() ? nullptr : &*found;
}

std::vector<const KerasModel::Layer *> KerasModel::consumers(const QString &name) const
{
    std::vector<const Layer *> found;
    for (const Layer &layer : m_layers) {
        if (layer.inputs.contains(name))
            found.push_back(&layer);
    }
    return found;
}

const KerasModel::Weight *KerasModel::weight(const QString &name) const
{
    const auto found = m_weights.find(name);
    return found == m_weights.end() ? nullptr : &found->second;
}

} // namespace Qorvane::Encoders
