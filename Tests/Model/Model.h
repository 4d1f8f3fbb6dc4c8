#pragma once

#include "Builders.h"

#include <functional>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

/// A second, slow and literal make of the object tree: plain structs, lists, maps and sets, every rule
/// written down as it is stated and nothing remembered that could be looked up. What it says is what the
/// module must do.
namespace ka_model {

using ka_test::Spot;
using Id = unsigned long long;

enum Type : unsigned int { POINT = 1, CURVE = 2, UNIT = 3, STREAK = 4, STRIP = 5, SEQUENCE = 6 };
enum Operation { ADD, SUB, MOVE };

constexpr float EMPTY = 1e23F;

struct Extent {
    float begin = EMPTY;
    float end = -EMPTY;
    float maximum = -EMPTY;
    float minimum = EMPTY;
};

/// Any object; the members of one class alone stand at the end.
struct Object {
    Type type = UNIT;
    bool alive = true;
    Id id = 0;
    Id parent = 0;
    std::set<Id> curves;
    std::set<Id> sequences;
    std::list<Id> children;
    Extent extent;
    std::string name;
    bool active = true;
    bool playing = false;
    bool reversePlay = false;
    bool repeating = false;
    bool flipped = false;
    bool trimmed = false;
    bool selected = false;
    bool locked = false;
    bool internal = false;
    bool motionBlur = false;
    bool useCustomRange = false;
    float customBegin = 0.0F;
    float customEnd = 0.0F;
    float rangeBegin = EMPTY;
    float rangeEnd = -EMPTY;
    float lastFrame = 0.0F;

    // key
    Spot position{0.0F, 0.0F};
    Spot savedPosition{0.0F, 0.0F};
    Spot savedIn{0.0F, 0.0F};
    Spot savedOut{0.0F, 0.0F};
    Object* in = nullptr;
    Object* out = nullptr;
    Object* owner = nullptr; ///< the key whose handle this is
    bool isTangent = false;
    unsigned int tangentType = 4;
    unsigned int lengthMode = 64;

    Id field = 0;            ///< curve
    unsigned int nodeID = 0; ///< block
    unsigned int index = 0;  ///< track
    bool armed = true;       ///< sequence

    float begin() const { return type == POINT ? position.x : extent.begin; }
    float end() const { return type == POINT ? position.x : extent.end; }
    float maximum() const { return type == POINT ? position.y : extent.maximum; }
    float minimum() const { return type == POINT ? position.y : extent.minimum; }
    void setBegin(float x) { (type == POINT ? position.x : extent.begin) = x; }
    void setEnd(float x) { (type == POINT ? position.x : extent.end) = x; }
    void setMaximum(float y) { (type == POINT ? position.y : extent.maximum) = y; }
    void setMinimum(float y) { (type == POINT ? position.y : extent.minimum) = y; }
};

struct Field {
    Id id = 0;
    unsigned int fcID = 0;
    unsigned int nodeID = 0;
    std::string attribute;
    float value = 0.0F;
    unsigned int valuePos = 0;
    bool alive = true;
};

/// A scene node as the registry sees it: its ids, its core's and the lists of its attachment.
struct Node {
    unsigned int id = 0;
    unsigned int coreID = 0;
    unsigned int coreGroup = 0;
    std::vector<Id> objectIDs;
    std::vector<Id> fieldIDs;
};

/// What sampling answers.
struct Value {
    bool returned = false;
    bool written = false;
    float value = 0.0F;
};

class World {
  public:
    // Registry.

    Object* find(Id id) const;
    Object* findOfType(Id id, Type type) const;
    Field* findField(Id id) const;
    /// The object that an object names as its parent; the id 0 names none.
    Object* parentOf(const Object& object) const;
    bool isUnique(Id id) const { return objects.count(id) == 0 && fields.count(id) == 0; }
    Id draw();
    Id createUID();
    void setID(Id id, Object* object);
    void setID(Id id, Field* field);

    Object* createPoint(Spot position, Id id);
    Object* createCurve(Id id);
    Object* createContainer(Type type, Id id);
    Object* createSequence(const std::string& name, Id id);
    Field* createField(Id id);

    Object* duplicate(Object* object); ///< By type; a sequence gives null.
    Object* duplicateSequence(Object* sequence);

    void destroyPoint(Object* point); ///< Tells the parent only when that is a curve.
    void destroy(Object* object);
    void destroyField(Field* field);
    void destroyAllObjects(bool all);

    // Base.

    void updateBy(Object* object, Object* child, Operation operation, bool recursive);
    void updateAll(Object* object, const std::vector<Id>& ids, Operation operation, bool recursive);
    void updateBounds(Object* object);
    std::vector<Object*> childrenOf(const Object& object) const;
    Object* childAt(const Object& object, float begin) const;
    static bool isChild(const Object& object, Id id);
    void setActive(Object* object, bool active);
    void setRepeating(Object* object, bool repeating);
    void setMotionBlur(Object* object, bool motionBlur);
    void setSelected(Object* object, bool selected);
    void setLocked(Object* object, bool locked);

    // Keys and curves.

