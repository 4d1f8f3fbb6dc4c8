#pragma once

#include <cstddef>
#include <kaMotion/Failure.h>
#include <kaMotion/Motion.h>
#include <limits>
#include <string>

#pragma GCC visibility push(default)
namespace ka::motion {

/// How many keys a model's curves may have, counted before they are built: a file of a few megabytes, whose
/// channels share their numbers or hold nothing but zeros, can ask for gigabytes of them.
///
/// A reader announces what the file states with `expect`. As long as that fits, every key is kept. Where it
/// does not, runs of equal values keep their first and last key, which leaves every curve as it is; what is
/// still too much is refused.
class KeyBudget {
  public:
    /// Bytes that a key of a curve takes once it is built, with all that is held beside it on the way there.
    static constexpr std::size_t bytesPerKey = 640;

    /// Keeps every key.
    KeyBudget() = default;
    /// @param megabytes  what the curves may take.
    explicit KeyBudget(std::size_t megabytes)
        : _megabytes(megabytes), _most(megabytes * 1024 * 1024 / bytesPerKey) {}

    /// Keys that may be built.
    std::size_t most() const { return _most; }

    /// Announces keys of a channel, three curves each.
    void expect(std::size_t keys) {
        _expected = keys > (_endless - _expected) / curves ? _endless : _expected + keys * curves;
    }

    /// Whether more was announced than can be kept.
    bool thins() const { return _expected > _most; }

    /// Appends a key to its channel.
    /// @throws Failure (Unreadable), its text without the file's name, when there are too many.
    template <std::size_t Width>
    void add(MotionChannel<Width>& channel, const MotionKey<Width>& key) {
        if (thins() && endsInRunOf(channel, key)) {
            channel.keys.back() = key;
            return;
        }
        _kept += curves;
        if (_kept > _most)
            refuse();
        channel.keys.push_back(key);
    }

    /// @throws Failure (Unreadable) when what the motion is to become takes more than allowed, nodes and all.
    void check(const Motion& motion) const;

    /// @param keys  how many there would be.
    [[noreturn]] void refuse(std::size_t keys) const;

  private:
    static constexpr std::size_t curves = 3;
    static constexpr std::size_t _endless = std::numeric_limits<std::size_t>::max();

    /// Whether the last two keys and this one hold one value, at times that increase.
    template <std::size_t Width>
    static bool endsInRunOf(const MotionChannel<Width>& channel, const MotionKey<Width>& key) {
        const std::size_t count = channel.keys.size();
        if (count < 2)
            return false;
        const auto holds = [&](const MotionKey<Width>& other) {
            return other.value == key.value && other.inTangent == zero<Width>() &&
                   other.outTangent == zero<Width>();
        };
        const MotionKey<Width>&first = channel.keys[count - 2], &last = channel.keys[count - 1];
        return first.time < last.time && last.time < key.time && holds(first) && holds(last) && holds(key);
    }

    template <std::size_t Width>
    static constexpr std::array<double, Width> zero() {
        return {};
    }

    [[noreturn]] void refuse() const { refuse(thins() ? _expected : _kept); }

    std::size_t _megabytes = 0;
    std::size_t _most = _endless;
    std::size_t _expected = 0, _kept = 0;
};

} // namespace ka::motion
#pragma GCC visibility pop
