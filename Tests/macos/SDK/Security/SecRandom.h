#pragma once

#include <os/availability.h>
#include <stddef.h>
#include <stdint.h>

typedef int32_t OSStatus;
typedef const struct __SecRandom* SecRandomRef;

enum : OSStatus {
    errSecSuccess = 0,
};

extern "C" {
extern const SecRandomRef _Nullable kSecRandomDefault;
int SecRandomCopyBytes(SecRandomRef _Nullable rnd, size_t count, void* _Nonnull bytes)
    __attribute__((warn_unused_result)) API_AVAILABLE(macos(10.7));
}
