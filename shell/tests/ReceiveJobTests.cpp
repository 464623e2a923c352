// The receiving job: what the dialog shows while a real client goes through an exchange, and what
// the stream holds behind it.

#include "shell/tests/JobTesting.h"

#include "shell/JobThreads.h"
#include "tests/support/DeviceCalls.h"
#include "transfer/tests/ObexTesting.h"

#include <mutex>

using namespace jobtest;
using obextest::Answer;
using obextest::Body;
using obextest::Hex;
using obextest::Packet;

namespace
{

using Texts = std::vector<std::u16string>;
using Clock = std::chrono::steady_clock;

const char NameHeader[] = "01 00 0F 00 61 00 2E 00 70 00 6E 00 67 00 00"; // "a.png"

/// Sees every text that the status line is given, on the user-interface thread. The client may ask
/// what has come.
class StatusLine
{
public:
    StatusLine()
    {
        current = this;
        watched.script = [](HWND dialog, bool box) {
            if (box)
                return;
            HWND line = GetDlgItem(dialog, ControlProgressStatus);
            current->original = reinterpret_cast<WNDPROC>(
                SetWindowLongPtrW(line, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(InFront)));
        };
    }
    ~StatusLine() { current = nullptr; }
    StatusLine(const StatusLine&) = delete;
    StatusLine& operator=(const StatusLine&) = delete;

