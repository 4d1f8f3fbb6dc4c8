#include "readers/BvhReader.h"

#include <algorithm>
#include <cmath>
#include <kaMotion/Failure.h>
#include <kaMotion/Text.h>
#include <optional>

namespace ka::motion {

namespace {

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\v' || c == '\f';
}

bool sameWord(std::string_view a, std::string_view b) {
    const auto same = [](char x, char y) { return lowerCase(x) == lowerCase(y); };
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), same);
}

/// The words of the text, with their places.
class Scanner {
  public:
    Scanner(std::string_view text, const std::string& name) : _text(text), _name(name) {}

    /// The next word on this or a later line; empty at the end of the text.
    std::string_view next() {
        while (_at < _text.size() && (isBlank(_text[_at]) || _text[_at] == '\n'))
            advance();
        return word();
    }

    /// The next word on this line; empty at its end.
    std::string_view nextOnLine() {
        skipBlanks();
        return word();
    }

    /// What is left of this line before an opening brace, without blanks around it.
    std::string_view nameOnLine() {
        skipBlanks();
        _wordLine = _line;
        _wordColumn = _at - _lineStart + 1;
        const std::size_t end = std::min(_text.find_first_of("\n{", _at), _text.size());
        std::string_view rest = _text.substr(_at, end - _at);
        _at = end;
        while (!rest.empty() && isBlank(rest.back()))
            rest.remove_suffix(1);
        return rest;
    }

    std::size_t bytesLeft() const { return _text.size() - _at; }

    [[noreturn]] void fail(const std::string& reason) const {
        throw unreadable(_name + ":" + std::to_string(_wordLine) + ":" + std::to_string(_wordColumn), reason);
    }

    [[noreturn]] void failAt(std::string_view found, const std::string& expected) const {
        fail("expected " + expected +
             (found.empty() ? ", found the end" : ", found '" + oneLine(found, 40) + "'"));
    }

    void expect(std::string_view keyword) {
        const std::string_view found = next();
        if (!sameWord(found, keyword))
            failAt(found, "'" + std::string(keyword) + "'");
    }

    double number(const std::string& what) {
        const std::string_view found = next();
        const std::optional<double> value = parseNumber(found);
        if (!value || !std::isfinite(*value))
            failAt(found, what);
        return *value;
    }

  private:
    void advance() {
        if (_text[_at++] == '\n') {
            ++_line;
            _lineStart = _at;
        }
    }

    void skipBlanks() {
        while (_at < _text.size() && isBlank(_text[_at]))
            ++_at;
    }

    std::string_view word() {
        _wordLine = _line;
        _wordColumn = _at - _lineStart + 1;
        const std::size_t start = _at;
        while (_at < _text.size() && _text[_at] != '\n' && !isBlank(_text[_at]))
            ++_at;
        return _text.substr(start, _at - start);
    }

    std::string_view _text;
    const std::string& _name;
    std::size_t _at = 0, _line = 1, _lineStart = 0;
    std::size_t _wordLine = 1, _wordColumn = 1;
};

/// One number of a frame: what it sets, on which axis.
struct ChannelTarget {
    bool rotates = false;
    int axis = 0;
};

/// One joint's place in a line of numbers.
struct JointChannels {
    std::uint32_t node = 0;
    std::vector<ChannelTarget> targets;

    bool has(bool rotates) const {
        return std::any_of(targets.begin(), targets.end(),
                           [&](const ChannelTarget& t) { return t.rotates == rotates; });
    }
};

class BvhReader {
  public:
    BvhReader(std::string_view text, const std::string& name, const KeyBudget& budget)
        : _scan(text, name), _budget(budget) {}

    Motion read(const std::string& take) {
        readHierarchy();
        readMotion(take);
        return std::move(_motion);
    }

