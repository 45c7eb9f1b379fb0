#pragma once

#include <sys/types.h>

#define WNOHANG 1
#define WIFEXITED(status) (((status) & 0177) == 0)
#define WEXITSTATUS(status) (((status) >> 8) & 0xff)
#define WIFSIGNALED(status) (((status) & 0177) != 0177 && ((status) & 0177) != 0)
#define WTERMSIG(status) ((status) & 0177)

extern "C" pid_t waitpid(pid_t, int*, int);
