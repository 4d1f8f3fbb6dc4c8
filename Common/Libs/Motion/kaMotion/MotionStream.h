#pragma once

#include <kaMotion/Motion.h>
#include <optional>
#include <string>
#include <string_view>

#pragma GCC visibility push(default)
namespace ka::motion {

/// A motion as bytes for the way from one process to another. Of one machine only: numbers are stored as
/// they stand in memory.
std::string packMotion(const Motion& motion);

/// The motion that `bytes` holds, or nothing when they are not exactly one packed motion. Every count is
/// checked against the bytes that are left before anything is reserved; the contents still need
/// `checkMotion`.
std::optional<Motion> unpackMotion(std::string_view bytes);

} // namespace ka::motion
#pragma GCC visibility pop
