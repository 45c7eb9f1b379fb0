#pragma once

#include <stdarg.h>
#include <sys/types.h>

#define BUFSIZ 1024
#define EOF (-1)
#define SEEK_SET 0
#define SEEK_CUR 1
#define SEEK_END 2

typedef struct __sFILE FILE;
typedef off_t fpos_t;

extern "C" {
extern FILE* __stdinp;
extern FILE* __stdoutp;
extern FILE* __stderrp;
#define stdin __stdinp
#define stdout __stdoutp
#define stderr __stderrp

int fclose(FILE*);
FILE* fdopen(int, const char*);
int fflush(FILE*);
int fgetc(FILE*);
FILE* fopen(const char*, const char*);
int fprintf(FILE*, const char*, ...) __attribute__((format(printf, 2, 3)));
int fileno(FILE*);
int fputc(int, FILE*);
int fputs(const char*, FILE*);
size_t fread(void*, size_t, size_t, FILE*);
FILE* freopen(const char*, const char*, FILE*);
int fseek(FILE*, long, int);
int fseeko(FILE*, off_t, int);
long ftell(FILE*);
off_t ftello(FILE*);
size_t fwrite(const void*, size_t, size_t, FILE*);
int getc(FILE*);
int printf(const char*, ...) __attribute__((format(printf, 1, 2)));
int remove(const char*);
int rename(const char*, const char*);
int setvbuf(FILE*, char*, int, size_t);
int scanf(const char*, ...) __attribute__((format(scanf, 1, 2)));
int snprintf(char*, size_t, const char*, ...) __attribute__((format(printf, 3, 4)));
int sscanf(const char*, const char*, ...) __attribute__((format(scanf, 2, 3)));
int ungetc(int, FILE*);
int vasprintf(char**, const char*, va_list) __attribute__((format(printf, 2, 0)));
int vfprintf(FILE*, const char*, va_list) __attribute__((format(printf, 2, 0)));
int vsnprintf(char*, size_t, const char*, va_list) __attribute__((format(printf, 3, 0)));
int vsscanf(const char*, const char*, va_list) __attribute__((format(scanf, 2, 0)));
}
