#pragma once

#include <sys/types.h>

#define PROT_NONE 0x00
#define PROT_READ 0x01
#define PROT_WRITE 0x02
#define MAP_PRIVATE 0x0002
#define MAP_NORESERVE 0x0040
#define MAP_ANON 0x1000
#define MAP_ANONYMOUS MAP_ANON
#define MAP_FAILED ((void*)-1)

extern "C" {
void* mmap(void*, size_t, int, int, int, off_t);
int mprotect(void*, size_t, int);
int munmap(void*, size_t);
}
