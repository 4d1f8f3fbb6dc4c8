#include <kaMotion/Listener.h>

namespace ka::motion {

Listener& Listener::none() {
    static Listener listener;
    return listener;
}

} // namespace ka::motion
