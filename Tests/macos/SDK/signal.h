#pragma once

#include <sys/types.h>

#define SIGQUIT 3
#define SIGTRAP 5
#define SIGABRT 6
#define SIGKILL 9
#define SIGPIPE 13
#define SIGALRM 14
#define SIGTERM 15
#define SIGINT 2
#define SIGHUP 1

#define SIG_DFL ((void (*)(int))0)
#define SIG_IGN ((void (*)(int))1)
#define SIG_ERR ((void (*)(int)) - 1)
#define SIG_BLOCK 1
#define SIG_UNBLOCK 2
#define SIG_SETMASK 3

typedef int sig_atomic_t;
typedef uint32_t sigset_t;

extern "C" {
int kill(pid_t, int);
int pthread_sigmask(int, const sigset_t*, sigset_t*);
int raise(int);
int sigaddset(sigset_t*, int);
int sigemptyset(sigset_t*);
int sigismember(const sigset_t*, int);
void (*signal(int, void (*)(int)))(int);
int sigpending(sigset_t*);
int sigwait(const sigset_t*, int*);
}
