#pragma once

#include <exception>
#include <pybind11/pybind11.h>
#include <type_traits>
#include <utility>

namespace ka::python {

/// One call from Python into the module. The module calls back through plain functions and throws nothing
/// through itself: what a Python callback raises meanwhile is kept here and raised, with its traceback, when
/// the call that led to it returns. Until then no further callback is called within it.
class Call {
  public:
    /// @throws ThreadError.
    Call();
    ~Call();
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

    /// Raises what a callback has raised.
    void finish();

    /// Calls out into Python from within the innermost call.
    template <class Function>
    static void out(Function&& function) {
        const pybind11::gil_scoped_acquire held;
        if (hasFailed())
            return;
        try {
            function();
        } catch (...) {
            keep(std::current_exception());
        }
    }
    /// Whether a callback has raised within the innermost call.
    static bool hasFailed();
    /// Calls that are on their way, one within the other.
    static int depth();

  private:
    static void keep(std::exception_ptr raised);

    Call* _outer;
    std::exception_ptr _raised;
};

/// @cond INTERNAL
template <class Function, class Return, class... Arguments>
auto checkedAs(Function function, Return (Function::*)(Arguments...) const) {
    return [function](Arguments... arguments) -> Return {
        Call call;
        if constexpr (std::is_void_v<Return>) {
            function(std::forward<Arguments>(arguments)...);
            call.finish();
        } else {
            Return result = function(std::forward<Arguments>(arguments)...);
            call.finish();
            return result;
        }
    };
}
/// @endcond

/// The function as Python may call it: as one `Call`.
template <class Function>
auto checked(Function function) {
    return checkedAs(function, &Function::operator());
}

} // namespace ka::python
