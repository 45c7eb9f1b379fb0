#pragma once

#include <sys/types.h>

#define SOL_LOCAL 0
#define LOCAL_PEERCRED 0x001

struct sockaddr_un {
    unsigned char sun_len;
    sa_family_t sun_family;
    char sun_path[104];
};
