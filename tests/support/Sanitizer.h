#pragma once

// Defines ORVO_ADDRESS_SANITIZER in a build with AddressSanitizer, of which GCC and Clang tell in different ways.
#if defined(__SANITIZE_ADDRESS__)
#define ORVO_ADDRESS_SANITIZER
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ORVO_ADDRESS_SANITIZER
#endif
#endif
