#pragma once

#include <OpenSG/OSGFieldContainer.h>
#include <string>
#include <unordered_map>
#include <vector>

namespace osg {

/// What a scene file holds, taken apart: the containers with their plain values, and on a list of its own who
/// refers to whom. Nothing is linked yet, so that a reference may come before its definition.
///
/// Counts every container until it goes itself: what was not linked into the scene by then is destroyed with
/// it.
struct SceneFileContents {
    static constexpr UInt32 NONE = 0xFFFFFFFFU;

    /// A container, or the place of one whose type is unknown (a null handle).
    struct Item {
        FieldContainerPtr container;
        UInt32 line;
        bool hasCore = false; ///< of a node: its core is told, be it NULL
    };

    /// A place where containers are referred to: a field of an item, or the top level.
    struct Slot {
        UInt32 owner;                  ///< item; NONE: the top level
        const FieldDescription* field; ///< null at the top level and where the references count for nothing
        UInt32 first = NONE;           ///< its references, in order
        UInt32 last = NONE;
    };

    struct Reference {
        UInt32 item = NONE; ///< NONE with a name: to be looked up; without: NULL
        UInt32 name = NONE; ///< index into names
        UInt32 line = 0;
        UInt32 next = NONE;
        UInt16 binding = 0; ///< of an attachment
        bool isDefinition = false;
    };

    SceneFileContents() = default;
    SceneFileContents(const SceneFileContents&) = delete;
    SceneFileContents& operator=(const SceneFileContents&) = delete;
    ~SceneFileContents();

    UInt32 addItem(const FieldContainerPtr& container, UInt32 line);
    UInt32 addSlot(UInt32 owner, const FieldDescription* field);
    void addReference(UInt32 slot, const Reference& reference);

    std::vector<Item> items;
    std::vector<Slot> slots;
    std::vector<Reference> references;
    std::vector<std::string> names;                      ///< of references that are looked up at the end
    std::unordered_map<std::string, UInt32> definitions; ///< item by DEF name
};

} // namespace osg
