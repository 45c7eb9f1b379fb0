#pragma once

#include <stdarg.h>
#include <stddef.h>
#include <stdio.h>
#include <time.h>

typedef int wint_t;
typedef union {
    char __mbstate8[128];
    long long _mbstateL;
} mbstate_t;

#define WEOF ((wint_t) - 1)

extern "C" {
wint_t btowc(int);
size_t mbrlen(const char*, size_t, mbstate_t*);
size_t mbrtowc(wchar_t*, const char*, size_t, mbstate_t*);
size_t mbsnrtowcs(wchar_t*, const char**, size_t, size_t, mbstate_t*);
size_t mbsrtowcs(wchar_t*, const char**, size_t, mbstate_t*);
int swprintf(wchar_t*, size_t, const wchar_t*, ...);
size_t wcrtomb(char*, wchar_t, mbstate_t*);
wchar_t* wcschr(const wchar_t*, wchar_t);
int wcscmp(const wchar_t*, const wchar_t*);
int wcscoll(const wchar_t*, const wchar_t*);
size_t wcslen(const wchar_t*);
int wcsncmp(const wchar_t*, const wchar_t*, size_t);
size_t wcsnrtombs(char*, const wchar_t**, size_t, size_t, mbstate_t*);
wchar_t* wcspbrk(const wchar_t*, const wchar_t*);
wchar_t* wcsrchr(const wchar_t*, wchar_t);
wchar_t* wcsstr(const wchar_t*, const wchar_t*);
double wcstod(const wchar_t*, wchar_t**);
float wcstof(const wchar_t*, wchar_t**);
long wcstol(const wchar_t*, wchar_t**, int);
long double wcstold(const wchar_t*, wchar_t**);
long long wcstoll(const wchar_t*, wchar_t**, int);
unsigned long wcstoul(const wchar_t*, wchar_t**, int);
unsigned long long wcstoull(const wchar_t*, wchar_t**, int);
size_t wcsxfrm(wchar_t*, const wchar_t*, size_t);
int wctob(wint_t);
wchar_t* wmemchr(const wchar_t*, wchar_t, size_t);
int wmemcmp(const wchar_t*, const wchar_t*, size_t);
wchar_t* wmemcpy(wchar_t*, const wchar_t*, size_t);
wchar_t* wmemmove(wchar_t*, const wchar_t*, size_t);
wchar_t* wmemset(wchar_t*, wchar_t, size_t);
}
