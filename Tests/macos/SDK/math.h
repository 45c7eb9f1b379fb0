#pragma once

#define NAN __builtin_nanf("0x7fc00000")
#define INFINITY __builtin_inff()
#define HUGE_VAL __builtin_huge_val()
#define FP_NAN 1
#define FP_INFINITE 2
#define FP_ZERO 3
#define FP_NORMAL 4
#define FP_SUBNORMAL 5

#define isfinite(x) __builtin_isfinite(x)
#define isinf(x) __builtin_isinf(x)
#define isnan(x) __builtin_isnan(x)
#define isnormal(x) __builtin_isnormal(x)
#define signbit(x) __builtin_signbit(x)

typedef float float_t;
typedef double double_t;

extern "C" {
double ceil(double);
float ceilf(float);
long double ceill(long double);
double copysign(double, double);
double exp(double);
double fabs(double);
float fabsf(float);
long double fabsl(long double);
double floor(double);
float floorf(float);
long double floorl(long double);
double fmod(double, double);
double log(double);
float logf(float);
long double logl(long double);
double log2(double);
double modf(double, double*);
double nearbyint(double);
double pow(double, double);
float powf(float, float);
long double powl(long double, long double);
double round(double);
double sqrt(double);
float sqrtf(float);
long double sqrtl(long double);
double trunc(double);
}
