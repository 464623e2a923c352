// The address of this process, and a network of its own where the machine's will not do.

#include "platform/testing/Wire.h"

#include <arpa/inet.h>
#include <net/if.h>
#include <netinet/in.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>

namespace tavrix::testing
{

namespace
{

constexpr unsigned short protocolPorts[] = {80, 650};

unsigned long MakeAddress()
{
    const auto number = static_cast<unsigned long>(getpid());
    return 0x7F000000UL | (64 + (number >> 16 & 63)) << 16 | (number & 0xFFFF);
}

bool CanBind(unsigned short port)
{
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(static_cast<in_addr_t>(OwnAddressNumber()));
    const int probe = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const bool bound =
        bind(probe, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0;
    close(probe);
    return bound;
}

bool CanBindAll()
{
    for (const unsigned short port : protocolPorts)
        if (!CanBind(port))
            return false;
    return true;
}

bool BringLoopbackUp()
{
    ifreq request = {};
    std::strcpy(request.ifr_name, "lo");
    const int control = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    request.ifr_flags = IFF_UP | IFF_RUNNING;
    const bool up = ioctl(control, SIOCSIFFLAGS, &request) == 0;
    close(control);
    return up;
}

/// A namespace of users in which this one is root, for the right to make one of networks.
bool BecomeRootOfOwnNetwork()
{
    const unsigned user = geteuid();
    const unsigned group = getegid();
    if (unshare(CLONE_NEWUSER | CLONE_NEWNET) != 0)
        return false;
    std::ofstream("/proc/self/setgroups") << "deny";
    std::ofstream("/proc/self/uid_map") << "0 " << user << " 1";
    std::ofstream("/proc/self/gid_map") << "0 " << group << " 1";
    return true;
}

// Before main, when there is one thread yet: the others and all children are in it then, too.
const bool ready = [] {
    if (CanBindAll())
        return true;
    if ((unshare(CLONE_NEWNET) == 0 || BecomeRootOfOwnNetwork()) && BringLoopbackUp() &&
        CanBindAll())
        return true;
    std::fputs("Ports 80 and 650 cannot be had, nor a network of its own.\n", stderr);
    std::exit(1);
}();

} // namespace

unsigned long OwnAddressNumber()
{
    // Tests that are forks of one process are of one address: one runs after the other.
    static const unsigned long number = MakeAddress();
    return number;
}

const std::string& OwnAddress()
{
    static const std::string text = [] {
        const in_addr address = {htonl(static_cast<in_addr_t>(OwnAddressNumber()))};
        return std::string(inet_ntoa(address));
    }();
    return text;
}

} // namespace tavrix::testing
