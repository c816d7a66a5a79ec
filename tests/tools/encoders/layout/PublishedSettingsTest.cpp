#include "encoders/layout/PublishedSettings.h"

#include <QJsonDocument>

#include <gtest/gtest.h>

using namespace Qorvane::Encoders;

namespace {

QJsonObject json(const char *text)
{
    return QJsonDocument::fromJson(text).object();
}

PublishedSettings ofPictures(const char *preprocessing)
{
    ModelFolder folder;
    folder.preprocessing = json(preprocessing);
    return publishedSettings(folder);
}

TEST(PublishedSettings, SaysNothingWhereNothingIsSaid)
{
    EXPECT_EQ(publishedSettings({}), PublishedSettings());
}

TEST(PublishedSettings, ReadsSizesInEveryForm)
{
    for (const char *text :
         {R"({"size": 256})", R"({"size": [256, 256]})", R"({"size": {"shortest_edge": 256}})",
          R"({"size": {"height": 256, "width": 256}})", R"({"size": 300, "crop_size": 256})",
          R"({"size": 256, "crop_size": 200, "do_center_crop": false})", R"({"image_size": 256})"}) {
        EXPECT_EQ(ofPictures(text).height, 256) << text;
        EXPECT_EQ(ofPictures(text).width, 256) << text;
    }
    EXPECT_EQ(ofPictures(R"({"size": [256, 192]})").width, 192);
    EXPECT_EQ(ofPictures(R"({"size": -4})").height, std::nullopt);
    EXPECT_EQ(ofPictures(R"({"size": 1e9})").height, std::nullopt);
}

TEST(PublishedSettings, ReadsNormalisationByBothNames)
{
    const std::array<double, 3> mean{0.1, 0.2, 0.3};
    const std::array<double, 3> deviation{1, 2, 3};
    for (const char *text : {R"({"image_mean": [0.1, 0.2, 0.3], "image_std": [1, 2, 3]})",
                             R"({"mean": [0.1, 0.2, 0.3], "std": [1, 2, 3]})"}) {
        EXPECT_EQ(ofPictures(text).mean, mean);
        EXPECT_EQ(ofPictures(text).deviation, deviation);
    }
    EXPECT_EQ(ofPictures(R"({"mean": [0.1, 0.2]})").mean, std::nullopt);
    // Nothing can be divided by it.
    EXPECT_EQ(ofPictures(R"({"std": [0, 1, 1]})").deviation, std::nullopt);
}

TEST(PublishedSettings, ReadsFilters)
{
    EXPECT_EQ(ofPictures(R"({"resample": 3})").filter, ResamplingFilter::bicubic);
    EXPECT_EQ(ofPictures(R"({"resample": 2})").filter, ResamplingFilter::bilinear);
    EXPECT_EQ(ofPictures(R"({"resample": 1})").filter, ResamplingFilter::lanczos);
    EXPECT_EQ(ofPictures(R"({"interpolation": "bilinear"})").filter, ResamplingFilter::bilinear);
    EXPECT_EQ(ofPictures(R"({"resample": 0})").filter, std::nullopt);
}

TEST(PublishedSettings, FindsWhatIsInsideOfTheModelsOwnDescription)
{
    ModelFolder folder;
    folder.config =
        json(R"({"model_cfg": {"vision_cfg": {"image_size": 256}, "text_cfg": {"context_length": 64}},
                             "preprocess_cfg": {"mean": [0, 0, 0], "std": [1, 1, 1]}})");
    const PublishedSettings settings = publishedSettings(folder);
    EXPECT_EQ(settings.height, 256);
    EXPECT_EQ(settings.context, 64);
    EXPECT_EQ(settings.mean, (std::array<double, 3>{0, 0, 0}));
}

TEST(PublishedSettings, TakesTheShortestContextAndNoEndlessOne)
{
    ModelFolder folder;
    folder.config = json(R"({"text_config": {"max_position_embeddings": 512}})");
    folder.tokenizerConfig = json(R"({"model_max_length": 52})");
    EXPECT_EQ(publishedSettings(folder).context, 52);
    folder.tokenizerConfig = json(R"({"model_max_length": 1000000000000000019884624838656})");
    EXPECT_EQ(publishedSettings(folder).context, 512);
}

} // namespace
