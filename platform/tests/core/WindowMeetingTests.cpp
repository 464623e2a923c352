// Windows of two real processes that meet.

#include "platform/core/LocalSocket.h"
#include "platform/core/MessageQueue.h"
#include "platform/core/NameSpace.h"
#include "platform/core/WindowMail.h"
#include "platform/core/WindowMessenger.h"
#include "platform/core/WindowRegistry.h"
#include "platform/core/WindowTable.h"
#include "platform/tests/core/ChildProcess.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

using namespace tavrix::platform;
namespace fs = std::filesystem;

namespace
{

constexpr const WCHAR* ClassName = TEXT("Core_Test_Window");

HWND Find()
{
    return FindForeignWindow(ClassName, nullptr);
}

LRESULT Send(HWND window, const std::u16string& text, ULONG_PTR word = 1)
{
    std::u16string copy = text;
    COPYDATASTRUCT record = {word, static_cast<DWORD>((copy.size() + 1) * sizeof(WCHAR)),
                             copy.data()};
    return SendMessageW(window, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&record));
}

/// The files by which processes meet, in the shared folder.
std::vector<std::string> MeetingFiles()
{
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(SharedFolder()))
        if (entry.path().extension() != ".lock")
            names.push_back(entry.path().filename());
    return names;
}

/// A child with a window, up and found.
struct Shown {
    explicit Shown(const std::string& role = "window") : child(role)
    {
        EXPECT_EQ(child.Line(), "ready");
        window = Find();
        EXPECT_NE(window, nullptr);
    }
    std::string Socket() const { return ForeignWindowOf(window)->socket; }
    ChildProcess child;
    HWND window = nullptr;
};

/// Sends from a thread, so that the test can look meanwhile.
class Sending
{
public:
    Sending(HWND window, const std::u16string& text)
        : thread([this, window, text] {
              result = Send(window, text);
              timespec used = {};
              clock_gettime(CLOCK_THREAD_CPUTIME_ID, &used);
              microseconds = used.tv_sec * 1000000 + used.tv_nsec / 1000;
              over = true;
          })
    {
    }
    ~Sending()
    {
        if (thread.joinable())
            thread.join();
    }
    bool IsOver() const { return over; }
    LRESULT Result()
    {
        thread.join();
        return result;
    }
    long Microseconds() const { return microseconds; }

private:
    LRESULT result = -1;
    std::atomic<bool> over{false};
    std::atomic<long> microseconds{0};
    std::thread thread; // the last: it uses the others
};

void Rest(int milliseconds)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

} // namespace

TEST(WindowMeeting, AWindowIsFoundByClassAndTitleWithoutRegardToCase)
{
    EXPECT_EQ(Find(), nullptr);
    const Shown other;
    EXPECT_EQ(FindForeignWindow(TEXT("core_test_WINDOW"), nullptr), other.window);
    EXPECT_EQ(FindForeignWindow(nullptr, TEXT("a title")), other.window);
    EXPECT_EQ(FindForeignWindow(ClassName, TEXT("A Title")), other.window);
    EXPECT_EQ(FindForeignWindow(nullptr, nullptr), other.window);
    EXPECT_EQ(FindForeignWindow(ClassName, TEXT("A Titl")), nullptr);
    EXPECT_EQ(FindForeignWindow(TEXT("Core_Test"), nullptr), nullptr);
    EXPECT_EQ(FindForeignWindow(TEXT("HHTaskBar"), nullptr), nullptr);
}

TEST(WindowMeeting, WhatIsSentArrivesWithItsBytesAndTheAnswerComesBack)
{
    Shown other;
    EXPECT_EQ(Send(other.window, u"some text", 42), 1020); // ten characters of two bytes
    EXPECT_EQ(other.child.Line(), "42 20 some text");
    EXPECT_EQ(Send(other.window, u""), 1002);
    EXPECT_EQ(other.child.Line(), "1 2 ");
}

