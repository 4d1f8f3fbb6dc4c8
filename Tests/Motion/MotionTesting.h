#pragma once

#include "TemporaryFolder.h"

#include <string>

namespace ka::motion::testing {

using ka_test::contentOf;
using ka_test::TemporaryFolder;

/// The message of the Failure that `action` throws, "no failure" when it does not.
template <class Action>
std::string failureOf(Action&& action) {
    try {
        action();
    } catch (const std::exception& failure) {
        return failure.what();
    }
    return "no failure";
}

/// The first frames of a real capture of a walk, enough to see it move: 38 nodes, 96 channels, 1/120 s each.
std::string shortCapture(int frames);

/// Where Debian's package of test models puts them.
std::string modelPath(const std::string& name);

} // namespace ka::motion::testing
