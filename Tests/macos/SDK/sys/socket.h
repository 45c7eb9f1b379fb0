#pragma once

#include <sys/types.h>

#define AF_UNIX 1
#define SOCK_STREAM 1
#define SOL_SOCKET 0xffff
#define SO_ACCEPTCONN 0x0002
#define SO_SNDTIMEO 0x1005
#define SO_RCVTIMEO 0x1006
#define SO_NOSIGPIPE 0x1022
#define MSG_DONTWAIT 0x80

struct sockaddr {
    uint8_t sa_len;
    sa_family_t sa_family;
    char sa_data[14];
};

extern "C" {
int accept(int, struct sockaddr*, socklen_t*);
int bind(int, const struct sockaddr*, socklen_t);
int connect(int, const struct sockaddr*, socklen_t);
int getsockname(int, struct sockaddr*, socklen_t*);
int getsockopt(int, int, int, void*, socklen_t*);
int listen(int, int);
ssize_t recv(int, void*, size_t, int);
ssize_t send(int, const void*, size_t, int);
int setsockopt(int, int, int, const void*, socklen_t);
int shutdown(int, int);
int socket(int, int, int);
}
