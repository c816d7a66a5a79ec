#include "encoders/graph/GraphNames.h"
#include "tools/encoders/import/ImportFixture.h"

#include <QFileInfo>

using namespace Qorvane;
using namespace Qorvane::Encoders;
using namespace Qorvane::Encoders::Synthetic;

namespace {

const QByteArray clipPreprocessing = R"({"crop_size": 224, "do_center_crop": true, "do_normalize": true,
    "do_resize": true, "feature_extractor_type": "CLIPFeatureExtractor",
    "image_mean": [0.48145466, 0.4578275, 0.40821073], "image_std": [0.26862954, 0.26130258, 0.27577711],
    "resample": 3, "size": 224})";

constexpr TokensForm chineseTokens{.context = 77, .endToken = 102, .padding = 0};

struct Variant
{
    const char *suffix;
    Precision precision;
    bool has16BitTensors;
    double atLeast;
};
constexpr std::array<Variant, 4> variants{{{"", Precision::fp32, false, exactly},
                                           {"_fp16", Precision::fp16, false, nearly},
                                           {"_fp16", Precision::fp16, true, nearly},
                                           {"_quantized", Precision::int8, false, nearly}}};

class ImportLayouts : public ImportFixture, public testing::WithParamInterface<Variant>
{
protected:
    QString graph(const char *stem) const
    {
        return published(QStringLiteral("onnx/%1%2.onnx")
                             .arg(QLatin1StringView(stem), QLatin1StringView(GetParam().suffix)));
    }

    VisionSpec vision() const
    {
        VisionSpec spec;
        spec.precision = GetParam().precision;
        spec.has16BitTensors = GetParam().has16BitTensors;
        return spec;
    }

    TextSpec text() const
    {
        TextSpec spec;
        spec.precision = GetParam().precision;
        return spec;
    }

    void writeSplitDescriptions() const
    {
        writeFile(published("config.json"),
                  R"({"model_type": "clip", "text_config": {"max_position_embeddings": 77,
            "eos_token_id": 2, "pad_token_id": 1}, "vision_config": {"image_size": 224}, "projection_dim": 512})");
        writeFile(published("preprocessor_config.json"), clipPreprocessing);
        writeFile(published("vocab.json"), openaiVocabulary());
        writeFile(published("merges.txt"), "#version: 0.2\nt h\n");
        writeFile(published("tokenizer.json"),
                  R"({"model": {"type": "BPE", "vocab": {"a": 64}, "merges": []}})");
        writeFile(published("tokenizer_config.json"),
                  R"({"model_max_length": 77, "pad_token": "<|endoftext|>"})");
    }

    void expectSame(Family family, const QString &visionFile, const QString &textFile,
                    const TokensForm &tokens = {})
    {
        expectSamePictures(family, visionFile, {}, GetParam().atLeast);
        expectSameTexts(family, textFile, tokens, GetParam().atLeast);
    }
};

INSTANTIATE_TEST_SUITE_P(Precisions, ImportLayouts, testing::ValuesIn(variants), [](const auto &tested) {
    return tested.index == 0   ? "fp32"
           : tested.index == 1 ? "fp16"
           : tested.index == 2 ? "fp16Tensors"
                               : "int8";
});

TEST_P(ImportLayouts, TransformersJsSplit)
{
    TextSpec tokens = text();
    tokens.isContextOpen = true;
    writeModel(graph("vision_model"), visionModel(vision()));
    writeModel(graph("text_model"), textModel(tokens));
    writeSplitDescriptions();
    expectImport();
    EXPECT_EQ(m_report.family, Family::openai);
    expectSame(Family::openai, graph("vision_model"), graph("text_model"));
}

