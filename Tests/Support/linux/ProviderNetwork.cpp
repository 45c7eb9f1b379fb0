#include "Tests/Support/ProviderNetwork.h"

#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/linux/CertificateAuthority.h"
#include "Tests/Support/linux/PrivateNetwork.h"

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <memory>
#include <system_error>

namespace TestSupport {

namespace {

/// Environment variable that contains the directory of the network to which the process belongs.
constexpr auto variable = "KEYLOFT_TEST_PROVIDER_NETWORK";

/// Exit status of a child process that is not permitted to enter a private network.
constexpr int notAllowed = 125;

const std::vector<std::string>& hosts() {
    static const std::vector<std::string> hosts{"appleid.apple.com",     "idmsa.apple.com", "apple.com",
                                                "appleid.cdn-apple.com", "cdn-apple.com",   "client.example",
                                                "other.example",         "evilapple.com"};
    return hosts;
}

} // namespace

const ProviderNetwork* ProviderNetwork::current() {
    static const auto network = [] {
        const char* directory = std::getenv(variable);
        return std::unique_ptr<const ProviderNetwork>(directory ? new ProviderNetwork(directory) : nullptr);
    }();
    return network.get();
}

void ProviderNetwork::enter(const std::vector<std::string>& arguments) {
    if (current()) {
        return;
    }
    int status = 0;
    {
        const TemporaryDirectory directory;
        const ProviderNetwork network(directory.path());
        network.prepare();
        status = network.runInside(arguments);
    }
    if (status != notAllowed) {
        std::exit(status);
    }
}

void ProviderNetwork::prepare() const {
    std::ofstream names(directory_ / "hosts");
    names << "127.0.0.1 localhost\n";
    for (const auto& host : hosts()) {
        names << "127.0.0.1 " << host << '\n';
    }

    const CertificateAuthority authority(directory_ / "authority.pem");
    authority.issue(identity(), hosts());
    authority.issue(otherHostsIdentity(), {"elsewhere.example"});
    CertificateAuthority(directory_ / "stranger.pem").issue(strangersIdentity(), hosts());
}

bool ProviderNetwork::join() const {
    if (!enterPrivateNetwork()) {
        return false;
    }
    resolveBy(directory_ / "hosts");
    trustOnly(directory_ / "authority.pem");
    return true;
}

/// Runs the program inside the network and returns its exit status. An unprivileged process may enter a
/// private network only while it is single-threaded, but WebKitGTK's libraries start a thread before main().
/// Therefore a child process enters the network and executes the program again.
int ProviderNetwork::runInside(std::vector<std::string> arguments) const {
    std::vector<char*> argv;
    argv.reserve(arguments.size() + 1);
    for (auto& argument : arguments) {
        argv.push_back(argument.data());
    }
    argv.push_back(nullptr);

    const pid_t parent = ::getpid();
    const pid_t child = ::fork();
    if (child < 0) {
        throw std::system_error(errno, std::generic_category(), "fork");
    }
    if (child == 0) {
        try {
            ::prctl(PR_SET_PDEATHSIG, SIGKILL);
            if (::getppid() != parent || !join()) {
                ::_exit(notAllowed);
            }
            ::setenv(variable, directory_.c_str(), 1);
            ::execv("/proc/self/exe", argv.data());
            std::perror("entering the provider's network");
        } catch (const std::exception& error) {
            std::fprintf(stderr, "The provider's network: %s\n", error.what());
        }
        ::_exit(EXIT_FAILURE);
    }
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

} // namespace TestSupport
