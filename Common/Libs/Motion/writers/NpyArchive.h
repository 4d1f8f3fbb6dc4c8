#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace ka::motion {

/// Arrays of numbers and texts as a NumPy archive (.npz): a ZIP file with one .npy member for each, stored
/// without compression, so that it can be mapped. Format: NumPy's "NEP 1", version 1.0; numbers are
/// little-endian, rows first.
class NpyArchive {
  public:
    NpyArchive();
    ~NpyArchive();
    NpyArchive(const NpyArchive&) = delete;
    NpyArchive& operator=(const NpyArchive&) = delete;

    /// @param name  of the array; each once.
    /// @param shape  its product is the number of values; empty for a single number.
    /// @throws Failure (OutputFailed).
    void add(const std::string& name, const std::vector<float>& values,
             const std::vector<std::size_t>& shape);
    void add(const std::string& name, const std::vector<double>& values,
             const std::vector<std::size_t>& shape);
    /// An array of texts, as long as the longest of them.
    void add(const std::string& name, const std::vector<std::string>& texts);

    /// The whole file; nothing can be added afterwards.
    /// @throws Failure (OutputFailed).
    std::string finish();

  private:
    struct Zip;

    void addMember(const std::string& name, const std::string& type, const std::vector<std::size_t>& shape,
                   std::string_view bytes);

    std::unique_ptr<Zip> _zip;
};

} // namespace ka::motion