TEST_P(ImportLayouts, TransformersJsSplitWithMask)
{
    TextSpec tokens = text();
    tokens.isContextOpen = true;
    tokens.mask = "attention_mask";
    VisionSpec pictures = vision();
    pictures.isSideOpen = true;
    writeModel(graph("vision_model"), visionModel(pictures));
    writeModel(graph("text_model"), textModel(tokens));
    writeSplitDescriptions();
    expectImport();
    expectSame(Family::openai, graph("vision_model"), graph("text_model"));
}

TEST_P(ImportLayouts, TransformersJsJoint)
{
    TextSpec tokens = text();
    tokens.isContextOpen = true;
    tokens.isMaskedMean = true;
    tokens.mask = "attention_mask";
    tokens.tokenTypes = "token_type_ids";
    tokens.vocabularySize = 21128;
    writeModel(graph("model"), jointModel(vision(), tokens));
    writeFile(published("config.json"), R"({"model_type": "chinese_clip", "text_config":
        {"max_position_embeddings": 512}, "vision_config": {"image_size": 224}})");
    writeFile(published("preprocessor_config.json"),
              R"({"do_center_crop": false, "crop_size": {"height": 200, "width": 200}, "do_normalize": true,
                  "image_mean": [0.48145466, 0.4578275, 0.40821073], "image_std": [0.26862954, 0.26130258, 0.27577711],
                  "resample": 3, "rescale_factor": 0.00392156862745098, "size": {"height": 224, "width": 224}})");
    writeFile(published("vocab.txt"), chineseVocabularyLines());
    expectImport();
    EXPECT_EQ(m_report.family, Family::chinese);
    expectSame(Family::chinese, graph("model"), graph("model"), chineseTokens);
    // Each tower without the other.
    const auto installedVision = OnnxGraph::load(installed("ChineseClipVisionEncoder.onnx"));
    const auto original = OnnxGraph::load(graph("model"));
    ASSERT_TRUE(installedVision && original);
    EXPECT_LT(QFileInfo(installedVision->path()).size(), QFileInfo(original->path()).size() / 2);
}

TEST_F(ImportFixture, ServerStylePair)
{
    VisionSpec vision;
    vision.input = "image";
    vision.output = "embedding";
    vision.batch = 1;
    vision.isNormalised = true;
    TextSpec text;
    text.ids = "text";
    text.output = "embedding";
    text.type = onnx::TensorProto::INT32;
    text.batch = 1;
    text.isNormalised = true;
    writeModel(published("visual/model.onnx"), visionModel(vision));
    writeModel(published("textual/model.onnx"), textModel(text));
    writeFile(published("config.json"), R"({"embed_dim": 512, "vision_cfg": {"image_size": 224},
        "text_cfg": {"context_length": 77, "vocab_size": 49408}})");
    writeFile(published("visual/preprocess_cfg.json"),
              R"({"size": [224, 224], "mode": "RGB", "mean": [0.48145466, 0.4578275, 0.40821073],
                  "std": [0.26862954, 0.26130258, 0.27577711], "interpolation": "bicubic", "resize_mode": "shortest"})");
    writeFile(
        published("textual/tokenizer.json"),
        R"({"added_tokens": [{"id": 49407, "content": "<|endoftext|>"}], "model": {"type": "BPE", "vocab": )" +
            openaiVocabulary() + "}}");
    expectImport();
    EXPECT_EQ(m_report.family, Family::openai);
    expectSamePictures(Family::openai, published("visual/model.onnx"), {}, exactly);
    expectSameTexts(Family::openai, published("textual/model.onnx"), {}, exactly);
}

class ChineseClipsOwnExport : public ImportFixture
{
protected:
    void SetUp() override
    {
        VisionSpec vision;
        vision.input = "image";
        vision.output = "unnorm_image_features";
        TextSpec text;
        text.ids = "text";
        text.output = "unnorm_text_features";
        text.context = 52;
        text.isFirstOfNonZero = true;
        text.vocabularySize = 21128;
        writeModelWithWeightsBeside(m_picture, visionModel(vision),
                                    QFileInfo(m_picture).fileName() + QStringLiteral(".extra_file"));
        writeModelWithWeightsBeside(m_sentence, textModel(text),
                                    QFileInfo(m_sentence).fileName() + QStringLiteral(".extra_file"));
    }

