#include "headless/TagCommands.h"

#include "headless/LibraryFile.h"
#include "headless/LibraryOpening.h"
#include "headless/ShownText.h"
#include "media/SupportedExtensions.h"
#include "platform/FileAttributes.h"
#include "store/EmbeddingStore.h"
#include "store/TagSpelling.h"

#include <QFileInfo>
#include <QHash>

#include <algorithm>
#include <optional>

namespace Qorvane {

namespace {

using TagAction = HeadlessCommand::TagAction;

EmbeddingStore &store()
{
    return EmbeddingStore::shared();
}

QString quoted(const QString &tag)
{
    return u'"' + shown(tag) + u'"';
}

QString stars(int rating)
{
    return rating == 1 ? QStringLiteral("1 star") : QStringLiteral("%1 stars").arg(rating);
}

void tell(CommandReport &report, const QString &what, const QString &path)
{
    report.output += what + QStringLiteral(": ") + path + u'\n';
}

// What the library keeps of a file doesn't go with the file.
bool isKnown(const QString &path)
{
    return !store().getTags(path).isEmpty() || store().getRating(path);
}

// Why the file can't be given a tag or stars; nothing when it can.
std::optional<QString> obstacle(const QString &path, const std::optional<QString> &known)
{
    const QFileInfo info(path);
    if (!info.exists())
        return QStringLiteral("no such file: ") + path;
    if (!info.isFile() || !isMediaFile(FileUrl::file(path)))
        return QStringLiteral("not a picture or video: ") + path;
    if (!known)
        return QStringLiteral("not in the library, put its folder in with \"add\" first: ") + path;
    return std::nullopt;
}

bool givesSomething(const HeadlessCommand &command)
{
    return command.tagAction == TagAction::add || (command.tagAction == TagAction::rate && command.rating);
}

// The command's files under the names that the library has for them. Tags and stars can be taken off files
// that are gone, or whose folder has left the library, as long as there are any.
QStringList filesOf(const HeadlessCommand &command, CommandReport &report)
{
    const QList<FileUrl> roots = storedLibraryFolders();
    QStringList files;
    for (const QString &path : command.files) {
        const std::optional<QString> known = pathInLibrary(path, roots);
        const QString file = known.value_or(path);
        if (givesSomething(command) || !isKnown(file)) {
            if (const std::optional<QString> reason = obstacle(path, known)) {
                report.errors.append(*reason);
                continue;
            }
        }
        if (!files.contains(file))
            files.append(file);
    }
    return files;
}

void listTags(const HeadlessCommand &command, CommandReport &report)
{
    const QStringList tags =
        command.tag.isEmpty() ? store().listAllTags() : store().searchTags(command.tag, command.limit, true);
    if (tags.isEmpty()) {
        report.output = command.tag.isEmpty()
                            ? QStringLiteral("no tags in use\n")
                            : QStringLiteral("no tag begins with %1\n").arg(quoted(command.tag));
        return;
    }
    const QHash<QString, int> counts = store().getAllTagCounts();
    for (const QString &tag : tags)
        report.output += QStringLiteral("%1  %2\n").arg(counts.value(tag), 6).arg(shown(tag));
}

void showFile(const QString &path, CommandReport &report)
{
    const QStringList tags = store().getTags(path);
    const std::optional<int> rating = store().getRating(path);
    QStringList texts;
    std::transform(tags.begin(), tags.end(), std::back_inserter(texts), quoted);
    report.output += path + QStringLiteral("\n    ") +
                     (rating ? stars(*rating) : QStringLiteral("no stars")) + QStringLiteral("; ") +
                     (texts.isEmpty() ? QStringLiteral("no tags") : texts.join(QStringLiteral(", "))) + u'\n';
}

// The store tells of failures in its log only, so it is asked whether the tag is there.
void tellIfDone(bool isDone, const QString &what, const QString &path, CommandReport &report)
{
    if (isDone)
        tell(report, what, path);
    else
        report.errors.append(QStringLiteral("can't be stored, --log FILE tells why: ") + path);
}

void addTag(const QString &tag, const QString &path, CommandReport &report)
{
    if (store().getTags(path).contains(tag)) {
        tell(report, QStringLiteral("already has %1").arg(quoted(tag)), path);
        return;
    }
    store().addTag(path, tag);
    tellIfDone(store().getTags(path).contains(tag), QStringLiteral("added %1").arg(quoted(tag)), path,
               report);
}

void removeTag(const QString &tag, const QString &path, CommandReport &report)
{
    if (!store().getTags(path).contains(tag)) {
        tell(report, QStringLiteral("doesn't have %1").arg(quoted(tag)), path);
        return;
    }
    store().removeTag(path, tag);
    tellIfDone(!store().getTags(path).contains(tag), QStringLiteral("removed %1").arg(quoted(tag)), path,
               report);
}

void renameTag(const QString &oldTag, const QString &newTag, const QString &path, CommandReport &report)
{
    const QStringList before = store().getTags(path);
    // The store would give it the new tag none the less, which nobody means who says "rename".
    if (!before.contains(oldTag)) {
        tell(report, QStringLiteral("doesn't have %1").arg(quoted(oldTag)), path);
        return;
    }
    if (oldTag == newTag) {
        tell(report, QStringLiteral("already has %1").arg(quoted(newTag)), path);
        return;
    }
    if (differOnlyInSpelling(oldTag, newTag)) {
        report.errors.append(
            QStringLiteral(
                "%1 and %2 differ only in case or in how accents are composed, remove the one and add the "
                "other: ")
                .arg(quoted(oldTag), quoted(newTag)) +
            path);
        return;
    }
    store().replaceTag(path, oldTag, newTag);
    const QStringList after = store().getTags(path);
    tellIfDone(after.contains(newTag) && !after.contains(oldTag),
               QStringLiteral("renamed %1 to %2").arg(quoted(oldTag), quoted(newTag)), path, report);
}

void deleteTag(const QString &tag, CommandReport &report)
{
    const int count = store().getTagCount(tag);
    if (count == 0) {
        report.errors.append(QStringLiteral("no file has the tag %1").arg(quoted(tag)));
        return;
    }
    store().deleteTagGlobally(tag);
    if (store().getTagCount(tag) == 0)
        report.output = QStringLiteral("deleted %1 from %2\n")
                            .arg(quoted(tag), count == 1 ? QStringLiteral("1 file")
                                                         : QStringLiteral("%1 files").arg(count));
    else
        report.errors.append(QStringLiteral("can't be deleted, --log FILE tells why: %1").arg(quoted(tag)));
}

void rate(std::optional<int> rating, const QString &path, CommandReport &report)
{
    const std::optional<int> before = store().getRating(path);
    const QString now = rating ? stars(*rating) : QStringLiteral("no stars");
    if (before == rating) {
        tell(report, QStringLiteral("already has %1").arg(now), path);
        return;
    }
    store().setRating(path, rating);
    const QString earlier = before ? QStringLiteral(", earlier %1").arg(stars(*before)) : QString();
    tellIfDone(store().getRating(path) == rating, now + earlier, path, report);
}

// What the command does to each of its files.
void changeFile(const HeadlessCommand &command, const QString &path, CommandReport &report)
{
    switch (command.tagAction) {
    case TagAction::add:
        addTag(command.tag, path, report);
        return;
    case TagAction::remove:
        removeTag(command.tag, path, report);
        return;
    case TagAction::rename:
        renameTag(command.tag, command.newTag, path, report);
        return;
    case TagAction::show:
        showFile(path, report);
        return;
    case TagAction::rate:
        rate(command.rating, path, report);
        return;
    case TagAction::list:
    case TagAction::deleteEverywhere:
        return; // of no file in particular
    }
}

} // namespace

CommandReport runTagCommand(const HeadlessCommand &command)
{
    CommandReport report;
    if (command.tagAction == TagAction::list) {
        listTags(command, report);
    } else if (command.tagAction == TagAction::deleteEverywhere) {
        deleteTag(command.tag, report);
    } else {
        const QStringList files = filesOf(command, report);
        if (!report.errors.isEmpty())
            return report;
        for (const QString &file : files)
            changeFile(command, file, report);
    }
    return report;
}

} // namespace Qorvane
