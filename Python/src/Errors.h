#pragma once

#include <pybind11/pybind11.h>
#include <string>

namespace ka::python {

/// Which exception of `kaanimation._errors` is raised.
enum class ErrorKind { File, Usage, Output, Closed, Open, Gone, Thread, Refused };

/// Raises it with a text that names what was asked for.
[[noreturn]] void raise(ErrorKind kind, const std::string& text);

/// Takes the exception classes from the package and translates the failures of the motion library.
void bindErrors(pybind11::module_& module);

} // namespace ka::python
