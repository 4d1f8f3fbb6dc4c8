#include "TemporaryFolder.h"

#include <cerrno>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <stdlib.h>
#include <system_error>

namespace fs = std::filesystem;

namespace ka_test {

TemporaryFolder::TemporaryFolder() {
    std::string name = (fs::temp_directory_path() / "kaTest-XXXXXX").string();
    if (!::mkdtemp(name.data()))
        throw std::system_error(errno, std::generic_category(), name);
    _path = fs::canonical(name);
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    fs::remove_all(_path, ignored);
}

std::string TemporaryFolder::put(const std::string& name, const std::string& content) const {
    std::ofstream(at(name), std::ios::binary) << content;
    return at(name);
}

std::size_t TemporaryFolder::entryCount() const {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(_path), fs::directory_iterator()));
}

std::string contentOf(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    EXPECT_TRUE(stream.good()) << file;
    return {std::istreambuf_iterator<char>(stream), {}};
}

} // namespace ka_test
