#include "commands/Program.h"
#include "manual/Completion.h"
#include "manual/ManPage.h"

#include <fstream>
#include <iostream>

namespace {

bool write(const std::string& path, const std::string& text) {
    std::ofstream file(path, std::ios::binary);
    file << text;
    file.close();
    if (!file)
        std::cerr << "ka-anim-manual: " << path << " cannot be written\n";
    return static_cast<bool>(file);
}

} // namespace

/// Writes what the installed program comes with: `ka-anim-manual PAGE COMPLETION`.
int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "ka-anim-manual: two names are needed, for the manual page and the completion\n";
        return 2;
    }
    ka::tools::Action none;
    const ka::tools::CommandParts program = ka::tools::partsOf(*ka::tools::describedProgram(none));
    const bool isWritten = write(argv[1], ka::tools::manPage(program, KA_VERSION)) &&
                           write(argv[2], ka::tools::bashCompletion(program));
    return isWritten ? 0 : 4;
}
