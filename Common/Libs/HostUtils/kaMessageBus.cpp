#include "kaMessageBus.h"

#include <algorithm>
#include <utility>

namespace {

// Listeners that answer each other for ever must not exhaust the stack.
constexpr std::size_t MAX_DEPTH = 64;

// Counts what is under way; a listener that throws leaves the count right.
class Nesting {
  public:
    explicit Nesting(std::size_t& depth) : _depth(depth) { ++_depth; }
    ~Nesting() { --_depth; }
    Nesting(const Nesting&) = delete;
    Nesting& operator=(const Nesting&) = delete;

  private:
    std::size_t& _depth;
};

} // namespace

void kaMessageListener::Registration::call(std::string_view name, const kaMessage& message, int flags) {
    {
        const Nesting running(_running);
        _callback(name, message, flags);
    }
    if (!_listening) {
        end();
    }
}

void kaMessageListener::Registration::end() noexcept {
    _listening = false;
    if (_running == 0) {
        // Freed from a local: what the callback holds may come back here while it goes.
        const kaMessageCallback freed = std::exchange(_callback, nullptr);
    }
}

kaMessageBus& kaMessageBus::the() {
    static kaMessageBus bus;
    return bus;
}

kaMessageListener kaMessageBus::add(std::string_view name, kaMessageCallback callback) {
    if (!callback) {
        return {};
    }
    if (_size >= _tidyAt) {
        dropAllEnded();
    }
    auto registration = std::make_shared<Registration>(std::move(callback));
    Listeners& listeners = name.empty() ? _forAll : _byName[std::string(name)];
    listeners.push_back(registration);
    ++_size;
    return kaMessageListener(std::move(registration));
}

bool kaMessageBus::hasListeners(std::string_view name) const {
    const auto isAnyListening = [](const Listeners& listeners) {
        return std::any_of(listeners.begin(), listeners.end(),
                           [](const auto& l) { return l->isListening(); });
    };
    const auto named = _byName.find(name);
    return isAnyListening(_forAll) || (named != _byName.end() && isAnyListening(named->second));
}

void kaMessageBus::call(std::string_view name, const kaMessage& message, int flags) {
    // Who registers during this delivery waits for the next one, so both lengths are taken before the first
    // call.
    const auto named = _byName.find(name);
    const std::size_t namedCount = named == _byName.end() ? 0 : named->second.size();
    const std::size_t forAllCount = _forAll.size();
    if (namedCount + forAllCount == 0 || _depth == MAX_DEPTH) {
        return;
    }
    // Whether one that has ended was met.
    const auto deliver = [&](const Listeners& listeners, std::size_t count) {
        bool sawEnded = false;
        for (std::size_t i = 0; i < count; ++i) {
            // A share of its own: the list may move while the callback runs.
            // NOLINTNEXTLINE(performance-unnecessary-copy-initialization)
            const auto listener = listeners[i];
            if (listener->isListening()) {
                listener->call(name, message, flags);
            }
            sawEnded = sawEnded || !listener->isListening();
        }
        return sawEnded;
    };
    bool namedEnded = false;
    bool forAllEnded = false;
    {
        const Nesting delivery(_depth);
        namedEnded = namedCount > 0 && deliver(named->second, namedCount);
        forAllEnded = deliver(_forAll, forAllCount);
    }
    if (_depth > 0) {
        return;
    }
    if (forAllEnded) {
        dropEnded(_forAll);
    }
    if (namedEnded) {
        dropEnded(named->second);
        if (named->second.empty()) {
            _byName.erase(named);
        }
    }
}

void kaMessageBus::dropEnded(Listeners& listeners) {
    const auto ended = [](const auto& listener) { return !listener->isListening(); };
    const auto end = std::remove_if(listeners.begin(), listeners.end(), ended);
    _size -= static_cast<std::size_t>(listeners.end() - end);
    listeners.erase(end, listeners.end());
}

void kaMessageBus::dropAllEnded() {
    if (_depth > 0) {
        return;
    }
    dropEnded(_forAll);
    for (auto entry = _byName.begin(); entry != _byName.end();) {
        dropEnded(entry->second);
        entry = entry->second.empty() ? _byName.erase(entry) : std::next(entry);
    }
    _tidyAt = std::max(FirstTidy, 2 * _size);
}
