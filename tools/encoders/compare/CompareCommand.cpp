#include "encoders/compare/CompareCommand.h"

#include "encoders/Console.h"
#include "encoders/InstalledEncoders.h"
#include "encoders/QuietLog.h"
#include "encoders/compare/ComparisonReport.h"
#include "encoders/compare/LabelledSet.h"
#include "encoders/compare/PictureEmbedding.h"
#include "encoders/import/ApartProcess.h"
#include "media/WholeFile.h"
#include "platform/Bundle.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <CLI/CLI.hpp>
#include <memory>

namespace Qorvane::Encoders {

namespace {

struct Arguments
{
    std::string pictures;
    std::string captions;
    std::string models;
    std::string language = "en";
    std::string set;
    std::string json;
};

// Texts that mean nothing, so that whatever they find is found for no reason.
QStringList nonsenseQueries(Language language)
{
    switch (language) {
    case Language::english:
        return {QStringLiteral("asdf qwer zxcv"), QStringLiteral("blorptang frimjig"),
                QStringLiteral("xq zzyv kkpw"), QStringLiteral("of the and to"),
                QStringLiteral("snorfle wuggish plimbet")};
    case Language::chinese:
        return {QStringLiteral("龘靐齉爩"), QStringLiteral("的了吗呢吧"), QStringLiteral("嘚啵嘚啵咕噜唧"),
                QStringLiteral("囗囧槑烎"), QStringLiteral("asdf qwer")};
    }
    Q_UNREACHABLE();
}

// Of a long list the reader needs the first and the count.
constexpr qsizetype longestList = 5;

QString listed(const QStringList &texts)
{
    const QString head = texts.mid(0, longestList).join(QStringLiteral(", "));
    const qsizetype rest = texts.size() - longestList;
    return rest > 0 ? QStringLiteral("%1 and %2 more").arg(head).arg(rest) : head;
}

Outcome<QByteArray> contentsOf(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return problem(QStringLiteral("the table %1").arg(path), file.errorString(),
                       QStringLiteral("name a file that can be read with --captions"));
    }
    return file.readAll();
}

/// The rows whose pictures were found, and their files beside them.
struct FoundSet
{
    std::vector<LabelledPicture> rows;
    QStringList files;
};

class Run
{
public:
    Run(const Arguments &arguments, Console &console)
        : m_arguments(arguments)
        , m_console(console)
        , m_language(arguments.language == "zh" ? Language::chinese : Language::english)
    {
    }

    int operator()()
    {
        const QuietLog quiet;
        const TemporaryThumbnails thumbnails;
        if (!thumbnails.isValid()) {
            return m_console.report({QStringLiteral("a folder for thumbnails"),
                                     QStringLiteral("none can be made in %1").arg(QDir::tempPath()),
                                     QStringLiteral("make room there, or set TMPDIR")});
        }
        // A large set takes its time.
        const ApartResult result = doneApart([this] { return compareAndTell(); }, anyProcessorTime);
        if (result.code)
            return *result.code;
        m_console.finishProgress();
        return m_console.report(apartProblem(result));
    }

private:
    int compareAndTell()
    {
        const Outcome<ComparisonResult> result =
            findRows().and_then([this](const FoundSet &found) { return compare(found); });
        if (!result)
            return m_console.report(result.error());
        for (const QString &line : comparisonLines(*result))
            m_console.print(line);
        return writeJson(*result);
    }

    Outcome<FoundSet> findRows()
    {
        const QString folder = QFileInfo(QFile::decodeName(m_arguments.pictures.c_str())).absoluteFilePath();
        const QString set = QString::fromStdString(m_arguments.set);
        const Outcome<std::vector<LabelledPicture>> rows =
            contentsOf(QFile::decodeName(m_arguments.captions.c_str()))
                .and_then([this](const QByteArray &table) { return readLabelledSet(table, m_language); });
        if (!rows)
            return tl::unexpected(rows.error());
        FoundSet found;
        QStringList missing;
        for (const LabelledPicture &row : *rows) {
            if (!set.isEmpty() && row.set != set)
                continue;
            if (const QString file = labelledFile(folder, row.path); !file.isEmpty()) {
                found.rows.push_back(row);
                found.files.append(file);
            } else {
                missing.append(row.path);
            }
        }
        if (!missing.isEmpty())
            m_console.note(QStringLiteral("rows without a picture below %1: %2 (%3)")
                               .arg(folder)
                               .arg(missing.size())
                               .arg(listed(missing)));
        if (found.rows.empty()) {
            return problem(
                QStringLiteral("rows with pictures below %1").arg(folder),
                QStringLiteral("none of %1 rows%2")
                    .arg(rows->size())
                    .arg(set.isEmpty() ? QString() : QStringLiteral(" in the set \"%1\"").arg(set)),
                QStringLiteral("name the folder that the table's paths begin in, or one inside it"));
        }
        return found;
    }

