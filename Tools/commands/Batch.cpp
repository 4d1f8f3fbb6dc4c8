#include "cli/Interrupt.h"
#include "cli/Options.h"
#include "commands/Commands.h"

#include <algorithm>
#include <fcntl.h>
#include <filesystem>
#include <fnmatch.h>
#include <kaMotion/Failure.h>
#include <kaMotion/Text.h>
#include <map>
#include <memory>
#include <set>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace ka::tools {

namespace {

struct BatchOptions {
    std::vector<std::string> inputs;
    std::string run, match = "*";
    int jobs = 0;
};

/// The files that are named, and those of folders that are: in the order of the line, a folder's by name.
std::vector<std::string> filesOf(const BatchOptions& options) {
    std::vector<std::string> files;
    for (const std::string& input : options.inputs) {
        std::error_code error;
        if (!std::filesystem::is_directory(input, error)) {
            files.push_back(input);
            continue;
        }
        std::set<std::string> inside;
        for (std::filesystem::directory_iterator at(input, error), end; !error && at != end;
             at.increment(error))
            if (at->is_regular_file(error) &&
                fnmatch(options.match.c_str(), at->path().filename().c_str(), FNM_PERIOD) == 0)
                inside.insert(at->path().string());
        if (error)
            throw Failure(ExitCode::Unreadable, printedPath(input) + ": " + error.message());
        files.insert(files.end(), inside.begin(), inside.end());
    }
    if (files.empty())
        throw Failure(ExitCode::Usage, "there is no file to work on");
    return files;
}

std::string filled(std::string word, const std::string& file) {
    const std::filesystem::path path(file);
    const std::map<std::string, std::string> parts{
        {"{}", file},
        {"{name}", path.stem().string()},
        {"{folder}", path.has_parent_path() ? path.parent_path().string() : "."}};
    std::string made;
    for (std::size_t i = 0; i < word.size();) {
        const auto part = std::find_if(parts.begin(), parts.end(), [&](const auto& entry) {
            return word.compare(i, entry.first.size(), entry.first) == 0;
        });
        made += part == parts.end() ? std::string(1, word[i]) : part->second;
        i += part == parts.end() ? 1 : part->first.size();
    }
    return made;
}

std::string contentOf(int descriptor) {
    std::string text;
    char buffer[4096];
    lseek(descriptor, 0, SEEK_SET);
    for (ssize_t got; (got = read(descriptor, buffer, sizeof buffer)) > 0;)
        text.append(buffer, static_cast<std::size_t>(got));
    return text;
}

/// The first line, or the last one.
std::string lineOf(const std::string& text, bool isFirst) {
    std::string line;
    for (std::size_t from = 0; from < text.size();) {
        const std::size_t end = std::min(text.find('\n', from), text.size());
        if (end > from && (line.empty() || !isFirst))
            line = text.substr(from, end - from);
        from = end + 1;
    }
    return line;
}

/// One file's run: this program again, with what it prints kept.
class Job {
  public:
    Job(const std::vector<std::string>& words, std::string file) : _file(std::move(file)) {
        _output = memfd_create("output", MFD_CLOEXEC);
        _messages = memfd_create("messages", MFD_CLOEXEC);
        std::vector<std::string> filledWords{"ka-anim"};
        for (const std::string& word : words)
            filledWords.push_back(filled(word, _file));
        std::vector<char*> arguments;
        for (std::string& word : filledWords)
            arguments.push_back(word.data());
        arguments.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_adddup2(&actions, _output, STDOUT_FILENO);
        posix_spawn_file_actions_adddup2(&actions, _messages, STDERR_FILENO);
        const int error =
            posix_spawn(&_process, "/proc/self/exe", &actions, nullptr, arguments.data(), environ);
        posix_spawn_file_actions_destroy(&actions);
        if (error != 0)
            _process = -1;
        _isStarted = error == 0;
    }
    ~Job() {
        for (const int descriptor : {_output, _messages})
            if (descriptor >= 0)
                close(descriptor);
    }
    Job(const Job&) = delete;
    Job& operator=(const Job&) = delete;

    pid_t process() const { return _process; }
    bool isStarted() const { return _isStarted; }
    const std::string& file() const { return _file; }

