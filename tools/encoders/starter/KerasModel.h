#pragma once

#include "encoders/Problem.h"

#include <QByteArray>
#include <QJsonObject>
#include <QStringList>

#include <cstdint>
#include <functional>
#include <map>
#include <vector>

namespace Qorvane::Encoders {

/// A network in the Keras layers format as browsers load it: `model.json` and shards of raw weights.
class KerasModel
{
public:
    struct Weight
    {
        std::vector<std::int64_t> shape;
        std::vector<float> values;
    };

    struct Layer
    {
        QString name;
        QString kind; ///< "Conv2D"
        QJsonObject config;
        QStringList inputs; ///< names of layers
    };

    /// `shard` gives the bytes of a shard by its path relative to model.json; empty when it isn't there.
    static Outcome<KerasModel> read(const QByteArray &modelJson,
                                    const std::function<QByteArray(const QString &)> &shard);

    /// The shards that `modelJson` names, in order.
    static QStringList shardPaths(const QByteArray &modelJson);

    /// In an order in which each comes behind its inputs.
    const std::vector<Layer> &layers() const { return m_layers; }
    /// The first layer of this kind; nullptr when there is none.
    const Layer *firstOfKind(const QString &kind) const;
    /// The layers that take `name`'s output.
    std::vector<const Layer *> consumers(const QString &name) const;
    /// By "layer/weight", for instance "conv1/kernel"; nullptr when there is none.
    const Weight *weight(const QString &name) const;

private:
    std::vector<Layer> m_layers;
    std::map<QString, Weight> m_weights;
};

} // namespace Qorvane::Encoders