    bool computeTangents(Object* point);
    std::map<float, Object*> pointsOf(const Object& curve) const;
    std::pair<Object*, Object*> around(const Object& curve, const Object* point) const;
    std::pair<Object*, Object*> around(const Object& curve, float x) const;
    bool checkMoveConstraints(const Object& curve, const Object* point, float x, float inX, float outX) const;
    bool checkMoveConstraints2(const Object& curve, const Object* point, float dx, bool fromSaved) const;
    bool checkInsertConstraints(const Object& curve, float x) const;
    void setPoints(Object* curve, const std::vector<Object*>& points);
    Object* deleteSelectedPoints(Object* curve, bool tellParent, bool destroyIfEmpty);
    Object* deletePoints(Object* curve, bool tellParent, bool destroyIfEmpty);
    void changeTangents(Object* curve, unsigned int type);
    void moveSelectedPoints(Object* curve, Spot delta, bool snapX, bool snapY, bool tellParent,
                            bool fromSaved);
    void moveSelectedPointsTo(Object* curve, Spot target, bool lockX, bool lockY, bool tellParent);
    bool createCurvePoint(Object* curve, Spot place, bool snapX, bool snapY, bool replace);
    bool createCurvePoint(Object* curve, float frame, bool replace);
    Value sample(const Object& curve, float frame) const;

    // Containers and editing in time, by type.

    /// Whether a container may take an object: that closes no ring of parents, nor one of tracks and clips
    /// that list each other, and the container stands in no ring already.
    bool mayAdopt(const Object& container, const Object& object) const;
    Object* addObject(Object* container, Object* object);
    Object* subObject(Object* container, Object* object, bool destroyIt);
    bool insertIntoTrack(Object* track, Object* object);
    Object* insertIntoClip(Object* clip, Object* object);
    std::map<unsigned int, Object*> tracksOf(const Object& clip) const;
    void destroyEmptyTracks(Object* clip);
    void destroyEmptyTracksAtEnd(Object* clip);
    bool moveToTrack(Object* object, Object* track);
    bool moveToTrack(Object* object, Object* clip, unsigned int number);
    void move(Object* object, float dx, bool tellParent);
    void moveBegin(Object* object, float begin, bool tellParent);
    void moveEnd(Object* object, float end, bool tellParent);
    void trimBegin(Object* object, float begin, bool tellParent);
    void trimEnd(Object* object, float end, bool tellParent);
    void flip(Object* object);
    void triggerLoop(Object* object, float frame);
    bool evaluate(Object* object, float frame);

    // Playback: who is held by it.

    void startWaiting(); ///< What waits runs; an id that runs already goes on.
    void jumpTo(Object* object, float frame);

    /// Whether the tree stays well below the greatest depth when `container` takes `object`.
    bool isShallow(const Object& container, const Object& object) const;
    /// Whether `to` can be reached from `from` through lists of children; a key's own id is no way.
    bool reaches(const Object& from, const Object& to) const;

    // Copy and paste.

    void clearCopyBuffer(bool destroyThem);
    bool copy(Object* object);
    bool copy(const std::vector<Object*>& list);
    bool paste(Node* node, bool force);
    Node* nodeOf(unsigned int id);

    std::map<Id, Object*> objects;
    std::map<Id, Field*> fields;
    std::vector<Object*> copyBuffer;
    std::vector<Object*> waiting;
    std::map<Id, Object*> runningByID;  ///< under the ids they had when they started
    std::vector<Object*> jumpCurves;    ///< of the last jump
    std::vector<Object*> jumpSequences; ///< of the last jump
    std::vector<Node> nodes;
    Id generator = 0;

    /// Everything ever made, so that what is gone can still be told from what is there.
    std::vector<std::unique_ptr<Object>> everyObject;
    std::vector<std::unique_ptr<Field>> everyField;

  private:
    Object* make(Type type, Id id, const std::string& name);
    void enter(Object* object) { objects.emplace(object->id, object); }
    Object* makePoint(Spot position, const std::string& name, Id id, bool isTangent);
    Object* copyPoint(Object* source);
    Object* copyCurve(Object* source);
    Object* copyContainer(Object* source);
    void free(Object* object);
    void forgetEntries(const Object* object);
    void forgetEntries(const Field* field);
    void forgetHeld(const Object* object);
    void leaveNode(Object* object);
    void climb(Object* object, const std::set<Id>& curves, const std::set<Id>& sequences, Operation operation,
               bool recursive);
    void takeIn(Object* object, const std::set<Id>& curves, const std::set<Id>& sequences,
                Operation operation);
    void sortChildren(Object* object);
    bool holds(const Object& object, const Object& container, std::set<const Object*>& seen) const;
    void append(Object* container, Object* object);
    Object* addToCurve(Object* curve, Object* point);
    Object* addToClip(Object* clip, Object* object);
    Object* afterDeletion(Object* curve, bool tellParent, bool destroyIfEmpty);
    void tellParentMoved(Object* object, bool tellParent);
    std::vector<Object*> tracksIn(const Object& clip) const;
    std::vector<Object*> partsOf(const Object& container) const;
    std::vector<Object*> stretchedBy(float factor, const Object& container) const;
    void mapX(Object* curve, const std::function<float(float)>& map);
    void computeAround(Object* curve, Object* point);
    std::vector<Object*> takeCopyBuffer();
    bool canPaste(const Node& node, const Object& object);
    bool groupOf(unsigned int container, unsigned int& group, bool& isNode);

    std::set<const Object*> _switching; ///< on the way down from `setActive`

    using Bucket = std::multimap<float, std::pair<Object*, float>>;
    void collect(const Object& object, float frame, Bucket& finished, Bucket& running, Bucket& upcoming);
};

} // namespace ka_model