    /// @return the line about it. @param status  of the ended process.
    std::string lineAbout(int status) const {
        const bool isFine = WIFEXITED(status) && WEXITSTATUS(status) == 0;
        std::string line = isFine ? lineOf(contentOf(_output), true) : lineOf(contentOf(_messages), false);
        if (isFine && line.empty())
            line = lineOf(contentOf(_messages), false);
        const std::string name = "ka-anim: ";
        if (line.compare(0, name.size(), name) == 0)
            line.erase(0, name.size());
        const std::string how = isFine ? ""
                                : WIFSIGNALED(status)
                                    ? "failed, ended by signal " + std::to_string(WTERMSIG(status)) + ": "
                                    : "failed with code " + std::to_string(WEXITSTATUS(status)) + ": ";
        return printedPath(_file) + ": " + how + oneLine(line.empty() ? "fine" : line, 400);
    }

  private:
    std::string _file;
    int _output = -1, _messages = -1;
    pid_t _process = -1;
    bool _isStarted = false;
};

class Batch {
  public:
    Batch(const BatchOptions& options, Output& output)
        : _output(output), _words(splitWords(options.run)), _files(filesOf(options)) {
        const long processors = sysconf(_SC_NPROCESSORS_ONLN);
        _most = static_cast<std::size_t>(options.jobs > 0 ? options.jobs : std::max(1L, processors));
    }

    ExitCode run() {
        std::size_t next = 0;
        while (next < _files.size() || !_running.empty()) {
            while (next < _files.size() && _running.size() < _most && !Interrupt::came())
                start(_files[next++]);
            if (Interrupt::came()) {
                _left += _files.size() - next;
                next = _files.size();
            }
            if (!_running.empty())
                waitForOne();
        }
        _output.write(counted(_files.size() - _failed.size() - _left, "file") + " fine, " +
                      std::to_string(_failed.size()) + " failed" +
                      (_left > 0 ? ", " + std::to_string(_left) + " not begun" : "") + "\n");
        for (const std::string& file : _failed)
            _output.write("failed: " + printedPath(file) + "\n");
        return _failed.empty() && !Interrupt::came() ? ExitCode::Fine : ExitCode::Findings;
    }

  private:
    void start(const std::string& file) {
        auto job = std::make_unique<Job>(_words, file);
        if (!job->isStarted()) {
            _output.write(printedPath(file) + ": failed: no process could be started\n");
            _failed.push_back(file);
            return;
        }
        const pid_t process = job->process();
        _running.emplace(process, std::move(job));
    }

    void waitForOne() {
        int status = 0;
        const pid_t process = waitpid(-1, &status, 0);
        const auto job = _running.find(process);
        if (job == _running.end())
            return;
        _output.write(job->second->lineAbout(status) + "\n");
        if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
            _failed.push_back(job->second->file());
        _running.erase(job);
    }

    Output& _output;
    std::vector<std::string> _words, _files, _failed;
    std::size_t _most = 1, _left = 0;
    std::map<pid_t, std::unique_ptr<Job>> _running;
};

ExitCode batch(const BatchOptions& options, Output& output) {
    const Interrupt interrupt;
    return Batch(options, output).run();
}

} // namespace

void addBatchCommand(CLI::App& program, Action& action) {
    auto options = std::make_shared<BatchOptions>();
    Command command(program, "batch", "Run a command on many files, several at a time");
    command.positionals("FILES", options->inputs, "files, and folders whose files are meant").needed();
    command
        .option(
            "--run", options->run,
            "the command with its options; {} stands for the file, {name} for its name without folder and "
            "suffix, {folder} for its folder")
        .takes("COMMAND")
        .needed();
    command.option("--jobs", options->jobs, "files at a time (default: one for each processor)")
        .between(1, 256);
    command.option("--match", options->match, "which files of a folder: a pattern for their names")
        .takes("PATTERN")
        .showsDefault();
    command.examples(
        {"ka-anim batch captures --match '*.bvh' --run 'reduce {} -o thin/{name}.osg --animation "
         "thin/{name}.xml'",
         "ka-anim batch a.bvh b.bvh --jobs 2 --run 'info {}'"},
        "A line for each file; one that fails stops no other. At the end those that failed, and exit code 1 "
        "if "
        "there are any.");
    command.runs(action, [options](Output& output) { return batch(*options, output); });
}

} // namespace ka::tools