    void expectSame()
    {
        EXPECT_EQ(m_report.family, Family::chinese);
        expectSamePictures(Family::chinese, m_picture, {}, exactly);
        expectSameTexts(Family::chinese, m_sentence, {.context = 52, .endToken = 102, .padding = 0}, exactly);
    }

    const QString m_picture = published(QStringLiteral("vit-b-16.img.fp32.onnx"));
    const QString m_sentence = published(QStringLiteral("vit-b-16.txt.fp32.onnx"));
};

TEST_F(ChineseClipsOwnExport, GivesWhatTheOriginalGives)
{
    writeFile(published("vocab.txt"), chineseVocabularyLines().replace('\n', "\r\n"));
    expectImport();
    expectSame();
    // What the comparison would notice.
    expectOtherTexts(Family::chinese, m_sentence, {.context = 52, .endToken = 103, .padding = 0});
    expectOtherTexts(Family::chinese, m_sentence, {.context = 52, .endToken = 102, .padding = 5});
}

TEST_F(ChineseClipsOwnExport, DoesNotTakeTheOtherFamilysVocabularyWhenItBringsNone)
{
    writeFile(m_vocabularies.filePath(QStringLiteral("vocab.json")), openaiVocabulary());
    const auto without = importFolder();
    ASSERT_FALSE(without);
    const QString said = without.error().text();
    EXPECT_TRUE(said.contains(QStringLiteral("vocab.txt, and name it as a further PATH")))
        << said.toStdString();
    EXPECT_TRUE(said.contains(QStringLiteral("--family"))) << said.toStdString();

    const auto wrong = importFolder(Family::openai);
    ASSERT_FALSE(wrong);
    EXPECT_TRUE(wrong.error().remedy.contains(QStringLiteral("--family chinese")))
        << wrong.error().text().toStdString();

    const auto vocabulary = m_vocabularies.filePath(QStringLiteral("vocab.txt"));
    writeFile(vocabulary, chineseVocabularyLines());
    const auto named = importPaths({published(), vocabulary});
    ASSERT_TRUE(named) << named.error().text().toStdString();
    m_report = *named;
    expectSame();
}

TEST_F(ChineseClipsOwnExport, TakesTheFamilysInstalledVocabularyWhenItBringsNone)
{
    writeFile(m_vocabularies.filePath(QStringLiteral("vocab.json")), openaiVocabulary());
    writeFile(m_vocabularies.filePath(QStringLiteral("chinese_vocab.json")),
              R"({"[PAD]": 0, "[UNK]": 100, "[CLS]": 101, "[SEP]": 102, "蓝": 110, "天": 111, "心": 112})");
    expectImport();
    expectSame();
}

TEST_F(ImportFixture, WeightsThatDoNotFitAreCarriedAlongBeside)
{
    TextSpec text;
    writeModelWithWeightsBeside(published("visual.onnx"), visionModel({}), QStringLiteral("v.data"));
    writeModelWithWeightsBeside(published("textual.onnx"), textModel(text), QStringLiteral("t.data"));
    writeFile(published("vocab.json"), openaiVocabulary());
    ImportRequest request;
    request.paths = {published()};
    request.destination = installed();
    request.singleFile = 4000;
    const auto report = importEncoders(request, [](double, const QString &) {});
    ASSERT_TRUE(report) << report.error().text().toStdString();
    EXPECT_TRUE(QFileInfo(installed("ClipVisionEncoder.onnx.data")).isFile());
    EXPECT_TRUE(QFileInfo(installed("ClipTextEncoder.onnx.data")).isFile());
    expectSamePictures(Family::openai, published("visual.onnx"), {}, exactly);
    expectSameTexts(Family::openai, published("textual.onnx"), {}, exactly);
}

