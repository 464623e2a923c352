#include "tests/endurance/WebServer.h"

#include <fstream>
#include <iterator>

namespace endurance
{

namespace
{

using tavrix::testing::Connection;

constexpr const char* Head = "HTTP/1.0 200 OK\r\nContent-Type: image/png\r\n\r\n";

std::string BytesOf(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

bool Asks(const std::string& request, const char* page)
{
    return request.find(std::string("GET ") + page) != request.npos;
}

void Serve(Connection& connection, const std::string& bytes)
{
    const std::string request = connection.ReadUntil("\n\n");
    const std::string half = bytes.substr(0, bytes.size() / 2);
    if (Asks(request, "/cut")) {
        connection.Write(Head + half);
    } else if (Asks(request, "/reset")) {
        connection.Write(Head + half);
        connection.Reset();
    } else if (Asks(request, "/slow")) {
        connection.Write(Head + half);
        if (connection.Pause(30))
            connection.Write(bytes.substr(bytes.size() / 2));
    } else if (Asks(request, "/missing")) {
        connection.Write("HTTP/1.0 404 Not Found\r\n\r\n<html>no</html>");
    } else if (Asks(request, "/moved")) {
        connection.Write("HTTP/1.0 302 Found\r\nLocation: /good.png\r\n\r\n");
    } else if (Asks(request, "/ring")) {
        connection.Write("HTTP/1.0 302 Found\r\nLocation: /ring.png\r\n\r\n");
    } else if (Asks(request, "/head")) {
        connection.Write("HTTP/1.0 200 OK\r\nX-Long: " + std::string(200000, 'x') + "\r\n\r\n" +
                         bytes);
    } else if (Asks(request, "/lies")) {
        connection.Write("HTTP/1.0 200 OK\r\nContent-Length: 4294967295\r\n\r\n" + bytes);
    } else if (Asks(request, "/babble")) {
        connection.Write(std::string(5000, '\xFF'));
    } else if (!Asks(request, "/silence")) {
        connection.Write(Head + bytes);
    }
}

} // namespace

WebServer::WebServer(const std::string& picture)
    : bytes(BytesOf(picture)),
      server(80, [this](Connection& connection, int) { Serve(connection, bytes); })
{
}

std::string AnyAddress(unsigned number)
{
    static const char* const pages[] = {"/good.png",    "/cut.png",    "/reset.png",   "/slow.png",
                                        "/missing.png", "/moved.png",  "/ring.png",    "/head.png",
                                        "/lies.png",    "/babble.png", "/silence.png", "/good.jpg",
                                        "/good",        "/good.png"};
    const size_t count = sizeof pages / sizeof pages[0];
    if (number % (count + 1) == count)
        return "http://" + tavrix::testing::OwnAddress() + ":81/nobody.png";
    return "http://" + tavrix::testing::OwnAddress() + pages[number % (count + 1)];
}

} // namespace endurance
