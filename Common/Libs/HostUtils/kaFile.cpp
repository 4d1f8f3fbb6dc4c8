#include "kaFile.h"

#include "kaFileTarget.h"
#include "kaFileWriter.h"

#include <utility>

namespace {

kaFile::CheckWriteCallback& hostCheck() {
    static kaFile::CheckWriteCallback callback;
    return callback;
}

bool isWritable(const std::string& name) {
    kaFileTarget target;
    return target.resolve(name) && target.isWritable();
}

} // namespace

bool kaFile::checkWrite(const std::string& name, bool ask, bool quiet) {
    // A copy: the callback may replace itself.
    const CheckWriteCallback callback = hostCheck();
    return callback ? callback(name, ask, quiet) : isWritable(name);
}

void kaFile::setCheckWriteCallback(CheckWriteCallback callback) {
    hostCheck() = std::move(callback);
}

bool kaFile::writeSafely(const std::string& name, std::string_view bytes, std::string& error,
                         std::string& warning) {
    kaFileWriter writer(name);
    writer.write(bytes);
    const bool isWritten = writer.commit();
    warning = writer.getWarning();
    if (!isWritten) {
        error = writer.getError();
    }
    return isWritten;
}

bool kaFile::writeSafely(const std::string& name, std::string_view bytes, std::string& error) {
    std::string warning;
    return writeSafely(name, bytes, error, warning);
}

bool kaFile::isSameFile(const std::string& a, const std::string& b) {
    kaFileTarget first, second;
    return first.resolve(a) && second.resolve(b) && first.isSameAs(second);
}
