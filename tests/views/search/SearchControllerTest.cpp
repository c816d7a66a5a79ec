#include "views/search/SearchController.h"

#include "platform/GlobalQueue.h"
#include "support/DeadDrive.h"
#include "support/LogCapture.h"
#include "support/Waiting.h"

#include <QCoroFuture>
#include <QDir>
#include <QFile>
#include <QPromise>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

#include <map>
#include <memory>

using namespace Qorvane;

namespace {

FileUrl file(const QString &name)
{
    return FileUrl::file(QStringLiteral("/photos/") + name);
}

SearchResult hit(const QString &name)
{
    return {file(name), 0.5f, 0.1f};
}

// A search whose ends the test brings about, in the order it likes.
class SearchControllerTest : public testing::Test
{
protected:
    struct Running
    {
        QList<FileUrl> scope;
        int limit = 0;
        std::shared_ptr<QPromise<QList<SearchResult>>> promise;
    };

    QCoro::Task<QList<SearchResult>> begin(QString text, QList<FileUrl> scope, int limit)
    {
        Running run{scope, limit, std::make_shared<QPromise<QList<SearchResult>>>()};
        run.promise->start();
        running[text] = run;
        begun.append(run.promise);
        const QList<SearchResult> found = co_await run.promise->future();
        co_return found;
    }

    void finish(const QString &text, const QList<SearchResult> &found)
    {
        QSignalSpy ends(&controller, &SearchController::isSearchingChanged);
        QSignalSpy results(&controller, &SearchController::resultsChanged);
        running[text].promise->addResult(found);
        running[text].promise->finish();
        ASSERT_TRUE(waitUntil([&] { return ends.count() + results.count() > 0; }));
        drainMainQueue();
    }

    bool waitForSearch(const QString &text)
    {
        return waitUntil([this, &text] { return running.contains(text); });
    }

    /// The sources with a tag "Dead", whose file doesn't answer.
    SearchSources sourcesOn(const DeadDrive &drive) const
    {
        SearchSources result = sources;
        result.pathsOfTag = [read = drive.reading()](const QString &tag) {
            if (tag == QStringLiteral("Dead"))
                read();
            return QStringList{QDir::tempPath()};
        };
        return result;
    }

    /// A search that never ends would never be given back.
    void TearDown() override
    {
        drainMainQueue(); // what was asked for begins now
        for (const auto &promise : begun) {
            if (!promise->future().isFinished())
                promise->addResult(QList<SearchResult>());
            promise->finish();
        }
        drainMainQueue();
    }

    SearchScopeSettings settings;
    QStringList taggedPaths;
    std::map<QString, Running> running; ///< the last of each text
    QList<std::shared_ptr<QPromise<QList<SearchResult>>>> begun;
    LogCapture log;
    const SearchSources sources{[this] { return settings; }, [this](const QString &) { return taggedPaths; },
                                [this](const QString &text, const QList<FileUrl> &scope, int limit) {
                                    return begin(text, scope, limit);
                                }};
    SearchController controller{sources};
};

} // namespace

TEST_F(SearchControllerTest, everyChangeOfTheTextStartsASearchOfTwentyHits)
{
    controller.setText(QStringLiteral("c"));
    controller.setText(QStringLiteral("ca"));
    EXPECT_TRUE(controller.isSearching());
    ASSERT_TRUE(waitForSearch(QStringLiteral("ca")));
    EXPECT_TRUE(running.contains(QStringLiteral("c")));
    EXPECT_EQ(running[QStringLiteral("ca")].limit, 20);
}

// A look in between would show that nothing was found.
TEST_F(SearchControllerTest, aNewTextIsAnnouncedWithItsSearchUnderWay)
{
    QStringList steps;
    const QObject listener;
    QObject::connect(&controller, &SearchController::textChanged, &listener, [&] {
        steps.append(controller.isSearching() ? QStringLiteral("text, searching") : QStringLiteral("text"));
    });
    QObject::connect(&controller, &SearchController::searchBegan, &listener,
                     [&] { steps.append(QStringLiteral("began")); });
    QObject::connect(&controller, &SearchController::isSearchingChanged, &listener,
                     [&] { steps.append(QStringLiteral("searching")); });
    controller.setText(QStringLiteral("c"));
    EXPECT_EQ(steps, QStringList({"text, searching", "began", "searching"}));
    steps.clear();
    controller.setText(QStringLiteral("ca"));
    EXPECT_EQ(steps, QStringList({"text, searching", "began"}));
    steps.clear();
    controller.setText({});
    EXPECT_EQ(steps, QStringList{"text, searching"}) << "searches go on";
}

