#pragma once

/// @file
/// Marks what the library exports.
///
/// Everything else stays hidden: the sources are compiled with hidden visibility. A program that
/// links the static library on Windows defines `ORVO_STATIC` (the CMake package does it).

#if defined(_WIN32) && !defined(ORVO_STATIC)
#if defined(ORVO_BUILDING)
#define ORVO_API __declspec(dllexport)
#else
#define ORVO_API __declspec(dllimport)
#endif
#elif defined(__GNUC__)
#define ORVO_API __attribute__((visibility("default")))
#else
#define ORVO_API
#endif
