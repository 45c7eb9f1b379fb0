#pragma once

#include <Security/SecRandom.h>