    Outcome<ComparisonResult> compare(const FoundSet &found)
    {
        const QString models = QFile::decodeName(m_arguments.models.c_str());
        const Outcome<InstalledPair> pair =
            InstalledPair::load(m_language == Language::chinese,
                                models.isEmpty() ? Bundle::resourceDirectories() : QStringList{models});
        if (!pair)
            return tl::unexpected(pair.error());
        m_console.note(QStringLiteral("comparing %1 with %2").arg(pair->visionPath(), pair->textPath()));
        const std::vector<EmbeddedFile> vectors = embedFiles(
            found.files, *pair, [this](double done) { showProgress(done, 0, QStringLiteral("pictures")); });
        const std::vector<EmbeddedPicture> pictures = embeddedPictures(found, vectors);
        if (pictures.empty())
            return tl::unexpected(vectors.front().error());
        return compareSet(
            pictures, nonsenseQueries(m_language),
            [&pair](const QString &text) { return pair->embedText(text); },
            [this](double done) { showProgress(1, done, QStringLiteral("queries")); });
    }

    std::vector<EmbeddedPicture> embeddedPictures(const FoundSet &found,
                                                  const std::vector<EmbeddedFile> &vectors)
    {
        std::vector<EmbeddedPicture> pictures;
        QStringList failed;
        QString firstReason;
        for (std::size_t index = 0; index < vectors.size(); ++index) {
            if (vectors[index]) {
                pictures.push_back({found.rows[index].labels, found.rows[index].captions, *vectors[index]});
                continue;
            }
            if (failed.isEmpty())
                firstReason = vectors[index].error().text();
            failed.append(found.rows[index].path);
        }
        if (!failed.isEmpty())
            m_console.note(QStringLiteral("pictures without a vector: %1 (%2); the first: %3")
                               .arg(failed.size())
                               .arg(listed(failed), firstReason));
        return pictures;
    }

    // One bar for both halves; neither is much longer than the other.
    void showProgress(double pictures, double queries, const QString &activity)
    {
        m_console.showProgress((pictures + queries) / 2, activity);
    }

    int writeJson(const ComparisonResult &result)
    {
        const QString path = QFile::decodeName(m_arguments.json.c_str());
        if (path.isEmpty() || writeWholeFile(path, comparisonJson(result)))
            return ExitCode::success;
        return m_console.report({QStringLiteral("a file to write"),
                                 QStringLiteral("%1 can't be written").arg(path),
                                 QStringLiteral("name another with --json")});
    }

    const Arguments &m_arguments;
    Console &m_console;
    const Language m_language;
};

} // namespace

void addCompareCommand(CLI::App &app, CommandBody &chosen)
{
    const auto arguments = std::make_shared<Arguments>();
    CLI::App *command =
        app.add_subcommand("compare", "Score the installed pair on a labelled set of pictures");
    command->add_option("pictures", arguments->pictures, "Folder of the pictures; rows of others don't count")
        ->required()
        ->check(CLI::ExistingDirectory)
        ->type_name("PICTURES");
    command->add_option("--captions", arguments->captions, "Table of labels and captions")
        ->required()
        ->check(CLI::ExistingFile)
        ->type_name("TSV");
    command
        ->add_option("--models", arguments->models,
                     "Folder of the encoders, in place of where the application looks")
        ->check(CLI::ExistingDirectory)
        ->type_name("DIR");
    command->add_option("--language", arguments->language, "Of the texts and the encoders: en or zh")
        ->check(CLI::IsMember({"en", "zh"}))
        ->capture_default_str();
    command->add_option("--set", arguments->set, "Only rows with this in their column \"set\"")
        ->type_name("NAME");
    command->add_option("--json", arguments->json, "Write all figures to a file too")->type_name("FILE");
    command->callback([arguments, &chosen] {
        chosen = [arguments](Console &console) { return Run(*arguments, console)(); };
    });
}

} // namespace Qorvane::Encoders
