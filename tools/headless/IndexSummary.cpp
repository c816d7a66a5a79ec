#include "headless/IndexSummary.h"

#include "library/QorManage.h"
#include "store/EmbeddingStore.h"

#include <QFileInfo>
#include <QSet>

#include <optional>

namespace Qorvane {

namespace {

QString number(double value)
{
    return QString::number(value, 'f', 1);
}

} // namespace

IndexSummary IndexSummary::of(const QList<FileUrl> &folders)
{
    IndexSummary summary;
    // A folder inside another one of the list has its files counted once.
    QSet<QString> counted;
    for (const FileUrl &folder : folders) {
        const QStringList rows = EmbeddingStore::shared().fetchPathsWithPrefix(folder.path());
        const QSet<QString> indexed(rows.begin(), rows.end());
        for (const FileUrl &file : QorManage::collectMediaFiles(folder)) {
            if (counted.contains(file.path()))
                continue;
            counted.insert(file.path());
            ++summary.files;
            const std::optional<FileUrl> thumbnail = QorManage::thumbnailURL(file);
            if (thumbnail && QFileInfo::exists(thumbnail->path()))
                ++summary.thumbnails;
            if (indexed.contains(file.path()))
                ++summary.vectors;
        }
    }
    return summary;
}

QString indexReport(const IndexSummary &before, const IndexSummary &after, double seconds)
{
    const QString speed = seconds > 0 ? number(double(after.files) / seconds) : QStringLiteral("-");
    return QStringLiteral("%1 files, %2 thumbnails (%3 new), %4 vectors (%5 new) in %6 s: %7 files a second")
        .arg(QString::number(after.files), QString::number(after.thumbnails),
             QString::number(after.thumbnails - before.thumbnails), QString::number(after.vectors),
             QString::number(after.vectors - before.vectors), number(seconds), speed);
}

} // namespace Qorvane