  private:
    void readHierarchy() {
        _scan.expect("HIERARCHY");
        std::string_view word = _scan.next();
        if (!sameWord(word, "ROOT"))
            _scan.failAt(word, "'ROOT'");
        while (sameWord(word, "ROOT")) {
            readTree();
            word = _scan.next();
        }
        if (!sameWord(word, "MOTION"))
            _scan.failAt(word, "'ROOT' or 'MOTION'");
    }

    /// One root with everything below it; a stack of open joints stands in for recursion.
    void readTree() {
        std::vector<std::int32_t> open;
        openJoint(MotionNode::noParent, open);
        while (!open.empty()) {
            const std::string_view word = _scan.next();
            if (word == "}")
                open.pop_back();
            else if (sameWord(word, "JOINT"))
                openJoint(open.back(), open);
            else if (sameWord(word, "End"))
                readEndSite(open.back());
            else
                _scan.failAt(word, "'JOINT', 'End Site' or '}'");
        }
    }

    void openJoint(std::int32_t parent, std::vector<std::int32_t>& open) {
        const std::string name(_scan.nameOnLine());
        if (name.empty())
            _scan.fail("a joint without a name");
        if (open.size() > Motion::maximumDepth)
            _scan.fail("joints are nested deeper than " + std::to_string(Motion::maximumDepth) + " levels");
        open.push_back(addNode(name, parent));
        _scan.expect("{");
        readOffset();
        readChannels();
    }

    void readEndSite(std::int32_t parent) {
        _scan.expect("Site");
        addNode(_motion.nodes[static_cast<std::size_t>(parent)].name + "_End", parent);
        _scan.expect("{");
        readOffset();
        _scan.expect("}");
    }

    std::int32_t addNode(const std::string& name, std::int32_t parent) {
        MotionNode node;
        node.name = name;
        node.parent = parent;
        _motion.nodes.push_back(node);
        return static_cast<std::int32_t>(_motion.nodes.size()) - 1;
    }

    void readOffset() {
        _scan.expect("OFFSET");
        for (double& value : _motion.nodes.back().translation)
            value = _scan.number("a number of the offset");
    }

    void readChannels() {
        _scan.expect("CHANNELS");
        const double count = _scan.number("the number of channels");
        if (count != std::floor(count) || count < 0 || count > 6)
            _scan.fail("a joint has 0 to 6 channels");
        JointChannels joint{static_cast<std::uint32_t>(_motion.nodes.size() - 1), {}};
        std::vector<int> turns;
        for (int i = 0; i < static_cast<int>(count); ++i) {
            const ChannelTarget target = channelTarget(_scan.next());
            for (const ChannelTarget& other : joint.targets)
                if (other.rotates == target.rotates && other.axis == target.axis)
                    _scan.fail("the same channel twice");
            joint.targets.push_back(target);
            if (target.rotates)
                turns.push_back(target.axis);
        }
        _motion.nodes.back().order = completeOrder(turns);
        _channelCount += joint.targets.size();
        _joints.push_back(std::move(joint));
    }

    ChannelTarget channelTarget(std::string_view word) const {
        const std::string_view kind = word.empty() ? word : word.substr(1);
        const std::size_t axis = word.empty() ? 3 : std::string_view("xyz").find(lowerCase(word.front()));
        const bool rotates = sameWord(kind, "rotation");
        if (axis > 2 || (!rotates && !sameWord(kind, "position")))
            _scan.failAt(word, "a channel such as 'Xposition' or 'Zrotation'");
        return {rotates, static_cast<int>(axis)};
    }

    /// Axes that the joint does not turn about stay at zero, so it does not matter where they come.
    static EulerOrder completeOrder(std::vector<int> turns) {
        for (const int axis : sceneOrder)
            if (std::find(turns.begin(), turns.end(), axis) == turns.end())
                turns.push_back(axis);
        return {turns[0], turns[1], turns[2]};
    }

