#include "headless/Recommend.h"

#include "ChineseClipService.h"
#include "headless/LibraryFile.h"
#include "headless/LibraryOpening.h"
#include "headless/Printing.h"
#include "store/EmbeddingStore.h"

#include <QCoroFuture>
#include <QtConcurrent>

namespace Qorvane {

namespace {

struct Photo
{
    QString path; // as the library knows it
    QStringList userTags;
    QStringList tags;
};

Photo photoAt(const QString &path)
{
    EmbeddingStore &store = EmbeddingStore::shared();
    const QString known = pathInLibrary(path, storedLibraryFolders()).value_or(path);
    return {.path = known, .userTags = store.listAllTags(), .tags = store.getTags(known)};
}

QString report(const Photo &photo, const QList<TagRecommendation> &tags)
{
    QString text = photo.path + u'\n';
    int rank = 0;
    for (const TagRecommendation &tag : tags)
        text += QStringLiteral("%1.  similarity %2  %3\n")
                    .arg(++rank, 4)
                    .arg(double(tag.similarity), 0, 'f', 3)
                    .arg(tag.tag);
    return text;
}

} // namespace

QCoro::Task<int> runRecommend(HeadlessCommand command)
{
    ChineseClipService service;
    // To the end of the predefined tags, which are all wanted here.
    co_await service.ensureModelsLoaded();
    if (!service.modelsLoaded()) {
        printError(QStringLiteral("no encoders are installed, so there is nothing to recommend by"));
        co_return 1;
    }
    int code = 0;
    for (const QString &file : std::as_const(command.files)) {
        const QFuture<Photo> looking = QtConcurrent::run(&photoAt, file);
        const Photo photo = co_await looking;
        const QList<TagRecommendation> tags = co_await service.recommendTags(
            FileUrl::file(photo.path), photo.userTags, photo.tags, command.limit);
        if (tags.isEmpty()) {
            // It can't be for want of tags: nobody gives a picture a thousand.
            printError(QStringLiteral("gives no picture, --log FILE tells why: %1").arg(file));
            code = 1;
            continue;
        }
        print(report(photo, tags));
    }
    co_return code;
}

} // namespace Qorvane
