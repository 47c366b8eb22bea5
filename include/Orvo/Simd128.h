#pragma once

/// @file
/// Provides `__m128d`, the pair of doubles that Orvo::Vector3D and Orvo::Matrix43 are made of.
///
/// On x86 it is the compiler's own type. Elsewhere SIMDe supplies a type of the same name.

#if defined(__SSE2__) || defined(_M_X64)
#include <emmintrin.h>
#else
#ifndef SIMDE_ENABLE_NATIVE_ALIASES
#define SIMDE_ENABLE_NATIVE_ALIASES
#endif
#include <simde/x86/sse2.h>
#endif