    void readMotion(const std::string& take) {
        _scan.expect("Frames:");
        const double frames = _scan.number("the number of frames");
        if (frames != std::floor(frames) || frames < 0)
            _scan.fail("the number of frames is not a whole number");
        _scan.expect("Frame");
        _scan.expect("Time:");
        const double frameTime = _scan.number("the seconds from frame to frame");
        // Each number takes a digit and a separator, which bounds what a stated count can make us reserve.
        const double room =
            _channelCount == 0 ? frames : std::ceil(static_cast<double>(_scan.bytesLeft()) / 2.0);
        if (frames * static_cast<double>(_channelCount) > room)
            _scan.fail("the file is too short for " + formatNumber(frames, 17) + " frames of " +
                       std::to_string(_channelCount) + " numbers");
        if (!(frameTime > 0.0) && frames > 1)
            _scan.fail("the frame time is not above zero");
        makeTracks(take, _channelCount == 0 ? 0 : static_cast<std::size_t>(frames));
        if (_channelCount > 0)
            readFrames(static_cast<std::size_t>(frames), frameTime);
    }

    void makeTracks(const std::string& take, std::size_t frames) {
        MotionTake made{take, {}};
        for (const JointChannels& joint : _joints) {
            if (joint.targets.empty())
                continue;
            MotionTrack track;
            track.node = joint.node;
            _budget.expect(joint.has(false) ? frames : 0);
            _budget.expect(joint.has(true) ? frames : 0);
            made.tracks.push_back(std::move(track));
        }
        _motion.takes.push_back(std::move(made));
    }

    void readFrames(std::size_t frames, double frameTime) {
        std::vector<double> values(_channelCount);
        for (std::size_t frame = 0; frame < frames; ++frame) {
            readFrame(values, frame, frames);
            storeFrame(values, static_cast<double>(frame) * frameTime);
        }
        if (!_scan.next().empty())
            _motion.notes.push_back("the file holds more than the " + std::to_string(frames) +
                                    " frames that it states; the rest was left out");
    }

    void readFrame(std::vector<double>& values, std::size_t frame, std::size_t frames) {
        for (std::size_t i = 0; i < values.size(); ++i) {
            const std::string_view word = i == 0 ? _scan.next() : _scan.nextOnLine();
            if (word.empty())
                _scan.fail("frame " + std::to_string(frame + 1) + " of " + std::to_string(frames) + " has " +
                           std::to_string(i) + " numbers, the joints have " + std::to_string(values.size()) +
                           " channels");
            const std::optional<double> value = parseNumber(word);
            if (!value)
                _scan.failAt(word, "a number");
            values[i] = *value;
        }
        const std::string_view extra = _scan.nextOnLine();
        if (!extra.empty())
            _scan.fail("frame " + std::to_string(frame + 1) + " has more than " +
                       std::to_string(values.size()) + " numbers");
    }

    void storeFrame(const std::vector<double>& values, double time) {
        auto value = values.begin();
        auto track = _motion.takes.back().tracks.begin();
        for (const JointChannels& joint : _joints) {
            if (joint.targets.empty())
                continue;
            Vec3 position = _motion.nodes[joint.node].translation;
            Vec3 angles{0, 0, 0};
            for (const ChannelTarget& target : joint.targets)
                (target.rotates ? angles : position)[static_cast<std::size_t>(target.axis)] = *value++;
            if (joint.has(false))
                _budget.add(track->translation, {time, position, {}, {}});
            if (joint.has(true))
                _budget.add(track->angles, {time, angles, {}, {}});
            ++track;
        }
    }

    Scanner _scan;
    KeyBudget _budget;
    Motion _motion;
    std::vector<JointChannels> _joints;
    std::size_t _channelCount = 0;
};

} // namespace

Motion readBvh(std::string_view text, const std::string& name, const std::string& take, KeyBudget budget) {
    return BvhReader(text, name, budget).read(take);
}

} // namespace ka::motion
