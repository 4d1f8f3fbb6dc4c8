#include "cli/Interrupt.h"
#include "cli/LiveLine.h"
#include "cli/Options.h"
#include "cli/Progress.h"
#include "commands/Commands.h"
#include "play/MessageLine.h"
#include "play/PlayClock.h"
#include "play/Player.h"

#include <algorithm>
#include <cmath>
#include <kaAnimationObject.h>
#include <kaMotion/Text.h>
#include <limits>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>

namespace ka::tools {

namespace {

enum class Lines { Text, Json };

struct PlayOptions {
    ProjectFiles files;
    std::string object;
    std::optional<double> from, to;
    bool repeat = false, reverse = false, verbose = false;
    double speed = 1.0;
    int frames = 0; ///< ticks of the simulated clock; 0 for the wall clock
    Lines format = Lines::Text;

    bool isSimulated() const { return frames > 0; }
    bool printsLines() const { return verbose || format == Lines::Json; }
    float framesPerSecond() const { return static_cast<float>(files.import.framesPerSecond); }
};

constexpr double ticksPerSecond = 60.0;

/// An object that the player would hold forever without moving on is refused.
void checkPlaysAlone(const kaAnimationObject& object, const std::string& name) {
    if (!object.isActive())
        throw Failure(ExitCode::Usage, "'" + oneLine(name) + "' is not active");
    if (object.getTypeID() != KA_TYPE_SEQUENCE && object.getObjects().empty())
        throw Failure(ExitCode::Usage, "'" + oneLine(name) + "' holds nothing to play");
}

PlayPlan planOf(const PlayOptions& options, const Project& project) {
    PlayPlan plan;
    plan.objects = project.playable(options.object);
    const kaAnimationObject* first = plan.objects.empty() ? nullptr : plan.objects.front();
    // A curve has no run of its own, so it plays on the timeline too.
    plan.onTimeline = options.object.empty() || first == nullptr || first->getTypeID() == KA_TYPE_CURVE;
    if (!plan.onTimeline)
        checkPlaysAlone(*first, options.object);
    const auto [begin, end] = frameRange(plan.objects);
    plan.begin = static_cast<float>(options.from.value_or(static_cast<double>(begin)));
    plan.end = static_cast<float>(options.to.value_or(static_cast<double>(end)));
    if ((options.from || options.to) && !(plan.begin < plan.end))
        throw Failure(ExitCode::Usage, "there is nothing to play from frame " +
                                           formatNumber(static_cast<double>(plan.begin)) + " to frame " +
                                           formatNumber(static_cast<double>(plan.end)));
    plan.reverse = options.reverse;
    plan.repeat = options.repeat;
    return plan;
}

/// Writes a line for every message and, when asked, for every whole frame.
class PlayWriter {
  public:
    PlayWriter(Output& output, const PlayOptions& options) : _output(output), _options(options) {}

    PlayEvents events() {
        PlayEvents events;
        if (!_options.printsLines())
            return events;
        events.message = [this](const std::string& name, const kaMessage& message) {
            write(isJson() ? messageAsJson(name, message) : messageAsText(name, message));
        };
        events.sequence = [this](const std::string& name) {
            write(isJson() ? nlohmann::ordered_json{{"sequence", name}}.dump() : "sequence " + oneLine(name));
        };
        return events;
    }

    /// To be told after each tick.
    void onFrame(float frame) {
        const float whole = std::floor(frame);
        if (!_options.verbose || whole == _whole)
            return;
        _whole = whole;
        const std::string number = formatNumber(static_cast<double>(whole));
        write(isJson() ? "{\"wholeFrame\":" + (std::isfinite(whole) ? number : "null") + "}"
                       : "frame " + number);
    }

    /// Shows the lines as they come; a simulated run does not wait, so it writes in large pieces.
    void onTick() {
        if (!_options.isSimulated())
            _output.finish();
    }

  private:
    bool isJson() const { return _options.format == Lines::Json; }
    void write(const std::string& line) { _output.write(line + "\n"); }

    Output& _output;
    const PlayOptions& _options;
    float _whole = std::numeric_limits<float>::quiet_NaN();
};

/// Moves the clock from tick to tick: by the wall, or by one frame at a time.
class PlayTimer {
  public:
    explicit PlayTimer(const PlayOptions& options)
        : _options(options), _clock(options.framesPerSecond()), _interrupt() {}

