#pragma once

#include <Foundation/NSObject.h>
#include <stdint.h>
#include <stdlib.h>

NS_ASSUME_NONNULL_BEGIN

@protocol OS_dispatch_object <NSObject>
@end
@protocol OS_dispatch_queue <OS_dispatch_object>
@end
@protocol OS_dispatch_source <OS_dispatch_object>
@end
@protocol OS_dispatch_group <OS_dispatch_object>
@end
@protocol OS_dispatch_queue_attr <OS_dispatch_object>
@end

typedef NSObject<OS_dispatch_object>* dispatch_object_t;
typedef NSObject<OS_dispatch_queue>* dispatch_queue_t;
typedef NSObject<OS_dispatch_source>* dispatch_source_t;
typedef NSObject<OS_dispatch_group>* dispatch_group_t;
typedef NSObject<OS_dispatch_queue_attr>* dispatch_queue_attr_t;
typedef const struct dispatch_source_type_s* dispatch_source_type_t;
typedef void (^dispatch_block_t)(void);
typedef void (*dispatch_function_t)(void* _Nullable);
typedef uint64_t dispatch_time_t;

#define DISPATCH_TIME_NOW (0ull)
#define DISPATCH_TIME_FOREVER (~0ull)
#define DISPATCH_QUEUE_SERIAL NULL
extern "C" const struct dispatch_source_type_s _dispatch_source_type_read;
#define DISPATCH_SOURCE_TYPE_READ (&_dispatch_source_type_read)

extern "C" {
void dispatch_activate(dispatch_object_t object) API_AVAILABLE(macos(10.12));
void dispatch_after(dispatch_time_t when, dispatch_queue_t queue, dispatch_block_t block);
void dispatch_async(dispatch_queue_t queue, dispatch_block_t block);
void* _Nullable dispatch_get_specific(const void* key);
dispatch_group_t dispatch_group_create(void) __attribute__((ns_returns_retained));
void dispatch_group_enter(dispatch_group_t group);
void dispatch_group_leave(dispatch_group_t group);
void dispatch_group_notify(dispatch_group_t group, dispatch_queue_t queue, dispatch_block_t block);
intptr_t dispatch_group_wait(dispatch_group_t group, dispatch_time_t timeout);
dispatch_queue_t dispatch_queue_create(const char* _Nullable label, dispatch_queue_attr_t _Nullable attr)
    __attribute__((ns_returns_retained));
void dispatch_queue_set_specific(dispatch_queue_t queue, const void* key, void* _Nullable context,
                                 dispatch_function_t _Nullable destructor);
void dispatch_resume(dispatch_object_t object);
dispatch_source_t dispatch_source_create(dispatch_source_type_t type, uintptr_t handle, uintptr_t mask,
                                         dispatch_queue_t _Nullable queue)
    __attribute__((ns_returns_retained));
void dispatch_source_cancel(dispatch_source_t source);
void dispatch_source_set_cancel_handler(dispatch_source_t source, dispatch_block_t _Nullable handler);
void dispatch_source_set_event_handler(dispatch_source_t source, dispatch_block_t _Nullable handler);
void dispatch_suspend(dispatch_object_t object);
void dispatch_sync(dispatch_queue_t queue, NS_NOESCAPE dispatch_block_t block);
dispatch_time_t dispatch_time(dispatch_time_t when, int64_t delta);
}

NS_ASSUME_NONNULL_END
