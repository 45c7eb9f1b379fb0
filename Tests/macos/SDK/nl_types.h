#pragma once

#define NL_CAT_LOCALE 1

typedef struct __nl_cat_d* nl_catd;

extern "C" {
int catclose(nl_catd);
char* catgets(nl_catd, int, int, const char*);
nl_catd catopen(const char*, int);
}
