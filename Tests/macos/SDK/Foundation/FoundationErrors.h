#pragma once

#include <Foundation/NSObjCRuntime.h>

enum : NSInteger {
    NSFileNoSuchFileError = 4,
    NSFileWriteNoPermissionError = 513,
    NSFileWriteInvalidFileNameError = 514,
    NSFileWriteFileExistsError = 516,
    NSFileWriteOutOfSpaceError = 640,
    NSFileWriteVolumeReadOnlyError = 642,
};
