#pragma once

#include "kaMessageListener.h"

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// One registered callback. The bus and the host's handle share it, so that neither has to outlive the other.
struct kaMessageListener::Registration {
    explicit Registration(kaMessageCallback callback) : _callback(std::move(callback)) {}

    bool isListening() const { return _listening; }

    /// Only while listening.
    void call(std::string_view name, const kaMessage& message, int flags);

    /// Frees the callback, once it does not run any more.
    void end() noexcept;

  private:
    kaMessageCallback _callback;
    std::size_t _running = 0; // calls of the callback that have not returned
    bool _listening = true;
};

/// Delivers messages to the listeners registered for their name, then to those registered for every message,
/// each group in the order of registration.
///
/// Listeners may register, end registrations and send messages while they are called. The lists are only ever
/// appended to during a delivery and tidied between deliveries, so an index into one stays good.
///
/// A registration that has ended keeps a place in its list, without its callback, until the list is tidied:
/// after a delivery that met it, or when the places have doubled since all lists were last tidied. So
/// registering costs O(log n) on average for n names, and the places are at most twice the listeners, plus a
/// few.
class kaMessageBus {
  public:
    static kaMessageBus& the();

    /// An empty name asks for every message.
    kaMessageListener add(std::string_view name, kaMessageCallback callback);
    bool hasListeners(std::string_view name) const;
    void call(std::string_view name, const kaMessage& message, int flags);

  private:
    using Registration = kaMessageListener::Registration;
    using Listeners = std::vector<std::shared_ptr<Registration>>;
    static constexpr std::size_t FirstTidy = 16;

    void dropEnded(Listeners& listeners);
    void dropAllEnded();

    std::map<std::string, Listeners, std::less<>> _byName;
    Listeners _forAll;
    std::size_t _size = 0;           // registrations in the lists, those that have ended included
    std::size_t _tidyAt = FirstTidy; // the size at which all lists are tidied
    std::size_t _depth = 0;          // deliveries under way, one inside another
};
