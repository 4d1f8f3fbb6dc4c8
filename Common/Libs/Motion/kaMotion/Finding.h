#pragma once

#include <cstdint>
#include <string>
#include <vector>

#pragma GCC visibility push(default)
namespace ka::motion {

/// One thing that is wrong with a file.
struct Finding {
    std::uint32_t line = 0;   ///< counted from 1; 0 when no line is to blame
    std::uint32_t column = 0; ///< counted from 1; 0 when the line says enough
    std::string element;      ///< the kind of element, "curve"; empty for the document as a whole
    std::string id;           ///< as it stands in the file; empty when the element has none
    std::string message;      ///< one line of UTF-8
};

using FindingList = std::vector<Finding>;

} // namespace ka::motion
#pragma GCC visibility pop
