#pragma once

namespace ka::python {

/// Removes every listener that Python has registered: what the bus holds of them must not outlive the
/// interpreter.
void removeListeners();

} // namespace ka::python
