#pragma once

#include <unistd.h>
#include <utility>

namespace ka::motion {

/// A file descriptor that closes itself. Negative: none.
class Descriptor {
  public:
    explicit Descriptor(int fd = -1) : _fd(fd) {}
    ~Descriptor() { close(); }
    Descriptor(Descriptor&& other) noexcept : _fd(std::exchange(other._fd, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        if (this != &other) {
            close();
            _fd = std::exchange(other._fd, -1);
        }
        return *this;
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int get() const { return _fd; }
    bool isOpen() const { return _fd >= 0; }
    void close() {
        if (_fd >= 0)
            ::close(_fd);
        _fd = -1;
    }

  private:
    int _fd;
};

} // namespace ka::motion
