#include "Workload.h"

#include <OpenSG/OSGAnimAttachment.h>
#include <OpenSG/OSGTransform3D.h>
#include <kaAnimationField.h>
#include <kaAnimationManager.h>
#include <kaAnimationUtils.h>
#include <kaOpenSGUtils.h>
#include <string>

// Operations of the registry and of the scene's lists that hosts call once for each of many items: at n and
// 10 n.

namespace {

kaAnimationManager& manager() {
    return *kaAnimationManager::the();
}

std::size_t countOf(const benchmark::State& state) {
    return static_cast<std::size_t>(state.range(0));
}

/// One field for each curve.
std::vector<kaAnimationField*> fieldsWithACurveEach(std::size_t count) {
    std::vector<kaAnimationField*> fields;
    for (std::size_t i = 0; i < count; ++i) {
        fields.push_back(manager().createField(0));
        manager().createCurve2D(fields.back(), "curve", 0, false);
    }
    return fields;
}

/// Counted once, for whoever takes it over.
osg::NodePtr transformNode() {
    osg::NodePtr node = osg::Node::create();
    osg::addRefCP(node);
    node->setCore(osg::Transform3D::create());
    return node;
}

osg::AnimAttachmentPtr attachmentOf(const osg::NodePtr& node) {
    return osg::AnimAttachmentPtr::dcast(kaAnimationUtils::createAnimationAttachment(node, false));
}

/// Per look-up, among that many curves, fields in no order.
void curvesOfAField(benchmark::State& state) {
    const auto fields = fieldsWithACurveEach(countOf(state));
    std::size_t i = 0;
    for (auto _ : state) {
        i += 7919;
        benchmark::DoNotOptimize(manager().getReferencedCurves(fields[i % fields.size()]->getId()));
    }
    workload::clearAll();
}

/// The one curve of every field to the field before it.
void changeEveryFieldsReferences(benchmark::State& state) {
    const auto fields = fieldsWithACurveEach(countOf(state));
    for (auto _ : state)
        for (std::size_t i = 1; i < fields.size(); ++i)
            manager().changeFieldReferences(fields[i], fields[i - 1]);
    workload::clearAll();
}

/// As many nodes, each of which lists two fields for one attribute, the second of them with a curve.
void makeAttributesUnique(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        osg::NodePtr root = transformNode();
        kaAnimationManager::setSceneRootNode(root);
        for (std::size_t i = 0; i < countOf(state); ++i) {
            osg::NodePtr node = transformNode();
            root->addChild(node);
            for (const kaAnimationField* field : fieldsWithACurveEach(2))
                attachmentOf(node)->getFieldIDs().push_back(field->getId());
            osg::subRefCP(node);
        }
        state.ResumeTiming();
        manager().checkUniqueAttributes();
        state.PauseTiming();
        kaAnimationManager::setSceneRootNode(osg::NullFC);
        osg::subRefCP(root);
        workload::clearAll();
        state.ResumeTiming();
    }
}

/// As many names in the host's list, taken out again before the next round.
void nameAttributes(benchmark::State& state) {
    for (auto _ : state) {
        for (std::size_t i = 0; i < countOf(state); ++i)
            manager().addAnimationAttribute("attribute" + std::to_string(i));
        state.PauseTiming();
        while (!manager().getAnimationAttributes().empty())
            manager().subAnimationAttribute(manager().getAnimationAttributes().back());
        state.ResumeTiming();
    }
}

/// As many listeners of a few names, who come and go.
void listen(benchmark::State& state) {
    for (auto _ : state) {
        std::vector<kaMessageListener> listeners;
        for (std::size_t i = 0; i < countOf(state); ++i)
            listeners.push_back(
                kaOpenSGUtils::addListener("name" + std::to_string(i % 10), [](auto&&...) {}));
    }
}

BENCHMARK(curvesOfAField)->Arg(20000)->Arg(200000)->Iterations(20000);
BENCHMARK(changeEveryFieldsReferences)->Arg(10000)->Arg(100000)->Iterations(2)->Unit(benchmark::kMillisecond);
BENCHMARK(makeAttributesUnique)->Arg(10000)->Arg(100000)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(nameAttributes)->Arg(10000)->Arg(100000)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(listen)->Arg(10000)->Arg(100000)->Iterations(1)->Unit(benchmark::kMillisecond);

const bool registered = [] {
    workload::drawn("curves of a field found", curvesOfAField, 100000, false);
    workload::drawn("listeners registered", listen, 100000, true);
    workload::drawn("fields' references changed", changeEveryFieldsReferences, 100000, true);
    return true;
}();

} // namespace
