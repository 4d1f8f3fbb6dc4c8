#include <OpenSG/OSGTransform.h>
#include <algorithm>
#include <kaAnimationCurve2D.h>
#include <kaAnimationField.h>
#include <kaAnimationManager.h>
#include <kaControlPoint2D.h>
#include <kaMotion/CurveChoice.h>
#include <kaMotion/Project.h>
#include <kaMotion/Summary.h>
#include <kaMotion/Text.h>
#include <unordered_map>

namespace ka::motion {

namespace {

using Object = ProjectSummary::Object;

class Summarizer {
  public:
    explicit Summarizer(const Project& project) : _root(project.root()) {}

    ProjectSummary run() {
        addNodes();
        const kaAnimationManager& manager = *kaAnimationManager::the();
        for (unsigned int type = KA_TYPE_OBJECT; type < KA_TYPE_COUNT; ++type)
            if (type != KA_TYPE_POINT)
                for (kaAnimationObject* object : manager.getObjects(type))
                    addObject(*object);
        for (std::size_t i = 0; i < _summary.objects.size(); ++i)
            connect(i);
        _summary.keys = manager.getObjectCount() - _summary.objects.size();
        _summary.fields = manager.getFieldCount();
        return std::move(_summary);
    }

  private:
    void addNodes() {
        std::vector<std::pair<osg::NodePtr, std::size_t>> pending = tops();
        std::vector<osg::NodePtr> nodes;
        while (!pending.empty()) {
            const auto [node, parent] = pending.back();
            pending.pop_back();
            if (node == osg::NullFC || !_nodePlaces.emplace(node.getFieldContainerId(), nodes.size()).second)
                continue;
            const bool isPlaced = osg::TransformPtr::dcast(node->getCore()) != osg::NullFC;
            _summary.nodes.push_back({nodeName(node), parent, isPlaced, {}});
            for (osg::UInt32 i = node->getNChildren(); i-- > 0;)
                pending.emplace_back(node->getChild(i), nodes.size());
            nodes.push_back(node);
        }
        std::vector<NodePose> poses = readPose(nodes);
        for (std::size_t i = 0; i < nodes.size(); ++i)
            _summary.nodes[i].pose = std::move(poses[i]);
    }

    /// Without the nameless group that the reading of a scene puts on top.
    std::vector<std::pair<osg::NodePtr, std::size_t>> tops() const {
        if (!nodeName(_root).empty())
            return {{_root, ProjectSummary::none}};
        std::vector<std::pair<osg::NodePtr, std::size_t>> children;
        for (osg::UInt32 i = _root->getNChildren(); i-- > 0;)
            children.emplace_back(_root->getChild(i), ProjectSummary::none);
        return children;
    }

    void addObject(const kaAnimationObject& source) {
        _places.emplace(source.getId(), _summary.objects.size());
        Object object;
        object.type = source.getTypeID();
        object.id = source.getId();
        object.name = utf8FromLatin1(source.getName());
        object.begin = source.getBegin();
        object.end = source.getEnd();
        object.active = source.isActive();
        object.repeating = source.isRepeating();
        object.flipped = source.isFlipped();
        object.motionBlur = source.isMotionBlur();
        if (object.type == KA_TYPE_CURVE)
            addCurve(static_cast<const kaAnimationCurve2D&>(source), object);
        _summary.objects.push_back(std::move(object));
    }

    void addCurve(const kaAnimationCurve2D& curve, Object& object) const {
        object.label = curveLabel(&curve);
        if (const kaAnimationField* field = kaAnimationManager::the()->getField(curve.getField())) {
            object.field = field->getId();
            object.container = static_cast<unsigned int>(field->fcID);
            object.attribute = utf8FromLatin1(field->attribute);
            const auto place = _nodePlaces.find(static_cast<osg::UInt32>(field->nodeID));
            if (field->nodeID != 0 && place != _nodePlaces.end())
                object.node = place->second;
        }
        object.keys = plainKeys(curve);
        for (const auto& [frame, key] : curve.getPoints())
            object.tangentTypes.push_back(key->getTangentType());
    }

    /// By what children say: a child has one parent, whoever lists it.
    void connect(std::size_t place) {
        Object& object = _summary.objects[place];
        const kaAnimationObject* source = kaAnimationManager::the()->getObject(object.id);
        if (object.type == KA_TYPE_CURVE)
            return;
        for (const kaUID id : source->getChildIDs()) {
            const auto child = _places.find(id);
            if (child == _places.end() || _summary.objects[child->second].parent != ProjectSummary::none)
                continue;
            object.children.push_back(child->second);
            _summary.objects[child->second].parent = place;
        }
    }

    osg::NodePtr _root;
    ProjectSummary _summary;
    std::unordered_map<osg::UInt32, std::size_t> _nodePlaces; ///< by container id
    std::unordered_map<kaUID, std::size_t> _places;
};

} // namespace

std::size_t ProjectSummary::count(unsigned int type) const {
    return static_cast<std::size_t>(std::count_if(
        objects.begin(), objects.end(), [type](const Object& object) { return object.type == type; }));
}

ProjectSummary summarize(const Project& project) {
    return Summarizer(project).run();
}

const char* typeName(unsigned int type) {
    switch (type) {
    case KA_TYPE_CURVE:
        return "curve";
    case KA_TYPE_UNIT:
        return "block";
    case KA_TYPE_STREAK:
        return "track";
    case KA_TYPE_STRIP:
        return "clip";
    case KA_TYPE_SEQUENCE:
        return "sequence";
    default:
        return "object";
    }
}

} // namespace ka::motion
