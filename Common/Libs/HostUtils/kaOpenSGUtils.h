#pragma once

#include "kaHostUtilsExport.h"
#include "kaMessage.h"
#include "kaMessageListener.h"

#include <OpenSG/OSGBaseTypes.h>
#include <OpenSG/OSGFieldContainerPtr.h>
#include <string_view>

/// The host's message bus and the announcing of scene changes. All of it belongs to the user-interface
/// thread.
namespace kaOpenSGUtils {

/// Delivers `message` under `name` to everyone who listens for it, before it returns.
///
/// Listeners of the name come first, then those of every message, each in the order of registration. A
/// listener may do anything meanwhile: one that is removed is not called any more, one that is added waits
/// for the next message, and a message that a listener sends is delivered at once, inside this one.
///
/// @param name     which listeners are called; compared byte by byte.
/// @param message  handed on as it is.
/// @param flags  handed on to the listeners as it is.
/// Edges: messages nested deeper than 64 are dropped. What a listener throws comes through, and those after
/// it miss the message.
/// Cost:   without listeners one look-up by name and no allocation; otherwise the same plus the listeners.
KA_HOSTUTILS_API void call(std::string_view name, const kaMessage& message, int flags);

/// The same, under the message's own name.
KA_HOSTUTILS_API void call(const kaMessage& message, int flags);

/// Whether anyone would get a message of this name: spares a frequent sender the making of one for nobody.
KA_HOSTUTILS_API bool hasListeners(std::string_view name);

/// Registers `callback` for messages called `name`, or, when the name is empty, for every message.
/// @return the registration, which lasts as long as this handle; empty when the callback is.
[[nodiscard]] KA_HOSTUTILS_API kaMessageListener addListener(std::string_view name,
                                                             kaMessageCallback callback);

/// Announces that the fields in `mask` of `container` have been written: records it in the current change
/// list, if there is one, and then, unless changes are being ignored, tells the container with an external
/// origin.
///
/// A null container is ignored. This is the one place through which the module announces what it wrote.
KA_HOSTUTILS_API void announceChange(const osg::FieldContainerPtr& container, osg::BitVector mask);

} // namespace kaOpenSGUtils
