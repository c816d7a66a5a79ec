#include "platform/desktop/FolderPanel.h"

#include "support/MessageBus.h"
#include "support/Waiting.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QSignalSpy>

#include <gtest/gtest.h>

#include <memory>

using namespace Qorvane;

namespace {

const QString portalName = QStringLiteral("the portal's own connection");

/// Plays the desktop's file-chooser portal.
class Portal : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.FileChooser")

public:
    struct Call
    {
        QString parentWindow;
        QString title;
        QVariantMap options;
    };
    QList<Call> calls;
    QString requestPath;
    bool ignoresTheToken = false; // as portals of long ago did
    bool answersBeforeItReturns = false;

    void answer(uint response, const QStringList &uris)
    {
        QDBusMessage signal = QDBusMessage::createSignal(
            requestPath, QStringLiteral("org.freedesktop.portal.Request"), QStringLiteral("Response"));
        signal << response << QVariantMap{{QStringLiteral("uris"), uris}};
        EXPECT_TRUE(QDBusConnection(portalName).send(signal));
    }

public Q_SLOTS:
    QDBusObjectPath OpenFile(const QString &parentWindow, const QString &title, const QVariantMap &options)
    {
        calls.append({parentWindow, title, options});
        QString caller = message().service().mid(1);
        caller.replace(u'.', u'_');
        requestPath =
            QStringLiteral("/org/freedesktop/portal/desktop/request/%1/%2")
                .arg(caller, ignoresTheToken ? QStringLiteral("t1")
                                             : options.value(QStringLiteral("handle_token")).toString());
        if (answersBeforeItReturns)
            answer(0, {QStringLiteral("file:///early")});
        return QDBusObjectPath(requestPath);
    }
};

/// A message bus of our own, with or without a portal on it.
class FolderPanelTest : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        s_bus = std::make_unique<MessageBus>();
        ASSERT_TRUE(s_bus->isRunning());
    }
    static void TearDownTestSuite() { s_bus.reset(); }

    ~FolderPanelTest() override { QDBusConnection::disconnectFromBus(portalName); }

    void startPortal()
    {
        QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, portalName);
        ASSERT_TRUE(bus.registerObject(QStringLiteral("/org/freedesktop/portal/desktop"), &portal,
                                       QDBusConnection::ExportAllSlots));
        ASSERT_TRUE(bus.registerService(QStringLiteral("org.freedesktop.portal.Desktop")));
    }

    void open()
    {
        panel.open(QStringLiteral("添加"), QStringLiteral("x11:7"));
        ASSERT_TRUE(waitUntil([this] { return !portal.calls.isEmpty(); }));
    }

    QList<QUrl> answered() const { return chosen.at(0).at(0).value<QList<QUrl>>(); }

    static inline std::unique_ptr<MessageBus> s_bus;
    Portal portal;
    FolderPanel panel;
    QSignalSpy chosen{&panel, &FolderPanel::chosen};
    QSignalSpy unavailable{&panel, &FolderPanel::unavailable};
};

TEST(FolderPanelHandle, namesAnX11WindowInHexadecimals)
{
    EXPECT_EQ(FolderPanel::handleOf(QStringLiteral("xcb"), 0x1A0000F), QStringLiteral("x11:1a0000f"));
    EXPECT_EQ(FolderPanel::handleOf(QStringLiteral("wayland"), 7), QString());
}

TEST_F(FolderPanelTest, asksTheDesktopForSeveralFolders)
{
    startPortal();
    open();
    const Portal::Call call = portal.calls.constFirst();
    EXPECT_EQ(call.title, QStringLiteral("添加"));
    EXPECT_EQ(call.parentWindow, QStringLiteral("x11:7"));
    for (const char *option : {"directory", "multiple", "modal"})
        EXPECT_TRUE(call.options.value(QLatin1String(option)).toBool()) << option;
    portal.answer(1, {});
    ASSERT_TRUE(waitUntil([this] { return chosen.count() == 1; }));
}

