#pragma once

#include <sys/types.h>

#define POLLIN 0x0001
#define POLLOUT 0x0004

typedef unsigned int nfds_t;

struct pollfd {
    int fd;
    short events;
    short revents;
};

extern "C" {
int poll(struct pollfd*, nfds_t, int);
}
