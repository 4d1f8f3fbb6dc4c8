#include "kaFileRights.h"

#include <algorithm>
#include <cerrno>
#include <string_view>
#include <sys/xattr.h>
#include <unistd.h>

namespace {

constexpr unsigned MODE_BITS = 0777, OWNER_BITS = 0700;
constexpr const char* LIST_IN_WORDS = "its access control list";

bool startsWith(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

bool meansNone(int code) {
    return code == ENODATA || code == EOPNOTSUPP || code == ENOSYS;
}

// @param read  asks the system, with a buffer and its size; a size of 0 asks how much there is.
// @return 0 or the error's number.
template <class Read>
int readGrowing(const Read& read, std::string& bytes) {
    constexpr int MAX_TRIES = 8; // it may grow between the two questions
    for (int tries = 0; tries < MAX_TRIES; ++tries) {
        const ssize_t size = read(nullptr, 0);
        if (size < 0) {
            return errno;
        }
        bytes.resize(static_cast<std::size_t>(size));
        const ssize_t got = size == 0 ? 0 : read(bytes.data(), bytes.size());
        if (got >= 0) {
            bytes.resize(static_cast<std::size_t>(got));
            return 0;
        }
        if (errno != ERANGE) {
            return errno;
        }
    }
    return ERANGE;
}

int readAttribute(const std::string& path, const char* name, std::string& value) {
    return readGrowing(
        [&](char* buffer, std::size_t size) { return ::lgetxattr(path.c_str(), name, buffer, size); }, value);
}

// Whether an attribute says something about the file. Some say it of its content (signatures, what a program
// may do), and the access lists of POSIX are looked after elsewhere.
bool belongsToTheFile(std::string_view name) {
    if (startsWith(name, "system.")) {
        return !startsWith(name, "system.posix_acl_");
    }
    return name != "security.capability" && name != "security.ima" && name != "security.evm";
}

} // namespace

int kaFileRights::read(const std::string& path) {
    _lost.clear();
    _attributes.clear();
    _hasHiddenList = false;
    if (::lstat(path.c_str(), &_status) != 0) {
        return errno;
    }
    _list = kaAccessList::ofMode(_status.st_mode);
    std::string bytes;
    const int code = readAttribute(path, kaAccessList::ATTRIBUTE, bytes);
    const auto list = code == 0 ? kaAccessList::parse(bytes) : std::nullopt;
    _hasList = list.has_value();
    if (list) {
        _list = *list;
    } else if (!meansNone(code)) {
        _hasHiddenList = true;
    }
    if (!readAttributes(path)) {
        addLost("its extended attributes");
    }
    return 0;
}

bool kaFileRights::readAttributes(const std::string& path) {
    std::string names;
    const int code = readGrowing(
        [&path](char* buffer, std::size_t size) { return ::llistxattr(path.c_str(), buffer, size); }, names);
    if (code != 0) {
        return meansNone(code);
    }
    // Each name ends with a zero byte.
    for (std::size_t at = 0; at < names.size(); at = names.find('\0', at) + 1) {
        const std::string name = names.c_str() + at;
        std::string value;
        if (!belongsToTheFile(name)) {
            continue;
        }
        if (readAttribute(path, name.c_str(), value) == 0) {
            _attributes[name] = value;
        } else {
            addLost("its extended attribute '" + name + "'");
            _hasHiddenList = _hasHiddenList || startsWith(name, "system.");
        }
    }
    return true;
}

int kaFileRights::giveTo(int descriptor) {
    if (!giveOwner(descriptor)) {
        _list.forgetGroup();
    }
    giveAttributes(descriptor);
    const bool hasKeptList = giveList(descriptor);
    if (!hasKeptList) {
        _list.forgetNames();
    }
    if (_hasHiddenList) {
        addLost(LIST_IN_WORDS);
    }
    if ((_status.st_mode & (S_ISUID | S_ISGID)) != 0) {
        addLost("its set-user-ID or set-group-ID bit");
    }
    // The mode of a file with a list was set with the list.
    return hasKeptList && _hasList && !_hasHiddenList
               ? 0
               : giveMode(descriptor, _hasHiddenList ? _list.mode() & OWNER_BITS : _list.mode());
}

// @return whether the group is the old one.
bool kaFileRights::giveOwner(int descriptor) {
    // An ordinary user may give a file to a group of his own, and to no other user.
    if (::fchown(descriptor, _status.st_uid, _status.st_gid) != 0) {
        [[maybe_unused]] const int kept = ::fchown(descriptor, static_cast<uid_t>(-1), _status.st_gid);
    }
    struct stat now {};
    if (::fstat(descriptor, &now) != 0) {
        now.st_uid = ~_status.st_uid;
        now.st_gid = ~_status.st_gid;
    }
    if (now.st_uid != _status.st_uid) {
        addLost("its owner (user " + std::to_string(_status.st_uid) + ")");
    }
    if (now.st_gid != _status.st_gid) {
        addLost("its group (group " + std::to_string(_status.st_gid) + ")");
    }
    return now.st_gid == _status.st_gid;
}

// @return whether the file has the list, which may be none.
bool kaFileRights::giveList(int descriptor) {
    const std::string bytes = _list.bytes();
    if (_hasList && !_hasHiddenList &&
        ::fsetxattr(descriptor, kaAccessList::ATTRIBUTE, bytes.data(), bytes.size(), 0) == 0) {
        return true;
    }
    if (_hasList) {
        addLost(LIST_IN_WORDS);
    }
    // A new file may have inherited one from its folder, with rights that the old file did not give.
    if (::fremovexattr(descriptor, kaAccessList::ATTRIBUTE) != 0 && !meansNone(errno)) {
        _hasHiddenList = true;
    }
    return !_hasList;
}

int kaFileRights::giveMode(int descriptor, unsigned mode) {
    const int code = ::fchmod(descriptor, mode) == 0 ? 0 : errno;
    struct stat now {};
    if (::fstat(descriptor, &now) != 0) {
        return errno;
    }
    // Some file systems have the same mode for all their files and do not let it be set.
    if ((now.st_mode & MODE_BITS & ~mode) != 0) {
        return code == 0 ? EPERM : code;
    }
    if ((now.st_mode & MODE_BITS) != mode) {
        addLost("some of its permissions");
    }
    return 0;
}

void kaFileRights::addLost(const std::string& what) {
    if (std::find(_lost.begin(), _lost.end(), what) == _lost.end()) {
        _lost.push_back(what);
    }
}

void kaFileRights::giveAttributes(int descriptor) {
    for (const auto& [name, value] : _attributes) {
        std::string has(value.size() + 1, '\0');
        const ssize_t size = ::fgetxattr(descriptor, name.c_str(), has.data(), has.size());
        const bool isThere = size >= 0 && has.compare(0, static_cast<std::size_t>(size), value) == 0;
        if (isThere || ::fsetxattr(descriptor, name.c_str(), value.data(), value.size(), 0) == 0) {
            continue;
        }
        addLost("its extended attribute '" + name + "'");
        // An access list of another kind.
        _hasHiddenList = _hasHiddenList || startsWith(name, "system.");
    }
}
