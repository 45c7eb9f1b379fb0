#pragma once

#include <sys/types.h>

#define XUCRED_VERSION 0

struct xucred {
    unsigned int cr_version;
    uid_t cr_uid;
    short cr_ngroups;
    gid_t cr_groups[16];
};
