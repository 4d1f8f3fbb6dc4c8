#pragma once

#include <pybind11/pybind11.h>

namespace ka::studio {

class Interpreter;

/// The window as scripts see it: the console's name `studio`.
/// @param package  `kaanimation`.
pybind11::object makeStudioObject(Interpreter& interpreter, const pybind11::object& package);

} // namespace ka::studio
