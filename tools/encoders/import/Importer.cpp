#include "encoders/import/Importer.h"

#include "encoders/LanguageRemark.h"
#include "encoders/graph/Adapters.h"
#include "encoders/import/EncoderInstall.h"
#include "encoders/import/PublishedLicence.h"
#include "encoders/layout/LayoutRecognition.h"
#include "encoders/layout/PublishedSettings.h"
#include "encoders/layout/TokenRows.h"
#include "encoders/layout/TowerSearch.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace Qorvane::Encoders {

namespace {

// What CLIP's pictures and texts are when nothing else is said.
constexpr int usualSide = 224;
constexpr int usualContext = 77;
// The token that the application ends texts of the OpenAI family with.
constexpr int openaiEndToken = 49407;
// Tokens of the two families' own vocabularies.
constexpr std::int64_t chineseTokens = 21128;
constexpr std::int64_t openaiTokens = 49408;
// What the Chinese family's own exports are told by.
constexpr int chineseContext = 52;
constexpr char chineseTextOutput[] = "unnorm_text_features";
// Colours from 0 to 255.
constexpr double greatestColour = 255;

QString familyText(Family family)
{
    switch (family) {
    case Family::chinese:
        return QStringLiteral("Chinese");
    case Family::openai:
        return QStringLiteral("OpenAI");
    }
    return {};
}

QString adaptedLine(const QString &what, const QStringList &said)
{
    return QStringLiteral("%1: %2").arg(what, said.isEmpty() ? QStringLiteral("nothing had to be")
                                                             : said.join(QStringLiteral(", ")));
}

/// One import, from step to step.
class Import
{
public:
    Import(const ImportRequest &request, const ImportProgress &progress)
        : m_request(request)
        , m_progress(progress)
    {
    }

    Outcome<ImportReport> run();

private:
    Outcome<void> recognise();
    Outcome<void> findVocabulary();
    Outcome<void> findForms();
    Outcome<void> adapt(EncoderInstall &install);
    Outcome<void> saveGraph(OnnxGraph &graph, const EncoderInstall &install, const QString &name);
    Outcome<void> saveText(const QByteArray &text, const EncoderInstall &install, const QString &name);
    Outcome<void> install();

    Family guessedFamily() const;
    void describePictures(const PublishedSettings &settings);