TEST(WindowMeeting, NoDataAndEmptyDataAreTwoThings)
{
    Shown other;
    COPYDATASTRUCT record = {3, 0, nullptr};
    EXPECT_EQ(SendMessageW(other.window, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&record)), 1000);
    EXPECT_EQ(other.child.Line(), "3 0 (null)");
    WCHAR text[] = u"x";
    record = {3, 0, text};
    EXPECT_EQ(SendMessageW(other.window, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&record)), 1000);
    EXPECT_EQ(other.child.Line(), "3 0 ");
    // Bytes that are said to be there and are not are none.
    record = {3, 500, nullptr};
    EXPECT_EQ(SendMessageW(other.window, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&record)), 1000);
    EXPECT_EQ(other.child.Line(), "3 0 (null)");
}

TEST(WindowMeeting, TheLongestCommandLineArrivesAndMoreIsNotSent)
{
    Shown other;
    EXPECT_EQ(Send(other.window, std::u16string(32767, u'n')), 66536);
    EXPECT_EQ(other.child.Line(), "1 65536 nnnnnnnnnnnnnnnnnnnn");
    EXPECT_EQ(Send(other.window, std::u16string(32768, u'm')), 0);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(Send(other.window, u"next"), 1010);
    EXPECT_EQ(other.child.Line(), "1 10 next");
}

TEST(WindowMeeting, AMessageOfAnotherKindIsNotCarried)
{
    Shown other;
    EXPECT_EQ(SendMessageW(other.window, WM_APP, 0, 0), 0);
    EXPECT_EQ(SendMessageW(other.window, WM_GETTEXT, 10, 0x1000), 0);
    EXPECT_EQ(SendMessageW(other.window, WM_COPYDATA, 0, 0), 0);
    EXPECT_FALSE(PostMessageW(other.window, WM_CLOSE, 0, 0));
    EXPECT_EQ(Send(other.window, u"next"), 1010);
    EXPECT_EQ(other.child.Line(), "1 10 next");
}

TEST(WindowMeeting, AHandleOfAnotherProcessIsNoWindowOfThisOne)
{
    const Shown other;
    EXPECT_FALSE(IsWindow(other.window));
    EXPECT_EQ(WindowRecord(other.window), nullptr);
    EXPECT_EQ(WindowProcedure(other.window), nullptr);
    EXPECT_EQ(CallWindow(other.window, WM_APP, 0, 0), 0);
    EXPECT_TRUE(ForeignWindowOf(other.window));
    // Nor is any other value taken for one.
    for (const uintptr_t value :
         {uintptr_t{0}, uintptr_t{1}, uintptr_t{2}, uintptr_t{6}, uintptr_t{0xFFFF}, ~uintptr_t{0},
          ~uintptr_t{1}, reinterpret_cast<uintptr_t>(other.window) + 1,
          reinterpret_cast<uintptr_t>(other.window) + 4000,
          reinterpret_cast<uintptr_t>(other.window) - 0x10000})
        EXPECT_FALSE(ForeignWindowOf(reinterpret_cast<HWND>(value))) << value;
}

TEST(WindowMeeting, AKilledProcessIsNotFoundAndWhatItLeftIsSwept)
{
    Shown other;
    EXPECT_EQ(MeetingFiles().size(), 2U);
    other.child.Kill();
    EXPECT_EQ(MeetingFiles().size(), 2U);
    EXPECT_EQ(Send(other.window, u"x"), 0);
    EXPECT_EQ(GetLastError(), 1400U);
    EXPECT_FALSE(RaiseForeignWindow(other.window, true));
    EXPECT_EQ(Find(), nullptr);
    EXPECT_TRUE(MeetingFiles().empty());
    // The next one is found under a handle of its own.
    const Shown next;
    EXPECT_NE(next.window, other.window);
}

