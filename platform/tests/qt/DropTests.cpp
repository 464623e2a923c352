// Files dropped on the device screen.
#include "platform/testing/WindowTesting.h"
#include "platform/tests/qt/TestWindow.h"

#include "platform/qt/Window.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDropEvent>
#include <QMimeData>
#include <QSysInfo>
#include <QUrl>
#include <QWidget>
#include <QWindow>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <sys/stat.h>

namespace hand = tavrix::testing;
namespace platform = tavrix::platform;
namespace test = tavrix::test;
using tavrix::test::TestWindow;

namespace
{

// What a drag shows and its source is told.
struct Verdict {
    bool entering = false;
    bool moving = false;
    bool dropped = false;
    Qt::DropAction action = Qt::IgnoreAction;
};

QWindow* Host()
{
    return platform::ScreenWidget()->window()->windowHandle();
}

// A whole drag over the device screen that ends there, by the source's own words.
Verdict DragWords(const QByteArray& uriList, QPoint at = {300, 300},
                  Qt::DropActions offered = Qt::CopyAction | Qt::MoveAction)
{
    QMimeData data;
    data.setData(QStringLiteral("text/uri-list"), uriList);
    Verdict verdict;
    QDragEnterEvent enter(at, offered, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(Host(), &enter);
    verdict.entering = enter.isAccepted();
    QDragMoveEvent move(at, offered, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(Host(), &move);
    verdict.moving = move.isAccepted();
    QDropEvent drop(at, offered, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(Host(), &drop);
    verdict.dropped = drop.isAccepted();
    verdict.action = drop.dropAction();
    return verdict;
}

QByteArray UriList(const std::vector<std::string>& files)
{
    QByteArray text;
    for (const std::string& file : files)
        text += QUrl::fromLocalFile(QString::fromStdString(file)).toEncoded() + "\r\n";
    return text;
}

bool Drag(const std::vector<std::string>& files, QPoint at = {300, 300})
{
    const Verdict verdict = DragWords(UriList(files), at);
    EXPECT_EQ(verdict.entering, verdict.dropped);
    EXPECT_EQ(verdict.moving, verdict.dropped);
    return verdict.dropped;
}

// A window that keeps what is handed over to it.
class Receiver
{
public:
    struct Record {
        ULONG_PTR word;
        DWORD bytes;
        WPARAM wParam;
        std::u16string text;
    };

    std::vector<Record> records;
    const TestWindow window{[this](HWND, UINT message, WPARAM wParam,
                                   LPARAM lParam) -> std::optional<LRESULT> {
        if (message != WM_COPYDATA)
            return std::nullopt;
        const auto& data = *reinterpret_cast<const COPYDATASTRUCT*>(lParam);
        records.push_back(
            {data.dwData, data.cbData, wParam,
             std::u16string(static_cast<const WCHAR*>(data.lpData), data.cbData / sizeof(WCHAR))});
        return 1;
    }};
};

std::string MakeFile(const std::string& name)
{
    static const std::string folder = hand::HostPath(TEXT("\\")) + "/dropped";
    std::filesystem::create_directories(folder);
    std::ofstream(folder + "/" + name) << "x";
    return folder + "/" + name;
}

} // namespace

TEST(Drop, AFileComesAsASecondStartsDoesAndOnlyFromTheMessageLoop)
{
    Receiver receiver;
    hand::Pump(30);
    const Verdict verdict = DragWords(UriList({MakeFile("二 枚目 50%.png")}));
    EXPECT_TRUE(verdict.entering);
    EXPECT_TRUE(verdict.moving);
    EXPECT_TRUE(verdict.dropped);
    EXPECT_EQ(verdict.action, Qt::CopyAction);
    EXPECT_TRUE(receiver.records.empty()) << "the source has its answer first";
    hand::Pump(30);
    ASSERT_EQ(receiver.records.size(), 1u);
    EXPECT_EQ(receiver.records[0].word, 1u);
    EXPECT_EQ(receiver.records[0].wParam, 0u);
    const std::u16string text = std::u16string(u"\\dropped\\二 枚目 50%.png") + u'\0';
    EXPECT_EQ(receiver.records[0].text, text);
    EXPECT_EQ(receiver.records[0].bytes, 2 * text.size());
}

TEST(Drop, SeveralFilesComeInTheirOrder)
{
    Receiver receiver;
    hand::Pump(30);
    EXPECT_TRUE(Drag({MakeFile("b.png"), MakeFile("a.png"), MakeFile("c.png")}));
    hand::Pump(30);
    ASSERT_EQ(receiver.records.size(), 3u);
    EXPECT_EQ(receiver.records[0].text.c_str(), std::u16string(u"\\dropped\\b.png"));
    EXPECT_EQ(receiver.records[1].text.c_str(), std::u16string(u"\\dropped\\a.png"));
    EXPECT_EQ(receiver.records[2].text.c_str(), std::u16string(u"\\dropped\\c.png"));
}

TEST(Drop, WhatIsNoFileOfThisMachineIsRefusedWithAllThatCameWithIt)
{
    Receiver receiver;
    hand::Pump(30);
    const std::string file = MakeFile("a.png");
    const std::string folder = std::filesystem::path(file).parent_path();
    mkfifo((folder + "/pipe").c_str(), 0600);
    std::string longName = folder;
    while (longName.size() < 300)
        longName += "/a name of thirty characters...";
    std::filesystem::create_directories(longName);
    std::ofstream(longName + "/picture") << "x";
    EXPECT_FALSE(Drag({}));
    EXPECT_FALSE(Drag({folder}));
    EXPECT_FALSE(Drag({folder + "/none.png"}));
    EXPECT_FALSE(Drag({folder + "/pipe"}));
    EXPECT_FALSE(Drag({longName + "/picture"}));
    EXPECT_FALSE(Drag({MakeFile("back\\slash.png")}));
    EXPECT_FALSE(Drag({file, folder}));
    EXPECT_FALSE(DragWords("https://example.org/a.png\r\n").dropped);
    const QByteArray path(file.c_str());
    EXPECT_FALSE(DragWords("file://elsewhere" + path + "\r\n").dropped);
    EXPECT_FALSE(DragWords("text").dropped);
    EXPECT_FALSE(DragWords("file://" + path, {300, 300}, Qt::MoveAction).dropped)
        << "the source would delete it";
    hand::Pump(30);
    EXPECT_TRUE(receiver.records.empty());
    EXPECT_TRUE(DragWords("file://localhost" + path + "\r\n").dropped);
    EXPECT_TRUE(DragWords("file://" + QSysInfo::machineHostName().toUtf8() + path).dropped);
    EXPECT_EQ(DragWords("file://" + path, {300, 300}, Qt::LinkAction).action, Qt::LinkAction);
    hand::Pump(30);
    EXPECT_EQ(receiver.records.size(), 3u);
}

TEST(Drop, AShutMainWindowRefusesWhereverTheFileIsDropped)
{
    Receiver receiver;
    const TestWindow tool({}, WS_POPUP | WS_VISIBLE, 10, 10, 50, 50, receiver.window.handle);
    hand::Pump(30);
    const std::string file = MakeFile("a.png");
    EXPECT_TRUE(Drag({file}, {20, 20})) << "a tool window lies on the same screen";
    EnableWindow(receiver.window.handle, FALSE);
    EXPECT_FALSE(Drag({file}));
    EXPECT_FALSE(Drag({file}, {20, 20}));
    EnableWindow(receiver.window.handle, TRUE);
    EXPECT_TRUE(Drag({file}));
    // Shut while it is dragged.
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(QString::fromStdString(file))});
    QDragEnterEvent enter({300, 300}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(Host(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    EnableWindow(receiver.window.handle, FALSE);
    QDragMoveEvent move({301, 300}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(Host(), &move);
    EXPECT_FALSE(move.isAccepted());
    EnableWindow(receiver.window.handle, TRUE);
    hand::Pump(30);
    EXPECT_EQ(receiver.records.size(), 2u);
}
