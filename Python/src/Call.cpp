#include "Call.h"

#include "Session.h"

namespace ka::python {

namespace {

/// All of Python's calls hold the interpreter's lock, and all that go on belong to one thread.
Call*& innermost() {
    static Call* call = nullptr;
    return call;
}

} // namespace

Call::Call() : _outer(nullptr) {
    Session::checkThread();
    _outer = std::exchange(innermost(), this);
}

Call::~Call() {
    innermost() = _outer;
}

void Call::finish() {
    if (_raised)
        std::rethrow_exception(std::exchange(_raised, nullptr));
}

bool Call::hasFailed() {
    return innermost() != nullptr && innermost()->_raised != nullptr;
}

int Call::depth() {
    int depth = 0;
    for (const Call* call = innermost(); call != nullptr; call = call->_outer)
        ++depth;
    return depth;
}

void Call::keep(std::exception_ptr raised) {
    if (innermost() != nullptr)
        innermost()->_raised = std::move(raised);
    else
        try { // nobody called: say it as the interpreter says what a finaliser raises
            std::rethrow_exception(raised);
        } catch (pybind11::error_already_set& error) {
            error.discard_as_unraisable("kaanimation callback");
        } catch (...) {
        }
}

} // namespace ka::python
