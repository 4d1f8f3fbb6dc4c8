#pragma once

#include <cstddef>
#include <functional>

namespace ka_test {

/// Runs `work` to its end on a thread of its own with a stack of so many bytes; on one of 256 kilobytes recursion
/// by the level of a deep tree ends the process. Nothing else runs meanwhile.
void onSmallStack(const std::function<void()>& work, std::size_t bytes = 256 * 1024);

} // namespace ka_test
