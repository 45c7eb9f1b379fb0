#include "Platform/Foundation/RandomBytes.h"

#import <Security/Security.h>

namespace Platform {

bool RandomBytes::fill(std::span<std::byte> bytes) {
    return SecRandomCopyBytes(kSecRandomDefault, bytes.size(), bytes.data()) == errSecSuccess;
}

} // namespace Platform