TEST(WindowMeeting, AnOrderlyEndLeavesNothing)
{
    Shown other;
    EXPECT_EQ(Send(other.window, u"exit"), 0); // it ends instead of answering
    EXPECT_EQ(other.child.Wait(), 0);
    EXPECT_TRUE(MeetingFiles().empty());
}

TEST(WindowMeeting, WhatIsInTheMakingIsLeftAloneAndWhatWasNeverFinishedIsSweptLater)
{
    const std::string folder = SharedFolder() + "/";
    const std::string process = "00000000000000001234abcd";
    for (const char* ending : {".socket.new", ".windows.new", ".windows"})
        std::ofstream(folder + process + ending) << "x";
    std::ofstream(folder + "00000000000000001234abcd.other") << "x";
    std::ofstream(folder + "1234abcd.windows") << "x";
    EXPECT_EQ(Find(), nullptr);
    EXPECT_EQ(MeetingFiles().size(), 5U);
    const auto longAgo = fs::file_time_type::clock::now() - std::chrono::minutes(5);
    for (const std::string& name : MeetingFiles())
        fs::last_write_time(folder + name, longAgo);
    EXPECT_EQ(Find(), nullptr);
    std::vector<std::string> left = MeetingFiles();
    std::sort(left.begin(), left.end());
    EXPECT_EQ(left,
              (std::vector<std::string>{"00000000000000001234abcd.other", "1234abcd.windows"}));
    for (const std::string& name : left)
        fs::remove(folder + name);
}

TEST(WindowMeeting, TheSenderWaitsForTheAnswerWithoutSpinning)
{
    Shown other;
    Sending sending(other.window, u"wait");
    EXPECT_EQ(other.child.Line(), "1 10 wait");
    Rest(300);
    EXPECT_FALSE(sending.IsOver());
    other.child.GoOn();
    EXPECT_EQ(sending.Result(), 1010);
    EXPECT_LT(sending.Microseconds(), 50000);
}

TEST(WindowMeeting, AnEndBeforeTheAnswerGivesZero)
{
    Shown other;
    Sending sending(other.window, u"wait");
    EXPECT_EQ(other.child.Line(), "1 10 wait");
    other.child.Kill();
    EXPECT_EQ(sending.Result(), 0);
}

TEST(WindowMeeting, AnEndBeforeTheMessageWasLookedAtGivesZero)
{
    Shown other("window-unserved");
    Sending sending(other.window, u"x");
    Rest(100);
    EXPECT_FALSE(sending.IsOver());
    other.child.Kill();
    EXPECT_EQ(sending.Result(), 0);
}

TEST(WindowMeeting, AStoppedProcessIsFoundAndWaitedFor)
{
    Shown other;
    other.child.Signal(SIGSTOP);
    EXPECT_EQ(Find(), other.window);
    Sending sending(other.window, u"later");
    EXPECT_TRUE(RaiseForeignWindow(other.window, false)); // nobody waits for this
    Rest(300);
    EXPECT_FALSE(sending.IsOver());
    other.child.Signal(SIGCONT);
    EXPECT_EQ(sending.Result(), 1012);
}

TEST(WindowMeeting, TwoSendersAtOnceAreBothServed)
{
    Shown other;
    ChildProcess one("sender");
    ChildProcess two("sender");
    for (ChildProcess* sender : {&one, &two}) {
        EXPECT_EQ(sender->Line(), "sending");
        EXPECT_EQ(sender->Line(), "1012");
    }
    EXPECT_EQ(other.child.Line(), "1 12 hello");
    EXPECT_EQ(other.child.Line(), "1 12 hello");
}

