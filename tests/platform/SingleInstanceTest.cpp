#include "platform/SingleInstance.h"

#include "support/Waiting.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>

using namespace Qorvane;

namespace {

using Claim = SingleInstance::Claim;
using std::chrono::milliseconds;
using std::chrono::seconds;

// Locks and sockets work between two of these as between two processes. Whoever waits for an answer does so
// on a thread of its own, as a process would.
class SingleInstanceTest : public testing::Test
{
protected:
    Claim claimElsewhere(const std::optional<QStringList> &message, milliseconds patience = seconds(30))
    {
        Claim claim = Claim::refused;
        std::atomic_bool isDone = false;
        std::thread other([&] {
            SingleInstance later(m_place);
            claim = later.claim(message, patience);
            isDone = true;
        });
        EXPECT_TRUE(waitUntil([&isDone] { return isDone.load(); }));
        other.join();
        return claim;
    }

    std::unique_ptr<SingleInstance> makeFirst()
    {
        auto first = std::make_unique<SingleInstance>(m_place);
        EXPECT_EQ(first->claim(std::nullopt, milliseconds(0)), Claim::first);
        QObject::connect(first.get(), &SingleInstance::messageReceived,
                         [this](const QStringList &message) { m_received.append(message); });
        return first;
    }

    const QTemporaryDir m_folder;
    const SingleInstance::Place m_place{m_folder.filePath(QStringLiteral("data/library.lock")),
                                        m_folder.filePath(QStringLiteral("test.socket"))};
    QList<QStringList> m_received;
};

TEST_F(SingleInstanceTest, aLaterOneHandsItsMessageToTheFirst)
{
    const auto first = makeFirst();
    ASSERT_TRUE(first->listen());
    const QStringList message{QStringLiteral("add"), QStringLiteral("/p/照片 1"), QString()};
    EXPECT_EQ(claimElsewhere(message), Claim::handedOver);
    EXPECT_EQ(m_received, QList<QStringList>{message});
}

TEST_F(SingleInstanceTest, everyLaterOneIsHeard)
{
    const auto first = makeFirst();
    ASSERT_TRUE(first->listen());
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(claimElsewhere(QStringList{QString::number(i)}), Claim::handedOver);
    EXPECT_EQ(m_received.size(), 5);
}

TEST_F(SingleInstanceTest, aMessageMayCarryThousandsOfPaths)
{
    const auto first = makeFirst();
    ASSERT_TRUE(first->listen());
    QStringList paths;
    for (int i = 0; i < 5000; ++i)
        paths.append(QStringLiteral("/photographs/of/a/long/journey/day %1").arg(i));
    EXPECT_EQ(claimElsewhere(paths), Claim::handedOver);
    EXPECT_EQ(m_received, QList<QStringList>{paths});
}

TEST_F(SingleInstanceTest, aLaterOneWithNothingToSayIsRefused)
{
    const auto first = makeFirst();
    ASSERT_TRUE(first->listen());
    EXPECT_EQ(claimElsewhere(std::nullopt, milliseconds(50)), Claim::refused);
    EXPECT_TRUE(m_received.isEmpty());
}

TEST_F(SingleInstanceTest, aFirstOneThatDoesNotListenLetsTheLaterOneBeRefused)
{
    const auto first = makeFirst();
    EXPECT_EQ(claimElsewhere(QStringList{QStringLiteral("show")}, milliseconds(50)), Claim::refused);
}

TEST_F(SingleInstanceTest, aLaterOneReachesAFirstThatBeginsToListenMeanwhile)
{
    const auto first = makeFirst();
    Claim claim = Claim::refused;
    std::atomic_bool isDone = false;
    std::thread other([&] {
        SingleInstance later(m_place);
        claim = later.claim(QStringList{QStringLiteral("show")}, seconds(30));
        isDone = true;
    });
    ASSERT_TRUE(first->listen());
    EXPECT_TRUE(waitUntil([&isDone] { return isDone.load(); }));
    other.join();
    EXPECT_EQ(claim, Claim::handedOver);
}

TEST_F(SingleInstanceTest, aLaterOneTakesThePlaceOfAFirstThatEnds)
{
    auto first = makeFirst();
    ASSERT_TRUE(first->listen());
    Claim claim = Claim::refused;
    std::thread other([&] {
        SingleInstance later(m_place);
        claim = later.claim(std::nullopt, seconds(30));
    });
    first.reset();
    other.join();
    EXPECT_EQ(claim, Claim::first);
}

TEST_F(SingleInstanceTest, aFirstThatClosedHearsNothingMore)
{
    const auto first = makeFirst();
    ASSERT_TRUE(first->listen());
    first->close();
    EXPECT_EQ(claimElsewhere(QStringList{QStringLiteral("show")}, milliseconds(50)), Claim::refused);
    EXPECT_TRUE(m_received.isEmpty());
    EXPECT_FALSE(QFile::exists(m_place.socket));
}

TEST_F(SingleInstanceTest, theReceiverMayCloseWhileItHears)
{
    const auto first = makeFirst();
    ASSERT_TRUE(first->listen());
    QObject::connect(first.get(), &SingleInstance::messageReceived, first.get(), &SingleInstance::close);
    EXPECT_EQ(claimElsewhere(QStringList{QStringLiteral("show")}, milliseconds(200)), Claim::refused);
    EXPECT_EQ(m_received.size(), 1);
}

TEST_F(SingleInstanceTest, aFileWhereTheSocketBelongsIsPutAside)
{
    QFile stale(m_place.socket);
    ASSERT_TRUE(stale.open(QIODevice::WriteOnly));
    stale.close();
    const auto first = makeFirst();
    ASSERT_TRUE(first->listen());
    EXPECT_EQ(claimElsewhere(QStringList{QStringLiteral("show")}), Claim::handedOver);
}

TEST_F(SingleInstanceTest, onlyTheUserMayKnock)
{
    const auto first = makeFirst();
    ASSERT_TRUE(first->listen());
    const auto permissions = QFileInfo(m_place.socket).permissions();
    EXPECT_FALSE(permissions & (QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther));
}

TEST_F(SingleInstanceTest, withoutAPlaceEveryoneIsTheFirst)
{
    SingleInstance one({});
    SingleInstance two({});
    EXPECT_EQ(one.claim(std::nullopt, milliseconds(0)), Claim::first);
    EXPECT_EQ(two.claim(QStringList{QStringLiteral("show")}, milliseconds(0)), Claim::first);
    EXPECT_FALSE(one.listen());
}

/// Sets a variable of the environment for as long as it lives.
class Setting
{
public:
    Setting(const char *name, const QByteArray &value)
        : m_name(name)
        , m_before(qgetenv(name))
    {
        qputenv(name, value);
    }
    ~Setting() { qputenv(m_name, m_before); }
    Setting(const Setting &) = delete;
    Setting &operator=(const Setting &) = delete;

private:
    const char *const m_name;
    const QByteArray m_before;
};

TEST_F(SingleInstanceTest, aLibraryElsewhereIsAPlaceOfItsOwn)
{
    const SingleInstance::Place here = SingleInstance::libraryPlace();
    EXPECT_TRUE(here.socket.startsWith(qEnvironmentVariable("XDG_RUNTIME_DIR") + u'/'))
        << qPrintable(here.socket);
    EXPECT_EQ(here.lock, qEnvironmentVariable("XDG_DATA_HOME") + QStringLiteral("/Qorvane/library.lock"));
    EXPECT_EQ(SingleInstance::libraryPlace(), here);
    const Setting data("XDG_DATA_HOME", "/elsewhere");
    EXPECT_NE(SingleInstance::libraryPlace().lock, here.lock);
    EXPECT_NE(SingleInstance::libraryPlace().socket, here.socket);
}

TEST_F(SingleInstanceTest, sessionsThatDoNotSeeEachOtherAreKeptApartAllTheSame)
{
    const Setting data("XDG_DATA_HOME", QFile::encodeName(m_folder.filePath(QStringLiteral("data"))));
    SingleInstance here(SingleInstance::libraryPlace());
    ASSERT_EQ(here.claim(std::nullopt, milliseconds(0)), Claim::first);
    ASSERT_TRUE(here.listen());
    const QString elsewhere = m_folder.filePath(QStringLiteral("runtime"));
    ASSERT_TRUE(QDir().mkpath(elsewhere));
    const Setting runtime("XDG_RUNTIME_DIR", QFile::encodeName(elsewhere));
    SingleInstance there(SingleInstance::libraryPlace());
    EXPECT_EQ(there.claim(QStringList{QStringLiteral("show")}, milliseconds(50)), Claim::refused);
}

TEST_F(SingleInstanceTest, aSocketThatCannotBeMadeKeepsTheOthersAwayButUnheard)
{
    const SingleInstance::Place place{m_place.lock, m_folder.filePath(QString(120, u'x'))};
    SingleInstance first(place);
    ASSERT_EQ(first.claim(std::nullopt, milliseconds(0)), Claim::first);
    testing::internal::CaptureStderr();
    EXPECT_FALSE(first.listen());
    EXPECT_NE(testing::internal::GetCapturedStderr().find("later starts can't reach this one"),
              std::string::npos);
    SingleInstance second(place);
    EXPECT_EQ(second.claim(QStringList{QStringLiteral("show")}, milliseconds(50)), Claim::refused);
}

} // namespace
