#include "Platform/POSIX/Writing.h"

#include <pthread.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

namespace Platform {

ssize_t writeHoldingBackSignal(int descriptor, const void* bytes, std::size_t count) {
    sigset_t pipeSignal;
    sigemptyset(&pipeSignal);
    sigaddset(&pipeSignal, SIGPIPE);
    sigset_t previous;
    pthread_sigmask(SIG_BLOCK, &pipeSignal, &previous);
    sigset_t pending;
    sigpending(&pending);
    const bool wasPending = sigismember(&pending, SIGPIPE) == 1;

    const ssize_t written = write(descriptor, bytes, count);
    const int error = errno;
    if (written < 0 && error == EPIPE && !wasPending) {
        // If the process ignores SIGPIPE, the signal is not pending and sigwait would not return.
        sigpending(&pending);
        int signal = 0;
        if (sigismember(&pending, SIGPIPE) == 1) {
            sigwait(&pipeSignal, &signal);
        }
    }
    pthread_sigmask(SIG_SETMASK, &previous, nullptr);
    errno = error;
    return written;
}

} // namespace Platform
