#pragma once

// Used as API_AVAILABLE(macos(13.0)) and API_DEPRECATED("why", macos(10.0, 12.0)).
#define __keyloft_introduced_macos(version) macos, introduced = version
#define __keyloft_deprecated_macos(from, to) macos, introduced = from, deprecated = to
#define API_AVAILABLE(platform) __attribute__((availability(__keyloft_introduced_##platform)))
#define API_DEPRECATED(text, platform)                                                                       \
    __attribute__((availability(__keyloft_deprecated_##platform, message = text)))
