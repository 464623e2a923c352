// The viewer's end of the remote framebuffer protocol (RFC 6143), as much as a test needs:
// version 3.8 without a password, true colour, raw rectangles, the pointer. Every failure ends the
// process with a word on standard error.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

class RfbClient
{
public:
    /// Connects to a server of this machine and has it tell the screen's size.
    explicit RfbClient(int port);
    ~RfbClient();
    RfbClient(const RfbClient&) = delete;
    RfbClient& operator=(const RfbClient&) = delete;

    int Width() const { return width; }
    int Height() const { return height; }
    /// Row by row, three bytes a pixel: red, green, blue.
    const std::vector<uint8_t>& Pixels() const { return pixels; }

    /// The pointer stands there, with the left button down or not.
    void Point(int x, int y, bool down);
    /// Takes what the server shows until nothing has changed for `milliseconds`.
    void Rest(int milliseconds);
    /// Whether the server is still there.
    bool IsOpen() const { return !closed; }

private:
    bool Read(void* to, size_t count);
    void Write(const std::vector<uint8_t>& bytes);
    uint32_t Number(int bytes);
    void Greet();
    void AskForPixels(bool changesOnly);
    bool TakeMessage();
    bool TakeRectangle();

    int socket = -1;
    int width = 0;
    int height = 0;
    bool closed = false;
    bool changed = false; // by the last message
    std::vector<uint8_t> pixels;
};
