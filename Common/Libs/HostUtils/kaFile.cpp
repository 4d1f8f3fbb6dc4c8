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

bool kaFile::writeSafely(const std::string& name, std::string_view bytes, std::string& error) {
    kaFileWriter writer(name);
    writer.write(bytes);
    if (writer.commit()) {
        return true;
    }
    error = writer.getError();
    return false;
}
