#include "encoders/layout/ModelFolder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QLocale>
#include <QSet>

#include <algorithm>
#include <array>
#include <utility>

namespace Qorvane::Encoders {

namespace {

// Publishers put graphs one folder deep; a few more do no harm. A whole home folder isn't searched.
constexpr int greatestDepth = 4;
constexpr int greatestFileCount = 10'000;
// Descriptions are a few kilobytes.
constexpr qint64 greatestDescription = qint64(16) << 20;

bool isOneOf(const QString &name, std::initializer_list<QLatin1StringView> names)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

bool isGraphFolder(const QString &name)
{
    return isOneOf(name,
                   {QLatin1StringView("onnx"), QLatin1StringView("visual"), QLatin1StringView("textual"),
                    QLatin1StringView("vision"), QLatin1StringView("text")});
}

bool isLicence(const QString &lowerName)
{
    for (const char *stem : {"license", "licence", "copying", "notice"}) {
        const QString start = QString::fromLatin1(stem);
        if (lowerName == start || lowerName.startsWith(start + u'.') || lowerName.startsWith(start + u'-'))
            return !lowerName.endsWith(QStringLiteral(".onnx"));
    }
    return false;
}

/// Gathers files; the first of a kind counts, so nearer ones go first.
class Gathering
{
public:
    /// `leftOut`: a folder, all links followed, that isn't looked into unless it is named.
    explicit Gathering(QString leftOut)
        : m_leftOut(std::move(leftOut))
    {
    }

    Outcome<ModelFolder> gather(const QStringList &paths);

private:
    Outcome<void> addFolder(const QString &path, int depth);
    Outcome<void> addDescriptionsIn(const QString &path);
    Outcome<void> addFile(const QFileInfo &file);
    Outcome<void> addDescription(const QFileInfo &file, QJsonObject &target);
    void preferNamedVocabulary(const QStringList &paths);