    const ImportRequest &m_request;
    const ImportProgress &m_progress;
    ModelFolder m_folder;
    std::optional<Towers> m_towers;
    PublishedVocabulary m_vocabulary;
    VisionForm m_vision;
    TextForm m_text;
    QStringList m_installed;
    ImportReport m_report;
};

Outcome<void> Import::recognise()
{
    m_progress(0, QStringLiteral("reading"));
    // What an earlier import put into a folder inside of the model's own is none of the model.
    auto folder = ModelFolder::open(m_request.paths, m_request.destination);
    if (!folder)
        return tl::unexpected(folder.error());
    m_folder = *std::move(folder);
    auto towers = findTowers(m_folder.graphs);
    if (!towers)
        return tl::unexpected(towers.error());
    m_towers = *std::move(towers);
    if (isAdapted(m_towers->vision.model()) || isAdapted(m_towers->text.model()))
        return problem(QStringLiteral("a model as it was published"),
                       QStringLiteral("%1 and %2, which are imported already")
                           .arg(m_towers->vision.path(), m_towers->text.path()),
                       QStringLiteral("copy the installed files as they are, with their vocabulary"));
    if (m_towers->isCut)
        m_report.recognised.append(
            QStringLiteral("%1: pictures and texts in one graph").arg(m_towers->vision.fileName()));
    if (!m_folder.descriptions.isEmpty())
        m_report.recognised.append(QStringLiteral("descriptions: ") +
                                   m_folder.descriptions.join(QStringLiteral(", ")));
    if (!m_towers->passedOver.isEmpty())
        m_report.recognised.append(
            QStringLiteral("passed over: %1 (name files instead of the folder to choose)")
                .arg(m_towers->passedOver.join(QStringLiteral(", "))));
    return {};
}

/// Of a model without a vocabulary: by the number of tokens that its graph knows, else by what its publisher
/// calls and forms it.
Family Import::guessedFamily() const
{
    if (m_request.family)
        return *m_request.family;
    const OnnxGraph &text = m_towers->text;
    const auto form = recogniseText(text.graph(), m_towers->textOutput, usualContext, text.fileName());
    const auto rows = form ? tokenRows(text.graph(), form->ids) : std::nullopt;
    if (rows == chineseTokens)
        return Family::chinese;
    if (rows == openaiTokens)
        return Family::openai;
    const bool isChinese = m_towers->textOutput.name == chineseTextOutput ||
                           (form && form->context == chineseContext) ||
                           m_folder.config.value(u"model_type")
                               .toString()
                               .contains(QStringLiteral("chinese"), Qt::CaseInsensitive) ||
                           text.fileName().contains(QStringLiteral("chinese"), Qt::CaseInsensitive) ||
                           text.fileName().contains(QStringLiteral("-cn"), Qt::CaseInsensitive);
    return isChinese ? Family::chinese : Family::openai;
}

Outcome<void> Import::findVocabulary()
{
    auto published = publishedVocabulary(m_folder);
    if (!published)
        return tl::unexpected(published.error());
    if (*published) {
        m_vocabulary = **std::move(published);
    } else {
        const Family family = guessedFamily();
        const QString name = FamilyFiles::of(family).vocabulary;
        for (const QString &folder : m_request.vocabularyFolders) {
            const QString path = folder + u'/' + name;
            if (!QFileInfo(path).isFile())
                continue;
            auto vocabulary = readVocabularyFile(path);
            if (!vocabulary)
                return tl::unexpected(vocabulary.error());
            m_vocabulary = *std::move(vocabulary);
            m_report.missing.append(
                QStringLiteral("the model came without a vocabulary: that of the %1 family in "
                               "%2 is used; if searches find nonsense, name the model's own")
                    .arg(familyText(family), folder));
            break;
        }
        if (m_vocabulary.json.isEmpty())
            return problem(
                QStringLiteral("a vocabulary with the model"),
                QStringLiteral("none of vocab.json, vocab.txt, tokenizer.json"),
                QStringLiteral("fetch the one that the model's publisher gives, %1, and name it as a further "
                               "PATH; or build the starter pair first, whose vocabulary is that of most CLIP "
                               "models; the model looks like one of the %2 family, which --family overrides")
                    .arg(family == Family::chinese ? QStringLiteral("vocab.txt")
                                                   : QStringLiteral("vocab.json"),
                         familyText(family)));
    }
    m_report.family = m_request.family.value_or(m_vocabulary.family);
    m_report.recognised.append(QStringLiteral("vocabulary: %1, %2 tokens, %3 family")
                                   .arg(QFileInfo(m_vocabulary.source).fileName())
                                   .arg(m_vocabulary.size)
                                   .arg(familyText(m_report.family)));
    if (m_report.family != m_vocabulary.family)
        m_report.missing.append(
            QStringLiteral("the vocabulary looks like one of the %1 family, and the application "
                           "goes by it")
                .arg(familyText(m_vocabulary.family)));
    if (m_vocabulary.family == Family::openai &&
        m_vocabulary.endToken.value_or(openaiEndToken) != openaiEndToken)
        m_report.missing.append(
            QStringLiteral("the vocabulary ends texts with token %1, the application with %2: "
                           "this isn't CLIP's own vocabulary, and searches may find nonsense")
                .arg(*m_vocabulary.endToken)
                .arg(openaiEndToken));
    return {};
}

void Import::describePictures(const PublishedSettings &settings)
{
    m_vision.filter = settings.filter.value_or(m_vision.filter);
    m_vision.mean = settings.mean.value_or(m_vision.mean);
    m_vision.deviation = settings.deviation.value_or(m_vision.deviation);
    m_vision.isBlueFirst = settings.isBlueFirst;
    if (settings.rescaling)
        m_vision.scale = *settings.rescaling * greatestColour;
    if (settings.mean && settings.deviation)
        return;
    QString said = QStringLiteral("no description of the colours' normalisation was found: CLIP's own "
                                  "is assumed; name the model's preprocessor_config.json as a further PATH");
    if (m_vision.height != usualSide || m_vision.width != usualSide)
        said += QStringLiteral(". Models of %1 x %2 pixels often want another, and with a wrong one searches "
                               "find nonsense")
                    .arg(m_vision.width)
                    .arg(m_vision.height);
    m_report.missing.append(said);
}

Outcome<void> Import::findForms()
{
    const PublishedSettings settings = publishedSettings(m_folder);
    auto vision =
        recogniseVision(m_towers->vision.graph(), m_towers->visionOutput, settings.height.value_or(usualSide),
                        settings.width.value_or(usualSide), m_towers->vision.fileName());
    if (!vision)
        return tl::unexpected(vision.error());
    m_vision = *std::move(vision);
    describePictures(settings);
    auto text = recogniseText(m_towers->text.graph(), m_towers->textOutput,
                              std::min(settings.context.value_or(usualContext), usualContext),
                              m_towers->text.fileName());
    if (!text)
        return tl::unexpected(text.error());
    m_text = *std::move(text);
    const bool isChinese = m_vocabulary.family == Family::chinese;
    m_text.endToken = isChinese ? m_vocabulary.endToken.value_or(0) : openaiEndToken;
    // With a mask, or behind the end token that the vector is taken from, padding has no effect; some graphs
    // have neither.
    if (!isChinese && m_text.mask.empty() && settings.padToken.value_or(0) != openaiEndToken)
        m_text.padToken = settings.padToken.value_or(0);

    for (const auto &[graph, forms] : {std::pair{&m_towers->vision, declaredInputs(m_towers->vision.graph())},
                                       std::pair{&m_towers->text, declaredInputs(m_towers->text.graph())}}) {
        QStringList inputs;
        for (const ValueForm &form : forms)
            inputs.append(formText(form));
        const ValueForm &output = graph == &m_towers->vision ? m_towers->visionOutput : m_towers->textOutput;
        m_report.recognised.append(
            QStringLiteral("%1: %2 to %3, operator set %4")
                .arg(graph->fileName(), inputs.join(QStringLiteral(", ")), formText(output))
                .arg(graph->opset()));
    }
    return {};
}

Outcome<void> Import::saveGraph(OnnxGraph &graph, const EncoderInstall &install, const QString &name)
{
    const auto written = graph.save(install.staging() + u'/' + name, m_request.singleFile);
    if (!written)
        return tl::unexpected(written.error());
    for (const QString &path : *written)
        m_installed.append(QFileInfo(path).fileName());
    if (written->size() > 1)
        m_report.adapted.append(QStringLiteral("%1 has its weights in a file beside it").arg(name));
    return {};
}

Outcome<void> Import::saveText(const QByteArray &text, const EncoderInstall &install, const QString &name)
{
    QFile file(install.staging() + u'/' + name);
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size() || !file.flush())
        return problem(QStringLiteral("room for %1").arg(name), file.errorString(),
                       QStringLiteral("make room on the disk, or choose another folder with --out"));
    m_installed.append(name);
    return {};
}

