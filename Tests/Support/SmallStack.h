#pragma once

#include <functional>

namespace ka_test {

/// Runs `work` to its end on a thread of its own with a stack of 256 kilobytes, where recursion by the level
/// of a deep tree ends the process. Nothing else runs meanwhile.
void onSmallStack(const std::function<void()>& work);

} // namespace ka_test
