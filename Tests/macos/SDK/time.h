#pragma once

#include <sys/types.h>

#define CLOCKS_PER_SEC ((clock_t)1000000)

struct timespec {
    time_t tv_sec;
    long tv_nsec;
};

struct tm {
    int tm_sec;
    int tm_min;
    int tm_hour;
    int tm_mday;
    int tm_mon;
    int tm_year;
    int tm_wday;
    int tm_yday;
    int tm_isdst;
    long tm_gmtoff;
    char* tm_zone;
};

typedef enum {
    CLOCK_REALTIME = 0,
    CLOCK_MONOTONIC = 6,
} clockid_t;

extern "C" {
int clock_gettime(clockid_t, struct timespec*);
struct tm* localtime_r(const time_t*, struct tm*);
int nanosleep(const struct timespec*, struct timespec*);
size_t strftime(char*, size_t, const char*, const struct tm*);
time_t time(time_t*);
}
