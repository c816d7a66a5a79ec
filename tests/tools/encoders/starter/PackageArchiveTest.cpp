#include "encoders/starter/PackageArchive.h"

#include <QFile>
#include <QTemporaryDir>

#include <archive.h>
#include <archive_entry.h>
#include <gtest/gtest.h>

namespace Qorvane::Encoders {
namespace {

constexpr qint64 roomy = 1'000'000;

struct Member
{
    const char *name;
    QByteArray content;
    const char *linkTarget = nullptr;
};

class PackageArchiveTest : public testing::Test
{
protected:
    void write(const std::vector<Member> &members)
    {
        archive *handle = archive_write_new();
        archive_write_add_filter_gzip(handle);
        archive_write_set_format_pax_restricted(handle);
        archive_write_open_filename(handle, QFile::encodeName(m_path).constData());
        for (const Member &member : members) {
            archive_entry *entry = archive_entry_new();
            archive_entry_set_pathname(entry, member.name);
            archive_entry_set_filetype(entry, member.linkTarget ? AE_IFLNK : AE_IFREG);
            if (member.linkTarget)
                archive_entry_set_symlink(entry, member.linkTarget);
            archive_entry_set_size(entry, member.content.size());
            archive_entry_set_perm(entry, 0644);
            archive_write_header(handle, entry);
            archive_write_data(handle, member.content.constData(), size_t(member.content.size()));
            archive_entry_free(entry);
        }
        archive_write_free(handle);
    }

    QTemporaryDir m_folder;
    QString m_path = m_folder.filePath(QStringLiteral("a.tgz"));
};

TEST_F(PackageArchiveTest, GivesFilesAndFolders)
{
    write({{"package/a.txt", "A"}, {"package/other", "x"}, {"package/f/b", "B"}, {"package/f/g/c", "C"}});
    const auto files = readPackage(m_path, {QStringLiteral("a.txt"), QStringLiteral("f/")}, roomy);
    ASSERT_TRUE(files) << files.error().text().toStdString();
    EXPECT_EQ(*files, (PackageFiles{{QStringLiteral("a.txt"), "A"},
                                    {QStringLiteral("f/b"), "B"},
                                    {QStringLiteral("f/g/c"), "C"}}));
}

TEST_F(PackageArchiveTest, RefusesMembersThatLeaveThePackage)
{
    for (const char *name :
         {"package/../../evil", "/etc/evil", "evil", "package/a/../../../evil", "packages/evil"}) {
        write({{name, "x"}, {"package/a", "A"}});
        const auto files = readPackage(m_path, {QStringLiteral("a")}, roomy);
        ASSERT_FALSE(files) << name;
        EXPECT_TRUE(files.error().found.contains(QStringLiteral("evil"))) << name;
    }
}

TEST_F(PackageArchiveTest, RefusesLinks)
{
    write({{"package/a", {}, "/etc/passwd"}});
    EXPECT_FALSE(readPackage(m_path, {QStringLiteral("a")}, roomy));
}

TEST_F(PackageArchiveTest, RefusesMoreThanTheLimit)
{
    write({{"package/a", QByteArray(3000, 'a')}, {"package/b", QByteArray(3000, 'b')}});
    const QStringList both{QStringLiteral("a"), QStringLiteral("b")};
    EXPECT_TRUE(readPackage(m_path, both, 6000));
    const auto files = readPackage(m_path, both, 5999);
    ASSERT_FALSE(files);
    EXPECT_TRUE(files.error().found.contains(QStringLiteral("\"b\"")));
}

TEST_F(PackageArchiveTest, NamesWhatIsMissing)
{
    write({{"package/a", "A"}});
    const auto files = readPackage(m_path, {QStringLiteral("a"), QStringLiteral("models/b")}, roomy);
    ASSERT_FALSE(files);
    EXPECT_TRUE(files.error().found.contains(QStringLiteral("models/b")));
}

TEST_F(PackageArchiveTest, ReadsACutArchiveAsFarAsItGoes)
{
    QByteArray noise;
    for (quint32 number = 1; noise.size() < 400'000; number = number * 1664525 + 1013904223)
        noise += char(number >> 24);
    write({{"package/a", "A"}, {"package/b", noise}});
    ASSERT_TRUE(QFile::resize(m_path, QFile(m_path).size() / 2));

    const auto files = readPackage(m_path, {QStringLiteral("a")}, roomy);
    ASSERT_TRUE(files) << files.error().text().toStdString();
    EXPECT_EQ(files->at(QStringLiteral("a")), "A");
    EXPECT_FALSE(readPackage(m_path, {QStringLiteral("b")}, roomy));
}

TEST_F(PackageArchiveTest, RefusesWhatIsNoArchive)
{
    QFile file(m_path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("Not found\n");
    file.close();
    EXPECT_FALSE(readPackage(m_path, {QStringLiteral("a")}, roomy));
    EXPECT_FALSE(readPackage(m_folder.filePath(QStringLiteral("none.tgz")), {QStringLiteral("a")}, roomy));
}

} // namespace
} // namespace Qorvane::Encoders