    /// Waits until a text is the last.
    void Await(const std::u16string& text)
    {
        for (int i = 0; i < 20000; ++i) {
            const Texts all = Shown();
            if (!all.empty() && all.back() == text)
                return;
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        ADD_FAILURE() << Utf8(text.c_str()) << " never came";
    }
    Texts Shown()
    {
        const std::lock_guard guard(lock);
        return texts;
    }
    /// When the last text came.
    Clock::time_point LastTime() const { return lastTime; }

    Watched watched;

private:
    static LRESULT CALLBACK InFront(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
    {
        if (message == WM_SETTEXT) {
            EXPECT_FALSE(IsWindowEnabled(GetDlgItem(GetParent(window), ControlAbort)));
            const std::lock_guard guard(current->lock);
            current->texts.emplace_back(reinterpret_cast<const WCHAR*>(lParam));
            current->lastTime = Clock::now();
        }
        return CallWindowProcW(current->original, window, message, wParam, lParam);
    }

    static inline StatusLine* current;
    WNDPROC original = nullptr;
    std::mutex lock;
    Texts texts;
    Clock::time_point lastTime;
};

struct Words {
    const char16_t* headline;
    const char16_t* finding;
    const char16_t* found;
    const char16_t* finished;
    const char16_t* failed;
    const char16_t* report;
    const char16_t* error;
    std::u16string (*received)(const std::u16string& size);
};

const Words English = {u"Loading an object from IrDA...",
                       u"Finding IrOBEX Client...",
                       u"Found 127.0.0.1.",
                       u"Finished.",
                       u"Failed to receive an object.",
                       u"REPORT",
                       u"ERROR",
                       [](const std::u16string& size) { return u"Received " + size + u" KB."; }};
const Words Japanese = {u"赤外線デバイスから読み込んでいます...",
                        u"赤外線デバイスを探しています。",
                        u"127.0.0.1が見つかりました。",
                        u"受信完了しました。",
                        u"受信に失敗しました。",
                        u"報告",
                        u"エラー",
                        [](const std::u16string& size) { return size + u" KB 受信しました。"; }};

i32 RunReceiving(MainFrame& frame, BlockStream* destination)
{
    ReceiveArguments arguments = {destination};
    JobRecord record = {JobReceive, &arguments};
    return RunJob(frame.window, frame.instance, &record);
}

std::string BytesOf(BlockStream& stream)
{
    u64 size = 0;
    EXPECT_EQ(stream.GetSize(&size), Done);
    const i64 start = 0;
    EXPECT_EQ(stream.Seek(&start, nullptr, 0), Done);
    std::string bytes(size, '\0');
    u32 got = static_cast<u32>(size);
    EXPECT_GE(stream.Read(bytes.data(), &got), NothingDone);
    EXPECT_EQ(got, size);
    return bytes;
}

std::u16string NameOf(BlockStream& stream)
{
    WCHAR name[64] = {};
    EXPECT_EQ(stream.GetName(name, 64), Done);
    return name;
}

class ReceiveJob : public ::testing::TestWithParam<LANGID>
{
protected:
    ReceiveJob()
    {
        SetLanguage(GetParam());
        obextest::UseOwnAddress();
        EXPECT_EQ(stream.Open(1024, nullptr), Done);
    }

    Scope scope;
    const Words& words = GetParam() == 1041 ? Japanese : English;
    BlockStream stream;
};

} // namespace

TEST_P(ReceiveJob, ShowsEachStepOfTheExchangeAndTheStreamHasTheNameAndTheBytes)
{
    StatusLine line;
    RunProgram(u"", [&](MainFrame& frame) {
        line.watched.boxes.clear();
        std::string object;
        std::thread client([&] {
            line.Await(words.finding);
            Connection connection;
            while (!connection.IsOpen())
                connection = ConnectTo(OwnAddress(), 650);
            line.Await(words.found);
            EXPECT_EQ(obextest::Ask(connection, Hex("80 00 07 10 00 04 00")),
                      "A0 00 07 10 00 02 00");
            EXPECT_EQ(
                obextest::Ask(connection, Packet(0x02, Hex(NameHeader) + Hex("C3 00 00 07 9A"))),
                "90 00 03");
            // The name and the length show nothing.
            line.Await(words.found);
            const struct {
                size_t size;
                const char16_t* sum; // received / 1024, and a digit that is never rounded up
            } packets[] = {{0, u"0.0"},  {506, u"0.4"}, {506, u"0.9"},
                           {12, u"1.0"}, {461, u"1.4"}, {461, u"1.9"}};
            for (const auto& packet : packets) {
                const std::string data(packet.size, static_cast<char>('a' + object.size() % 26));
                object += data;
                EXPECT_EQ(obextest::Ask(connection, Packet(0x02, Body(data))), "90 00 03");
                line.Await(words.received(packet.sum));
            }
            EXPECT_EQ(obextest::Ask(connection, Hex("82 00 06 49 00 03")), "A0 00 03");
            EXPECT_EQ(obextest::Ask(connection, Hex("81 00 03")), "A0 00 03");
        });
        EXPECT_EQ(RunReceiving(frame, &stream), 1);
        client.join();
        EXPECT_EQ(line.Shown(),
                  (Texts{words.finding, words.found, words.received(u"0.0"), words.received(u"0.4"),
                         words.received(u"0.9"), words.received(u"1.0"), words.received(u"1.4"),
                         words.received(u"1.9"), words.received(u"1.9"), words.finished}));
        EXPECT_EQ(line.watched.headlines, Texts{words.headline});
        EXPECT_EQ(line.watched.stoppable, std::vector<bool>{false});
        EXPECT_TRUE(line.watched.boxes.empty());
        EXPECT_EQ(tavrix::platform::Hooks().beeps, 0U);
        EXPECT_EQ(NameOf(stream), u"a.png");
        EXPECT_EQ(BytesOf(stream), object);
        EXPECT_EQ(object.size(), 1946U);
    });
}

TEST_P(ReceiveJob, AFailureIsToldForTwoSecondsAndWhatCameStaysInTheStream)
{
    StatusLine line;
    RunProgram(u"", [&](MainFrame& frame) {
        obextest::Client client([](Connection& connection) {
            EXPECT_EQ(obextest::Ask(connection, Packet(0x02, Hex(NameHeader) + Body("abc"))),
                      "90 00 03");
        });
        EXPECT_EQ(RunReceiving(frame, &stream), 1);
        EXPECT_GE(Clock::now() - line.LastTime(), std::chrono::milliseconds(2000));
        EXPECT_EQ(line.Shown(),
                  (Texts{words.finding, words.found, words.received(u"0.0"), words.failed}));
        EXPECT_EQ(line.watched.stoppable, std::vector<bool>{false});
        EXPECT_EQ(tavrix::platform::Hooks().beeps, 1U);
        EXPECT_EQ(NameOf(stream), u"a.png");
        EXPECT_EQ(BytesOf(stream), "abc");
    });
}

TEST_P(ReceiveJob, WithoutADialogItsTextsComeAsBoxesWithTheirTitles)
{
    Watched watched;
    RunProgram(u"", [&](MainFrame& frame) {
        for (const bool whole : {true, false}) {
            const size_t first = BoxCalls().size();
            obextest::Client client([=](Connection& connection) {
                connection.Write(Packet(whole ? 0x82 : 0x83, Body("abc")) + Packet(0x81, ""));
                (void)connection.ReadAll();
            });
            ReceiveArguments arguments = {&stream};
            EXPECT_EQ(ReceiveJobThread(&arguments), 0U);
            Texts texts;
            for (size_t i = first; i < BoxCalls().size(); ++i) {
                const BoxCall& box = BoxCalls()[i];
                const bool failure = box.text == words.failed;
                EXPECT_EQ(box.caption, failure ? words.error : words.report);
                EXPECT_EQ(box.flags, failure ? 16U : 0U);
                EXPECT_EQ(box.owner, frame.window);
                texts.push_back(box.text);
            }
            EXPECT_EQ(texts, whole ? (Texts{words.finding, words.found, words.received(u"0.0"),
                                            words.finished})
                                   : (Texts{words.finding, words.found, words.failed}));
        }
    });
}

INSTANTIATE_TEST_SUITE_P(InBothLanguages, ReceiveJob, ::testing::Values(LANGID{1033}, LANGID{1041}),
                         [](const auto& test) {
                             return std::string(test.param == 1041 ? "Japanese" : "English");
                         });

TEST(ReceivingJob, ABodyOfAnImpossibleLengthEndsItWithoutAFailure)
{
    Scope scope;
    SetLanguage(1033);
    obextest::UseOwnAddress();
    BlockStream stream;
    ASSERT_EQ(stream.Open(1024, nullptr), Done);
    StatusLine line;
    RunProgram(u"", [&](MainFrame& frame) {
        obextest::Client client([](Connection& connection) {
            connection.Write(Packet(0x82, Body("abc") + Hex("48 01 FE")));
            EXPECT_EQ(connection.ReadAll(), "");
        });
        EXPECT_EQ(RunReceiving(frame, &stream), 1);
        EXPECT_EQ(line.Shown(), (Texts{English.finding, English.found, English.received(u"0.0")}));
        EXPECT_EQ(tavrix::platform::Hooks().beeps, 0U);
        EXPECT_EQ(NameOf(stream), u"");
        EXPECT_EQ(BytesOf(stream), "abc");
    });
}

TEST(ReceivingJob, NobodyWithinFifteenSecondsIsAFailure)
{
    Scope scope;
    SetLanguage(1033);
    obextest::UseOwnAddress();
    BlockStream stream;
    ASSERT_EQ(stream.Open(1024, nullptr), Done);
    StatusLine line;
    RunProgram(u"", [&](MainFrame& frame) {
        const DWORD start = GetTickCount();
        SetTickCount(start);
        std::atomic<bool> listening{false};
        SetSocketFault([&](tavrix::platform::SocketOperation operation, int*) {
            if (operation == tavrix::platform::SocketOperation::Accept)
                listening = true;
            return false;
        });
        std::thread clock([&] {
            while (!listening)
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            for (const DWORD passed : {0U, 15000U}) {
                SetTickCount(start + passed);
                std::this_thread::sleep_for(std::chrono::milliseconds(200));
                EXPECT_EQ(line.Shown(), Texts{English.finding}) << passed;
            }
            SetTickCount(start + 15001U);
            line.Await(English.failed);
            SetTickCount(start + 100000U); // so that the test ends in any case
        });
        EXPECT_EQ(RunReceiving(frame, &stream), 1);
        clock.join();
        EXPECT_EQ(line.Shown(), (Texts{English.finding, English.failed}));
        EXPECT_EQ(BytesOf(stream), "");
    });
}
