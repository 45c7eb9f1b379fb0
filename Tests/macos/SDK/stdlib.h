#pragma once

#include <stddef.h>

#define EXIT_FAILURE 1
#define EXIT_SUCCESS 0
#define RAND_MAX 0x7fffffff
#define MB_CUR_MAX (___mb_cur_max())

typedef struct {
    int quot;
    int rem;
} div_t;
typedef struct {
    long quot;
    long rem;
} ldiv_t;
typedef struct {
    long long quot;
    long long rem;
} lldiv_t;

extern "C" {
int ___mb_cur_max();
void abort() __attribute__((noreturn));
int abs(int);
void* aligned_alloc(size_t, size_t);
int atexit(void (*)());
double atof(const char*);
int atoi(const char*);
void* calloc(size_t, size_t);
div_t div(int, int);
void exit(int) __attribute__((noreturn));
void free(void*);
char* getenv(const char*);
const char* getprogname();
long labs(long);
ldiv_t ldiv(long, long);
long long llabs(long long);
lldiv_t lldiv(long long, long long);
void* malloc(size_t);
char* mkdtemp(char*);
int posix_memalign(void**, size_t, size_t);
int rand();
void* realloc(void*, size_t);
int setenv(const char*, const char*, int);
void srand(unsigned);
double strtod(const char*, char**);
float strtof(const char*, char**);
long strtol(const char*, char**, int);
long double strtold(const char*, char**);
long long strtoll(const char*, char**, int);
unsigned long strtoul(const char*, char**, int);
unsigned long long strtoull(const char*, char**, int);
int unsetenv(const char*);
}