TEST_F(SearchControllerTest, theLastToFinishWins)
{
    for (const char *text : {"c", "ca", "cat"})
        controller.setText(QString::fromLatin1(text));
    ASSERT_TRUE(waitForSearch(QStringLiteral("cat")));
    finish(QStringLiteral("cat"), {hit(QStringLiteral("cat.jpg"))});
    EXPECT_FALSE(controller.isSearching());
    finish(QStringLiteral("c"), {hit(QStringLiteral("c.jpg"))});
    finish(QStringLiteral("ca"), {hit(QStringLiteral("car.jpg"))});
    EXPECT_EQ(controller.results(), QList<SearchResult>{hit(QStringLiteral("car.jpg"))});
}

TEST_F(SearchControllerTest, emptyingTheFieldDropsTheResultsButNotTheRunningSearch)
{
    controller.setText(QStringLiteral("dog"));
    ASSERT_TRUE(waitForSearch(QStringLiteral("dog")));
    controller.setText({});
    EXPECT_TRUE(controller.isSearching());
    EXPECT_TRUE(controller.results().isEmpty());
    finish(QStringLiteral("dog"), {hit(QStringLiteral("dog.jpg"))});
    EXPECT_FALSE(controller.isSearching());
    EXPECT_EQ(controller.results().size(), 1); // hidden, since the field is empty
}

TEST_F(SearchControllerTest, searchesAgainForWhatStandsInTheField)
{
    controller.setText(QStringLiteral("dog"));
    ASSERT_TRUE(waitForSearch(QStringLiteral("dog")));
    finish(QStringLiteral("dog"), {});
    running.clear();
    QSignalSpy began(&controller, &SearchController::searchBegan);
    controller.searchAgain();
    EXPECT_TRUE(controller.isSearching());
    ASSERT_TRUE(waitForSearch(QStringLiteral("dog")));
    EXPECT_TRUE(began.isEmpty()); // the text is no new one
    finish(QStringLiteral("dog"), {hit(QStringLiteral("dog.jpg"))});
    EXPECT_EQ(controller.results().size(), 1);
}

TEST_F(SearchControllerTest, doesNotSearchAgainForNothing)
{
    controller.searchAgain();
    EXPECT_FALSE(controller.isSearching());
    drainMainQueue();
    EXPECT_TRUE(running.empty());
}

TEST_F(SearchControllerTest, resetEmptiesEverything)
{
    controller.setText(QStringLiteral("dog"));
    ASSERT_TRUE(waitForSearch(QStringLiteral("dog")));
    finish(QStringLiteral("dog"), {hit(QStringLiteral("dog.jpg"))});
    controller.setText(QStringLiteral("dogs"));
    controller.reset();
    EXPECT_TRUE(controller.text().isEmpty());
    EXPECT_TRUE(controller.results().isEmpty());
    EXPECT_FALSE(controller.isSearching());
}

TEST_F(SearchControllerTest, searchesEverythingWithNothingSelected)
{
    settings.imageURLs = {file(QStringLiteral("a.jpg"))};
    controller.setText(QStringLiteral("dog"));
    ASSERT_TRUE(waitForSearch(QStringLiteral("dog")));
    EXPECT_TRUE(running[QStringLiteral("dog")].scope.isEmpty());
    EXPECT_TRUE(log.contains(QStringLiteral("🔍 搜索全部照片")));
}

TEST_F(SearchControllerTest, searchesTheListShownOfASelectedFolder)
{
    settings.selectedFolder = Folder{FileUrl::directory(QStringLiteral("/photos/旅行")), std::nullopt};
    settings.imageURLs = {file(QStringLiteral("a.jpg")), file(QStringLiteral("b.jpg"))};
    controller.setText(QStringLiteral("dog"));
    ASSERT_TRUE(waitForSearch(QStringLiteral("dog")));
    EXPECT_EQ(running[QStringLiteral("dog")].scope, settings.imageURLs);
    EXPECT_TRUE(log.contains(QStringLiteral("🔍 在文件夹 '旅行' 下的 2 张照片中搜索")));
}

TEST_F(SearchControllerTest, searchesTheFilesOfASelectedTagThatAreStillThereInTheStoresOrder)
{
    const QTemporaryDir folder;
    QStringList present;
    for (const char *name : {"c.jpg", "a.jpg", "b.jpg"}) {
        present.append(folder.filePath(QLatin1String(name)));
        QFile created(present.last());
        ASSERT_TRUE(created.open(QIODevice::WriteOnly));
    }
    settings.selectedTag = QStringLiteral("Beach");
    settings.selectedFolder = Folder{FileUrl::directory(QStringLiteral("/photos")), std::nullopt};
    taggedPaths = present;
    taggedPaths.insert(1, folder.filePath(QStringLiteral("gone.jpg")));
    controller.setText(QStringLiteral("dog"));
    ASSERT_TRUE(waitForSearch(QStringLiteral("dog")));
    QStringList searched;
    for (const FileUrl &url : running[QStringLiteral("dog")].scope)
        searched.append(url.path());
    EXPECT_EQ(searched, present);
    EXPECT_TRUE(log.contains(QStringLiteral("🔍 在tag 'Beach' 下的 3 张照片中搜索")));
}