    /// Goes on to the next tick.
    /// @return whether there is one.
    bool advance() {
        if (Interrupt::came() || (_options.isSimulated() && _tick >= _options.frames))
            return false;
        if (_options.isSimulated())
            _clock.set(static_cast<double>(timeOfRun(static_cast<float>(_tick * _options.speed),
                                                     _options.framesPerSecond(), _options.reverse)));
        else
            waitForTick();
        ++_tick;
        return !Interrupt::came();
    }

  private:
    void waitForTick() {
        if (_tick > 0)
            _interrupt.sleepUntil(_next);
        const double now = _interrupt.seconds();
        if (_tick == 0)
            _start = now;
        _clock.set((now - _start) * _options.speed);
        // Ticks that came too late are left out rather than made up for.
        _next = std::max(_next, now) + 1.0 / ticksPerSecond;
    }

    const PlayOptions& _options;
    PlayClock _clock;
    Interrupt _interrupt;
    int _tick = 0;
    double _start = 0.0, _next = 0.0;
};

std::string summaryOf(const Player& player, bool hasFinished) {
    std::string text = std::string(hasFinished ? "finished" : "stopped") + " at frame " +
                       formatNumber(static_cast<double>(Player::frame()), 6) + " after " +
                       counted(player.ticks(), "tick");
    for (const auto& [name, count] : player.messageCounts())
        text += ", " + std::to_string(count) + " " + name;
    return text;
}

/// @return what to say of it.
std::string playThrough(const PlayOptions& options, const PlayPlan& plan, Output& output) {
    PlayWriter writer(output, options);
    PlayTimer timer(options);
    // Lines and a line that is written over and over do not go together on one terminal.
    LiveLine status(!options.printsLines() || !output.isTerminal());
    const std::string range = " (" + formatNumber(static_cast<double>(plan.begin), 6) + " to " +
                              formatNumber(static_cast<double>(plan.end), 6) + ")";
    Player player(plan, writer.events());
    bool plays = true;
    while (plays && timer.advance()) {
        plays = player.tick();
        writer.onFrame(Player::frame());
        writer.onTick();
        if (status.isShown())
            status.set("playing: frame " + formatNumber(std::floor(static_cast<double>(Player::frame()))) +
                       range);
    }
    return summaryOf(player, !plays);
}

ExitCode play(const PlayOptions& asked, Output& output) {
    Terminal terminal;
    const Project project(asked.files, terminal);
    PlayOptions options = asked;
    options.files.import.framesPerSecond = project.framesPerSecond();
    const PlayPlan plan = planOf(options, project);
    const std::string summary = playThrough(options, plan, output);
    output.finish(); // so that the last word comes last on a terminal
    say(summary);
    return ExitCode::Fine;
}

void addPlayOptions(Command& command, PlayOptions& options) {
    addProjectOptions(command, options.files);
    command
        .option("--object", options.object,
                "play a clip, track or block by itself, by name or id (default: the first clip, on the "
                "timeline)")
        .takes("NAME");
    command.option("--from", options.from, "first frame (default: that of the animation)").finite();
    command.option("--to", options.to, "last frame (default: that of the animation)").finite();
    command.flag("--repeat", options.repeat, "start again at the end, until Ctrl-C");
    command.flag("--reverse", options.reverse, "play backwards, from the last frame to the first");
    command.option("--speed", options.speed, "how many times as fast as --fps says")
        .aboveZero(1e6)
        .showsDefault();
    command
        .option("--frames", options.frames,
                "play so many ticks of one frame each (times --speed) on a simulated clock, without "
                "waiting (default: the wall clock)")
        .between(1, 1000000000);
    command.flag("--verbose", options.verbose, "print a line for each whole frame and each message");
    command.choice("--format", options.format, {{"text", Lines::Text}, {"json", Lines::Json}},
                   "text, or json: each message as one line of JSON");
}

} // namespace

void addPlayCommand(CLI::App& program, Action& action) {
    auto options = std::make_shared<PlayOptions>();
    Command command(program, "play", "Play an animation on the clock and print what a host is told");
    addPlayOptions(command, *options);
    command.examples(
        {"ka-anim play walk.bvh --speed 2", "ka-anim play walk.bvh --frames 100 --format json",
         "ka-anim play walk.bvh --object walk --from 5 --to 15 --reverse --frames 20 --verbose"});
    command.runs(action, [options](Output& output) { return play(*options, output); });
}

} // namespace ka::tools
