#pragma once

#include "Model.h"
#include "Program.h"
#include "kaAnimationCurve2D.h"
#include "kaAnimationManager.h"

#include <map>
#include <string>
#include <unordered_map>
#include <vector>

class kaAnimationField;
class kaAnimationSequence;
class kaAnimationStreak;
class kaAnimationStrip;
class kaAnimationUnit;

namespace ka_test {
class TestScene;
}

namespace ka_model {

/// One program under way: the module and the model side by side, and which object of the one is which of the
/// other.
///
/// An operation looks its operands up in the model, asks the model first whether the rules say what comes of
/// it, and then does it to both.
class Run {
  public:
    /// A tame program leaves out what bends the tree: ids, parents and lists written directly, and a second
    /// place for an object that has one. Then more can be asked of the module than that it does as the model
    /// does.
    explicit Run(bool tame = false);
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;
    ~Run();

    /// @return what differs afterwards; empty when nothing does.
    std::string perform(const Step& step);

    /// What the last step did, as one readable line.
    const std::string& story() const { return _story; }

    // Operands, null when there is none of the kind.

    using Filter = bool (*)(const Object&);
    Object* pick(unsigned int number, Filter filter) const;
    Object* any(unsigned int number) const;
    Object* ofType(unsigned int number, Type type) const;
    Field* pickField(unsigned int number) const;
    /// Small given ids, which are taken now and then, or 0 for a fresh one.
    static Id pickID(unsigned int number) { return number % 4 == 0 ? 1 + number / 4 % 12 : 0; }
    std::size_t countAlive() const { return _alive.size(); }
    bool isTame() const { return _tame; }
    /// Whether anything lists the object as a child.
    bool isListed(const Object& object) const;
    bool isCrowded() const { return _alive.size() > 90; }

    // The module's side.

    kaAnimationObject* real(const Object* object) const;
    kaControlPoint2D* realPoint(const Object* object) const;
    kaAnimationCurve2D* realCurve(const Object* object) const;
    kaAnimationUnit* realUnit(const Object* object) const;
    kaAnimationStreak* realTrack(const Object* object) const;
    kaAnimationStrip* realClip(const Object* object) const;
    kaAnimationSequence* realSequence(const Object* object) const;
    kaAnimationField* realField(const Field* field) const;
    osg::NodePtr realNode(const Node& node) const;
    kaAnimationManager& manager() const { return *kaAnimationManager::the(); }

    /// Says that the two are the same thing. Registered objects find each other by id.
    void match(Object* object, kaAnimationObject* actual);
    void match(Field* field, kaAnimationField* actual);

    // What the operation reports.

    void tell(const std::string& line) { _story = line; }
    void skip(const std::string& why) { _story = "(" + why + ")"; }
    /// A result that differs at once.
    template <class T>
    void expect(const char* what, const T& expected, const T& actual) {
        if (!(expected == actual))
            _fault = std::string(what) + " differs";
    }
    void expectSame(const char* what, const Object* expected, const kaAnimationObject* actual);

    static std::string nameOf(const Object* object);

    /// Whether an object that comes to have this id would close a ring of children or stand among a curve's
    /// keys without being one: no rule says what becomes of such a tree.
    bool wouldBend(Id id, const Object& newcomer) const;
    /// Whether a container may come to list this object by its id: the registry may know another by that id,
    /// which would be listed in its stead.
    bool mayList(const Object& container, const Object& object) const;
    /// Whether no rule says what comes of a container taking an object: a list that a host wrote leads from
    /// the object back to the container, or, for a clip, to the track that would take it.
    bool wouldClose(const Object& container, const Object& object) const;
    /// Entries of the subtree, counted as often as they are listed; the size of a copy.
    std::size_t weightOf(const Object& object, int depth = 0) const;

    World world;

  private:
    void freeEverything();
    void matchNewcomers();
    void matchHandles(Object* key);

    std::string compareRegistry();
    std::string compareObject(Object& object);
    std::string compareKey(Object& key);
    std::string compareHandle(Object& key, Object* handle, const kaControlPoint2D* actual);
    std::string compareCurve(const Object& curve, const Step& step) const;
    std::string compareAround();
    std::string comparePlayback() const;
    bool isHandleListed() const;
    std::string checkInvariants() const;
    std::string compare(const Step& step);

    std::vector<Object*> _alive;
    std::size_t _seenObjects = 0;
    std::unordered_map<const Object*, kaAnimationObject*> _objects;
    std::unordered_map<const Field*, kaAnimationField*> _fields;
    std::unique_ptr<ka_test::TestScene> _scene;
    std::vector<osg::NodePtr> _nodes;
    std::string _story;
    std::string _fault;
    bool _tame;
};

/// An edit: what it is called, how often it is wanted, how to do it, and whether it may bend the tree.
struct Edit {
    const char* name;
    unsigned int weight;
    void (*perform)(Run& run, const Step& step);
    bool bends = false;
};

std::vector<Edit> treeOperations();
std::vector<Edit> keyOperations();
std::vector<Edit> hostOperations();

const std::vector<Edit>& operations();

/// The operation that a random number chooses.
unsigned int pickOperation(unsigned int number);

} // namespace ka_model