TEST_F(SearchControllerTest, aTagWhoseFilesAreGoneSearchesEverything)
{
    settings.selectedTag = QStringLiteral("Beach");
    taggedPaths = {QStringLiteral("/nowhere/gone.jpg")};
    controller.setText(QStringLiteral("dog"));
    ASSERT_TRUE(waitForSearch(QStringLiteral("dog")));
    EXPECT_TRUE(running[QStringLiteral("dog")].scope.isEmpty());
    EXPECT_TRUE(log.contains(QStringLiteral("🔍 在tag 'Beach' 下的 0 张照片中搜索")));
}

TEST_F(SearchControllerTest, deletedFilesLeaveTheResultsInOrder)
{
    controller.setText(QStringLiteral("dog"));
    ASSERT_TRUE(waitForSearch(QStringLiteral("dog")));
    finish(QStringLiteral("dog"),
           {hit(QStringLiteral("a.jpg")), hit(QStringLiteral("b.jpg")), hit(QStringLiteral("c.jpg"))});
    NotificationCenter::defaultCenter().post(
        QStringLiteral("ImagesDeleted"),
        {{QStringLiteral("paths"), QStringList{QStringLiteral("/photos/b.jpg")}}});
    drainMainQueue();
    EXPECT_EQ(controller.results(),
              (QList<SearchResult>{hit(QStringLiteral("a.jpg")), hit(QStringLiteral("c.jpg"))}));
}

TEST_F(SearchControllerTest, mayGoWhileItsSearchRuns)
{
    auto brief = std::make_unique<SearchController>(sources);
    QSignalSpy results(brief.get(), &SearchController::resultsChanged);
    brief->setText(QStringLiteral("dog"));
    ASSERT_TRUE(waitForSearch(QStringLiteral("dog")));
    const QFuture<QList<SearchResult>> search = running[QStringLiteral("dog")].promise->future();
    brief.reset();
    running[QStringLiteral("dog")].promise->addResult(QList<SearchResult>{hit(QStringLiteral("dog.jpg"))});
    running[QStringLiteral("dog")].promise->finish();
    drainMainQueue();
    EXPECT_TRUE(search.isFinished());
    EXPECT_EQ(results.count(), 0);
}

TEST_F(SearchControllerTest, mayGoBeforeItsSearchBegins)
{
    auto brief = std::make_unique<SearchController>(sources);
    brief->setText(QStringLiteral("dog"));
    brief.reset();
    drainMainQueue();
    EXPECT_TRUE(running.empty());
}

TEST_F(SearchControllerTest, filesOfATagThatDoNotAnswerHoldUpNeitherOtherSearchesNorTheLibrary)
{
    constexpr int more = 5; // than the library's queues have threads
    const int searches = QThread::idealThreadCount() + more;
    const DeadDrive drive;
    SearchController slow(sourcesOn(drive));
    settings.selectedTag = QStringLiteral("Dead");
    for (int i = 1; i <= searches; ++i)
        slow.setText(QString::number(i));
    ASSERT_TRUE(waitUntil([&] { return drive.reads() == searches; }));
    EXPECT_TRUE(GlobalQueue::isIdle());
    settings.selectedTag = QStringLiteral("Beach");
    slow.setText(QStringLiteral("dog"));
    EXPECT_TRUE(waitForSearch(QStringLiteral("dog")));
    EXPECT_EQ(drive.answers(), 0);
}

TEST_F(SearchControllerTest, searchesTheFilesOfATagThatAnswerInTheEnd)
{
    DeadDrive drive;
    SearchController slow(sourcesOn(drive));
    settings.selectedTag = QStringLiteral("Dead");
    slow.setText(QStringLiteral("do"));
    slow.setText(QStringLiteral("dog"));
    ASSERT_TRUE(waitUntil([&] { return drive.reads() == 2; }));
    EXPECT_TRUE(running.empty());
    EXPECT_TRUE(slow.isSearching());
    drive.comeBack();
    drainMainQueue();
    for (const char *text : {"do", "dog"})
        EXPECT_EQ(running[QString::fromLatin1(text)].scope.size(), 1) << text;
}

TEST_F(SearchControllerTest, searchesNothingWhenItGoesWhileTheFilesOfATagAreRead)
{
    DeadDrive drive;
    auto brief = std::make_unique<SearchController>(sourcesOn(drive));
    settings.selectedTag = QStringLiteral("Dead");
    brief->setText(QStringLiteral("dog"));
    ASSERT_TRUE(waitUntil([&drive] { return drive.reads() == 1; }));
    brief.reset();
    EXPECT_EQ(drive.answers(), 0) << "nor does it wait for them";
    drive.comeBack();
    drainMainQueue();
    EXPECT_EQ(drive.answers(), 1);
    EXPECT_TRUE(running.empty());
}
