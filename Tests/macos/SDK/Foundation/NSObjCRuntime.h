#pragma once

#include <objc/objc.h>
#include <os/availability.h>

typedef long NSInteger;
typedef unsigned long NSUInteger;
typedef double NSTimeInterval;

#define FOUNDATION_EXPORT extern "C"
#define NS_ASSUME_NONNULL_BEGIN _Pragma("clang assume_nonnull begin")
#define NS_ASSUME_NONNULL_END _Pragma("clang assume_nonnull end")
#define NS_ENUM(type, name)                                                                                  \
    enum name : type;                                                                                        \
    enum __attribute__((enum_extensibility(open))) name : type
#define NS_OPTIONS(type, name)                                                                               \
    type name;                                                                                               \
    enum __attribute__((flag_enum, enum_extensibility(open))) : name
#define NS_DESIGNATED_INITIALIZER __attribute__((objc_designated_initializer))
#define NS_FORMAT_FUNCTION(text, first) __attribute__((format(__NSString__, text, first)))
#define NS_NOESCAPE __attribute__((noescape))
#define NS_RETURNS_INNER_POINTER __attribute__((objc_returns_inner_pointer))
#define IBAction void
#define NS_ROOT_CLASS __attribute__((objc_root_class))
#define NS_UNAVAILABLE __attribute__((unavailable))

@class NSString;

NS_ASSUME_NONNULL_BEGIN

FOUNDATION_EXPORT void NSLog(NSString* format, ...) NS_FORMAT_FUNCTION(1, 2);

NS_ASSUME_NONNULL_END
