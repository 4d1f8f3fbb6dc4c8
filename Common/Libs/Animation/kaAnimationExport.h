#pragma once

/// @file
/// What of the module is visible to a host: everything else stays inside the library.

/// Marks what the library exports; everything else is hidden.
#if defined(KA_ANIMATION_STATIC)
#define KA_ANIMATION_API
#else
#define KA_ANIMATION_API __attribute__((visibility("default")))
#endif
