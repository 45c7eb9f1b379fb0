#pragma once

#include <objc/objc.h>
#include <os/availability.h>

typedef struct objc_method* Method;

typedef enum : uintptr_t {
    OBJC_ASSOCIATION_ASSIGN = 0,
    OBJC_ASSOCIATION_RETAIN_NONATOMIC = 1,
    OBJC_ASSOCIATION_RETAIN = 01401,
} objc_AssociationPolicy;

extern "C" {
BOOL class_addMethod(Class _Nullable cls, SEL _Nonnull name, IMP _Nonnull imp, const char* _Nullable types);
Class _Nullable class_getSuperclass(Class _Nullable cls);
Method _Nullable class_getInstanceMethod(Class _Nullable cls, SEL _Nonnull name);
IMP _Nullable class_getMethodImplementation(Class _Nullable cls, SEL _Nonnull name);
const char* _Nonnull class_getName(Class _Nullable cls);
Class _Nullable objc_allocateClassPair(Class _Nullable superclass, const char* _Nonnull name,
                                       size_t extraBytes);
Class _Nullable objc_lookUpClass(const char* _Nonnull name);
void objc_registerClassPair(Class _Nonnull cls);
id _Nullable objc_getAssociatedObject(id _Nonnull object, const void* _Nonnull key)
    API_AVAILABLE(macos(10.6));
void objc_setAssociatedObject(id _Nonnull object, const void* _Nonnull key, id _Nullable value,
                              objc_AssociationPolicy policy) API_AVAILABLE(macos(10.6));
Class _Nullable object_getClass(id _Nullable obj);
const char* _Nonnull sel_getName(SEL _Nonnull sel);
BOOL sel_isEqual(SEL _Nonnull lhs, SEL _Nonnull rhs);
const char* _Nullable method_getTypeEncoding(Method _Nonnull m);
}
