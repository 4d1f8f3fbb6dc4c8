#pragma once

#include "kaAnimationTypes.h"
#include "kaObjectClass.h"
#include "kaObjectRegistry.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

class kaAnimationObject;

/// Makes, finds, copies, renames and frees the objects, which `kaObjectRegistry` lists by id. What an object
/// needs of the layers above when it goes or fires, these tell the store once (`Hooks`).
class kaObjectStore {
  public:
    kaObjectStore() = delete;

    /// What the layers above do for the object model; null until one of them is there.
    struct Hooks {
        /// The object is about to be destroyed: takes it off the list of its scene node.
        void (*leaveNode)(kaAnimationObject& object) = nullptr;
        /// Connections of an object fire.
        void (*fire)(const std::vector<kaUID>& connections) = nullptr;
    };
    static Hooks hooks;

    /// @name Entries
    /// @{

    /// Enters an object under its id. @return false, with nothing changed, when the id has an entry.
    static bool enter(kaAnimationObject& object);
    /// Takes away the entry of the object's id, whatever object it holds, and the object's own, should a host
    /// have written its id: an object that is being destroyed is found by nobody.
    static void remove(kaAnimationObject& object);
    /// Takes away the entry of an object that is all but gone, under whatever id it stands.
    static void drop(kaAnimationObject& object);
    /// Gives an object the id `to`, which is free. An object that is not registered stays so, unless its
    /// former id is: then it takes that entry over. When memory runs out nothing is changed.
    static void rename(kaAnimationObject& object, kaUID to);
    /// @}

    /// The object with that name that has the smallest id; null for the empty name, and when there is none.
    /// Cost: O(log n); O(n) where keys have the name and the one with the smallest id has gone.
    static kaAnimationObject* findByName(const std::string& name);
    /// An object, registered or not, is about to take a name, which it keeps. @throws std::bad_alloc, with
    /// nothing changed.
    static void changeName(const kaAnimationObject& object, const kaObjectName& name);

    /// A curve, registered or not, that names the field `from` is about to name `to`. @throws
    /// std::bad_alloc, with nothing changed.
    static void moveToField(const kaAnimationObject& curve, kaUID from, kaUID to);
    /// A curve is about to be freed: if it is still registered, it counts no more among those of its field.
    static void leaveField(const kaAnimationObject& curve, kaUID field);

    /// The object with that id; null when there is none, or when it is of another class.
    static kaAnimationObject* find(kaUID id) { return kaObjectRegistry::the().find(id); }
    template <class Object>
    static Object* find(kaUID id) {
        return kaObjectCast<Object>(find(id));
    }

    /// A new registered object. One whose id is taken is made but not registered.
    template <class Object, class... Arguments>
    static Object* make(Arguments&&... arguments) {
        auto object = std::make_unique<Object>(std::forward<Arguments>(arguments)...);
        enter(*object);
        return object.release();
    }

    /// A registered copy of an object of that class and of everything below it; null gives null.
    template <class Object>
    static Object* duplicate(Object* source) {
        return source ? make<Object>(*source) : nullptr;
    }
    /// The same by the object's own class. Null for null and for a sequence: copied tracks lose theirs.
    static kaAnimationObject* duplicateAny(kaAnimationObject* source);

    /// The object leaves its node's list, its parent and the registry, then it is freed with its whole
    /// subtree. Null does nothing.
    static void destroy(kaAnimationObject* object);
    /// Has an object that is to be freed leave its node's list, its parent and the registry.
    static void takeOut(kaAnimationObject& object);
    /// The same as `destroy` for a key or a handle, which leaves a curve and no other parent.
    static void destroyKey(kaAnimationObject* key);

  private:
    static void insert(kaUID id, kaAnimationObject& object);
    static void erase(kaUID id);
    static void free(kaAnimationObject& object);
};
