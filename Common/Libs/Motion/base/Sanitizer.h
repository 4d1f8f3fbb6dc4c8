#pragma once

namespace ka::motion {

/// Whether this was built with the address sanitizer, whose runtime takes more memory and more system calls
/// than the program itself.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool hasAddressSanitizer = true;
#elif defined(__has_feature)
constexpr bool hasAddressSanitizer = __has_feature(address_sanitizer);
#else
constexpr bool hasAddressSanitizer = false;
#endif

} // namespace ka::motion
