#pragma once

#include "ChineseClipService.h"
#include "clip/PredefinedTagsOverride.h"
#include "encoders/TestEncoders.h"
#include "support/LogCapture.h"

#include <QCoroTask>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>
#include <optional>

namespace Qorvane {

/// Elements of the test encoders' vectors; see tests/encoders/make_test_encoders.py.
namespace Axis {
enum : size_t { red, green, blue, yellow, bright, dark, topBright, centreBright, picture };
}
constexpr size_t openaiLength = 16;
constexpr size_t chineseLength = 12;

/// What a test of the semantic service starts from: the OpenAI family installed, English the user's language,
/// an empty store and thumbnail cache.
class ClipTest : public testing::Test
{
protected:
    ClipTest();
    ~ClipTest() override;

    /// A service whose encoders are loaded, and no tags precomputed. The log holds nothing of it.
    std::unique_ptr<ChineseClipService> loadedService();

    /// A picture file of one colour. Its name's extension says what it holds.
    FileUrl makePicture(const QString &name, const QColor &colour);
    /// A file that isn't a picture.
    FileUrl makeBrokenFile(const QString &name);
    /// The address of `name` in the folder of the pictures; nothing need be there.
    FileUrl url(const QString &name) const;

    /// Runs the event loop until `task` is done, and gives its result.
    template <typename Result>
    static Result await(QCoro::Task<Result> task)
    {
        return QCoro::waitFor(std::move(task));
    }

    LogCapture log;

    /// From now on the predefined tags are the program's own. Until then there are none, so that a load ends
    /// without a thousand of them being encoded.
    void haveRealPredefinedTags() { m_noTags.reset(); }

private:
    std::optional<PredefinedTagsOverride> m_noTags{std::in_place, QStringList()};
    QTemporaryDir m_folder;
};

/// A vector of `length` elements, with `value` at `axis` and the rest of its unit length at the last one, on
/// which no text of the test encoders has anything.
std::vector<float> vectorWithCosine(size_t axis, float value, size_t length = openaiLength);

/// Gives the store a row.
void storeVector(const FileUrl &url, const std::vector<float> &vector);

QStringList namesOf(const QList<SearchResult> &results);

} // namespace Qorvane
