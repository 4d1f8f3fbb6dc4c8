#pragma once

#include "kaAnimationExport.h"
#include "kaAnimationTypes.h"
#include "kaObjectName.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

class kaAnimationCurve2D;
class kaAnimationSequence;
class kaChildList;
enum class kaChange : unsigned char;
struct kaChildChunk;

/// Base of every element of an animation: identity, time and value extent, playback flags, place in the
/// hierarchy and trigger connections.
///
/// The hierarchy is held by ids: an object names its parent and children by id and the registry
/// (`kaAnimationManager`) resolves them; ids that the registry does not know are skipped everywhere. Objects
/// are owned by the registry and freed only through its destroy operations, never through a pointer to this
/// base: the destructor is not virtual.
///
/// Frames and values are single precision; clock times are seconds. Used on the host's user-interface thread
/// only.
class KA_ANIMATION_API kaAnimationObject {
  public:
    /// What happened below an object (`updateBy`).
    enum Operation {
        ADD_OBJECT = 0x100, ///< a child was added
        SUB_OBJECT = 0x200, ///< a child was removed
        MOVE_OBJECT = 0x400 ///< a child's extent changed
    };

    using Trigger = kaConnectionTypes::AnimationTrigger; ///< What fires connections.
    using TriggerMap = std::multimap<Trigger, kaUID>;    ///< Connection ids by what fires them.

    static constexpr unsigned int _typeID = KA_TYPE_OBJECT; ///< What `getTypeID` answers.

    /// One default object that lives as long as the library is loaded.
    static kaAnimationObject _the;

    kaAnimationObject();
    kaAnimationObject(const kaAnimationObject&) = delete;
    kaAnimationObject& operator=(const kaAnimationObject&) = delete;
    kaAnimationObject(kaAnimationObject&&) = delete;
    kaAnimationObject& operator=(kaAnimationObject&&) = delete;

    /// Has the registry destroy every registered child (the object itself excepted) and leaves every place
    /// that still knows it.
    ~kaAnimationObject();

    // The virtual operations; every class of the family keeps this order.

    /// @name Extent and flags
    /// @{

    /// Stored as given. Containers recompute their extent from their children with the next `updateBy`.
    virtual void setBegin(float begin);     ///< Frames.
    virtual void setEnd(float end);         ///< Frames.
    virtual void setMaximum(float maximum); ///< In the unit of the animated field.
    virtual void setMinimum(float minimum); ///< In the unit of the animated field.

    /// Switches every curve and sequence at or below this object (`_curves`, then `_sequences`; the object
    /// itself excepted), then stores the flag.
    virtual void setActive(bool active);
    virtual void setPlaying(bool playing);
    virtual void setReversePlay(bool reversePlay);
    virtual void setRepeating(bool repeating);
    virtual void setPausing(bool pausing);
    virtual void setSelected(bool selected);
    virtual void setLocked(bool locked);
    virtual void setMotionBlur(bool motionBlur);
    virtual unsigned int getTypeID() const; ///< One of `kaAnimationTypeID`.
    virtual float getBegin() const;
    virtual float getEnd() const;
    virtual float getMaximum() const;
    virtual float getMinimum() const;
    /// @}

    /// Adds a child. The base returns the argument and does nothing.
    virtual kaAnimationObject* addObject(kaAnimationObject* object);

    /// Removes a child and, with `destroy`, has the registry free it. The base returns the argument and does
    /// nothing.
    virtual kaAnimationObject* subObject(kaAnimationObject* object, bool destroy);

    /// Takes in that something changed below: merges (`ADD_OBJECT`) or removes (`SUB_OBJECT`) the child's
    /// curve and sequence ids, sorts the children by begin (stable) and recomputes the extent; with
    /// `recursive` every ancestor does the same with the same child. A null child does nothing. The id sets
    /// hold no counts: a removal takes an id away even where another child contributed it too. Cost: O(log n)
    /// per level and id when the children were in order, else O(n log n).
    virtual void updateBy(kaAnimationObject* child, Operation operation, bool recursive);

    /// The same for a batch; the id sets are merged from or removed by the first id's object alone. An empty
    /// list does nothing at all.
    virtual void updateAll(const std::vector<kaUID>& ids, Operation operation, bool recursive);

    virtual void updateCurves(); ///< Does nothing.

    /// Recomputes the extent from the children that have children themselves or are sequences; without
    /// children the extent stays as it is; when every child is passed over it becomes the empty extent.
    virtual void updateBounds();

    /// @name Editing in time
    /// @{

    /// Frames. The base does nothing, so a control point ignores these. `tellParent`: whether the parent
    /// takes in the change (`updateBy` with `MOVE_OBJECT`, climbing to the root).
    virtual void move(float offset, bool tellParent);
    virtual void moveBegin(float begin, bool tellParent);
    virtual void moveEnd(float end, bool tellParent);
    virtual void trimBegin(float begin, bool tellParent);
    virtual void trimEnd(float end, bool tellParent);
    virtual void flip();
    virtual void triggerLoop(float frame);
    /// @}

