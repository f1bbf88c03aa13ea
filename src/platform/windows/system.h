#pragma once

/// The system's headers without the macros that collide with C++.
#if !defined(NOMINMAX)
#define NOMINMAX
#endif
#if !defined(WIN32_LEAN_AND_MEAN)
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>
// After windows.h, which it does not bring itself.
#include <oleauto.h>
