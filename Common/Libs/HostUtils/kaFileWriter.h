#pragma once

#include "kaHostUtilsExport.h"

#include <cstdint>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>

class kaFileRights;
class kaFileTarget;
class kaTemporaryFile;

/// Writes a file so that a failure never costs what was there before, and nobody gets to see more than
/// before.
///
/// The bytes go to a temporary file in the target's folder; commit() makes sure that they are on the disk and
/// puts them in the target's place in one step. Until then, and whenever anything fails (a full disk, a size
/// limit, a folder that forbids it) the old file stays as it was. A writer that goes without commit() leaves
/// no trace. Neither does a process that is killed where the file system knows files without a name (ext4,
/// XFS, Btrfs, tmpfs and others do); elsewhere a file called ".ka-*.tmp" may stay beside the target, with a
/// name that cannot be guessed. @see abandonAll()
///
/// The new file has the old one's owner, group, permissions, access control list and extended attributes as
/// far as the system allows. Where it does not, rights are taken away rather than given (when a file cannot
/// keep its group, the group loses what others may not do), and getWarning() says so. Until commit() the
/// content of a file that existed is readable by its writer alone. Set-user-ID and set-group-ID bits are not
/// kept.
///
/// Symbolic links to the target are kept. A second hard link is not: under its other names the old file stays
/// with the old content, since only a file that is overwritten in place could keep them, at the price of its
/// content should that fail. A device or a pipe cannot be replaced and is written to directly; a pipe from
/// which nobody reads is refused at once.
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

    /// What the new file could not keep of the old one, as one line that names the file; empty when it kept
    /// everything, and before commit().
    const std::string& getWarning() const { return _warning; }

    /// Gives up what was written; the file stays as it was.
    void cancel();

    /// What went wrong first, as one line that names the file; empty so far if nothing has.
    const std::string& getError() const { return _error; }

    /// Removes what temporary files with a name the writers of this process have, for a process that is about
    /// to end without destroying them. It may be called in a signal handler.
    static void abandonAll() noexcept;

  private:
    class Buffer;

    bool isOpen() const { return _descriptor >= 0; }
    void open();
    void openInPlace();
    void openTemporary();
    bool flush();
    bool close();
    bool keepRights();
    bool replaceTarget();
    bool fail(int code);
    bool fail(const std::string& reason);

    std::string _name;
    std::unique_ptr<kaFileTarget> _target;
    std::unique_ptr<kaFileRights> _rights;       // of the file that was there; null when there was none
    std::unique_ptr<kaTemporaryFile> _temporary; // null when the target is written to directly
    std::string _pending;
    std::string _error;
    std::string _warning;
    std::unique_ptr<std::streambuf> _buffer;
    std::unique_ptr<std::ostream> _stream;
    int _descriptor = -1; // of the temporary file or of the target
};
