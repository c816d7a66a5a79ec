#pragma once

#include "encoders/import/EncoderInstall.h"
#include "encoders/import/Importer.h"
#include "semantic/Encoder.h"
#include "semantic/Preprocessing.h"
#include "semantic/TokenizerService.h"
#include "support/LogCapture.h"
#include "tools/encoders/import/OriginalRun.h"
#include "tools/encoders/import/SyntheticModels.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace Qorvane::Encoders::Synthetic {

/// What makes two vectors the same, by the precision of the weights.
constexpr double exactly = 0.9999;
constexpr double nearly = 0.999;

/// A folder to publish models in, one to install them into, and the comparison of both.
class ImportFixture : public testing::Test
{
protected:
    QString published(const QString &name = {}) const { return m_published.path() + u'/' + name; }
    QString installed(const QString &name = {}) const
    {
        return m_installed.path() + QStringLiteral("/models/") + name;
    }

    Outcome<ImportReport> importFolder(std::optional<Family> family = {})
    {
        return importPaths({published()}, family);
    }

    Outcome<ImportReport> importPaths(const QStringList &paths, std::optional<Family> family = {})
    {
        ImportRequest request;
        request.paths = paths;
        request.family = family;
        request.destination = installed();
        request.vocabularyFolders = {installed(), m_vocabularies.path()};
        return importEncoders(request, [](double, const QString &) {});
    }

    /// Imports the folder, and fails the test with the problem when that doesn't work.
    void expectImport(std::optional<Family> family = {})
    {
        const auto report = importFolder(family);
        ASSERT_TRUE(report) << report.error().text().toStdString();
        m_report = *report;
    }

    /// The installed vision encoder against the original file.
    void expectSamePictures(Family family, const QString &original, const PictureForm &form, double atLeast)
    {
        QString error;
        const auto encoder = VisionEncoder::load(installed(FamilyFiles::of(family).vision), &error);
        ASSERT_TRUE(encoder) << error.toStdString();
        std::vector<std::vector<float>> vectors;
        for (const QImage &picture :
             {photograph(500, 333, 1), photograph(224, 224, 2), photograph(300, 700, 3)}) {
            const auto tensor = preprocessImage(picture);
            ASSERT_TRUE(tensor);
            const EncoderResult result = encoder->predict(*tensor);
            ASSERT_EQ(result.outcome, EncoderResult::Outcome::succeeded) << result.error.toStdString();
            EXPECT_GE(cosine(result.features, originalPicture(original, *tensor, form)), atLeast);
            PictureForm wrong = form;
            wrong.isLeftMirrored = true;
            EXPECT_LT(cosine(result.features, originalPicture(original, *tensor, wrong)), nearly);
            // Colours that are normalised in another way are noticed, too.
            wrong = form;
            wrong.scale = 1;
            wrong.mean = PictureForm().mean;
            wrong.deviation = PictureForm().deviation;
            wrong.isBlueFirst = false;
            if (wrong.mean != form.mean || wrong.isBlueFirst != form.isBlueFirst) {
                EXPECT_LT(cosine(result.features, originalPicture(original, *tensor, wrong)), atLeast);
            }
            vectors.push_back(result.features);
        }
        EXPECT_LT(cosine(vectors[0], vectors[1]), nearly);
    }

    /// A text as the application sends it, and the installed encoder's vector of it.
    struct InstalledText
    {
        QString text;
        TokenizerService::EncodedText encoded;
        std::vector<float> vector;
    };

    /// Short and overlong texts. Fails the test and gives none when the encoder can't be run.
    std::vector<InstalledText> installedTexts(Family family)
    {
        std::vector<InstalledText> all;
        embedTexts(family, all);
        return all;
    }

    /// The installed text encoder against the original file.
    void expectSameTexts(Family family, const QString &original, const TokensForm &form, double atLeast)
    {
        const std::vector<InstalledText> all = installedTexts(family);
        ASSERT_FALSE(all.empty());
        for (const InstalledText &one : all)
            EXPECT_GE(cosineWith(original, form, one), atLeast) << one.text.left(40).toStdString();
        // Order counts.
        EXPECT_LT(cosine(all[0].vector, all[1].vector), nearly);
    }

    /// The same when the original gets tokens of another form: it must show, in a short text or an overlong
    /// one.
    void expectOtherTexts(Family family, const QString &original, const TokensForm &wrong)
    {
        const std::vector<InstalledText> all = installedTexts(family);
        double lowest = 1;
        for (const InstalledText &one : all)
            lowest = std::min(lowest, cosineWith(original, wrong, one));
        EXPECT_LT(lowest, nearly);
    }

    static double cosineWith(const QString &original, const TokensForm &form, const InstalledText &one)
    {
        return cosine(one.vector, originalText(original, one.encoded.ids, one.encoded.mask, form));
    }

    void embedTexts(Family family, std::vector<InstalledText> &all)
    {
        const FamilyFiles files = FamilyFiles::of(family);
        QFile file(installed(files.vocabulary));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        auto vocabulary = parseVocabulary(file.readAll());
        ASSERT_TRUE(vocabulary);
        LogCapture quiet;
        const TokenizerService tokenizer(*std::move(vocabulary));
        const bool isChinese = tokenizer.mode() == TokenizerService::Mode::chineseClip;
        EXPECT_EQ(isChinese, family == Family::chinese);
        QString error;
        const auto encoder = TextEncoder::load(installed(files.text), &error);
        ASSERT_TRUE(encoder) << error.toStdString();

        const QStringList texts = isChinese ? QStringList{QStringLiteral("蓝天"),
                                                          QStringLiteral("天蓝"),
                                                          QStringLiteral("海上的日落"),
                                                          {},
                                                          QStringLiteral("红心").repeated(20),
                                                          QStringLiteral("一颗红心黑白").repeated(9),
                                                          QStringLiteral("狗猫").repeated(50)}
                                            : QStringList{QStringLiteral("the red dog"),
                                                          QStringLiteral("dog red the"),
                                                          QStringLiteral("a boat"),
                                                          {},
                                                          QStringLiteral("red boat ").repeated(20),
                                                          QStringLiteral("blue sky and ").repeated(18),
                                                          QStringLiteral("a dog ").repeated(60)};
        for (const QString &text : texts) {
            const auto encoded = tokenizer.encode(
                isChinese ? tokenizer.tokenizeChinese(text) : tokenizer.tokenizeOpenAI(text), 77);
            const EncoderResult result = encoder->predict(encoded.ids, encoded.mask);
            ASSERT_EQ(result.outcome, EncoderResult::Outcome::succeeded) << result.error.toStdString();
            all.push_back({text, encoded, result.features});
        }
    }

    QTemporaryDir m_published;
    QTemporaryDir m_installed;
    QTemporaryDir m_vocabularies;
    ImportReport m_report;
};

} // namespace Qorvane::Encoders::Synthetic
