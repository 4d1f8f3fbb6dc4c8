#pragma once

#include <unistd.h>

/// Lets a root process go without root's rights for a scope, so that permissions count.
class WithoutPrivilege {
  public:
    WithoutPrivilege() {
        if (_wasRoot) {
            _dropped = ::seteuid(65534) == 0;
        }
    }
    ~WithoutPrivilege() {
        if (_dropped && ::seteuid(0) != 0) {
            ::_exit(1);
        }
    }
    WithoutPrivilege(const WithoutPrivilege&) = delete;
    WithoutPrivilege& operator=(const WithoutPrivilege&) = delete;

    bool isInForce() const { return !_wasRoot || _dropped; }

  private:
    bool _wasRoot = ::geteuid() == 0;
    bool _dropped = false;
};
