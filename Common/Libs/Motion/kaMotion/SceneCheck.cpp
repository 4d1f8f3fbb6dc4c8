#include <OpenSG/OSGAnimAttachment.h>
#include <kaAnimationUtils.h>
#include <kaMotion/Project.h>
#include <kaMotion/SceneCheck.h>
#include <kaMotion/SceneFiles.h>
#include <unordered_set>

namespace ka::motion {

namespace {

using Element = DocumentOutline::Element;

class Check {
  public:
    Check(const DocumentOutline& outline, const ElementsById& byId, FindingList& findings)
        : _outline(outline), _byId(byId), _findings(findings) {}

    void run(const osg::NodePtr& root) {
        std::vector<osg::NodePtr> pending{root};
        while (!pending.empty()) {
            const osg::NodePtr node = pending.back();
            pending.pop_back();
            if (node == osg::NullFC)
                continue;
            checkNode(node);
            for (osg::UInt32 i = node->getNChildren(); i-- > 0;)
                pending.push_back(node->getChild(i));
        }
        checkCurves();
    }

  private:
    void checkNode(const osg::NodePtr& node) {
        const osg::AnimAttachmentPtr listed =
            osg::AnimAttachmentPtr::dcast(kaAnimationUtils::getAnimationAttachment(node));
        if (listed == osg::NullFC)
            return;
        for (const kaUID id : listed->getObjectIDs())
            checkListed(node, id, false);
        for (const kaUID id : listed->getFieldIDs())
            checkListed(node, id, true);
    }

    void checkListed(const osg::NodePtr& node, kaUID id, bool asField) {
        const Element* element = _byId.find(id);
        const std::string what = (asField ? "field " : "object ") + std::to_string(id);
        if (element == nullptr)
            report(node, "lists " + what + ", which the document does not have");
        else if ((element->kind == Kind::Field) != asField)
            report(node, "lists " + std::string(kindName(element->kind)) + " " + std::to_string(id) + " as " +
                             (asField ? "a field" : "an object"));
        else if (asField)
            _bound.insert(id);
    }

    void report(const osg::NodePtr& node, const std::string& message) {
        _findings.push_back({0, 0, "node", nodeName(node), message});
    }

    void checkCurves() {
        for (const Element& curve : _outline.elements) {
            const Element* field = curve.kind == Kind::Curve ? _byId.find(curve.field) : nullptr;
            if (field != nullptr && field->kind == Kind::Field && _bound.count(curve.field) == 0)
                _findings.push_back({curve.line, 0, "curve", std::to_string(curve.id),
                                     "no node of the scene lists its field " + std::to_string(curve.field) +
                                         ": it moves nothing"});
        }
    }

    const DocumentOutline& _outline;
    const ElementsById& _byId;
    FindingList& _findings;
    std::unordered_set<kaUID> _bound;
};

} // namespace

void checkScene(const std::string& path, const DocumentOutline& outline, const ElementsById& byId,
                FindingList& findings) {
    startScene();
    ImportReport report;
    osg::NodePtr root = readScene(path, report);
    osg::addRefCP(root);
    for (const std::string& note : report.notes)
        findings.push_back({0, 0, "scene", "", note});
    Check(outline, byId, findings).run(root);
    osg::subRefCP(root);
}

} // namespace ka::motion
