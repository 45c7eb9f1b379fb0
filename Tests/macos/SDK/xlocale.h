#pragma once

#include <ctype.h>
#include <locale.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <time.h>
#include <wchar.h>
#include <wctype.h>

typedef struct _xlocale* locale_t;

#define LC_COLLATE_MASK (1 << 0)
#define LC_CTYPE_MASK (1 << 1)
#define LC_MESSAGES_MASK (1 << 2)
#define LC_MONETARY_MASK (1 << 3)
#define LC_NUMERIC_MASK (1 << 4)
#define LC_TIME_MASK (1 << 5)
#define LC_ALL_MASK (0x3f)

extern "C" {
int asprintf_l(char**, locale_t, const char*, ...);
wint_t btowc_l(int, locale_t);
int freelocale(locale_t);
int isblank_l(int, locale_t);
int isdigit_l(int, locale_t);
int islower_l(int, locale_t);
int isupper_l(int, locale_t);
int isxdigit_l(int, locale_t);
struct lconv* localeconv_l(locale_t);
size_t mbrtowc_l(wchar_t*, const char*, size_t, mbstate_t*, locale_t);
locale_t newlocale(int, const char*, locale_t);
int snprintf_l(char*, size_t, locale_t, const char*, ...);
int sscanf_l(const char*, locale_t, const char*, ...);
double strtod_l(const char*, char**, locale_t);
float strtof_l(const char*, char**, locale_t);
long double strtold_l(const char*, char**, locale_t);
long long strtoll_l(const char*, char**, int, locale_t);
unsigned long long strtoull_l(const char*, char**, int, locale_t);
int tolower_l(int, locale_t);
int toupper_l(int, locale_t);
locale_t uselocale(locale_t);
}
