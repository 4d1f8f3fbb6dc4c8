#pragma once

#include <filesystem>
#include <string>
#include <sys/types.h>

/// A new file that is to take a place in a folder once it is complete, and is gone when it never does.
///
/// Where the file system knows files without a name it has none until then, so that nobody can open it and
/// nothing is left of it whatever ends the process. Elsewhere, and for the two steps in which it takes its
/// place, it is called ".ka-", 32 random hexadecimal digits, ".tmp".
class kaTemporaryFile {
  public:
    kaTemporaryFile() = default;
    ~kaTemporaryFile();
    kaTemporaryFile(const kaTemporaryFile&) = delete;
    kaTemporaryFile& operator=(const kaTemporaryFile&) = delete;

    /// Opens it for writing. To be called once.
    /// @param mode  what it grants as long as it has no other rights; the process's umask counts.
    /// @return 0, or the number of the error.
    int open(const std::filesystem::path& folder, mode_t mode);

    bool isOpen() const { return _descriptor >= 0; }
    int descriptor() const { return _descriptor; }

    /// Puts it in the place `name` of its folder, in one step; a file that is there goes. No signal reaches
    /// this thread meanwhile.
    /// @return 0, or the number of the error.
    int moveTo(const std::string& name);

    /// Closes and removes it.
    void discard();

    /// Removes all of this process that have a name: for a process that is about to end. It may be called in
    /// a signal handler.
    static void discardAll() noexcept;

  private:
    int openUnnamed(mode_t mode);
    int openNamed(mode_t mode);
    int giveName();

    struct Name;
    class Names;

    int _folder = -1, _descriptor = -1;
    Name* _name = nullptr; ///< null while it has none
};
