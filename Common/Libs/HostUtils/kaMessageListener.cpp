#include "kaMessageListener.h"

#include "kaMessageBus.h"

kaMessageListener::kaMessageListener(std::shared_ptr<Registration> registration) noexcept
    : _registration(std::move(registration)) {}

kaMessageListener& kaMessageListener::operator=(kaMessageListener&& other) noexcept {
    if (this != &other) {
        remove();
        _registration = std::move(other._registration);
    }
    return *this;
}

kaMessageListener::~kaMessageListener() {
    remove();
}

void kaMessageListener::remove() noexcept {
    // The handle is emptied first: freeing the callback may destroy what holds this handle.
    if (const auto registration = std::move(_registration)) {
        registration->end();
    }
}
