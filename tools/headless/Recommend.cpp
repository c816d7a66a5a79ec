#include "headless/Recommend.h"

#include "ChineseClipService.h"
#include "headless/LibraryFile.h"
#include "headless/LibraryOpening.h"
#include "headless/Printing.h"
#include "headless/ShownText.h"
#include "platform/PredefinedTags.h"
#include "store/EmbeddingStore.h"

#include <QCoroFuture>
#include <QSet>
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
                    .arg(shown(tag.tag));
    return text;
}

// The predefined tags whose texts are still to be encoded, which takes a while.
int missingVectorCount()
{
    const TagVectors stored = EmbeddingStore::shared().loadAllTagVectors();
    QSet<QString> missing(predefinedTags().begin(), predefinedTags().end());
    missing.removeIf([&stored](const QString &tag) { return stored.contains(tag); });
    return int(missing.size());
}

} // namespace

QCoro::Task<int> runRecommend(HeadlessCommand command)
{
    const QFuture<int> counting = QtConcurrent::run(&missingVectorCount);
    const int missing = co_await counting;
    ChineseClipService service;
    QObject::connect(&service, &ChineseClipService::modelsLoadedChanged, &service, [missing] {
        if (missing > 0)
            printNotice(
                QStringLiteral("preparing %1 predefined tags, which the library keeps...").arg(missing));
    });
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
            printError(QStringLiteral("no tags to recommend, --log FILE tells why: %1").arg(file));
            code = 1;
            continue;
        }
        print(report(photo, tags));
    }
    co_return code;
}

} // namespace Qorvane
