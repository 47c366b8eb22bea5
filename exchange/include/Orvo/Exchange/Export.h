#pragma once

/// @file
/// Marks what liborvo-exchange exports.
///
/// Everything else stays hidden. A program that links the static library on Windows defines
/// `ORVO_EXCHANGE_STATIC` (the CMake package does it).

#if defined(_WIN32) && !defined(ORVO_EXCHANGE_STATIC)
#if defined(ORVO_EXCHANGE_BUILDING)
#define ORVO_EXCHANGE_API __declspec(dllexport)
#else
#define ORVO_EXCHANGE_API __declspec(dllimport)
#endif
#elif defined(__GNUC__)
#define ORVO_EXCHANGE_API __attribute__((visibility("default")))
#else
#define ORVO_EXCHANGE_API
#endif
