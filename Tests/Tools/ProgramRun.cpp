#include "ProgramRun.h"

#include "MotionTesting.h"

#include <cstdlib>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace ka::tools::testing {

using namespace motion::testing;

namespace {

[[noreturn]] void runChild(const std::vector<std::string>& words, const std::string& folder,
                           const std::string& out, const std::string& err,
                           const std::function<void()>& prepare) {
    const std::string path = std::string(KA_ANIM_FOLDER) + ":" + std::getenv("PATH");
    setenv("PATH", path.c_str(), 1);
    unsetenv("DISPLAY");
    dup2(open("/dev/null", O_RDONLY), STDIN_FILENO);
    dup2(open(out.c_str(), O_WRONLY | O_CREAT, 0600), STDOUT_FILENO);
    dup2(open(err.c_str(), O_WRONLY | O_CREAT, 0600), STDERR_FILENO);
    std::vector<char*> arguments;
    for (const std::string& word : words)
        arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    prepare();
    if (chdir(folder.c_str()) == 0)
        execvp(arguments[0], arguments.data());
    _exit(127);
}

ProgramRun run(const std::vector<std::string>& words, const std::string& folder,
               const std::function<void()>& prepare) {
    const TemporaryFolder files;
    const pid_t child = fork();
    if (child == 0)
        runChild(words, folder, files.at("out"), files.at("err"), prepare);
    int status = 0;
    waitpid(child, &status, 0);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, contentOf(files.at("out")),
            contentOf(files.at("err"))};
}

} // namespace

bool ProgramRun::isOneLine() const {
    return messages.rfind("ka-anim: ", 0) == 0 && messages.find('\n') == messages.size() - 1;
}

ProgramRun runKaAnim(const std::vector<std::string>& arguments, const std::string& folder,
                     const std::function<void()>& prepare) {
    std::vector<std::string> words{"ka-anim"};
    words.insert(words.end(), arguments.begin(), arguments.end());
    return run(words, folder, prepare);
}

ProgramRun runShell(const std::string& command, const std::string& folder) {
    return run({"bash", "-c", command}, folder, [] {});
}

} // namespace ka::tools::testing
