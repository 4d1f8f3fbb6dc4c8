#include "SmallStack.h"

#include <pthread.h>
#include <stdexcept>

namespace ka_test {

namespace {

void* run(void* work) {
    (*static_cast<const std::function<void()>*>(work))();
    return nullptr;
}

} // namespace

void onSmallStack(const std::function<void()>& work, std::size_t bytes) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, bytes);
    pthread_t thread{};
    void* argument = const_cast<std::function<void()>*>(&work);
    const int failed = pthread_create(&thread, &attributes, &run, argument);
    pthread_attr_destroy(&attributes);
    if (failed != 0)
        throw std::runtime_error("no thread with a small stack");
    pthread_join(thread, nullptr);
}

} // namespace ka_test
