#pragma once

#include <stdint.h>
#include <sys/types.h>

#define RLIMIT_NOFILE 8

typedef uint64_t rlim_t;

struct rlimit {
    rlim_t rlim_cur;
    rlim_t rlim_max;
};

extern "C" int getrlimit(int, struct rlimit*);
extern "C" int setrlimit(int, const struct rlimit*);
