#include "encoders/import/EncoderInstall.h"

#include "tools/encoders/import/SyntheticModels.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qorvane::Encoders;

namespace {

const QStringList names{QStringLiteral("vocab.json"), QStringLiteral("ClipVisionEncoder.onnx"),
                        QStringLiteral("ClipTextEncoder.onnx")};

class EncoderInstallTest : public testing::Test
{
protected:
    QString models() const { return m_folder.filePath(QStringLiteral("models")); }
    QString at(const QString &name) const { return models() + u'/' + name; }

    static QByteArray contentOf(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("nothing");
    }

    Outcome<bool> installAs(const QByteArray &content, const std::function<void()> &onStep = {},
                            std::optional<EncoderInstall::Place> place = {}) const
    {
        auto install = EncoderInstall::begin(models(), place);
        if (!install)
            return tl::unexpected(install.error());
        for (const QString &name : names)
            Synthetic::writeFile(install->staging() + u'/' + name, content);
        return install->commit(Family::openai, names, onStep);
    }

    /// The content of all three files, or "mixed".
    QByteArray set() const
    {
        const QByteArray first = contentOf(at(names.constFirst()));
        for (const QString &name : names) {
            if (contentOf(at(name)) != first)
                return "mixed";
        }
        return first;
    }

    QStringList beside() const
    {
        return QDir(m_folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }

    QTemporaryDir m_folder;
};

TEST_F(EncoderInstallTest, MakesTheFolderAndLeavesNothingBesideIt)
{
    const auto done = installAs("new");
    ASSERT_TRUE(done) << done.error().text().toStdString();
    EXPECT_TRUE(*done);
    EXPECT_EQ(set(), "new");
    EXPECT_EQ(beside(), QStringList{QStringLiteral("models")});
}

TEST_F(EncoderInstallTest, KeepsOtherFilesAndRemovesWhatTheOldSetHadMore)
{
    ASSERT_TRUE(installAs("old"));
    Synthetic::writeFile(at(QStringLiteral("ClipVisionEncoder.onnx.data")), "old weights");
    Synthetic::writeFile(at(QStringLiteral("ClipLicence.txt")), "old licence");
    Synthetic::writeFile(at(QStringLiteral("ChineseClipVisionEncoder.onnx")), "other");
    Synthetic::writeFile(at(QStringLiteral("notes.txt")), "mine");
    ASSERT_TRUE(QFile::link(QStringLiteral("notes.txt"), at(QStringLiteral("link"))));

    ASSERT_TRUE(installAs("new").value_or(false));
    EXPECT_EQ(set(), "new");
    EXPECT_EQ(contentOf(at(QStringLiteral("ChineseClipVisionEncoder.onnx"))), "other");
    EXPECT_EQ(contentOf(at(QStringLiteral("notes.txt"))), "mine");
    EXPECT_EQ(contentOf(at(QStringLiteral("link"))), "mine");
    EXPECT_FALSE(QFile::exists(at(QStringLiteral("ClipVisionEncoder.onnx.data"))));
    EXPECT_FALSE(QFile::exists(at(QStringLiteral("ClipLicence.txt"))));
}

TEST_F(EncoderInstallTest, ChangesNothingWithoutCommit)
{
    ASSERT_TRUE(installAs("old"));
    {
        auto install = EncoderInstall::begin(models());
        ASSERT_TRUE(install);
        Synthetic::writeFile(install->staging() + QStringLiteral("/vocab.json"), "new");
    }
    EXPECT_EQ(set(), "old");
    EXPECT_EQ(beside(), QStringList{QStringLiteral("models")});
}

TEST_F(EncoderInstallTest, ReplacesWhatALinkedFolderHolds)
{
    ASSERT_TRUE(QDir(m_folder.path()).mkdir(QStringLiteral("real")));
    ASSERT_TRUE(QFile::link(m_folder.filePath(QStringLiteral("real")), models()));
    ASSERT_TRUE(installAs("new").value_or(false));
    EXPECT_EQ(contentOf(m_folder.filePath(QStringLiteral("real/vocab.json"))), "new");
    EXPECT_TRUE(QFileInfo(models()).isSymLink());
}

TEST_F(EncoderInstallTest, RenamesOneByOneWhereFoldersLieInside)
{
    ASSERT_TRUE(installAs("old"));
    ASSERT_TRUE(QDir(models()).mkdir(QStringLiteral("sub")));
    Synthetic::writeFile(at(QStringLiteral("sub/file")), "mine");
    Synthetic::writeFile(at(QStringLiteral("ClipTextEncoder.onnx.data")), "old weights");
    const auto done = installAs("new");
    ASSERT_TRUE(done) << done.error().text().toStdString();
    EXPECT_FALSE(*done);
    EXPECT_EQ(set(), "new");
    EXPECT_EQ(contentOf(at(QStringLiteral("sub/file"))), "mine");
    EXPECT_FALSE(QFile::exists(at(QStringLiteral("ClipTextEncoder.onnx.data"))));
    EXPECT_EQ(beside(), QStringList{QStringLiteral("models")});
}

TEST_F(EncoderInstallTest, PutsTheOldSetBackWhenAFileCannotBeRenamed)
{
    for (const auto place : {EncoderInstall::Place::beside, EncoderInstall::Place::inside}) {
        ASSERT_TRUE(installAs("old"));
        QDir(models()).mkdir(QStringLiteral("sub"));
        const QString weights = at(QStringLiteral("ClipVisionEncoder.onnx.data"));
        Synthetic::writeFile(weights, "old weights");
        auto install = EncoderInstall::begin(models(), place);
        ASSERT_TRUE(install) << install.error().text().toStdString();
        for (const QString &name : names)
            Synthetic::writeFile(install->staging() + u'/' + name, "new");
        bool wasMixed = false;
        const auto done = install->commit(Family::openai, names, [&] {
            if (set() == "mixed" && !QFile::exists(weights))
                wasMixed |= QFile::remove(install->staging() + QStringLiteral("/ClipTextEncoder.onnx"));
        });
        ASSERT_FALSE(done);
        EXPECT_TRUE(done.error().found.startsWith(QStringLiteral("ClipTextEncoder.onnx")))
            << done.error().text().toStdString();
        EXPECT_TRUE(wasMixed);
        EXPECT_EQ(set(), "old");
        EXPECT_EQ(contentOf(weights), "old weights");
    }
}

TEST_F(EncoderInstallTest, ChangesNothingWhenAFolderLiesInAFilesPlace)
{
    ASSERT_TRUE(QDir(m_folder.path()).mkpath(at(QStringLiteral("ClipTextEncoder.onnx/sub"))));
    ASSERT_FALSE(installAs("new"));
    EXPECT_EQ(QDir(models()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
              QStringList{QStringLiteral("ClipTextEncoder.onnx")});
}

TEST_F(EncoderInstallTest, WorksInsideOfTheFolderWhereItMust)
{
    for (const char *content : {"new", "newer"}) {
        const auto done = installAs(content, {}, EncoderInstall::Place::inside);
        ASSERT_TRUE(done) << done.error().text().toStdString();
        EXPECT_FALSE(*done);
        EXPECT_EQ(set(), content);
        EXPECT_EQ(QDir(models()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot).size(),
                  names.size());
        EXPECT_EQ(beside(), QStringList{QStringLiteral("models")});
    }
}

TEST_F(EncoderInstallTest, ChoosesTheInsideForMountPoints)
{
    ASSERT_TRUE(QDir().mkdir(models()));
    EXPECT_EQ(EncoderInstall::placeFor(models()), EncoderInstall::Place::beside);
    EXPECT_EQ(EncoderInstall::placeFor(QStringLiteral("/proc")), EncoderInstall::Place::inside);
}

TEST_F(EncoderInstallTest, InstallsWhereNothingMayBePutBeside)
{
    ASSERT_TRUE(QDir().mkdir(models()));
    // Root may write everywhere, so it becomes someone else for this.
    constexpr uid_t someone = 65534;
    const bool isRoot = geteuid() == 0;
    for (const QString &path : {m_folder.path(), models()})
        ASSERT_EQ(chown(QFile::encodeName(path).constData(), isRoot ? someone : geteuid(), gid_t(-1)), 0);
    ASSERT_EQ(chmod(QFile::encodeName(m_folder.path()).constData(), 0500), 0);
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        if (isRoot && setresuid(someone, someone, someone) != 0)
            _exit(3);
        const auto done = installAs("new");
        _exit(!done ? 2 : *done ? 1 : 0);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_EQ(chmod(QFile::encodeName(m_folder.path()).constData(), 0700), 0);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
    EXPECT_EQ(set(), "new");
}

TEST_F(EncoderInstallTest, RemovesTheFolderThatItMadeWhenNothingComesIntoIt)
{
    for (const auto place : {EncoderInstall::Place::beside, EncoderInstall::Place::inside}) {
        ASSERT_TRUE(EncoderInstall::begin(models(), place));
        EXPECT_EQ(beside(), QStringList());
    }
    ASSERT_TRUE(QDir().mkdir(models()));
    ASSERT_TRUE(EncoderInstall::begin(models()));
    EXPECT_EQ(beside(), QStringList{QStringLiteral("models")});
}

TEST_F(EncoderInstallTest, LeavesTheOldOrTheNewSetWhenKilledAtAnyStep)
{
    ASSERT_TRUE(installAs("old"));
    Synthetic::writeFile(at(QStringLiteral("ChineseClipVisionEncoder.onnx")), "other");
    QList<QByteArray> after;
    bool isKilled = true;
    for (int step = 0; isKilled; ++step) {
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            int left = step;
            const auto done = installAs("new", [&left] {
                if (left-- == 0)
                    _exit(1);
            });
            _exit(done ? 0 : 2);
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFEXITED(status));
        ASSERT_NE(WEXITSTATUS(status), 2);
        isKilled = WEXITSTATUS(status) == 1;
        after.append(set());
        EXPECT_TRUE(after.constLast() == "old" || after.constLast() == "new") << step;
        EXPECT_EQ(contentOf(at(QStringLiteral("ChineseClipVisionEncoder.onnx"))), "other");
        ASSERT_TRUE(installAs("old"));
        // What the killed one left behind is gone with the next.
        EXPECT_EQ(beside(), QStringList{QStringLiteral("models")});
    }
    EXPECT_GE(after.size(), 4);
    EXPECT_TRUE(after.contains("old"));
    EXPECT_EQ(after.constLast(), "new");
}

TEST_F(EncoderInstallTest, PutsTheOldFilesBackAfterAKillBetweenRenames)
{
    const QString weights = at(QStringLiteral("ClipVisionEncoder.onnx.data"));
    for (const auto place : {EncoderInstall::Place::beside, EncoderInstall::Place::inside}) {
        ASSERT_TRUE(installAs("old"));
        QDir(models()).mkdir(QStringLiteral("sub"));
        bool wasMixed = false;
        bool isKilled = true;
        for (int step = 0; isKilled; ++step) {
            Synthetic::writeFile(weights, "old weights");
            const pid_t child = fork();
            ASSERT_GE(child, 0);
            if (child == 0) {
                int left = step;
                const auto onStep = [&left] {
                    if (left-- == 0)
                        _exit(1);
                };
                _exit(installAs("new", onStep, place) ? 0 : 2);
            }
            int status = 0;
            ASSERT_EQ(waitpid(child, &status, 0), child);
            ASSERT_TRUE(WIFEXITED(status));
            ASSERT_NE(WEXITSTATUS(status), 2);
            isKilled = WEXITSTATUS(status) == 1;
            wasMixed |= set() == "mixed";
            ASSERT_TRUE(EncoderInstall::begin(models(), place));
            EXPECT_EQ(set(), isKilled ? "old" : "new") << step;
            EXPECT_EQ(contentOf(weights), isKilled ? "old weights" : "nothing") << step;
            EXPECT_EQ(beside(), QStringList{QStringLiteral("models")});
            EXPECT_EQ(QDir(models()).entryList(QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot),
                      QStringList{QStringLiteral("sub")});
        }
        EXPECT_TRUE(wasMixed);
    }
}

TEST_F(EncoderInstallTest, KeepsWhatCannotBePutBackUntilItCan)
{
    for (const auto place : {EncoderInstall::Place::beside, EncoderInstall::Place::inside}) {
        ASSERT_TRUE(installAs("old"));
        QDir(models()).mkdir(QStringLiteral("sub"));
        const QString text = at(QStringLiteral("ClipTextEncoder.onnx"));
        const auto done = installAs(
            "new",
            [&] {
                if (set() == "mixed" && QFileInfo(text).isFile()) {
                    QFile::remove(text);
                    QDir().mkpath(text + QStringLiteral("/inTheWay"));
                }
            },
            place);
        ASSERT_FALSE(done);
        for (int attempt = 0; attempt < 2; ++attempt) {
            const auto install = EncoderInstall::begin(models(), place);
            ASSERT_FALSE(install);
            EXPECT_TRUE(install.error().found.contains(QStringLiteral("/replaced")))
                << install.error().text().toStdString();
        }
        ASSERT_TRUE(QDir(text).removeRecursively());
        ASSERT_TRUE(EncoderInstall::begin(models(), place));
        EXPECT_EQ(set(), "old");
        EXPECT_EQ(beside(), QStringList{QStringLiteral("models")});
    }
}

TEST_F(EncoderInstallTest, SaysWhenTheFolderCannotBeMade)
{
    Synthetic::writeFile(models(), "a file in its place");
    const auto install = EncoderInstall::begin(models());
    ASSERT_FALSE(install);
    EXPECT_TRUE(install.error().text().contains(models()));
}

} // namespace
