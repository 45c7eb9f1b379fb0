#pragma once

#include <objc/objc.h>

#pragma clang assume_nonnull begin

typedef unsigned char Boolean;
typedef signed long CFIndex;
typedef unsigned long CFHashCode;
typedef double CFTimeInterval;
typedef const void* CFTypeRef;
typedef const struct __CFAllocator* CFAllocatorRef;
typedef const struct __CFString* CFStringRef;
typedef CFStringRef CFRunLoopMode;
typedef struct __attribute__((objc_bridge_mutable(id))) __CFRunLoop* CFRunLoopRef;
typedef struct __attribute__((objc_bridge_mutable(id))) __CFRunLoopSource* CFRunLoopSourceRef;

enum CFRunLoopRunResult : int32_t;

typedef struct {
    CFIndex version;
    void* _Null_unspecified info;
    const void* _Nullable (*_Null_unspecified retain)(const void* _Nullable info);
    void (*_Null_unspecified release)(const void* _Nullable info);
    CFStringRef _Nullable (*_Null_unspecified copyDescription)(const void* _Nullable info);
    Boolean (*_Null_unspecified equal)(const void* _Nullable info1, const void* _Nullable info2);
    CFHashCode (*_Null_unspecified hash)(const void* _Nullable info);
    void (*_Null_unspecified schedule)(void* _Null_unspecified info, CFRunLoopRef _Null_unspecified rl,
                                       CFRunLoopMode _Null_unspecified mode);
    void (*_Null_unspecified cancel)(void* _Null_unspecified info, CFRunLoopRef _Null_unspecified rl,
                                     CFRunLoopMode _Null_unspecified mode);
    void (*_Null_unspecified perform)(void* _Null_unspecified info);
} CFRunLoopSourceContext;

extern "C" {
extern const CFAllocatorRef _Null_unspecified kCFAllocatorDefault;
extern const CFRunLoopMode kCFRunLoopDefaultMode;
extern const CFRunLoopMode kCFRunLoopCommonModes;

void CFRelease(CFTypeRef _Null_unspecified cf);
void CFRunLoopAddSource(CFRunLoopRef _Null_unspecified rl, CFRunLoopSourceRef _Null_unspecified source,
                        CFRunLoopMode _Null_unspecified mode);
CFRunLoopRef _Null_unspecified CFRunLoopGetMain(void);
CFRunLoopRunResult CFRunLoopRunInMode(CFRunLoopMode _Null_unspecified mode, CFTimeInterval seconds,
                                      Boolean returnAfterSourceHandled);
CFRunLoopSourceRef _Null_unspecified CFRunLoopSourceCreate(CFAllocatorRef _Null_unspecified allocator,
                                                           CFIndex order,
                                                           CFRunLoopSourceContext* _Null_unspecified context);
void CFRunLoopSourceSignal(CFRunLoopSourceRef _Null_unspecified source);
void CFRunLoopStop(CFRunLoopRef _Null_unspecified rl);
void CFRunLoopWakeUp(CFRunLoopRef _Null_unspecified rl);
}

#pragma clang assume_nonnull end
