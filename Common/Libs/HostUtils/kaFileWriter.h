#pragma once

#include "kaHostUtilsExport.h"

#include <cstdint>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>

class kaFileTarget;

/// Writes a file so that a failure never costs what was there before.
///
/// The bytes go to a temporary file in the target's folder; commit() makes sure that they are on the disk and
/// puts them in the target's place in one step. Until then, and whenever anything fails (a full disk, a size
/// limit, a folder that forbids it) the old file stays as it was. A writer that goes without commit() leaves
/// no trace; a process that is killed leaves at most a file called ".ka-*.tmp" beside the target.
///
/// The new file has the old one's permissions. Links to the target are kept. A device or a pipe cannot be
/// replaced and is written to directly.
///
/// Everything after a failure is a no-op, so that only commit() has to be looked at.
class KA_HOSTUTILS_API kaFileWriter {
  public:
    /// @param name  the file's name in UTF-8; its folder must exist.
    explicit kaFileWriter(const std::string& name);
    ~kaFileWriter();
    kaFileWriter(const kaFileWriter&) = delete;
    kaFileWriter& operator=(const kaFileWriter&) = delete;

    /// Appends `bytes`. Cost: amortised, the system is called once per 64 KiB.
    /// @return false when this or anything before has failed.
    bool write(std::string_view bytes);

    /// The same as a stream, for what writes to one; it goes bad when write() fails. It lives as long as the
    /// writer.
    std::ostream& getStream() { return *_stream; }

    /// Finishes the file. Nothing can be written afterwards.
    /// @return whether all that was written now is the file `name`. A second call says false.
    bool commit();

    /// Gives up what was written; the file stays as it was.
    void cancel();

    /// What went wrong first, as one line that names the file; empty so far if nothing has.
    const std::string& getError() const { return _error; }

  private:
    class Buffer;

    bool isOpen() const { return _descriptor >= 0; }
    void open();
    void openTemporary();
    bool flush();
    bool close();
    bool replaceTarget();
    bool fail(int code);

    std::string _name;
    std::unique_ptr<kaFileTarget> _target;
    std::string _temporary; // empty when the target is written to directly
    std::string _pending;
    std::string _error;
    std::unique_ptr<std::streambuf> _buffer;
    std::unique_ptr<std::ostream> _stream;
    int _descriptor = -1;
};
