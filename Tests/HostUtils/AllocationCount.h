#pragma once

#include <cstddef>

/// How often this test program has allocated through operator new.
std::size_t allocationCount();
