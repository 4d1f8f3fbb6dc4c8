#pragma once

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <stdlib.h>
#include <string>

/// A test with an empty folder of its own, which goes with it.
class TemporaryFolder : public testing::Test {
  protected:
    TemporaryFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "kaTest-XXXXXX").string();
        _folder = ::mkdtemp(name.data());
    }
    ~TemporaryFolder() override {
        std::error_code ignored;
        std::filesystem::remove_all(_folder, ignored);
    }

    std::string at(const std::string& name) const { return (_folder / name).string(); }

    static void put(const std::string& name, const std::string& content) {
        std::ofstream(name, std::ios::binary) << content;
    }
    static std::string contentOf(const std::string& name) {
        std::ifstream file(name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    std::size_t fileCount() const {
        return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(_folder),
                                                      std::filesystem::directory_iterator()));
    }

    std::filesystem::path _folder;
};
