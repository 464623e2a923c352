#include "tests/endurance/Pusher.h"

#include "platform/testing/Testing.h"
#include "platform/testing/Wire.h"

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace endurance
{

namespace
{

using namespace tavrix::testing;

constexpr unsigned short Port = 650;
constexpr unsigned ConnectCode = 0x80;
constexpr unsigned PutCode = 0x02;
constexpr unsigned FinalPutCode = 0x82;
constexpr unsigned EndCode = 0x81;
constexpr unsigned NameHeader = 0x01;
constexpr unsigned BodyHeader = 0x48;
constexpr unsigned EndOfBodyHeader = 0x49;

std::string Word(size_t number)
{
    return {static_cast<char>(number >> 8 & 255), static_cast<char>(number & 255)};
}

std::string Packet(unsigned code, const std::string& payload)
{
    return static_cast<char>(code) + Word(payload.size() + 3) + payload;
}

std::string Header(unsigned code, const std::string& payload)
{
    return static_cast<char>(code) + Word(payload.size() + 3) + payload;
}

std::string NameOf(const std::string& name)
{
    std::string text;
    for (const char16_t unit : Wide(name))
        text += Word(unit);
    return Header(NameHeader, text + Word(0));
}

bool Ask(Connection& connection, const std::string& packet)
{
    constexpr size_t Head = 3;
    if (!connection.Write(packet))
        return false;
    const std::string head = connection.ReadExactly(Head);
    if (head.size() < Head)
        return false;
    const size_t length =
        static_cast<unsigned char>(head[1]) * 256u + static_cast<unsigned char>(head[2]);
    if (length > Head)
        (void)connection.ReadExactly(length - Head);
    return true;
}

/// At any packet the device may go out of range or say something else.
void Talk(Connection& connection, const std::string& name, const std::string& bytes, Dice dice)
{
    constexpr size_t Part = 400;
    const int goodWill = dice.Pick({100, 100, 90, 60});
    const auto say = [&](const std::string& packet) {
        if (dice.Chance(goodWill))
            return Ask(connection, packet);
        if (dice.Chance(50))
            connection.Write(
                packet.substr(0, static_cast<size_t>(dice.Below(static_cast<int>(packet.size())))));
        else
            connection.Write(std::string(static_cast<size_t>(dice.Below(300)), '\xA5'));
        return false;
    };
    if (!say(Packet(ConnectCode, "\x10" + std::string(1, 0) + Word(0x2000))))
        return;
    if (!say(Packet(PutCode, NameOf(name))))
        return;
    size_t at = 0;
    for (; at + Part < bytes.size(); at += Part)
        if (!say(Packet(PutCode, Header(BodyHeader, bytes.substr(at, Part)))))
            return;
    if (say(Packet(FinalPutCode, Header(EndOfBodyHeader, bytes.substr(at)))))
        (void)say(Packet(EndCode, ""));
}

std::string BytesOf(const std::string& path)
{
    constexpr size_t Most = 20000;
    std::ifstream file(path, std::ios::binary);
    std::string bytes{std::istreambuf_iterator<char>(file), {}};
    return bytes.substr(0, Most);
}

} // namespace

Pusher::Pusher()
{
    setenv("TAVRIX_IR", ("tcp:" + OwnAddress() + ":650").c_str(), 1);
}

void Pusher::Push(const std::string& file, Dice dice)
{
    Stop();
    stop = false;
    const std::string bytes = BytesOf(file);
    const std::string name = std::filesystem::path(file).filename();
    thread = std::thread([this, bytes, name, dice] {
        constexpr int Tries = 400;
        for (int i = 0; i < Tries && !stop; ++i) {
            Connection connection = ConnectTo(OwnAddress(), Port);
            if (connection.IsOpen()) {
                Talk(connection, name, bytes, dice);
                return;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
    });
}

void Pusher::Stop()
{
    stop = true;
    if (thread.joinable())
        thread.join();
}

} // namespace endurance
