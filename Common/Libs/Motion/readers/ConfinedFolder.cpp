#include "readers/ConfinedFolder.h"

#include "base/Descriptor.h"

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <kaMotion/Failure.h>
#include <linux/landlock.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace ka::motion {

namespace fs = std::filesystem;

namespace {

/// What the kernel takes as a set of rules, all three fields of it; kernels that know fewer take the others
/// as zero.
struct Rules {
    std::uint64_t files = 0;   ///< what is done with files, since Linux 5.13
    std::uint64_t network = 0; ///< since Linux 6.7
    std::uint64_t scopes = 0;  ///< who else can be reached, since Linux 6.12
};

Descriptor makeRuleset(const Rules& rules) {
    return Descriptor(static_cast<int>(syscall(SYS_landlock_create_ruleset, &rules, sizeof rules, 0)));
}

/// Sets every right of one field that the running kernel knows. They are asked for one after the other, so
/// that those of later kernels than this was written for are found as well.
void addKnownRights(Rules& rules, std::uint64_t Rules::*field) {
    for (int bit = 0; bit < 64; ++bit) {
        Rules tried = rules;
        tried.*field |= std::uint64_t{1} << bit;
        if (!makeRuleset(tried).isOpen())
            return;
        rules = tried;
    }
}

/// Opened without waiting, so that a pipe in the place of a file cannot hold us up.
std::optional<std::string> readPlainFile(const std::string& path, std::size_t limit) {
    const Descriptor file(open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    struct stat info {};
    if (!file.isOpen() || fstat(file.get(), &info) != 0 || !S_ISREG(info.st_mode) ||
        static_cast<unsigned long long>(info.st_size) > limit)
        return std::nullopt;
    std::string bytes(static_cast<std::size_t>(info.st_size), '\0');
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t got = ::read(file.get(), bytes.data() + done, bytes.size() - done);
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            return std::nullopt;
        if (got == 0)
            break;
        done += static_cast<std::size_t>(got);
    }
    bytes.resize(done);
    return bytes;
}

} // namespace

ConfinedFolder::ConfinedFolder(const std::string& model) {
    std::error_code error;
    const fs::path real = fs::canonical(model, error);
    if (error)
        throw unreadable(model,
                         error == std::errc::no_such_file_or_directory ? "no such file" : error.message());
    if (!fs::is_regular_file(real, error))
        throw unreadable(model, "not a plain file");
    if (access(real.c_str(), R_OK) != 0)
        throw unreadable(model, std::strerror(errno));
    _folder = real.parent_path().string();
    _modelName = real.filename().string();
}

std::optional<std::string> ConfinedFolder::resolve(const std::string& name) const {
    std::error_code error;
    const fs::path real = fs::canonical(fs::path(_folder) / name, error);
    if (error || !fs::is_regular_file(real, error))
        return std::nullopt;
    const fs::path relative = real.lexically_relative(_folder);
    const bool inside = !relative.empty() && *relative.begin() != "..";
    return inside ? std::optional<std::string>(real.string()) : std::nullopt;
}

std::optional<std::string> ConfinedFolder::read(const std::string& name, std::size_t limit) const {
    const std::optional<std::string> path = resolve(name);
    return path ? readPlainFile(*path, limit) : std::nullopt;
}

bool ConfinedFolder::confineProcess() const {
    // Every right that the kernel knows is taken, and only reading is given back.
    Rules rules;
    for (const auto field : {&Rules::files, &Rules::network, &Rules::scopes})
        addKnownRights(rules, field);
    const Descriptor ruleset = makeRuleset(rules);
    const Descriptor folder(open(_folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (!ruleset.isOpen() || !folder.isOpen())
        return false;
    landlock_path_beneath_attr readable{};
    readable.allowed_access = LANDLOCK_ACCESS_FS_READ_FILE | LANDLOCK_ACCESS_FS_READ_DIR;
    readable.parent_fd = folder.get();
    return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           syscall(SYS_landlock_add_rule, ruleset.get(), LANDLOCK_RULE_PATH_BENEATH, &readable, 0) == 0 &&
           syscall(SYS_landlock_restrict_self, ruleset.get(), 0) == 0;
}

} // namespace ka::motion
