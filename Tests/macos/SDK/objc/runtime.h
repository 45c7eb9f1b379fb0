#pragma once

#include <objc/objc.h>
#include <os/availability.h>

typedef enum : uintptr_t {
    OBJC_ASSOCIATION_RETAIN_NONATOMIC = 1,
} objc_AssociationPolicy;

extern "C" {
const char* _Nonnull class_getName(Class _Nullable cls);
Class _Nullable class_getSuperclass(Class _Nullable cls);
const char* _Nonnull sel_getName(SEL _Nonnull sel);
SEL _Nonnull sel_registerName(const char* _Nonnull str);
Class _Nullable objc_allocateClassPair(Class _Nullable superclass, const char* _Nonnull name,
                                       size_t extraBytes);
Class _Nullable objc_lookUpClass(const char* _Nonnull name);
void objc_registerClassPair(Class _Nonnull cls);
id _Nullable objc_getAssociatedObject(id _Nonnull object, const void* _Nonnull key)
    API_AVAILABLE(macos(10.6));
void objc_setAssociatedObject(id _Nonnull object, const void* _Nonnull key, id _Nullable value,
                              objc_AssociationPolicy policy) API_AVAILABLE(macos(10.6));
}
