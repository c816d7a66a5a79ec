#pragma once

#include "encoders/starter/KerasModel.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>
#include <map>
#include <random>
#include <vector>

namespace Qorvane::Encoders {

/// A network written down as the packages have them, with random weights.
class TinyKeras
{
public:
    void add(const QString &kind, const QString &name, const QStringList &inputs, QJsonObject config = {})
    {
        QJsonArray nodes;
        for (const QString &input : inputs)
            nodes.append(QJsonArray{input, 0, 0, QJsonObject()});
        config[QStringLiteral("name")] = name;
        m_layers.append(QJsonObject{
            {QStringLiteral("name"), name},
            {QStringLiteral("class_name"), kind},
            {QStringLiteral("config"), config},
            {QStringLiteral("inbound_nodes"), nodes.isEmpty() ? QJsonArray() : QJsonArray{nodes}}});
    }

    /// Values from `low` to `high`.
    const std::vector<float> &addWeight(const QString &name, const std::vector<int> &shape, float low,
                                        float high)
    {
        QJsonArray sizes;
        size_t count = 1;
        for (const int size : shape) {
            sizes.append(size);
            count *= size_t(size);
        }
        m_weights.append(QJsonObject{{QStringLiteral("name"), name},
                                     {QStringLiteral("shape"), sizes},
                                     {QStringLiteral("dtype"), QStringLiteral("float32")}});
        std::vector<float> &values = m_values[name];
        for (size_t index = 0; index < count; ++index)
            values.push_back(low + (high - low) * float(m_random() % 1000) / 1000);
        m_bytes.append(reinterpret_cast<const char *>(values.data()), qsizetype(count * sizeof(float)));
        return values;
    }

    const std::vector<float> &values(const QString &name) const { return m_values.at(name); }

    QByteArray json() const
    {
        const QJsonObject config{{QStringLiteral("layers"), m_layers}};
        const QJsonObject topology{
            {QStringLiteral("model_config"), QJsonObject{{QStringLiteral("config"), config}}}};
        const QJsonObject group{
            {QStringLiteral("paths"), QJsonArray{QStringLiteral("s1"), QStringLiteral("s2")}},
            {QStringLiteral("weights"), m_weights}};
        return QJsonDocument(QJsonObject{{QStringLiteral("modelTopology"), topology},
                                         {QStringLiteral("weightsManifest"), QJsonArray{group}}})
            .toJson();
    }

    /// The weights lie in two shards, cut in the middle of one.
    QByteArray shard(const QString &name) const
    {
        const qsizetype cut = std::min(m_bytes.size(), m_bytes.size() / 2 + 1);
        return name == QStringLiteral("s1") ? m_bytes.first(cut) : m_bytes.sliced(cut);
    }

    Outcome<KerasModel> model() const
    {
        return KerasModel::read(json(), [this](const QString &name) { return shard(name); });
    }

private:
    QJsonArray m_layers;
    QJsonArray m_weights;
    QByteArray m_bytes;
    std::map<QString, std::vector<float>> m_values;
    std::mt19937 m_random{7};
};

} // namespace Qorvane::Encoders
