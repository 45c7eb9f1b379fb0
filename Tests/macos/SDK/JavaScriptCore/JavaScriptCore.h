#pragma once

#include <JavaScriptCore/JSContext.h>
#include <JavaScriptCore/JSValue.h>
