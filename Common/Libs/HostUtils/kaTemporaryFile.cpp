#include "kaTemporaryFile.h"

#include "kaSignalBlock.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr int MAX_NAMES_TRIED = 100;

std::string linkOf(int descriptor) {
    return "/proc/self/fd/" + std::to_string(descriptor);
}

bool isReachableByLink(int descriptor) {
    struct stat own {};
    struct stat linked {};
    return ::fstat(descriptor, &own) == 0 && ::stat(linkOf(descriptor).c_str(), &linked) == 0 &&
           own.st_dev == linked.st_dev && own.st_ino == linked.st_ino;
}

} // namespace

/// A name that stands for a file on the disk, in a list that a signal handler can walk at any moment: entries
/// are added with one atomic exchange, used again, and never freed.
struct kaTemporaryFile::Name {
    static constexpr std::size_t DIGITS = 32;

    std::atomic<int> folder{NOT_USED};
    std::array<char, sizeof ".ka-.tmp" + DIGITS> text{};
    Name* next = nullptr;

    static constexpr int NOT_USED = -1, BEING_FILLED = -2;
};

class kaTemporaryFile::Names {
  public:
    /// @return a name that nobody can guess, in `folder`; null, with errno set, when there is no randomness.
    static Name* take(int folder) {
        std::array<unsigned char, Name::DIGITS / 2> random{};
        if (::getrandom(random.data(), random.size(), 0) != static_cast<ssize_t>(random.size())) {
            return nullptr;
        }
        Name* name = findUnused();
        char* at = name->text.data() + std::snprintf(name->text.data(), name->text.size(), ".ka-");
        for (const unsigned char byte : random) {
            at += std::snprintf(at, 3, "%02x", byte);
        }
        std::snprintf(at, sizeof ".tmp", ".tmp");
        name->folder.store(folder, std::memory_order_release);
        return name;
    }

    static void give(Name* name) { name->folder.store(Name::NOT_USED, std::memory_order_release); }

    static Name* first() { return _first.load(std::memory_order_acquire); }

  private:
    static Name* findUnused() {
        for (Name* name = first(); name != nullptr; name = name->next) {
            int expected = Name::NOT_USED;
            if (name->folder.compare_exchange_strong(expected, Name::BEING_FILLED)) {
                return name;
            }
        }
        Name* made = new Name;
        made->folder.store(Name::BEING_FILLED);
        made->next = first();
        while (!_first.compare_exchange_weak(made->next, made, std::memory_order_release)) {
        }
        return made;
    }

    static inline std::atomic<Name*> _first{nullptr};
    static_assert(std::atomic<Name*>::is_always_lock_free && std::atomic<int>::is_always_lock_free);
};

kaTemporaryFile::~kaTemporaryFile() {
    discard();
}

int kaTemporaryFile::open(const std::filesystem::path& folder, mode_t mode) {
    _folder = ::open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    if (_folder < 0) {
        return errno;
    }
    // What the one way cannot do the other may, and its error is the one that tells.
    return openUnnamed(mode) == 0 ? 0 : openNamed(mode);
}

int kaTemporaryFile::openUnnamed(mode_t mode) {
    _descriptor = ::openat(_folder, ".", O_TMPFILE | O_WRONLY | O_CLOEXEC, mode);
    if (!isOpen()) {
        return errno;
    }
    if (!isReachableByLink(_descriptor)) { // it could never be given a name
        ::close(_descriptor);
        _descriptor = -1;
        return ENOENT;
    }
    return 0;
}

int kaTemporaryFile::openNamed(mode_t mode) {
    for (int tries = 0; tries < MAX_NAMES_TRIED; ++tries) {
        _name = Names::take(_folder);
        if (_name == nullptr) {
            return errno;
        }
        _descriptor =
            ::openat(_folder, _name->text.data(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode);
        if (isOpen()) {
            return 0;
        }
        const int code = errno;
        Names::give(_name);
        _name = nullptr;
        if (code != EEXIST) {
            return code;
        }
    }
    return EEXIST;
}

int kaTemporaryFile::giveName() {
    const std::string self = linkOf(_descriptor);
    for (int tries = 0; tries < MAX_NAMES_TRIED; ++tries) {
        _name = Names::take(_folder);
        if (_name == nullptr) {
            return errno;
        }
        if (::linkat(AT_FDCWD, self.c_str(), _folder, _name->text.data(), AT_SYMLINK_FOLLOW) == 0) {
            return 0;
        }
        const int code = errno;
        Names::give(_name);
        _name = nullptr;
        if (code != EEXIST) {
            return code;
        }
    }
    return EEXIST;
}

int kaTemporaryFile::moveTo(const std::string& name) {
    const kaSignalBlock all;
    if (const int code = _name == nullptr ? giveName() : 0; code != 0) {
        return code;
    }
    if (::renameat(_folder, _name->text.data(), _folder, name.c_str()) != 0) {
        return errno;
    }
    Names::give(_name);
    _name = nullptr;
    return 0;
}

void kaTemporaryFile::discard() {
    if (_name != nullptr) {
        ::unlinkat(_folder, _name->text.data(), 0);
        Names::give(_name);
        _name = nullptr;
    }
    for (int* descriptor : {&_descriptor, &_folder}) {
        if (*descriptor >= 0) {
            ::close(*descriptor);
            *descriptor = -1;
        }
    }
}

void kaTemporaryFile::discardAll() noexcept {
    const int code = errno;
    for (const Name* name = Names::first(); name != nullptr; name = name->next) {
        const int folder = name->folder.load(std::memory_order_acquire);
        if (folder >= 0) {
            ::unlinkat(folder, name->text.data(), 0);
        }
    }
    errno = code;
}
