#pragma once

#include <string>

namespace ka::motion {

/// Gathers what a reader does not carry over into one note.
class LeftOut {
  public:
    void add(std::size_t count, const char* one, const char* many) {
        if (count > 0)
            _list += (_list.empty() ? "" : ", ") + std::to_string(count) + " " + (count == 1 ? one : many);
    }

    /// Empty when nothing was left out.
    std::string note() const { return _list.empty() ? _list : "left out: " + _list; }

  private:
    std::string _list;
};

} // namespace ka::motion
