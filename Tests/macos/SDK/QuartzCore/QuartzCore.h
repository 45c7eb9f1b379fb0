#pragma once

#include <QuartzCore/CALayer.h>
