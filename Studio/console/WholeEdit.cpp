#include "WholeEdit.h"

#include "document/Session.h"

#include <QUndoCommand>
#include <kaAnimationManager.h>
#include <kaAnimationObject.h>
#include <kaMotion/NodeChoice.h>
#include <kaMotion/Project.h>

namespace ka::studio {

namespace {

/// Goes from one state of the scene to another and back.
class SceneCommand : public QUndoCommand {
  public:
    SceneCommand(Document& document, SceneState before, SceneState after)
        : _document(document), _before(std::move(before)), _after(std::move(after)) {}

    void undo() override { show(_before); }
    void redo() override {
        if (_isDone)
            show(_after);
        _isDone = true; // the stack calls it once for what has been done already
    }

  private:
    void show(const SceneState& state) {
        state.restore();
        _document.announce({});
    }

    Document& _document;
    SceneState _before, _after;
    bool _isDone = false;
};

Scope everything(const osg::NodePtr& root, std::vector<kaUID> objects) {
    Scope scope;
    scope.objects = std::move(objects);
    for (const osg::NodePtr& node : ka::motion::nodesBelow(root))
        scope.nodes.push_back(node.getFieldContainerId());
    return scope;
}

} // namespace

std::vector<kaUID> WholeEdit::topObjects() {
    std::vector<kaUID> top;
    for (const unsigned int type :
         {KA_TYPE_CURVE, KA_TYPE_UNIT, KA_TYPE_STREAK, KA_TYPE_STRIP, KA_TYPE_SEQUENCE})
        for (const kaAnimationObject* object : kaAnimationManager::the()->getObjects(type))
            if (object->getParentObject() == nullptr)
                top.push_back(object->getId());
    return top;
}

WholeEdit::WholeEdit(Session& session)
    : _session(session),
      _gesture(
          std::make_unique<Gesture>(session.document(), everything(session.project().root(), topObjects()))),
      _before(session.project().root()) {}

WholeEdit::~WholeEdit() {
    if (_gesture != nullptr)
        commit(QString());
}

bool WholeEdit::commit(const QString& name) {
    const std::unique_ptr<Gesture> gesture = std::move(_gesture);
    for (const kaUID id : topObjects())
        gesture->includeNew(id);
    SceneState after(_session.project().root());
    SceneState::keepDifferences(_before, after);
    if (_before.isEmpty() && after.isEmpty())
        return gesture->commit(name);
    QUndoStack& history = _session.document().history();
    history.beginMacro(name);
    history.push(
        new SceneCommand(_session.document(), std::move(_before), std::move(after))); // owned by the stack
    gesture->commit(name);
    history.endMacro();
    _session.document().announce({});
    return true;
}

} // namespace ka::studio
