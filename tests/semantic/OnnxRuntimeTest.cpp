#include "semantic/OnnxRuntime.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QSet>

#include <elf.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <span>

using namespace Qorvane;

namespace {

template <typename Record>
std::span<const Record> recordsAt(const QByteArray &bytes, Elf64_Off offset, size_t count)
{
    if (offset + count * sizeof(Record) > size_t(bytes.size()))
        return {};
    return {reinterpret_cast<const Record *>(bytes.constData() + offset), count};
}

/// The names that the shared library `file` takes from others, without their versions.
QSet<QByteArray> importedNames(const QByteArray &file)
{
    QSet<QByteArray> names;
    const auto header = recordsAt<Elf64_Ehdr>(file, 0, 1);
    if (header.empty())
        return names;
    const auto sections = recordsAt<Elf64_Shdr>(file, header[0].e_shoff, header[0].e_shnum);
    for (const Elf64_Shdr &section : sections) {
        if (section.sh_type != SHT_DYNSYM)
            continue;
        const Elf64_Shdr &texts = sections[section.sh_link];
        for (const Elf64_Sym &symbol :
             recordsAt<Elf64_Sym>(file, section.sh_offset, section.sh_size / sizeof(Elf64_Sym))) {
            if (symbol.st_shndx == SHN_UNDEF)
                names.insert(QByteArray(file.constData() + texts.sh_offset + symbol.st_name));
        }
    }
    return names;
}

} // namespace

TEST(OnnxRuntime, opensTheLibraryOfTheBuildTree)
{
    QString error;
    const OnnxRuntime *runtime = OnnxRuntime::shared(&error);
    ASSERT_TRUE(runtime) << qPrintable(error) << " - run scripts/fetch-onnxruntime.sh";
    EXPECT_FALSE(runtime->release().isEmpty());
    EXPECT_EQ(OnnxRuntime::shared(), runtime);
}

TEST(OnnxRuntime, looksBesideTheProgramThenInTheBuildTreeThenInTheSystem)
{
    const QStringList candidates = OnnxRuntime::libraryCandidates();
    ASSERT_GT(candidates.size(), 3);
    const QDir folder(QCoreApplication::applicationDirPath());
    EXPECT_EQ(candidates[0],
              QDir::cleanPath(folder.filePath(QStringLiteral("../lib/qorvane/libonnxruntime.so.1"))));
    EXPECT_TRUE(candidates[1].startsWith(u'/'));
    EXPECT_EQ(candidates[2], QStringLiteral("libonnxruntime.so.1"));
    EXPECT_EQ(candidates.last(), QStringLiteral("libonnxruntime.so.1.21"));
}

TEST(OnnxRuntime, keepsItsTelemetryOff)
{
    ASSERT_TRUE(OnnxRuntime::shared());
    EXPECT_EQ(qgetenv("ORT_DISABLE_TELEMETRY"), QByteArray("1"));
}

// Later releases of the library talk to a server; the one we ship must not even be able to.
TEST(OnnxRuntime, shipsALibraryThatImportsNoSocketCall)
{
    const OnnxRuntime *runtime = OnnxRuntime::shared();
    ASSERT_TRUE(runtime);
    QFile file(runtime->libraryPath());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(runtime->libraryPath());
    const QSet<QByteArray> names = importedNames(file.readAll());
    ASSERT_TRUE(names.contains("malloc")) << "the file's imports can't be read";
    for (const char *call : {"socket", "connect", "getaddrinfo", "gethostbyname", "send", "sendto", "sendmsg",
                             "recv", "recvfrom", "res_query"}) {
        EXPECT_FALSE(names.contains(call)) << call;
    }
}