    const QString m_leftOut;
    ModelFolder m_found;
    QSet<QString> m_seen;
    int m_fileCount = 0;
};

Outcome<void> Gathering::addDescription(const QFileInfo &file, QJsonObject &target)
{
    if (!target.isEmpty())
        return {};
    const auto unreadable = [&file](const QString &found) {
        return problem(QStringLiteral("a description in JSON in %1").arg(file.filePath()), found,
                       QStringLiteral("fetch the file again"));
    };
    if (file.size() > greatestDescription)
        return unreadable(QLocale::c().formattedDataSize(file.size()));
    QFile opened(file.filePath());
    if (!opened.open(QIODevice::ReadOnly))
        return unreadable(opened.errorString());
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(opened.readAll(), &error);
    if (!document.isObject())
        return unreadable(error.error == QJsonParseError::NoError ? QStringLiteral("no object")
                                                                  : error.errorString());
    target = document.object();
    m_found.descriptions.append(file.fileName());
    return {};
}

Outcome<void> Gathering::addFile(const QFileInfo &file)
{
    const QString path = file.absoluteFilePath();
    if (m_seen.contains(path))
        return {};
    m_seen.insert(path);
    const QString name = file.fileName().toLower();
    const auto first = [&path](QString &target) {
        if (target.isEmpty())
            target = path;
        return Outcome<void>();
    };
    if (name.endsWith(QStringLiteral(".onnx"))) {
        m_found.graphs.append(path);
        return {};
    }
    if (isOneOf(name,
                {QLatin1StringView("preprocessor_config.json"), QLatin1StringView("preprocess_cfg.json"),
                 QLatin1StringView("image_processor_config.json"),
                 QLatin1StringView("processor_config.json")}))
        return addDescription(file, m_found.preprocessing);
    if (isOneOf(name, {QLatin1StringView("config.json"), QLatin1StringView("open_clip_config.json")}))
        return addDescription(file, m_found.config);
    if (name == QStringLiteral("tokenizer_config.json"))
        return addDescription(file, m_found.tokenizerConfig);
    if (name == QStringLiteral("special_tokens_map.json"))
        return addDescription(file, m_found.specialTokens);
    if (isOneOf(name, {QLatin1StringView("vocab.json"), QLatin1StringView("chinese_vocab.json")}))
        return first(m_found.vocabularyJson);
    if (name == QStringLiteral("vocab.txt"))
        return first(m_found.vocabularyText);
    if (name == QStringLiteral("tokenizer.json"))
        return first(m_found.tokenizerJson);
    if (isLicence(name))
        return first(m_found.licence);
    if (name == QStringLiteral("readme.md"))
        return first(m_found.readme);
    return {};
}

Outcome<void> Gathering::addFolder(const QString &path, int depth)
{
    const QFileInfoList entries =
        QDir(path).entryInfoList(QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
    for (const QFileInfo &entry : entries) {
        if (++m_fileCount > greatestFileCount)
            return problem(QStringLiteral("a model's folder"),
                           QStringLiteral("more than %1 files in it").arg(greatestFileCount),
                           QStringLiteral("name the folder that holds the model alone"));
        if (!entry.isFile())
            continue;
        if (auto added = addFile(entry); !added)
            return added;
    }
    for (const QFileInfo &entry : entries) {
        // Links to folders could lead round in circles.
        if (!entry.isDir() || entry.isSymLink() || depth == 0)
            continue;
        if (!m_leftOut.isEmpty() && entry.canonicalFilePath() == m_leftOut)
            continue;
        if (auto added = addFolder(entry.filePath(), depth - 1); !added)
            return added;
    }
    return {};
}

Outcome<void> Gathering::addDescriptionsIn(const QString &path)
{
    const QFileInfoList entries = QDir(path).entryInfoList(QDir::Files, QDir::Name);
    for (const QFileInfo &entry : entries) {
        // What the user didn't name is no model to be imported.
        if (entry.suffix().toLower() == QStringLiteral("onnx"))
            continue;
        if (auto added = addFile(entry); !added)
            return added;
    }
    return {};
}

/// A vocabulary that was named puts out of the way whatever else was found, of any kind.
void Gathering::preferNamedVocabulary(const QStringList &paths)
{
    QSet<QString> named;
    for (const QString &path : paths)
        named.insert(QFileInfo(path).absoluteFilePath());
    const std::array<QString *, 3> found{&m_found.vocabularyJson, &m_found.vocabularyText,
                                         &m_found.tokenizerJson};
    const auto isNamed = [&named](const QString *path) { return named.contains(*path); };
    if (std::ranges::none_of(found, isNamed))
        return;
    for (QString *path : found) {
        if (!isNamed(path))
            path->clear();
    }
}

Outcome<ModelFolder> Gathering::gather(const QStringList &paths)
{
    // Files that were named count before those that lie in folders.
    QStringList filesFirst = paths;
    std::ranges::stable_partition(filesFirst, [](const QString &path) { return !QFileInfo(path).isDir(); });
    for (const QString &path : std::as_const(filesFirst)) {
        const QFileInfo info(path);
        Outcome<void> added;
        if (info.isDir())
            added = addFolder(info.absoluteFilePath(), greatestDepth);
        else if (info.isFile())
            added = addFile(info);
        else
            added = problem(QStringLiteral("a folder or file at %1").arg(path), QStringLiteral("nothing"),
                            QStringLiteral("look after the spelling"));
        if (!added)
            return tl::unexpected(added.error());
    }
    // What lies around the files comes behind.
    for (const QString &path : paths) {
        const QFileInfo info(path);
        if (info.isDir())
            continue;
        QStringList around{info.absolutePath()};
        if (isGraphFolder(info.absoluteDir().dirName()))
            around.append(QFileInfo(info.absolutePath()).absolutePath());
        for (const QString &folder : around) {
            if (auto added = addDescriptionsIn(folder); !added)
                return tl::unexpected(added.error());
        }
    }
    // A folder of graphs alone, named as such: its descriptions lie above.
    for (const QString &path : paths) {
        const QFileInfo info(QDir(path).absolutePath());
        if (info.isDir() && isGraphFolder(info.fileName())) {
            if (auto added = addDescriptionsIn(info.absolutePath()); !added)
                return tl::unexpected(added.error());
        }
    }
    preferNamedVocabulary(paths);
    return m_found;
}

} // namespace

Outcome<ModelFolder> ModelFolder::open(const QStringList &paths, const QString &leftOut)
{
    return Gathering(QFileInfo(leftOut).canonicalFilePath()).gather(paths);
}

} // namespace Qorvane::Encoders
