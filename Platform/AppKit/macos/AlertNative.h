#pragma once

#include "Platform/AppKit/Alert.h"

#import <AppKit/AppKit.h>

#include <cstddef>

namespace Platform {

NSAlert* _Nonnull makeNativeAlert(const Alert& alert);

/// Returns the index of the button for a response, or of the safe button if the alert ended without a choice.
std::size_t chosenButton(const Alert& alert, NSModalResponse response);

} // namespace Platform
