#include "kaFileWriter.h"

#include "kaFileTarget.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <streambuf>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr std::size_t PENDING_LIMIT = std::size_t{64} * 1024;
constexpr int MAX_NAMES_TRIED = 100;

// A write beyond the process's file size limit kills it by default; here it is to fail like any other.
class SizeSignalBlock {
  public:
    SizeSignalBlock() {
        sigemptyset(&_signal);
        sigaddset(&_signal, SIGXFSZ);
        pthread_sigmask(SIG_BLOCK, &_signal, &_before);
    }
    ~SizeSignalBlock() {
        if (sigismember(&_before, SIGXFSZ) == 0) {
            const timespec now{};
            sigtimedwait(&_signal, nullptr, &now);
            pthread_sigmask(SIG_SETMASK, &_before, nullptr);
        }
    }
    SizeSignalBlock(const SizeSignalBlock&) = delete;
    SizeSignalBlock& operator=(const SizeSignalBlock&) = delete;

  private:
    sigset_t _signal{};
    sigset_t _before{};
};

// @return 0 or the error's number.
int writeAll(int descriptor, std::string_view bytes) {
    const SizeSignalBlock block;
    while (!bytes.empty()) {
        const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
        if (count < 0 && errno != EINTR) {
            return errno;
        }
        bytes.remove_prefix(count < 0 ? 0 : static_cast<std::size_t>(count));
    }
    return 0;
}

// The same words in every locale.
std::string describe(int code) {
    const char* words = ::strerrordesc_np(code);
    return words ? words : "error " + std::to_string(code);
}

// Short, so that it fits beside a target whose name has the greatest length.
std::string temporaryName(const std::string& folder) {
    static std::atomic<unsigned> counter{0};
    return folder + "/.ka-" + std::to_string(::getpid()) + '-' + std::to_string(counter++) + ".tmp";
}

// Makes the renaming itself last. Not every file system can be asked for it, and the file is whole either
// way.
void syncFolder(const std::string& folder) {
    const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor >= 0) {
        ::fsync(descriptor);
        ::close(descriptor);
    }
}

} // namespace

class kaFileWriter::Buffer : public std::streambuf {
  public:
    explicit Buffer(kaFileWriter& writer) : _writer(writer) {}

  protected:
    int_type overflow(int_type character) override {
        if (traits_type::eq_int_type(character, traits_type::eof())) {
            return traits_type::not_eof(character);
        }
        const char byte = traits_type::to_char_type(character);
        return _writer.write({&byte, 1}) ? character : traits_type::eof();
    }
    std::streamsize xsputn(const char* bytes, std::streamsize count) override {
        return _writer.write({bytes, static_cast<std::size_t>(count)}) ? count : 0;
    }

  private:
    kaFileWriter& _writer;
};

kaFileWriter::kaFileWriter(const std::string& name)
    : _name(name),
      _target(std::make_unique<kaFileTarget>()),
      _buffer(std::make_unique<Buffer>(*this)),
      _stream(std::make_unique<std::ostream>(_buffer.get())) {
    open();
}

kaFileWriter::~kaFileWriter() {
    cancel();
}

void kaFileWriter::open() {
    if (!_target->resolve(_name)) {
        fail(_target->getError().value());
    } else if (_target->exists() && !_target->isRegular()) {
        _descriptor = ::open(_target->getPath().c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY);
        if (!isOpen()) {
            fail(errno);
        }
    } else if (_target->exists() && !_target->isWritable()) {
        fail(EACCES); // a read-only file in a writable folder could be replaced, but is not meant to be
    } else {
        openTemporary();
    }
}

void kaFileWriter::openTemporary() {
    for (int tries = 0; tries < MAX_NAMES_TRIED; ++tries) {
        _temporary = temporaryName(_target->getFolder().string());
        _descriptor = ::open(_temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (isOpen() || errno != EEXIST) {
            break;
        }
    }
    if (!isOpen()) {
        const int code = errno;
        _temporary.clear();
        fail(code);
        return;
    }
    if (_target->exists()) {
        const struct stat& old = _target->getStatus();
        // Only a privileged process can keep another owner; the mode comes second, since a new owner may
        // reset it.
        [[maybe_unused]] const int kept = ::fchown(_descriptor, old.st_uid, old.st_gid);
        if (::fchmod(_descriptor, old.st_mode & 0777) != 0) {
            fail(errno);
        }
    }
}

bool kaFileWriter::write(std::string_view bytes) {
    if (!isOpen()) {
        return false;
    }
    if (_pending.size() + bytes.size() < PENDING_LIMIT) {
        _pending.append(bytes);
        return true;
    }
    if (!flush()) {
        return false;
    }
    if (bytes.size() < PENDING_LIMIT) {
        _pending.assign(bytes);
        return true;
    }
    const int code = writeAll(_descriptor, bytes);
    return code == 0 || fail(code);
}

bool kaFileWriter::flush() {
    const int code = writeAll(_descriptor, _pending);
    _pending.clear();
    return code == 0 || fail(code);
}

bool kaFileWriter::close() {
    const int descriptor = _descriptor;
    _descriptor = -1;
    // Some file systems report a failed write only here. Interrupted or not, the descriptor is gone.
    return ::close(descriptor) == 0 || errno == EINTR || fail(errno);
}

bool kaFileWriter::replaceTarget() {
    if (std::rename(_temporary.c_str(), _target->getPath().c_str()) != 0) {
        return fail(errno);
    }
    _temporary.clear();
    syncFolder(_target->getFolder().string());
    return true;
}

bool kaFileWriter::commit() {
    if (!isOpen() || !flush()) {
        return false;
    }
    if (_temporary.empty()) {
        return close();
    }
    if (::fsync(_descriptor) != 0) {
        return fail(errno);
    }
    return close() && replaceTarget();
}

void kaFileWriter::cancel() {
    if (isOpen()) {
        ::close(_descriptor);
        _descriptor = -1;
    }
    if (!_temporary.empty()) {
        ::unlink(_temporary.c_str());
        _temporary.clear();
    }
    _pending.clear();
}

bool kaFileWriter::fail(int code) {
    if (_error.empty()) {
        _error = "cannot write '" + _name + "': " + describe(code);
    }
    cancel();
    return false;
}