TEST_F(ImportFixture, RclipStyleWithTheVocabularyThatIsInstalled)
{
    VisionSpec vision;
    vision.input = "input";
    vision.output = "output";
    vision.side = 256;
    TextSpec text;
    text.ids = "input";
    text.output = "output";
    writeModel(published("visual.onnx"), visionModel(vision));
    writeModel(published("textual.onnx"), textModel(text));

    const auto without = importFolder();
    ASSERT_FALSE(without);
    EXPECT_TRUE(without.error().text().contains(QStringLiteral("vocab.json")));
    EXPECT_FALSE(QFileInfo::exists(installed("ClipVisionEncoder.onnx")));

    writeFile(m_vocabularies.filePath(QStringLiteral("vocab.json")), openaiVocabulary());
    expectImport();
    PictureForm form;
    form.side = 256;
    expectSamePictures(Family::openai, published("visual.onnx"), form, exactly);
    expectSameTexts(Family::openai, published("textual.onnx"), {}, exactly);
}

TEST_F(ImportFixture, TakesTheMostPreciseOfSeveralVariants)
{
    VisionSpec vision;
    TextSpec text;
    writeModel(published("onnx/vision_model.onnx"), visionModel(vision));
    writeModel(published("onnx/text_model.onnx"), textModel(text));
    vision.precision = text.precision = Precision::int8;
    writeModel(published("onnx/vision_model_quantized.onnx"), visionModel(vision));
    writeModel(published("onnx/text_model_quantized.onnx"), textModel(text));
    // Not looked at, so it needn't be readable.
    writeFile(published("onnx/vision_model_q4.onnx"), "nonsense");
    writeModel(published("onnx/model.onnx"), jointModel({}, {}));
    writeFile(published("vocab.json"), openaiVocabulary());
    expectImport();
    expectSamePictures(Family::openai, published("onnx/vision_model.onnx"), {}, exactly);
    expectSameTexts(Family::openai, published("onnx/text_model.onnx"), {}, exactly);
    EXPECT_TRUE(m_report.recognised.join(u' ').contains(QStringLiteral("passed over: model.onnx")))
        << m_report.recognised.join(u'\n').toStdString();

    // Files by name, with the descriptions found above them.
    const auto named = importPaths(
        {published("onnx/vision_model_quantized.onnx"), published("onnx/text_model_quantized.onnx")});
    ASSERT_TRUE(named) << named.error().text().toStdString();
    expectSamePictures(Family::openai, published("onnx/vision_model_quantized.onnx"), {}, nearly);
}

TEST_F(ImportFixture, CanBeRepeatedIntoAFolderInsideOfTheModels)
{
    writeModel(published("visual.onnx"), visionModel({}));
    writeModel(published("textual.onnx"), textModel({}));
    const QString vocabulary = m_vocabularies.filePath(QStringLiteral("vocab.json"));
    writeFile(vocabulary, openaiVocabulary());
    // Another way to write the same path.
    ASSERT_TRUE(QFile::link(m_published.path(), m_installed.filePath(QStringLiteral("link"))));
    ImportRequest request;
    request.destination = m_installed.filePath(QStringLiteral("link/installed"));
    for (int round = 0; round < 2; ++round) {
        request.paths = {published(), vocabulary};
        const auto report = importEncoders(request, [](double, const QString &) {});
        ASSERT_TRUE(report) << report.error().text().toStdString();
        // What was installed stands for nothing that the model lacks.
        EXPECT_TRUE(report->missing.join(u' ').contains(QStringLiteral("no licence text")));
        writeFile(published("installed/ClipLicence.txt"), "of an earlier one");
        writeFile(published("installed/LICENSE"), "of an earlier one");
    }
    request.paths = {published()};
    const auto without = importEncoders(request, [](double, const QString &) {});
    ASSERT_FALSE(without);
    EXPECT_EQ(without.error().expected, QStringLiteral("a vocabulary with the model"));
}

