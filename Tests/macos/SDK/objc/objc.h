#pragma once

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

typedef bool BOOL;
#define nil nullptr
#define Nil nullptr
#define YES __objc_yes
#define NO __objc_no

typedef struct objc_class* Class;
typedef struct objc_selector* SEL;
