#pragma once

#include <AppKit/AppKit.h>