    // Queries.

    /// The registered children in `_childIDs` order. Cost: O(n).
    std::vector<kaAnimationObject*> getObjects() const;

    /// The registered curves at or below this object, in ascending id order. Cost: a copy of the list.
    std::vector<kaAnimationCurve2D*> getCurves() const;

    /// The registered sequences at or below this object, in ascending id order.
    std::vector<kaAnimationSequence*> getSequencesRecursive() const;

    /// Replaces `_sequences` by the ids of the non-null entries.
    void setRecursiveSequences(const std::vector<kaAnimationSequence*>& sequences);

    /// Position of the first child entry equal to `id`, and whether there is one (else the number of
    /// children).
    std::pair<std::size_t, bool> findObject(kaUID id) const;

    /// Position of the first registered child whose begin equals `begin` exactly, and whether there is one.
    std::pair<std::size_t, bool> findObject(float begin) const;

    /// Whether `id` is a child entry. Cost: constant while the entries are distinct registered objects.
    bool hasChild(kaUID id) const;

    /// Whether a begins before b; false when the registry does not know one of them or the begins are equal.
    static bool compareObjectsByBegin(kaUID a, kaUID b);

    /// Whether `object` may become a child: it is not this object or one of its ancestors, and the tree stays
    /// within `KA_MAX_DEPTH`, with `levelsBetween` more containers between the two.
    bool mayAdopt(const kaAnimationObject& object, unsigned int levelsBetween = 0) const;

    /// Hands the connections stored under `trigger`, in the order they were made, to
    /// `kaAnimationManager::executeTriggers`.
    void trigger(Trigger trigger);

    /// @name Plain accessors of the data members
    /// @{

    /// Each reads or writes its member and nothing else: no notice goes to parents, nothing is registered
    /// anew.
    kaUID getId() const { return _id; }
    void setId(kaUID id);
    kaUID getParent() const { return _parent; }
    void setParent(kaUID parent) { _parent = parent; }
    /// The registered object that the parent id names; null for 0, which names nobody.
    kaAnimationObject* getParentObject() const;
    const std::string& getName() const { return _name.text(); }
    void setName(const std::string& name);

    std::vector<kaUID> getChildIDs() const;
    /// Replaces the list as it stands: no sorting, no notice, no change of any parent id.
    void setChildIDs(const std::vector<kaUID>& ids);
    bool hasChildren() const;
    std::size_t getChildCount() const;
    const std::set<kaUID>& getCurveIDs() const;
    void setCurveIDs(const std::set<kaUID>& ids);
    const std::set<kaUID>& getSequenceIDs() const;
    void setSequenceIDs(const std::set<kaUID>& ids);
    const TriggerMap& getTriggers() const;
    void setTriggers(const TriggerMap& triggers);
    void addTrigger(Trigger trigger, kaUID connection);

    bool isActive() const { return _active; }
    bool isPlaying() const { return _playing; }
    bool isReversePlay() const { return _reversePlay; }
    bool isRepeating() const { return _repeating; }
    bool isPausing() const { return _pausing; }
    bool isFlipped() const { return _flipped; }
    void setFlipped(bool flipped) { _flipped = flipped; }
    bool isTrimmed() const { return _trimmed; }
    void setTrimmed(bool trimmed) { _trimmed = trimmed; }
    bool isSelected() const { return _selected; }
    bool isLocked() const { return _locked; }
    bool isInternal() const { return _internal; }
    void setInternal(bool internal) { _internal = internal; }
    bool isMotionBlur() const { return _motionBlur; }
    bool isUseCustomRange() const { return _useCustomRange; }
    void setUseCustomRange(bool useCustomRange) { _useCustomRange = useCustomRange; }

    /// The range that playing goes by: the custom range while it is used, else the extent.
    float getPlayBegin() const { return _useCustomRange ? getCustomBegin() : getBegin(); }
    float getPlayEnd() const { return _useCustomRange ? getCustomEnd() : getEnd(); }

    float getCustomBegin() const { return playback().customBegin; } ///< Frames.
    void setCustomBegin(float frame) { editPlayback().customBegin = frame; }
    float getCustomEnd() const { return playback().customEnd; } ///< Frames.
    void setCustomEnd(float frame) { editPlayback().customEnd = frame; }
    float getCustomStart() const { return playback().customStart; } ///< Frame at which a custom range starts.
    void setCustomStart(float frame) { editPlayback().customStart = frame; }
    float getRangeBegin() const { return playback().rangeBegin; } ///< Working value of the controller.
    void setRangeBegin(float frame) { editPlayback().rangeBegin = frame; }
    float getRangeEnd() const { return playback().rangeEnd; } ///< Working value of the controller.
    void setRangeEnd(float frame) { editPlayback().rangeEnd = frame; }
    float getStartTime() const { return playback().startTime; } ///< Seconds at which playing started.
    void setStartTime(float seconds) { editPlayback().startTime = seconds; }
    float getEndTime() const { return playback().endTime; } ///< Seconds at which the run will end.
    void setEndTime(float seconds) { editPlayback().endTime = seconds; }
    float getPauseTime() const { return playback().pauseTime; } ///< Seconds at which the object was paused.
    void setPauseTime(float seconds) { editPlayback().pauseTime = seconds; }
    float getLastFrame() const { return playback().lastFrame; } ///< Frame of the last evaluation.
    void setLastFrame(float frame) { editPlayback().lastFrame = frame; }
    /// @}

