#pragma once

#include "kaHostUtilsExport.h"

#include <functional>
#include <string>
#include <string_view>

/// Questions about files that a host may want to answer itself, and the writing of whole files.
/// File names are UTF-8 bytes.
namespace kaFile {

/// A host's own answer to checkWrite(), with the same arguments.
using CheckWriteCallback = std::function<bool(const std::string& name, bool ask, bool quiet)>;

/// Whether the file may be written.
///
/// The host's callback decides, if one is set. Otherwise a file may be written when it exists, is no folder
/// and this process may write it, or when it does not exist and its folder lets this process make it. Nothing
/// is written or created. The answer is a forecast: only the writing itself tells for sure.
///
/// @param name   the file, as UTF-8 bytes.
/// @param ask    lets a host ask the user, for example whether an existing file may go.
/// @param quiet  asks a host to show no message when it refuses.
KA_HOSTUTILS_API bool checkWrite(const std::string& name, bool ask, bool quiet);

/// Puts the host in charge of checkWrite(); an empty callback gives the decision back.
KA_HOSTUTILS_API void setCheckWriteCallback(CheckWriteCallback callback);

/// Writes `bytes` as the whole of the file `name`, all or nothing, as kaFileWriter does.
/// @return false when it failed; then an existing file is as it was, and `error` says what went wrong with
/// which file.
///         `error` is untouched otherwise.
KA_HOSTUTILS_API bool writeSafely(const std::string& name, std::string_view bytes, std::string& error);

/// The same; `warning` is set to what the new file could not keep of the old one's owner, permissions and
/// attributes, empty when it kept everything.
KA_HOSTUTILS_API bool writeSafely(const std::string& name, std::string_view bytes, std::string& error,
                                  std::string& warning);

/// Whether writing to `a` and to `b` would write to one file: the same name, links that lead to it, hard
/// links, a folder that is mounted in two places. Neither has to exist. Devices, which take both, do not
/// count, and neither does a name that cannot be written to.
KA_HOSTUTILS_API bool isSameFile(const std::string& a, const std::string& b);

} // namespace kaFile