Outcome<void> Import::adapt(EncoderInstall &install)
{
    m_progress(0.3, QStringLiteral("adapting"));
    const FamilyFiles files = FamilyFiles::of(m_report.family);
    m_report.adapted.append(
        adaptedLine(QStringLiteral("pictures"), adaptVision(m_towers->vision.model(), m_vision)));
    m_report.adapted.append(adaptedLine(QStringLiteral("texts"), adaptText(m_towers->text.model(), m_text)));
    if (auto saved = saveGraph(m_towers->vision, install, files.vision); !saved)
        return saved;
    if (auto saved = saveGraph(m_towers->text, install, files.text); !saved)
        return saved;
    // Their memory is needed for the trial.
    m_towers.reset();
    if (auto saved = saveText(m_vocabulary.json, install, files.vocabulary); !saved)
        return saved;
    const QByteArray licence = publishedLicence(m_folder);
    if (licence.isEmpty()) {
        m_report.missing.append(QStringLiteral("no licence text was found with the model: look at what its "
                                               "publisher allows"));
        return {};
    }
    return saveText(licence, install, files.licence);
}

Outcome<void> Import::install()
{
    auto install = EncoderInstall::begin(m_request.destination);
    if (!install)
        return tl::unexpected(install.error());
    if (auto adapted = adapt(*install); !adapted)
        return adapted;

    m_progress(0.6, QStringLiteral("trying"));
    const FamilyFiles files = FamilyFiles::of(m_report.family);
    const QString staging = install->staging() + u'/';
    auto tested = selfTest(staging + files.vision, staging + files.text, staging + files.vocabulary);
    if (!tested)
        return tl::unexpected(tested.error());
    m_report.selfTest = *tested;
    if (!tested->isConvincing())
        m_report.missing.append(
            QStringLiteral("the pair put only %1 of %2 drawings with their captions: if searches "
                           "find nonsense, the towers are of different models, or the "
                           "vocabulary is another one's")
                .arg(tested->ranked)
                .arg(tested->pairs));

    m_progress(0.9, QStringLiteral("installing"));
    const auto committed = install->commit(m_report.family, m_installed);
    if (!committed)
        return tl::unexpected(committed.error());
    if (!*committed)
        m_report.missing.append(
            QStringLiteral(
                "the files were put into %1 one by one, since it holds folders, is a mount point or "
                "lies where nothing else may be put; should that be interrupted, import again")
                .arg(m_request.destination));
    const QString remark = languageRemark(QStringList{m_request.destination} + m_request.vocabularyFolders);
    if (!remark.isEmpty())
        m_report.missing.append(remark);
    m_progress(1, QStringLiteral("installed"));
    return {};
}

Outcome<ImportReport> Import::run()
{
    for (const auto step :
         {&Import::recognise, &Import::findVocabulary, &Import::findForms, &Import::install}) {
        if (auto done = (this->*step)(); !done)
            return tl::unexpected(done.error());
    }
    return std::move(m_report);
}

} // namespace

Outcome<ImportReport> importEncoders(const ImportRequest &request, const ImportProgress &progress)
{
    return Import(request, progress).run();
}

} // namespace Qorvane::Encoders
