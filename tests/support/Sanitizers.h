#pragma once

/// @file
/// Defines ORVO_TEST_HAS_ADDRESS_SANITIZER where AddressSanitizer watches, and
/// ORVO_TEST_HAS_ALLOCATOR_OF_ITS_OWN where any sanitizer that brings an allocator does.

#if defined(__SANITIZE_ADDRESS__)
#define ORVO_TEST_HAS_ADDRESS_SANITIZER
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ORVO_TEST_HAS_ADDRESS_SANITIZER
#endif
#endif

#if defined(ORVO_TEST_HAS_ADDRESS_SANITIZER) || defined(__SANITIZE_THREAD__)
#define ORVO_TEST_HAS_ALLOCATOR_OF_ITS_OWN
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer) || __has_feature(memory_sanitizer)
#define ORVO_TEST_HAS_ALLOCATOR_OF_ITS_OWN
#endif
#endif
