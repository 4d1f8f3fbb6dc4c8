#pragma once

#include <kaMotion/Listener.h>

namespace ka::motion::testing {

/// Cancels when it has been told for the n-th time.
class Impatient : public Listener {
  public:
    explicit Impatient(int calls) : _calls(calls) {}
    bool progress(const std::string&, std::size_t, std::size_t) override { return --_calls > 0; }

  private:
    int _calls;
};

} // namespace ka::motion::testing
