#pragma once

#include "kaHostUtilsExport.h"

#include <functional>
#include <memory>
#include <string_view>

class kaMessage;

/// What a host registers to be told of messages.
using kaMessageCallback = std::function<void(std::string_view name, const kaMessage& message, int flags)>;

/// A registration on the message bus: the listener is called as long as this handle lives.
///
/// Move-only. An empty handle (default-made, moved from, or for an empty callback) listens to nothing. It may
/// outlive the bus, and may be dropped at any time, by its own listener too.
class KA_HOSTUTILS_API kaMessageListener {
  public:
    struct Registration; ///< The bus's side of it.

    kaMessageListener() noexcept = default;
    /// Made by the bus.
    explicit kaMessageListener(std::shared_ptr<Registration> registration) noexcept;
    kaMessageListener(kaMessageListener&& other) noexcept = default; ///< `other` is empty afterwards.
    /// Ends the registration held so far; `other` is empty afterwards.
    kaMessageListener& operator=(kaMessageListener&& other) noexcept;
    kaMessageListener(const kaMessageListener&) = delete;
    kaMessageListener& operator=(const kaMessageListener&) = delete;
    ~kaMessageListener();

    /// Ends the registration: the listener is not called any more, not even for a message that is being
    /// delivered. What the callback had captured is freed at once, or, when it is running, as soon as it
    /// returns.
    void remove() noexcept;

    /// Whether the listener is still called.
    explicit operator bool() const noexcept { return _registration != nullptr; }

  private:
    std::shared_ptr<Registration> _registration;
};
