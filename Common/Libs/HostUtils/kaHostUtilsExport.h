#pragma once

/// @file
/// What of the host utilities is visible outside their library.

/// Marks what the library exports; everything else is hidden.
#define KA_HOSTUTILS_API __attribute__((visibility("default")))
