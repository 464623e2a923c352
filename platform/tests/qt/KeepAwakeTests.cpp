// Resets of the idle timer as the host's desktop sees them: a real bus of the test's own with a
// screen saver on it, and a real X server whose idle time another program reads.
#include "platform/testing/core/TestHome.h"
#include "platform/testing/WindowTesting.h"
#include "platform/tests/qt/TestWindow.h"

#include "platform/qt/Window.h"

#include <handheld.h>

#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

using namespace tavrix::testing;

namespace
{

/// A program beside the test that tells one line on its standard output when it is ready.
class Helper
{
public:
    explicit Helper(std::vector<std::string> words)
    {
        int ends[2];
        if (pipe(ends) != 0)
            return;
        process = fork();
        if (process == 0) {
            dup2(ends[1], STDOUT_FILENO);
            if (std::freopen("/dev/null", "w", stderr) == nullptr)
                _exit(126);
            std::vector<char*> list;
            for (std::string& word : words)
                list.push_back(word.data());
            list.push_back(nullptr);
            execvp(list[0], list.data());
            _exit(127);
        }
        close(ends[1]);
        for (char sign = 0; read(ends[0], &sign, 1) == 1 && sign != '\n';)
            line.push_back(sign);
        close(ends[0]);
    }
    ~Helper()
    {
        kill(process, SIGTERM);
        waitpid(process, nullptr, 0);
    }
    Helper(const Helper&) = delete;
    Helper& operator=(const Helper&) = delete;

    std::string line;

private:
    pid_t process = -1;
};

/// The screen saver of a desktop: keeps what it is told.
class ScreenSaver : public QDBusVirtualObject
{
public:
    explicit ScreenSaver(const std::string& address)
        : bus(QDBusConnection::connectToBus(QString::fromStdString(address),
                                            QStringLiteral("peer")))
    {
        bus.registerVirtualObject(QStringLiteral("/org/freedesktop/ScreenSaver"), this);
        bus.registerService(QStringLiteral("org.freedesktop.ScreenSaver"));
    }
    ~ScreenSaver() override { QDBusConnection::disconnectFromBus(QStringLiteral("peer")); }

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& from) override
    {
        if (message.interface() != QLatin1String("org.freedesktop.ScreenSaver"))
            return false;
        told.push_back(message.member().toStdString() + message.signature().toStdString());
        if (message.member() == QLatin1String("Inhibit")) {
            name = message.arguments().at(0).toString().toStdString();
            reason = message.arguments().at(1).toString().toStdString();
            if (!isMute)
                from.send(message.createReply(QVariant(++lastCookie)));
        } else {
            released.push_back(message.arguments().at(0).toUInt());
            from.send(message.createReply());
        }
        return true;
    }

    bool isMute = false;
    std::vector<std::string> told; // operation and types of its arguments
    std::string name;
    std::string reason;
    unsigned lastCookie = 4710;
    std::vector<unsigned> released;

private:
    QDBusConnection bus;
};

class KeepAwake : public ::testing::Test
{
protected:
    KeepAwake() : bus({"dbus-daemon", "--session", "--nofork", "--print-address=1"}) {}

    void StartToolkit() const
    {
        setenv("DBUS_SESSION_BUS_ADDRESS", bus.line.c_str(), 1);
        tavrix::platform::ScreenWidget();
    }
    static void ResetOnWorker()
    {
        std::thread([] { SystemIdleTimerReset(); }).join();
    }

    Scope scope;
    Helper bus;
};

using Told = std::vector<std::string>;

} // namespace

TEST_F(KeepAwake, TheFirstResetInhibitsTheScreenSaverOnceAndThirtySecondsWithoutAnyReleaseIt)
{
    StartToolkit();
    ScreenSaver saver(bus.line);
    Pump(200);
    EXPECT_TRUE(saver.told.empty()); // nothing is asked before the first reset
    SetTickCount(100000);
    ResetOnWorker();
    ASSERT_TRUE(PumpUntil([&] { return !saver.told.empty(); }));
    EXPECT_EQ(saver.told, Told{"Inhibitss"});
    EXPECT_EQ(saver.name, "Tavrix");
    EXPECT_FALSE(saver.reason.empty());
    SetTickCount(110000);
    ResetOnWorker();
    SetTickCount(139999);
    Pump(1200);
    EXPECT_EQ(saver.told, Told{"Inhibitss"});
    SetTickCount(140000);
    ASSERT_TRUE(PumpUntil([&] { return saver.told.size() > 1; }, 3000));
    EXPECT_EQ(saver.told, (Told{"Inhibitss", "UnInhibitu"}));
    EXPECT_EQ(saver.released, std::vector<unsigned>{4711});
    // The next job begins anew.
    ResetOnWorker();
    ASSERT_TRUE(PumpUntil([&] { return saver.told.size() > 2; }));
    EXPECT_EQ(saver.told.back(), "Inhibitss");
}

