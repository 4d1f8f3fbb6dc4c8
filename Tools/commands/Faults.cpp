#include "commands/Faults.h"

#include "cli/Progress.h"

#include <algorithm>
#include <kaMotion/Text.h>

namespace ka::tools {

std::vector<std::string> allFaults(std::vector<std::string> imported, const std::vector<std::string>& saved) {
    for (const std::string& line : saved)
        if (std::find(imported.begin(), imported.end(), line) == imported.end())
            imported.push_back(line);
    return imported;
}

ExitCode sayFaults(const std::vector<std::string>& faults) {
    constexpr std::size_t most = 20;
    for (std::size_t i = 0; i < std::min(faults.size(), most); ++i)
        say(faults[i]);
    if (faults.size() > most)
        say("and " + counted(faults.size() - most, "curve") + " more");
    return faults.empty() ? ExitCode::Fine : ExitCode::Findings;
}

} // namespace ka::tools
