#pragma once

/// @file
/// What of the host utilities is visible outside their library.

#define KA_HOSTUTILS_API __attribute__((visibility("default")))