TEST_F(KeepAwake, AScreenSaverThatDoesNotAnswerHoldsNobodyUp)
{
    StartToolkit();
    ScreenSaver saver(bus.line);
    saver.isMute = true;
    const auto begin = std::chrono::steady_clock::now();
    ResetOnWorker();
    SystemIdleTimerReset();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(500));
    ASSERT_TRUE(PumpUntil([&] { return !saver.told.empty(); }));
    const auto waiting = std::chrono::steady_clock::now();
    ResetOnWorker();
    SystemIdleTimerReset();
    EXPECT_LT(std::chrono::steady_clock::now() - waiting, std::chrono::milliseconds(500));
}

TEST_F(KeepAwake, WithoutAScreenSaverOnTheBusTheNextResetTriesAgain)
{
    StartToolkit();
    ResetOnWorker();
    Pump(300);
    ScreenSaver saver(bus.line);
    EXPECT_TRUE(saver.told.empty());
    ResetOnWorker();
    ASSERT_TRUE(PumpUntil([&] { return !saver.told.empty(); }));
}

TEST_F(KeepAwake, TheEndOfTheProcessReleasesIt)
{
    setenv("DBUS_SESSION_BUS_ADDRESS", bus.line.c_str(), 1);
    int go[2];
    ASSERT_EQ(pipe(go), 0);
    const pid_t child = fork();
    if (child == 0) {
        // A process of its own that ends as programs do.
        char sign = 0;
        (void)!read(go[0], &sign, 1); // the screen saver is there
        tavrix::platform::ScreenWidget();
        SystemIdleTimerReset();
        (void)!read(go[0], &sign, 1);
        std::exit(0);
    }
    tavrix::platform::ScreenWidget();
    ScreenSaver saver(bus.line);
    (void)!write(go[1], "x", 1);
    EXPECT_TRUE(PumpUntil([&] { return !saver.told.empty(); }));
    Pump(200);
    EXPECT_EQ(saver.told, Told{"Inhibitss"});
    (void)!write(go[1], "x", 1);
    EXPECT_TRUE(PumpUntil([&] { return !saver.released.empty(); }, 5000));
    EXPECT_EQ(saver.released, std::vector<unsigned>{4711});
    waitpid(child, nullptr, 0);
}

TEST_F(KeepAwake, AHeadlessRunUsesNoBusThatItsEnvironmentDoesNotName)
{
    // The bus stands where a desktop's would be.
    const std::string runtime = TestHome() + "/runtime";
    const Helper other({"dbus-daemon", "--session", "--nofork", "--print-address=1",
                        "--address=unix:path=" + runtime + "/bus"});
    ASSERT_EQ(access((runtime + "/bus").c_str(), F_OK), 0);
    tavrix::platform::ScreenWidget();
    ScreenSaver saver(other.line);
    ResetOnWorker();
    Pump(500);
    EXPECT_TRUE(saver.told.empty());
}

TEST(KeepAwakeWithoutABus, AResetDoesNothingAndSaysNothing)
{
    setenv("DBUS_SESSION_BUS_ADDRESS", ("unix:path=" + TestHome() + "/none").c_str(), 1);
    tavrix::platform::ScreenWidget();
    ::testing::internal::CaptureStderr();
    SystemIdleTimerReset();
    Pump(300);
    SystemIdleTimerReset();
    Pump(100);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}

TEST(KeepAwakeOnX11, AResetStartsTheServersIdleTimeAnew)
{
    const Helper server(
        {"Xvfb", "-displayfd", "1", "-screen", "0", "320x240x24", "-nolisten", "tcp", "-noreset"});
    ASSERT_FALSE(server.line.empty());
    setenv("DISPLAY", (":" + server.line).c_str(), 1);
    setenv("QT_QPA_PLATFORM", "xcb", 1);
    const auto idle = [] { return std::stol(Helper({"xprintidle"}).line); };
    const tavrix::test::TestWindow window;
    Pump(1500);
    ASSERT_GE(idle(), 1000); // milliseconds
    SystemIdleTimerReset();
    Pump(100);
    EXPECT_LT(idle(), 900);
}
