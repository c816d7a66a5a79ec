#include "encoders/check/FamilyCheck.h"

#include "encoders/InstalledEncoders.h"
#include "encoders/import/EncoderInstall.h"
#include "platform/Bundle.h"
#include "semantic/TokenizerVocabulary.h"

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QLocale>

#include <algorithm>
#include <vector>

namespace Qorvane::Encoders {

namespace {

// Enough that a neighbour's burst of work doesn't make the median.
constexpr int timedRuns = 9;
constexpr double nanosecondsPerMillisecond = 1e6;
// As large as a thumbnail gets.
constexpr QSize thumbnailSize{800, 533};

QString foundFile(const QString &fileName, const QStringList &directories)
{
    const QFileInfo name(fileName);
    return Bundle::urlForResource(name.completeBaseName(), name.suffix(), directories).value_or(QString());
}

// Beside the encoder or, where that is a link, beside what it leads to.
QString licenceBeside(const QString &encoder, const QString &ownName)
{
    const QFileInfo file(encoder);
    for (const QString &folder : {file.path(), QFileInfo(file.canonicalFilePath()).path()}) {
        for (const QString &name :
             {ownName, QStringLiteral("LICENCES"), QStringLiteral("LICENCE"), QStringLiteral("LICENSE"),
              QStringLiteral("LICENSE.txt"), QStringLiteral("LICENSE.md")}) {
            if (const QString path = folder + u'/' + name; QFileInfo(path).isFile())
                return path;
        }
    }
    return {};
}

qsizetype tokensIn(const QString &vocabulary)
{
    QFile file(vocabulary);
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    const auto tokens = parseVocabulary(file.readAll());
    return tokens ? qsizetype(tokens->size()) : 0;
}

// Of work that says whether it was done; a failure takes no time worth telling. The first run makes a
// session's buffers, and isn't timed.
template <typename Work>
std::optional<double> medianTime(Work work)
{
    if (!work())
        return std::nullopt;
    std::vector<double> times;
    for (int run = 0; run < timedRuns; ++run) {
        QElapsedTimer timer;
        timer.start();
        if (!work())
            return std::nullopt;
        times.push_back(double(timer.nsecsElapsed()) / nanosecondsPerMillisecond);
    }
    std::ranges::nth_element(times, times.begin() + timedRuns / 2);
    return times[timedRuns / 2];
}

std::optional<EmbeddingTimes> timesOf(Family family, const QStringList &directories)
{
    const bool isChinese = family == Family::chinese;
    const Outcome<InstalledPair> pair = InstalledPair::load(isChinese, directories);
    if (!pair)
        return std::nullopt;
    const CaptionedDrawing drawing = captionedDrawings().constFirst();
    const QImage picture = drawing.picture.scaled(thumbnailSize);
    const QString caption = isChinese ? drawing.chinese : drawing.english;
    const auto pictureTime = medianTime([&] { return pair->embedPicture(picture).has_value(); });
    const auto textTime = medianTime([&] { return pair->embedText(caption).has_value(); });
    if (!pictureTime || !textTime)
        return std::nullopt;
    return EmbeddingTimes{.picture = *pictureTime, .text = *textTime};
}

QString fileLine(const QString &what, const QString &path)
{
    const QFileInfo file(path);
    const QString target =
        file.isSymLink() ? QStringLiteral(" (a link to %1)").arg(file.canonicalFilePath()) : QString();
    return QStringLiteral("  %1: %2, %3%4")
        .arg(what, path, QLocale::c().formattedDataSize(file.size(), 1), target);
}

QString licenceLine(const QString &licence)
{
    if (licence.isEmpty())
        return QStringLiteral("  licence: no text found beside the encoders");
    QFile file(licence);
    QString head;
    if (file.open(QIODevice::ReadOnly)) {
        while (head.isEmpty() && !file.atEnd())
            head = QString::fromUtf8(file.readLine()).trimmed();
    }
    return QStringLiteral("  licence: %1 (\"%2\")").arg(licence, head);
}

QStringList selfTestLines(const Outcome<SelfTestReport> &outcome)
{
    if (!outcome)
        return {QStringLiteral("  self-test: FAILED: ") + outcome.error().text()};
    const QString remark =
        outcome->isConvincing() ? QString() : QStringLiteral("; not clearly more than chance would find");
    return {QStringLiteral("  length: %1").arg(outcome->dimension),
            QStringLiteral("  self-test: passed, %1 of %2 drawings found by their captions%3")
                .arg(outcome->ranked)
                .arg(outcome->pairs)
                .arg(remark)};
}

QString nameOf(Family family)
{
    switch (family) {
    case Family::chinese:
        return QStringLiteral("Chinese");
    case Family::openai:
        return QStringLiteral("English");
    }
    Q_UNREACHABLE();
}

} // namespace

FamilyCheck foundFamily(Family family, const QStringList &directories)
{
    const FamilyFiles names = FamilyFiles::of(family);
    FamilyCheck check;
    check.family = family;
    const auto look = [&](const QString &name, QString &path) {
        path = foundFile(name, directories);
        if (path.isEmpty())
            check.missing.append(name);
    };
    look(names.vision, check.vision);
    look(names.text, check.text);
    look(names.vocabulary, check.vocabulary);
    if (!check.vocabulary.isEmpty())
        check.vocabularySize = tokensIn(check.vocabulary);
    if (!check.isAbsent())
        check.licence = licenceBeside(check.vision.isEmpty() ? check.text : check.vision, names.licence);
    return check;
}

FamilyCheck checkFamily(Family family, const QStringList &directories)
{
    FamilyCheck check = foundFamily(family, directories);
    if (check.missing.isEmpty()) {
        check.selfTest = selfTest(check.vision, check.text, check.vocabulary);
        if (check.isSound())
            check.times = timesOf(family, directories);
    }
    return check;
}

QStringList checkLines(const FamilyCheck &check)
{
    const QString name = nameOf(check.family);
    if (check.isAbsent())
        return {name + QStringLiteral(": not installed")};
    QStringList lines;
    lines += check.missing.isEmpty() ? name + QStringLiteral(": installed")
                                     : QStringLiteral("%1: INCOMPLETE, without %2")
                                           .arg(name, check.missing.join(QStringLiteral(", ")));
    if (!check.vision.isEmpty())
        lines += fileLine(QStringLiteral("vision"), check.vision);
    if (!check.text.isEmpty())
        lines += fileLine(QStringLiteral("text"), check.text);
    if (!check.vocabulary.isEmpty())
        lines +=
            QStringLiteral("  vocabulary: %1, %2 tokens").arg(check.vocabulary).arg(check.vocabularySize);
    lines += licenceLine(check.licence);
    if (check.selfTest)
        lines += selfTestLines(*check.selfTest);
    if (check.times) {
        lines += QStringLiteral("  speed: %1 ms a picture, %2 ms a text (medians of %3, one thread)")
                     .arg(check.times->picture, 0, 'f', 1)
                     .arg(check.times->text, 0, 'f', 1)
                     .arg(timedRuns);
    }
    return lines;
}

} // namespace Qorvane::Encoders
