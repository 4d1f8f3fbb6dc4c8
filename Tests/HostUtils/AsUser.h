#pragma once

#include <grp.h>
#include <unistd.h>
#include <vector>

/// Lets a root process act as another user for a scope, with no right of root's left.
class AsUser {
  public:
    /// @param groups  the first is the one that new files get; at least one.
    AsUser(uid_t user, const std::vector<gid_t>& groups) {
        _isInForce = ::setgroups(groups.size(), groups.data()) == 0 && ::setegid(groups.front()) == 0 &&
                     ::seteuid(user) == 0;
    }
    ~AsUser() {
        if (::seteuid(0) != 0 || ::setegid(0) != 0 || ::setgroups(0, nullptr) != 0)
            ::_exit(1);
    }
    AsUser(const AsUser&) = delete;
    AsUser& operator=(const AsUser&) = delete;

    bool isInForce() const { return _isInForce; }

  private:
    bool _isInForce = false;
};
