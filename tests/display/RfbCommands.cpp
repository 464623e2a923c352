// A hand and an eye at the other end of a framebuffer server: rfb-client PORT carries out the lines
// of its standard input, one after the other, and answers each by a line of its own.
//
//   move X Y     the pointer, whatever its button does
//   down, up     its left button
//   take FILE    the screen once it rests, as the upper left part of 1024x768 raw RGB pixels
//   save FILE    the screen as it was taken last, as a PPM file
//   size         "W H"
//
// It answers "ok", and "gone" once the server is.

#include "RfbClient.h"

#include <fstream>
#include <iostream>
#include <sstream>

namespace
{

constexpr int TakenWidth = 1024;
constexpr int TakenHeight = 768;
constexpr int RestMilliseconds = 80;

void Write(const RfbClient& client, const std::string& path)
{
    std::ofstream file(path, std::ios::binary);
    const auto* row = reinterpret_cast<const char*>(client.Pixels().data());
    const std::string beside(size_t(TakenWidth - client.Width()) * 3, '\0');
    for (int y = 0; y < client.Height(); ++y, row += client.Width() * 3)
        file.write(row, client.Width() * 3) << beside;
    file << std::string(size_t(TakenHeight - client.Height()) * TakenWidth * 3, '\0');
}

void Save(const RfbClient& client, const std::string& path)
{
    std::ofstream file(path, std::ios::binary);
    file << "P6\n" << client.Width() << ' ' << client.Height() << "\n255\n";
    file.write(reinterpret_cast<const char*>(client.Pixels().data()),
               static_cast<std::streamsize>(client.Pixels().size()));
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2)
        return 2;
    RfbClient client(std::atoi(argv[1]));
    if (client.Width() > TakenWidth || client.Height() > TakenHeight)
        return 2;
    int x = 0;
    int y = 0;
    bool down = false;
    for (std::string line; std::getline(std::cin, line);) {
        std::istringstream words(line);
        std::string command;
        std::string argument;
        words >> command;
        if (command == "move") {
            words >> x >> y;
        } else if (command == "down" || command == "up") {
            down = command == "down";
        } else {
            words >> argument;
        }
        if (argument.empty() && command != "size")
            client.Point(x, y, down);
        else
            client.Rest(RestMilliseconds);
        if (command == "take")
            Write(client, argument);
        else if (command == "save")
            Save(client, argument);
        if (command == "size")
            std::cout << client.Width() << ' ' << client.Height() << std::endl;
        else
            std::cout << (client.IsOpen() ? "ok" : "gone") << std::endl;
    }
}
