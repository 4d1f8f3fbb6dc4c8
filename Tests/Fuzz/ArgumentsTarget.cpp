#include "commands/Program.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

/// Any command line, one argument a line, is run, answered or refused with one line; reading it touches
/// nothing.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::vector<std::string> arguments(1);
    for (std::size_t i = 0; i < size; ++i) {
        if (data[i] == '\n')
            arguments.emplace_back();
        else
            arguments.back() += static_cast<char>(data[i]);
    }
    const ka::tools::CommandLine line = ka::tools::readCommandLine(arguments);
    const int outcomes =
        (line.action ? 1 : 0) + (line.answer.empty() ? 0 : 1) + (line.mistake.empty() ? 0 : 1);
    if (outcomes != 1 || line.mistake.find('\n') != line.mistake.npos)
        std::abort();
    return 0;
}
