#include "Tests/Support/linux/PrivateNetwork.h"

#include "Tests/Support/PrivateMounts.h"

#include <net/if.h>
#include <netinet/in.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <string_view>
#include <system_error>

namespace TestSupport {

namespace {

void check(int result, const char* what) {
    if (result < 0) {
        throw std::system_error(errno, std::generic_category(), what);
    }
}

ifreq interfaceRequest(std::string_view name) {
    ifreq request{};
    name.copy(static_cast<char*>(request.ifr_name), IFNAMSIZ - 1);
    return request;
}

/// Brings up the loopback interface and adds a second address. The resolver (AI_ADDRCONFIG) treats a machine
/// whose only address is 127.0.0.1 as having no address, and does not resolve any names.
void raiseLoopback() {
    const int socket = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    check(socket, "socket");
    auto up = interfaceRequest("lo");
    check(::ioctl(socket, SIOCGIFFLAGS, &up), "the private network's loopback");
    up.ifr_flags = static_cast<short>(up.ifr_flags | IFF_UP);
    check(::ioctl(socket, SIOCSIFFLAGS, &up), "raising the private network's loopback");

    auto second = interfaceRequest("lo:1");
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK + 1);
    std::memcpy(&second.ifr_addr, &address, sizeof address);
    check(::ioctl(socket, SIOCSIFADDR, &second), "the private network's second address");
    ::close(socket);
}

/// Allows processes to listen on ports below 1024 without root privileges.
void openAllPorts() {
    std::ofstream first("/proc/sys/net/ipv4/ip_unprivileged_port_start");
    first << 0;
}

/// Hides the sockets of X servers outside the private network. An X server looks only in its network
/// namespace for servers with the same display number. If it finds none, it takes over the socket in
/// /tmp/.X11-unix, which may belong to a server outside.
void hideDisplays() {
    const char* sockets = "/tmp/.X11-unix";
    ::mkdir(sockets, 01777);
    check(::mount("none", sockets, "tmpfs", 0, "mode=1777"), sockets);
}

void mountOver(const std::filesystem::path& file, const char* place) {
    check(::mount(file.c_str(), place, nullptr, MS_BIND, nullptr), place);
}

} // namespace

bool enterPrivateNetwork() {
    if (!enterNamespaces(CLONE_NEWNET)) {
        return false;
    }
    raiseLoopback();
    openAllPorts();
    hideDisplays();
    return true;
}

void resolveBy(const std::filesystem::path& file) { mountOver(file, "/etc/hosts"); }

void trustOnly(const std::filesystem::path& file) { mountOver(file, "/etc/ssl/certs/ca-certificates.crt"); }

} // namespace TestSupport
