#pragma once

#include "clip/ClipTest.h"

namespace Qorvane {

/// What a test of tags starts from: loaded encoders, a vocabulary read, and no tag's vector in the store.
class TagTest : public ClipTest
{
protected:
    TagTest();

    /// Recommends for `photo`, but for the predefined tags other than `predefined`: those it has already, so
    /// that few texts have to be encoded.
    QList<TagRecommendation> recommend(const FileUrl &photo, const QStringList &userTags,
                                       const QStringList &predefined, int limit = 5);

    /// The predefined tags, each once, without `tags`.
    static QStringList predefinedBut(const QStringList &tags);

    std::unique_ptr<ChineseClipService> service;
};

QStringList tagsOf(const QList<TagRecommendation> &recommendations);

} // namespace Qorvane