TEST_F(ImportFixture, TakesTheVocabularyThatIsNamedBeforeAnyThatLiesThere)
{
    writeModel(published("visual.onnx"), visionModel({}));
    writeModel(published("textual.onnx"), textModel({}));
    writeFile(published("vocab.json"), R"({"a": 1})");
    const QString named = m_vocabularies.filePath(QStringLiteral("vocab.txt"));
    writeFile(named, chineseVocabularyLines());
    writeFile(m_vocabularies.filePath(QStringLiteral("vocab.json")), openaiVocabulary());
    const auto report = importPaths({published(), named});
    ASSERT_TRUE(report) << report.error().text().toStdString();
    EXPECT_EQ(report->family, Family::chinese);
}

TEST_F(ImportFixture, AsksForTheDescriptionOfColoursTheMoreForOtherSizes)
{
    VisionSpec vision;
    writeModel(published("textual.onnx"), textModel({}));
    writeFile(published("vocab.json"), openaiVocabulary());
    for (const int side : {224, 256}) {
        vision.side = side;
        writeModel(published("visual.onnx"), visionModel(vision));
        expectImport();
        const QString mind = m_report.missing.join(u'\n');
        EXPECT_TRUE(
            mind.contains(QStringLiteral("name the model's preprocessor_config.json as a further PATH")))
            << mind.toStdString();
        EXPECT_EQ(mind.contains(QStringLiteral("256 x 256 pixels often want another")), side == 256);
    }
    writeFile(published("preprocessor_config.json"), clipPreprocessing);
    expectImport();
    EXPECT_FALSE(m_report.missing.join(u'\n').contains(QStringLiteral("preprocessor_config.json")));
}

TEST_F(ImportFixture, FamilyThatTheUserTells)
{
    TextSpec text;
    writeModel(published("visual.onnx"), visionModel({}));
    writeModel(published("textual.onnx"), textModel(text));
    writeFile(
        m_vocabularies.filePath(QStringLiteral("chinese_vocab.json")),
        R"({"[PAD]": 0, "[UNK]": 100, "[CLS]": 101, "[SEP]": 102, "海": 110, "日": 111, "天": 112, "心": 113})");
    expectImport(Family::chinese);
    EXPECT_TRUE(VisionEncoder::load(installed("ChineseClipVisionEncoder.onnx"), nullptr));
    EXPECT_FALSE(QFileInfo::exists(installed("ClipVisionEncoder.onnx")));
}

TEST_F(ImportFixture, KeepsTheLicenceAndTheOtherFamily)
{
    writeModel(published("visual.onnx"), visionModel({}));
    writeModel(published("textual.onnx"), textModel({}));
    writeFile(published("vocab.json"), openaiVocabulary());
    writeFile(published("README.md"), "---\nlanguage: en\nlicense: mit\n---\n# A model\nlicense: no\n");
    writeFile(installed("chinese_vocab.json"), "other");
    expectImport();
    const auto contentOf = [](const QString &path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    };
    EXPECT_TRUE(contentOf(installed("ClipLicence.txt")).endsWith("says:\nlicense: mit\n"));
    EXPECT_EQ(contentOf(installed("chinese_vocab.json")), "other");

    writeFile(published("LICENSE"), "All of it.");
    expectImport();
    EXPECT_EQ(contentOf(installed("ClipLicence.txt")), "All of it.");
    EXPECT_FALSE(m_report.missing.join(u' ').contains(QStringLiteral("licence")));
}

TEST_F(ImportFixture, SaysWhenTheFilesWentInOneByOne)
{
    writeModel(published("visual.onnx"), visionModel({}));
    writeModel(published("textual.onnx"), textModel({}));
    writeFile(published("vocab.json"), openaiVocabulary());
    expectImport();
    EXPECT_FALSE(m_report.missing.join(u' ').contains(QStringLiteral("one by one")));
    writeFile(installed("folder/file"), "mine");
    expectImport();
    EXPECT_TRUE(m_report.missing.join(u' ').contains(QStringLiteral("one by one, since it holds folders")));
}

