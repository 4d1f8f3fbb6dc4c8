#include "Errors.h"

#include <kaMotion/Failure.h>

namespace py = pybind11;

namespace ka::python {

namespace {

const char* className(ErrorKind kind) {
    switch (kind) {
    case ErrorKind::File:
        return "FileError";
    case ErrorKind::Usage:
        return "UsageError";
    case ErrorKind::Output:
        return "OutputError";
    case ErrorKind::Closed:
        return "ClosedError";
    case ErrorKind::Open:
        return "OpenError";
    case ErrorKind::Gone:
        return "GoneError";
    case ErrorKind::Thread:
        return "ThreadError";
    case ErrorKind::Refused:
        return "RefusedError";
    }
    return "Error";
}

ErrorKind kindOf(motion::ExitCode code) {
    switch (code) {
    case motion::ExitCode::Unreadable:
        return ErrorKind::File;
    case motion::ExitCode::OutputFailed:
        return ErrorKind::Output;
    default:
        return ErrorKind::Usage;
    }
}

void set(ErrorKind kind, const std::string& text) {
    const py::object type = py::module_::import("kaanimation._errors").attr(className(kind));
    PyErr_SetString(type.ptr(), text.c_str());
}

} // namespace

void raise(ErrorKind kind, const std::string& text) {
    set(kind, text);
    throw py::error_already_set();
}

void bindErrors(py::module_&) {
    py::register_exception_translator([](std::exception_ptr thrown) {
        try {
            if (thrown)
                std::rethrow_exception(thrown);
        } catch (const motion::Failure& failure) {
            set(kindOf(failure.code()), failure.what());
        }
    });
}

} // namespace ka::python
