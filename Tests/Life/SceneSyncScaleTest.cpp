#include "LifeFixture.h"

#include <random>
#include <set>

namespace {

using namespace ka_test;

/// What the test knows of an object, apart from the registry.
struct Known {
    kaUID id;
    unsigned int type;
    std::ptrdiff_t parent; ///< index among the known objects, -1 for none
    bool internal;
    std::ptrdiff_t node; ///< index of the node that lists it, -1 for none
};

/// A scene of many nodes whose animation is put together at random.
class SyncAtScale : public LifeFixture {
  protected:
    static constexpr std::size_t Nodes = 5000;
    static constexpr std::size_t Objects = 50000;
    static constexpr std::size_t Fields = 50000;

    std::ptrdiff_t remember(kaAnimationObject* object, std::ptrdiff_t parent, bool internal,
                            std::ptrdiff_t node) {
        object->setInternal(internal);
        known.push_back({object->getId(), object->getTypeID(), parent, internal, node});
        if (parent >= 0) {
            EXPECT_NE(manager().getObject(known[parent].id)->addObject(object), nullptr);
        }
        if (node >= 0)
            listObject(nodes[node], object->getId());
        return static_cast<std::ptrdiff_t>(known.size()) - 1;
    }

    std::ptrdiff_t someNode() { return chance(2) ? -1 : static_cast<std::ptrdiff_t>(random() % Nodes); }
    bool chance(unsigned int oneIn) { return random() % oneIn == 0; }

    void addFamily() {
        switch (random() % 5) {
        case 0:
            remember(manager().createPoint2D(0.0F, 0.0F, 0), -1, chance(9), someNode());
            break;
        case 1:
            remember(manager().createSequence("bell", 0), -1, chance(9), someNode());
            break;
        case 2:
            addBlock(-1);
            break;
        case 3: {
            const auto track = remember(manager().createStreak(0), -1, chance(9), someNode());
            addBlock(track);
            addBlock(track);
            break;
        }
        default: {
            const auto clip = remember(manager().createStrip(0), -1, chance(9), someNode());
            addBlock(remember(manager().createStreak(0), clip, chance(9), someNode()));
        }
        }
    }

    void addBlock(std::ptrdiff_t parent) {
        const auto block = remember(manager().createUnit(0), parent, chance(9), someNode());
        kaAnimationCurve2D* unbound = manager().createCurve2D(0ULL);
        manager().destroyField(manager().getField(unbound->getField()));
        const auto curve = remember(unbound, block, chance(9), someNode());
        remember(manager().createPoint2D(1.0F, 0.0F, 0), curve, false, -1);
        remember(manager().createPoint2D(2.0F, 0.0F, 0), curve, false, -1);
    }

    /// Plain statement of the rules: what goes is every root that is no clip, not internal and not listed,
    /// with everything below it.
    std::set<kaUID> expectedSurvivors(const std::vector<bool>& nodeIsThere) const {
        std::vector<bool> goes(known.size());
        std::set<kaUID> survivors;
        for (std::size_t i = 0; i < known.size(); ++i) {
            const Known& object = known[i];
            const bool listed = object.node >= 0 && nodeIsThere[object.node];
            goes[i] = object.parent >= 0 ? goes[object.parent]
                                         : object.type != KA_TYPE_STRIP && !object.internal && !listed;
            if (!goes[i])
                survivors.insert(object.id);
        }
        return survivors;
    }

    std::mt19937 random{20240229};
    std::vector<osg::NodePtr> nodes;
    std::vector<Known> known;
};

template <class Value>
std::set<kaUID> keysOf(const std::map<kaUID, Value>& entries) {
    std::set<kaUID> keys;
    for (const auto& entry : entries)
        keys.insert(entry.first);
    return keys;
}

TEST_F(SyncAtScale, LeavesExactlyWhatTheRulesLeaveAfterHalfTheNodesWent) {
    for (std::size_t i = 0; i < Nodes; ++i)
        nodes.push_back(scene.addTransform(""));
    while (known.size() < Objects)
        addFamily();
    std::vector<std::pair<kaUID, std::size_t>> fields;
    for (std::size_t i = 0; i < Fields; ++i) {
        fields.emplace_back(makeField("visible", 0)->getId(), random() % Nodes);
        listField(nodes[fields.back().second], fields.back().first);
    }
    ASSERT_EQ(manager().getObjects().size(), known.size());

    std::vector<bool> nodeIsThere(Nodes, true);
    for (std::size_t i = 0; i < Nodes; i += 2) {
        scene.destroy(nodes[i]);
        nodeIsThere[i] = false;
    }
    const std::set<kaUID> expectedObjects = expectedSurvivors(nodeIsThere);
    std::set<kaUID> expectedFields;
    for (const auto& [id, node] : fields)
        if (nodeIsThere[node])
            expectedFields.insert(id);

    kaAnimationManager::setSceneRootNode(scene.root());
    manager().destroyUnreferencedObjectsAndFields();
    EXPECT_EQ(keysOf(manager().getObjects()), expectedObjects);
    EXPECT_EQ(keysOf(manager().getFields()), expectedFields);
    EXPECT_LT(expectedObjects.size(), known.size());
    EXPECT_GT(expectedObjects.size(), 0U);
}

} // namespace