TEST_F(ImportFixture, GraphsThatUseTheApplicationsNamesForSomethingElse)
{
    VisionSpec vision;
    vision.input = "image_features";
    vision.output = "pixel_values";
    TextSpec text;
    text.ids = "attention_features";
    text.output = "input_ids";
    onnx::ModelProto model = visionModel(vision);
    // Names as this program gives them.
    renameValues(*model.mutable_graph(), {{"Tanh", "rows_from_the_last"}, {"Mul", "Gather"}});
    writeModel(published("visual.onnx"), model);
    writeModel(published("textual.onnx"), textModel(text));
    writeFile(published("vocab.json"), openaiVocabulary());
    expectImport();
    expectSamePictures(Family::openai, published("visual.onnx"), {}, exactly);
    expectSameTexts(Family::openai, published("textual.onnx"), {}, exactly);
}

TEST_F(ImportFixture, OldFilesThatListConstantsAsInputsAndTellNoShapesOfOutputs)
{
    onnx::ModelProto vision = visionModel({});
    vision.set_ir_version(3);
    for (const auto &tensor : vision.graph().initializer()) {
        auto &input = *vision.mutable_graph()->add_input();
        input.set_name(tensor.name());
        input.mutable_type()->mutable_tensor_type()->set_elem_type(tensor.data_type());
        for (const auto size : tensor.dims())
            input.mutable_type()->mutable_tensor_type()->mutable_shape()->add_dim()->set_dim_value(size);
    }
    vision.mutable_graph()->mutable_output(0)->mutable_type()->mutable_tensor_type()->clear_shape();
    vision.mutable_graph()->mutable_output(0)->set_name("anything");
    for (auto &node : *vision.mutable_graph()->mutable_node()) {
        if (node.output(0) == "image_embeds")
            node.set_output(0, "anything");
    }
    writeModel(published("visual.onnx"), vision);
    writeModel(published("textual.onnx"), textModel({}));
    writeFile(published("vocab.json"), openaiVocabulary());
    expectImport();
    expectSamePictures(Family::openai, published("visual.onnx"), {}, exactly);
}

struct PictureVariant
{
    const char *name;
    VisionSpec spec;
    PictureForm form;
    const char *preprocessing;
};

class ImportPictures : public ImportFixture, public testing::WithParamInterface<PictureVariant>
{
};

PictureVariant sized(const char *name, int side, Kernel kernel, const char *preprocessing)
{
    PictureVariant variant{name, {}, {}, preprocessing};
    variant.spec.side = side;
    variant.form.side = side;
    variant.form.kernel = kernel;
    return variant;
}