TEST(WindowMeeting, ManySendersFromOneProcessEachGetTheirOwnAnswer)
{
    Shown other;
    std::atomic<int> right{0};
    std::vector<std::thread> threads;
    for (size_t length = 1; length <= 8; ++length)
        threads.emplace_back([&right, &other, length] {
            for (int round = 0; round < 20; ++round)
                right += Send(other.window, std::u16string(length, u's')) ==
                                 static_cast<LRESULT>(1002 + 2 * length)
                             ? 1
                             : 0;
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(right, 160);
}

TEST(WindowMeeting, OtherDisplaysOtherFoldersAndPictureRunsDoNotMeet)
{
    const std::string folder = fs::path(SharedFolder()).parent_path() / "elsewhere";
    fs::create_directories(folder);
    const Shown other;
    const auto whatSenderFinds = [](const std::vector<std::string>& settings) {
        ChildProcess sender("sender", settings);
        return sender.Line();
    };
    EXPECT_EQ(whatSenderFinds({}), "sending");
    EXPECT_EQ(whatSenderFinds({"DISPLAY=:7"}), "no window");
    EXPECT_EQ(whatSenderFinds({"WAYLAND_DISPLAY=wayland-3"}), "no window");
    EXPECT_EQ(whatSenderFinds({"XDG_RUNTIME_DIR=" + folder}), "no window");
    EXPECT_EQ(whatSenderFinds({"TAVRIX_SHOT=/nowhere/shot.png"}), "no window");
}

TEST(WindowMeeting, APictureRunShowsNothingToOthers)
{
    ChildProcess picture("window", {"TAVRIX_SHOT=/nowhere/shot.png"});
    EXPECT_EQ(picture.Line(), "ready");
    EXPECT_EQ(Find(), nullptr);
    EXPECT_TRUE(MeetingFiles().empty());
}

TEST(WindowMeeting, AFolderPathLongerThanASocketsMayBeWorks)
{
    const std::string deep = fs::path(SharedFolder()).parent_path() / std::string(150, 'd');
    fs::create_directories(deep);
    ChildProcess other("window", {"XDG_RUNTIME_DIR=" + deep});
    EXPECT_EQ(other.Line(), "ready");
    ChildProcess sender("sender", {"XDG_RUNTIME_DIR=" + deep});
    EXPECT_EQ(sender.Line(), "sending");
    EXPECT_EQ(sender.Line(), "1012");
}

TEST(WindowMeeting, ANewTitleIsFoundAndTheOldOneIsNot)
{
    Shown other("window-retitled");
    other.child.GoOn();
    EXPECT_EQ(other.child.Line(), "changed");
    EXPECT_EQ(FindForeignWindow(nullptr, TEXT("Another Title")), other.window);
    EXPECT_EQ(FindForeignWindow(nullptr, TEXT("A Title")), nullptr);
}

TEST(WindowMeeting, AWindowTakenAwayIsNeitherFoundNorSentTo)
{
    Shown other("window-until-told");
    EXPECT_EQ(Send(other.window, u"x"), 1004);
    EXPECT_EQ(other.child.Line(), "1 4 x");
    other.child.GoOn();
    EXPECT_EQ(other.child.Line(), "taken away");
    EXPECT_EQ(Find(), nullptr);
    EXPECT_EQ(Send(other.window, u"y"), 0);
    EXPECT_EQ(GetLastError(), 1400U);
}

TEST(WindowMeeting, AProcessThatHasLeftItsLoopIsNotFoundAnyMore)
{
    Shown other("window-until-quit");
    other.child.GoOn();
    EXPECT_EQ(other.child.Line(), "over");
    EXPECT_EQ(Find(), nullptr);
}

TEST(WindowMeeting, TheWishToComeToTheFrontIsCarriedWithTheDesktopsLeave)
{
    Shown other;
    EXPECT_TRUE(RaiseForeignWindow(other.window, false));
    EXPECT_EQ(other.child.Line(), "raise 1 ");
    setenv("XDG_ACTIVATION_TOKEN", "token-1", 1);
    EXPECT_TRUE(RaiseForeignWindow(other.window, true));
    EXPECT_EQ(other.child.Line(), "activate 1 token-1");
    setenv("XDG_ACTIVATION_TOKEN", std::string(2000, 't').c_str(), 1);
    EXPECT_TRUE(RaiseForeignWindow(other.window, true));
    EXPECT_EQ(other.child.Line(), "activate 1 ");
    unsetenv("XDG_ACTIVATION_TOKEN");
    EXPECT_FALSE(RaiseForeignWindow(nullptr, true));
    EXPECT_FALSE(RaiseForeignWindow(reinterpret_cast<HWND>(uintptr_t{4}), true));
}

namespace
{

/// A connection as a stranger to the rules might make it.
Descriptor RawConnection(const Shown& other)
{
    Descriptor connection = ConnectTo(SharedFolder(), other.Socket());
    EXPECT_TRUE(connection.IsOpen());
    return connection;
}

void SendRaw(const Descriptor& connection, const std::vector<unsigned char>& bytes)
{
    EXPECT_EQ(send(connection.Get(), bytes.data(), bytes.size(), MSG_NOSIGNAL),
              static_cast<ssize_t>(bytes.size()));
}

/// Whether the other end hangs up within ten seconds.
bool HangsUp(const Descriptor& connection)
{
    pollfd watched = {connection.Get(), POLLIN, 0};
    char byte = 0;
    return poll(&watched, 1, 10000) == 1 && recv(connection.Get(), &byte, 1, 0) == 0;
}

} // namespace

TEST(WindowMeeting, BrokenRequestsAreHungUpOnAndHinderNobody)
{
    Shown other;
    const Descriptor silent = RawConnection(other);
    WindowMail wrongSize;
    wrongSize.hasData = true;
    wrongSize.data = {1, 2, 3, 4};
    std::vector<unsigned char> cut = PackMail(wrongSize);
    cut.pop_back();
    const std::vector<std::vector<unsigned char>> requests = {
        {0},
        std::vector<unsigned char>(31, 'x'),
        std::vector<unsigned char>(32, 0xFF),
        std::vector<unsigned char>(100000, 'T'),
        std::vector<unsigned char>(65569, 'T'),
        cut};
    for (const auto& request : requests) {
        const Descriptor connection = RawConnection(other);
        SendRaw(connection, request);
        EXPECT_TRUE(HangsUp(connection)) << request.size();
        EXPECT_EQ(Send(other.window, u"next"), 1010);
        EXPECT_EQ(other.child.Line(), "1 10 next");
    }
}

TEST(WindowMeeting, SendersThatNeverSendAreForgottenAndHinderNobody)
{
    Shown other;
    const Descriptor first = RawConnection(other);
    std::vector<Descriptor> silent;
    for (int i = 0; i < 100; ++i)
        silent.push_back(RawConnection(other));
    EXPECT_EQ(Send(other.window, u"next"), 1010);
    EXPECT_TRUE(HangsUp(first));         // too many wait
    EXPECT_TRUE(HangsUp(silent.back())); // it has waited too long
}

TEST(WindowMeeting, SendersThatDoNotWaitForTheAnswerHinderNobody)
{
    Shown other;
    const uint64_t number = ForeignWindowOf(other.window)->number;
    for (int i = 0; i < 50; ++i) {
        WindowMail mail;
        mail.window = number;
        mail.word = 1;
        mail.hasData = true;
        mail.data = {'g', 0, 'o', 0, 0, 0};
        SendRaw(RawConnection(other), PackMail(mail));
    }
    EXPECT_EQ(Send(other.window, u"next"), 1010);
    for (int i = 0; i < 50; ++i)
        EXPECT_EQ(other.child.Line(), "1 6 go");
    EXPECT_EQ(other.child.Line(), "1 10 next");
}

TEST(WindowMeeting, OnlyAWindowThatIsShownToOthersCanBeWrittenTo)
{
    Shown other;
    const uint64_t number = ForeignWindowOf(other.window)->number;
    for (const uint64_t wrong : {uint64_t{0}, number + 4, number + 1, ~uint64_t{0}}) {
        WindowMail mail;
        mail.window = wrong;
        const Descriptor connection = RawConnection(other);
        SendRaw(connection, PackMail(mail));
        unsigned char bytes[MailAnswerSize];
        ASSERT_EQ(recv(connection.Get(), bytes, sizeof bytes, 0), 16);
        const auto answer = UnpackAnswer(bytes, sizeof bytes);
        ASSERT_TRUE(answer);
        EXPECT_FALSE(answer->delivered);
    }
}

TEST(WindowMeeting, TheFolderIsTheUsersAlone)
{
    const Shown other;
    EXPECT_EQ(fs::status(SharedFolder()).permissions(), fs::perms::owner_all);
    for (const std::string& name : MeetingFiles())
        if (name.ends_with(".windows")) {
            EXPECT_EQ(fs::status(SharedFolder() + "/" + name).permissions(),
                      fs::perms::owner_read | fs::perms::owner_write);
        }
}

TEST(WindowMeeting, AnotherUserIsHungUpOnThoughTheFolderWereOpen)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can act as another user";
    Shown other;
    const std::string socket = SharedFolder() + "/" + other.Socket();
    // The whole way opened, as no run of the program does.
    for (fs::path path = socket; path != "/" && path != "/tmp"; path = path.parent_path())
        fs::permissions(path, fs::perms::others_all, fs::perm_options::add);
    const std::string folder = SharedFolder();
    const std::string name = other.Socket();
    const pid_t stranger = fork();
    if (stranger == 0) {
        if (setgid(65534) != 0 || setuid(65534) != 0)
            _exit(9);
        // ConnectTo itself would not go to another user's process: the door is tried without it.
        const int connection = ::socket(AF_UNIX, SOCK_SEQPACKET, 0);
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        if (chdir(folder.c_str()) != 0)
            _exit(8);
        name.copy(address.sun_path, sizeof address.sun_path - 1);
        if (connect(connection, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0)
            _exit(7);
        const std::vector<unsigned char> mail = PackMail({});
        (void)!send(connection, mail.data(), mail.size(), MSG_NOSIGNAL);
        char byte = 0;
        const bool refused = recv(connection, &byte, 1, 0) <= 0;
        const bool goesThere = ConnectTo(folder, name).IsOpen();
        _exit(refused && !goesThere ? 0 : 6);
    }
    int status = 0;
    waitpid(stranger, &status, 0);
    EXPECT_EQ(WEXITSTATUS(status), 0);
    fs::permissions(SharedFolder(), fs::perms::owner_all, fs::perm_options::replace);
    EXPECT_EQ(Send(other.window, u"next"), 1010);
}

namespace
{

int asked = 0;
LRESULT CALLBACK AnswerChild(HWND, UINT message, WPARAM, LPARAM lParam)
{
    if (message != WM_COPYDATA)
        return 0;
    ++asked;
    return static_cast<LRESULT>(reinterpret_cast<const COPYDATASTRUCT*>(lParam)->cbData);
}

} // namespace

TEST(WindowMeeting, WhoWaitsForAnAnswerServesWhatIsSentMeanwhile)
{
    static WNDPROC procedure = AnswerChild;
    const HWND own = AddWindowHandle(&procedure, &procedure);
    PublishWindow(own, u"Core_Test_Parent", u"");
    EXPECT_EQ(FindForeignWindow(TEXT("Core_Test_Parent"), nullptr), nullptr); // it is no other's
    {
        Shown other;
        asked = 0;
        EXPECT_EQ(Send(other.window, u"back"), 22); // "asked back" and its zero
        EXPECT_EQ(asked, 1);
    }
    RetractWindow(own);
    RemoveWindowHandle(own);
    EXPECT_EQ(FindForeignWindow(nullptr, nullptr), nullptr);
}