TEST_F(FolderPanelTest, givesTheAddressesInThePanelsOrder)
{
    startPortal();
    open();
    portal.answer(0, {QStringLiteral("file:///p/b%20c"), QStringLiteral("file:///p/%E7%85%A7%E7%89%87"),
                      QStringLiteral("sftp://server/p")});
    ASSERT_TRUE(waitUntil([this] { return chosen.count() == 1; }));
    EXPECT_EQ(answered(), (QList<QUrl>{QUrl::fromLocalFile(QStringLiteral("/p/b c")),
                                       QUrl::fromLocalFile(QStringLiteral("/p/照片")),
                                       QUrl(QStringLiteral("sftp://server/p"))}));
    EXPECT_EQ(unavailable.count(), 0);
}

TEST_F(FolderPanelTest, aDismissedPanelChoosesNothing)
{
    startPortal();
    open();
    portal.answer(1, {QStringLiteral("file:///p")});
    ASSERT_TRUE(waitUntil([this] { return chosen.count() == 1; }));
    EXPECT_EQ(answered(), QList<QUrl>());
}

TEST_F(FolderPanelTest, anAnswerThatIsQuickerThanTheCallIsNotMissed)
{
    startPortal();
    portal.answersBeforeItReturns = true;
    open();
    ASSERT_TRUE(waitUntil([this] { return chosen.count() == 1; }));
    EXPECT_EQ(answered(), QList<QUrl>{QUrl::fromLocalFile(QStringLiteral("/early"))});
}

TEST_F(FolderPanelTest, followsAPortalThatChoosesThePathOfItsAnswer)
{
    startPortal();
    portal.ignoresTheToken = true;
    open();
    // The panel learns the path with the reply; what is sent before that, nobody could hear.
    const auto answer = [this] {
        portal.answer(0, {QStringLiteral("file:///p")});
        return chosen.count() > 0;
    };
    ASSERT_TRUE(waitUntil(answer));
    EXPECT_EQ(answered(), QList<QUrl>{QUrl::fromLocalFile(QStringLiteral("/p"))});
}

TEST_F(FolderPanelTest, oneIsOpenAtATimeAndAfterItAnother)
{
    startPortal();
    open();
    panel.open(QStringLiteral("again"));
    portal.answer(1, {});
    ASSERT_TRUE(waitUntil([this] { return chosen.count() == 1; }));
    EXPECT_EQ(portal.calls.size(), 1);
    panel.open(QStringLiteral("again"));
    ASSERT_TRUE(waitUntil([this] { return portal.calls.size() == 2; }));
}

TEST_F(FolderPanelTest, aPortalThatDiesWithItsPanelOpenCountsAsNone)
{
    startPortal();
    open();
    QDBusConnection::disconnectFromBus(portalName);
    ASSERT_TRUE(waitUntil([this] { return unavailable.count() == 1; }));
    EXPECT_EQ(chosen.count(), 0);

    // Started anew, it is asked again.
    startPortal();
    panel.open(QStringLiteral("again"));
    ASSERT_TRUE(waitUntil([this] { return portal.calls.size() == 2; }));
    portal.answer(0, {QStringLiteral("file:///p")});
    ASSERT_TRUE(waitUntil([this] { return chosen.count() == 1; }));
    EXPECT_EQ(unavailable.count(), 1);
}

TEST_F(FolderPanelTest, aBusWithoutAPortalSaysSo)
{
    panel.open(QStringLiteral("title"));
    ASSERT_TRUE(waitUntil([this] { return unavailable.count() == 1; }));
    panel.open(QStringLiteral("title"));
    ASSERT_TRUE(waitUntil([this] { return unavailable.count() == 2; }));
    EXPECT_EQ(chosen.count(), 0);
}

TEST_F(FolderPanelTest, withoutABusThereIsNoPanel)
{
    const QByteArray before = qgetenv("DBUS_SESSION_BUS_ADDRESS");
    qunsetenv("DBUS_SESSION_BUS_ADDRESS");
    panel.open(QStringLiteral("title"));
    EXPECT_EQ(unavailable.count(), 0); // never from within the call
    EXPECT_TRUE(waitUntil([this] { return unavailable.count() == 1; }));
    qputenv("DBUS_SESSION_BUS_ADDRESS", before);
}

} // namespace

#include "FolderPanelTest.moc"