std::vector<PictureVariant> pictureVariants()
{
    std::vector<PictureVariant> all{
        sized("larger", 336, Kernel::bicubic, R"({"size": {"shortest_edge": 336}, "resample": 3})"),
        sized("smaller", 160, Kernel::bicubic, R"({"size": 160, "resample": 3})"),
        sized("muchSmallerBilinear", 64, Kernel::bilinear, R"({"size": 64, "interpolation": "bilinear"})"),
    };
    PictureVariant open =
        sized("openSide", 288, Kernel::bicubic, R"({"crop_size": {"height": 288, "width": 288}})");
    open.spec.isSideOpen = true;
    all.push_back(open);

    PictureVariant imageNet{"otherNormalisation",
                            {},
                            {},
                            R"({"image_mean": [0.485, 0.456, 0.406], "image_std": [0.229, 0.224, 0.225]})"};
    imageNet.form.mean = {0.485, 0.456, 0.406};
    imageNet.form.deviation = {0.229, 0.224, 0.225};
    all.push_back(imageNet);

    PictureVariant plain{"withoutNormalisation", {}, {}, R"({"do_normalize": false})"};
    plain.form.mean = {0, 0, 0};
    plain.form.deviation = {1, 1, 1};
    all.push_back(plain);

    PictureVariant bytes{
        "coloursTo255BlueFirst",
        {},
        {},
        R"({"do_rescale": false, "mean": [120, 110, 100], "std": [60, 61, 62], "mode": "BGR"})"};
    bytes.form.scale = 255;
    bytes.form.mean = {120, 110, 100};
    bytes.form.deviation = {60, 61, 62};
    bytes.form.isBlueFirst = true;
    all.push_back(bytes);

    PictureVariant last =
        sized("channelsLast", 240, Kernel::bicubic, R"({"size": [240, 240], "interpolation": "bicubic"})");
    last.spec.isChannelsLast = true;
    last.form.isChannelsLast = true;
    last.spec.batch = 1;
    all.push_back(last);

    PictureVariant ours{"applicationsOwnNames", {}, {}, "{}"};
    ours.spec.output = "image_features";
    ours.spec.batch = 1;
    all.push_back(ours);
    return all;
}

INSTANTIATE_TEST_SUITE_P(Forms, ImportPictures, testing::ValuesIn(pictureVariants()),
                         [](const auto &tested) { return tested.param.name; });

TEST_P(ImportPictures, GiveWhatTheOriginalGives)
{
    writeModel(published("visual.onnx"), visionModel(GetParam().spec));
    writeModel(published("textual.onnx"), textModel({}));
    writeFile(published("vocab.json"), openaiVocabulary());
    writeFile(published("preprocessor_config.json"), GetParam().preprocessing);
    expectImport();
    expectSamePictures(Family::openai, published("visual.onnx"), GetParam().form, exactly);
}

struct TextVariant
{
    const char *name;
    TextSpec spec;
    TokensForm form;
};

class ImportTexts : public ImportFixture, public testing::WithParamInterface<TextVariant>
{
};

std::vector<TextVariant> textVariants()
{
    TextVariant shorter{"shorterContext", {}, {}};
    shorter.spec.context = shorter.form.context = 52;
    TextVariant longer{"longerContext", {}, {}};
    longer.spec.context = longer.form.context = 128;
    longer.spec.mask = "attention_mask";
    TextVariant int32{"int32WithMask", {}, {}};
    int32.spec.type = onnx::TensorProto::INT32;
    int32.spec.mask = "attention_mask";
    TextVariant types{"tokenTypesAndPositions", {}, {}};
    types.spec.mask = "attention_mask";
    types.spec.tokenTypes = "token_type_ids";
    types.spec.positions = "position_ids";
    types.spec.isMaskedMean = true;
    TextVariant fixed{"batchOfOneNormalised", {}, {}};
    fixed.spec.batch = 1;
    fixed.spec.isNormalised = true;
    TextVariant ours{"applicationsOwnNames", {}, {}};
    ours.spec.type = onnx::TensorProto::INT32;
    ours.spec.mask = "attention_mask";
    ours.spec.output = "text_features";
    ours.spec.batch = 1;
    return {shorter, longer, int32, types, fixed, ours};
}

INSTANTIATE_TEST_SUITE_P(Forms, ImportTexts, testing::ValuesIn(textVariants()),
                         [](const auto &tested) { return tested.param.name; });

TEST_P(ImportTexts, GiveWhatTheOriginalGives)
{
    writeModel(published("visual.onnx"), visionModel({}));
    writeModel(published("textual.onnx"), textModel(GetParam().spec));
    writeFile(published("vocab.json"), openaiVocabulary());
    expectImport();
    expectSameTexts(Family::openai, published("textual.onnx"), GetParam().form, exactly);
    for (const QString &line : m_report.adapted)
        EXPECT_FALSE(line.endsWith(QStringLiteral(": "))) << line.toStdString();
}

} // namespace
