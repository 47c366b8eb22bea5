#pragma once

/// @file
/// Marks what liborvo-path exports.
///
/// Everything else stays hidden. A program that links the static library on Windows defines
/// `ORVO_PATH_STATIC` (the CMake package does it).

#if defined(_WIN32) && !defined(ORVO_PATH_STATIC)
#if defined(ORVO_PATH_BUILDING)
#define ORVO_PATH_API __declspec(dllexport)
#else
#define ORVO_PATH_API __declspec(dllimport)
#endif
#elif defined(__GNUC__)
#define ORVO_PATH_API __attribute__((visibility("default")))
#else
#define ORVO_PATH_API
#endif