    /// @cond INTERNAL
    // For `kaWeak`.
    std::uint32_t weakSlot() const;
    static kaAnimationObject* fromWeakSlot(void* object) { return static_cast<kaAnimationObject*>(object); }
    /// @endcond

  protected:
    /// @cond INTERNAL
    /// Stores the extent, as `updateBounds` does, without the virtual setters.
    void storeExtent(const kaExtent& extent);

    /// The children with what is remembered of each; made on first use.
    kaChildList& children();
    /// The same for reading; null while there has never been a child.
    const kaChildList* childrenOrNull() const;

    void insertCurveID(kaUID id);
    void insertSequenceID(kaUID id);

    /// Makes the object its own only child, as every key is, without the cost of a list.
    void becomeOwnChild();

    /// Says that something of this object has changed, after it has: to the list that holds the object, to
    /// those who keep something made from it (`kaDependents`), and to what is read anew after any edit
    /// (`kaEdits`).
    void noteChange(kaChange change);
    /// The same for what is below this object, which nobody but those who keep something made from it reads.
    void noteChangeBelow();

    /// The rule of start and end triggers for one object: a frame at or after the range's begin starts it,
    /// one after the range's end ends it. The range is the extent or the custom range. What fires may destroy
    /// this object.
    void fireTriggers(float frame);

    /// Has the parent, if there is one, take in that this object's extent has changed.
    void tellParentMoved(bool tellParent);

    kaUID _id = 0;
    kaUID _parent = 0;
    /// @endcond

  private:
    friend class kaChildList;
    friend class kaDependents;
    friend class kaObjectStore;
    friend class kaEvaluation;
    friend class kaEvaluationPass;
    friend class kaEvaluationPlan;

    /// What only objects that play or fire have; the defaults stand for everyone else.
    struct Playback {
        float rangeBegin = KA_EMPTY_EXTENT;
        float rangeEnd = -KA_EMPTY_EXTENT;
        float startTime = 0.0F;
        float endTime = 0.0F;
        float pauseTime = 0.0F;
        float lastFrame = 0.0F;
        float customBegin = 0.0F;
        float customEnd = 0.0F;
        float customStart = 0.0F;
        TriggerMap triggers;
    };
    struct Group;

    const Playback& playback() const;
    Playback& editPlayback();
    Group& group();

    /// `getCurves()` without the copy; valid until the registry or `_curves` change.
    const std::vector<kaAnimationCurve2D*>& resolvedCurves() const;

    void noteSetChange();
    void takeIn(const std::set<kaUID>& curves, const std::set<kaUID>& sequences, Operation operation);
    void takeInUpwards(const std::set<kaUID>& curves, const std::set<kaUID>& sequences, Operation operation,
                       bool recursive);
    static void sortChildren(kaChildList& children, Operation operation);
    void destroyChildren();

    kaChildChunk* _home = nullptr; ///< its chunk in the list that is linked to it, if any
    std::unique_ptr<Group> _group;
    kaObjectName _name;

  protected:
    /// @cond INTERNAL
    float _begin = KA_EMPTY_EXTENT;
    float _end = -KA_EMPTY_EXTENT;
    float _maximum = -KA_EMPTY_EXTENT;
    float _minimum = KA_EMPTY_EXTENT;

    bool _active : 1;
    bool _playing : 1;
    bool _reversePlay : 1;
    bool _repeating : 1;
    bool _pausing : 1;
    bool _flipped : 1;
    bool _trimmed : 1;
    bool _selected : 1;
    bool _locked : 1;
    bool _internal : 1;
    bool _motionBlur : 1;
    bool _useCustomRange : 1;
    bool _isHandle : 1; ///< of a key: it is the handle of one; here, in a bit that is free
                        /// @endcond

  private:
    mutable bool _hasDependents : 1; ///< see `kaDependents`
    bool _ownChild : 1;              ///< `_childIDs` is the object's own id alone
    bool _registered : 1;            ///< the registry has an entry for this object
    bool _findable : 1; ///< certainly under `_id`: no need to ask the registry what that id names
    mutable std::uint32_t _weakSlot = 0; ///< see `kaWeak`; 0 while nobody has asked
};
