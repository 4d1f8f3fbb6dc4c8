#pragma once

#include <string>
#include <vector>

#pragma GCC visibility push(default)
namespace ka::motion {

/// Lines of text whose columns stand below each other, two blanks apart.
class Columns {
  public:
    /// @param alignment  one letter for each column: 'l' left, 'r' right. Further columns are left.
    explicit Columns(std::string alignment) : _alignment(std::move(alignment)) {}

    /// Cells are UTF-8 without line breaks.
    void add(std::vector<std::string> line) { _lines.push_back(std::move(line)); }
    /// Whether no line has been added yet.
    bool isEmpty() const { return _lines.empty(); }

    /// @param indent  blanks before each line.
    std::string text(std::size_t indent = 0) const;

  private:
    std::string _alignment;
    std::vector<std::vector<std::string>> _lines;
};

} // namespace ka::motion
#pragma GCC visibility pop
