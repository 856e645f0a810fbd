#include "PrivateNetwork.h"

#include <fcntl.h>
#include <net/if.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <fstream>
#include <string>

#include "FileDescriptor.h"

namespace {

bool RaiseLoopback() {
    const FileDescriptor any(socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    ifreq request{"lo", {}};
    if (ioctl(any.Get(), SIOCGIFFLAGS, &request) != 0) {
        return false;
    }
    request.ifr_flags |= IFF_UP;
    return ioctl(any.Get(), SIOCSIFFLAGS, &request) == 0;
}

bool TakeConnectionsFrom(std::uint16_t port) {
    std::ofstream range("/proc/sys/net/ipv4/ip_local_port_range");
    range << port << ' ' << port << std::flush;
    return range.good();
}

}  // namespace

bool EnterNetworkOfOnePort(std::uint16_t port) {
    return unshare(CLONE_NEWUSER | CLONE_NEWNET) == 0 && RaiseLoopback() &&
           TakeConnectionsFrom(port);
}
