#include "platform/testing/Wire.h"

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <utility>

namespace tavrix::testing
{

WireServer::WireServer(unsigned short wantedPort, Serve theServe) : serve(std::move(theServe))
{
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(wantedPort);
    address.sin_addr.s_addr = htonl(static_cast<in_addr_t>(OwnAddressNumber()));
    listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const int on = 1;
    setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, &on, sizeof(on));
    socklen_t length = sizeof(address);
    EXPECT_EQ(bind(listener, reinterpret_cast<const sockaddr*>(&address), length), 0) << wantedPort;
    EXPECT_EQ(listen(listener, 16), 0);
    getsockname(listener, reinterpret_cast<sockaddr*>(&address), &length);
    port = ntohs(address.sin_port);
    thread = std::thread([this] { Run(); });
}

WireServer::~WireServer()
{
    stop = true;
    thread.join();
    close(listener);
}

void WireServer::Run()
{
    while (!stop) {
        pollfd entry = {listener, POLLIN, 0};
        if (poll(&entry, 1, 20) <= 0)
            continue;
        const int descriptor = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (descriptor < 0)
            continue;
        Connection connection(descriptor, &stop);
        serve(connection, count++);
    }
}

} // namespace tavrix::testing
