#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

/// One file in a folder of its own, for as long as the program runs.
class ModelFile {
  public:
    ModelFile() {
        std::string name = (std::filesystem::temp_directory_path() / "ka-fuzz-model-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr)
            std::abort();
        _folder = name;
    }
    ~ModelFile() {
        std::error_code ignored;
        std::filesystem::remove_all(_folder, ignored);
    }
    ModelFile(const ModelFile&) = delete;
    ModelFile& operator=(const ModelFile&) = delete;

    /// @return the path of the file, which holds these bytes now.
    std::string write(const std::string& name, const std::uint8_t* data, std::size_t size) const {
        const std::string path = _folder + "/" + name;
        const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "wb"),
                                                                   std::fclose);
        if (!file || std::fwrite(data, 1, size, file.get()) != size)
            std::abort();
        return path;
    }

  private:
    std::string _folder;
};
