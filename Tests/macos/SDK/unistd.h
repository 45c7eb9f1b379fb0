#pragma once

#include <sys/types.h>

#define STDIN_FILENO 0
#define STDOUT_FILENO 1
#define STDERR_FILENO 2
#define F_OK 0
#define _SC_PAGESIZE 29

extern "C" {
int access(const char*, int);
unsigned int alarm(unsigned int);
int chdir(const char*);
int close(int);
int dup2(int, int);
void _exit(int) __attribute__((noreturn));
int fchown(int, uid_t, gid_t);
pid_t fork();
int fsync(int);
pid_t getpid();
uid_t geteuid();
uid_t getuid();
int isatty(int);
int pause();
int pipe(int[2]);
ssize_t read(int, void*, size_t);
int rmdir(const char*);
long sysconf(int);
int unlink(const char*);
ssize_t write(int, const void*, size_t);
}
