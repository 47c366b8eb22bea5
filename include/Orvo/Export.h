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
#elif defined(__GNUC__) && !defined(_WIN32)
#define ORVO_API __attribute__((visibility("default")))
#else
#define ORVO_API
#endif

// Marks members of an exported class that stay hidden, where single members can.
#if defined(__GNUC__) && !defined(_WIN32)
#define ORVO_LOCAL __attribute__((visibility("hidden")))
#else
#define ORVO_LOCAL
#endif
