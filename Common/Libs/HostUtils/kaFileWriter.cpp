#include "kaFileWriter.h"

#include "kaFileRights.h"
#include "kaFileTarget.h"
#include "kaTemporaryFile.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <streambuf>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr std::size_t PENDING_LIMIT = std::size_t{64} * 1024;
constexpr mode_t OWNER_ONLY = 0600, EVERYBODY = 0666;

// A write beyond the process's file size limit, and one to a pipe without a reader, kill the process by
// default; here they are to fail like any other.
class WriteSignalBlock {
  public:
    WriteSignalBlock() {
        sigset_t both{};
        sigemptyset(&both);
        for (const int signal : SIGNALS) {
            sigaddset(&both, signal);
        }
        pthread_sigmask(SIG_BLOCK, &both, &_before);
    }
    ~WriteSignalBlock() {
        for (const int signal : SIGNALS) {
            if (sigismember(&_before, signal) == 0) {
                sigset_t one{};
                sigemptyset(&one);
                sigaddset(&one, signal);
                const timespec now{};
                sigtimedwait(&one, nullptr, &now);
            }
        }
        pthread_sigmask(SIG_SETMASK, &_before, nullptr);
    }
    WriteSignalBlock(const WriteSignalBlock&) = delete;
    WriteSignalBlock& operator=(const WriteSignalBlock&) = delete;

  private:
    static constexpr int SIGNALS[] = {SIGXFSZ, SIGPIPE};
    sigset_t _before{};
};

// @return 0 or the error's number.
int writeAll(int descriptor, std::string_view bytes) {
    const WriteSignalBlock block;
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

std::string join(const std::vector<std::string>& items) {
    std::string text;
    for (const std::string& item : items) {
        text += (text.empty() ? "" : ", ") + item;
    }
    return text;
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
    int sync() override { return _writer.isOpen() && _writer.flush() ? 0 : -1; }

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
        openInPlace();
    } else if (_target->exists() && !_target->isWritable()) {
        fail(EACCES); // a read-only file in a writable folder could be replaced, but is not meant to be
    } else {
        openTemporary();
    }
}

void kaFileWriter::openInPlace() {
    // Opening a pipe would wait for its reader.
    _descriptor = ::open(_target->getPath().c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
    if (!isOpen() && errno == ENXIO && S_ISFIFO(_target->getStatus().st_mode)) {
        fail("nobody reads from this pipe");
    } else if (!isOpen() || ::fcntl(_descriptor, F_SETFL, 0) != 0) {
        fail(errno);
    }
}

void kaFileWriter::openTemporary() {
    if (_target->exists()) {
        _rights = std::make_unique<kaFileRights>();
        if (const int code = _rights->read(_target->getPath().string()); code != 0) {
            fail(code);
            return;
        }
    }
    _temporary = std::make_unique<kaTemporaryFile>();
    const int code = _temporary->open(_target->getFolder(), _target->exists() ? OWNER_ONLY : EVERYBODY);
    _descriptor = _temporary->descriptor();
    if (code != 0) {
        fail(code);
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
    // Interrupted or not, the descriptor is gone.
    return ::close(descriptor) == 0 || errno == EINTR || fail(errno);
}

bool kaFileWriter::keepRights() {
    // Those of this moment, if it is still there: they may have changed while the writing went on.
    kaFileRights now;
    struct stat status {};
    const std::string path = _target->getPath().string();
    if (::lstat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) && now.read(path) == 0) {
        _rights = std::make_unique<kaFileRights>(now);
    }
    const int code = _rights ? _rights->giveTo(_descriptor) : 0;
    return code == 0 || fail(code);
}

bool kaFileWriter::replaceTarget() {
    if (!keepRights()) {
        return false;
    }
    // All that a file system may report of a failed write it reports here.
    if (::fsync(_descriptor) != 0) {
        return fail(errno);
    }
    if (const int code = _temporary->moveTo(_target->getPath().filename().string()); code != 0) {
        return fail(code);
    }
    _temporary->discard();
    _descriptor = -1;
    syncFolder(_target->getFolder().string());
    if (_rights && !_rights->lost().empty()) {
        _warning = "'" + _name + "' could not keep " + join(_rights->lost()) +
                   "; nobody may do more with it than before";
    }
    return true;
}

bool kaFileWriter::commit() {
    if (!isOpen() || !flush()) {
        return false;
    }
    return _temporary ? replaceTarget() : close();
}

void kaFileWriter::cancel() {
    if (_temporary) {
        _temporary->discard();
    } else if (isOpen()) {
        ::close(_descriptor);
    }
    _descriptor = -1;
    _pending.clear();
}

void kaFileWriter::abandonAll() noexcept {
    kaTemporaryFile::discardAll();
}

bool kaFileWriter::fail(int code) {
    return fail(describe(code));
}

bool kaFileWriter::fail(const std::string& reason) {
    if (_error.empty()) {
        _error = "cannot write '" + _name + "': " + reason;
    }
    cancel();
    return false;
}
