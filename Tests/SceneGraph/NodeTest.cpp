#include "ContainerLife.h"

#include <OpenSG/OSGCoredNodePtr.h>
#include <OpenSG/OSGFieldContainerFactory.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGRefPtr.h>
#include <OpenSG/OSGSimpleAttachments.h>
#include <OpenSG/OSGTransform.h>
#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace {

/// The children of a node by the letter each has as its name, such as "abc".
std::string children(const osg::NodePtr& node) {
    std::string result;
    for (osg::UInt32 i = 0; i < node->getNChildren(); ++i)
        result += osg::getName(node->getChild(i));
    return result;
}

class Tree : public testing::Test {
  protected:
    static osg::NodePtr named(const char* name) {
        const osg::NodePtr node = osg::Node::create();
        osg::setName(node, name);
        return node;
    }

    osg::NodeRefPtr _root = named("r");
    osg::NodeRefPtr _a = named("a");
    osg::NodeRefPtr _b = named("b");
    osg::NodeRefPtr _c = named("c");
};

TEST_F(Tree, KeepsChildrenInOrder) {
    _root->addChild(_a);
    _root->addChild(_c);
    _root->insertChild(1, _b);
    EXPECT_EQ("abc", children(_root));
    EXPECT_EQ(3U, _root->getNChildren());
    EXPECT_TRUE(_b->getParent() == _root.get());
    EXPECT_EQ(1, _root->findChild(_b));
    EXPECT_EQ(-1, _a->findChild(_b));
    EXPECT_TRUE(_root->getChild(3) == osg::NullFC);
    EXPECT_EQ(2, _a.get().getRefCount());
}

TEST_F(Tree, InsertsBeyondTheEndAtTheEnd) {
    _root->insertChild(99, _a);
    _root->insertChild(99, _b);
    _root->insertChild(0, _c);
    EXPECT_EQ("cab", children(_root));
}

TEST_F(Tree, GivesAChildOneParent) {
    _root->addChild(_a);
    _root->addChild(_b);
    _b->addChild(_a);
    EXPECT_EQ("b", children(_root));
    EXPECT_EQ("a", children(_b));
    EXPECT_TRUE(_a->getParent() == _b.get());
    EXPECT_EQ(2, _a.get().getRefCount());
}

TEST_F(Tree, MovesAChildThatIsAddedAgainToTheEnd) {
    _root->addChild(_a);
    _root->addChild(_b);
    _root->addChild(_root->getChild(0));
    EXPECT_EQ("ba", children(_root));
    EXPECT_EQ(2, _a.get().getRefCount());
    _root->addChild((*_root->getMFChildren())[0]);
    EXPECT_EQ("ab", children(_root)) << "the argument may be an element of the list itself";
}

TEST_F(Tree, DestroysARemovedChildThatNobodyCountsOn) {
    const osg::NodePtr child = named("x");
    const ka_test::ContainerLife childLife(child);
    const osg::NodePtr grandchild = named("y");
    const ka_test::ContainerLife grandchildLife(grandchild);
    _root->addChild(child);
    child->addChild(grandchild);
    _root->subChild(child);
    EXPECT_TRUE(childLife.isOver());
    EXPECT_TRUE(grandchildLife.isOver());
    EXPECT_EQ(0U, _root->getNChildren());

    _root->addChild(_a);
    _root->subChild(0U);
    EXPECT_TRUE(_a != osg::NullFC);
    EXPECT_TRUE(_a->getParent() == osg::NullFC);
    _root->subChild(5U);
    _root->subChild(_b);
    _root->subChild(osg::NullFC);
}

TEST_F(Tree, RefusesNullItselfAndAncestors) {
    _root->addChild(_a);
    _a->addChild(_b);
    _root->addChild(osg::NullFC);
    _b->addChild(_b);
    _b->addChild(_a);
    _b->addChild(_root);
    EXPECT_EQ("a", children(_root));
    EXPECT_EQ("b", children(_a));
    EXPECT_EQ("", children(_b));
    EXPECT_TRUE(_root->getParent() == osg::NullFC);
}

/// Against a climb through all ancestors; chains deeper than one looks from one side alone.
TEST_F(Tree, RefusesAncestorsHoweverFarAway) {
    std::mt19937 random(9);
    std::vector<osg::NodePtr> nodes;
    for (int i = 0; i < 120; ++i) {
        nodes.push_back(osg::Node::create());
        osg::addRefCP(nodes.back());
    }
    std::size_t deepest = 0;
    int refused = 0;
    for (int step = 0; step < 20000; ++step) {
        const osg::NodePtr parent = nodes[random() % nodes.size()];
        const osg::NodePtr child = nodes[random() % nodes.size()];
        if (random() % 8 == 0 && child->getParent() != osg::NullFC)
            child->getParent()->subChild(child);
        bool isAncestor = false;
        std::size_t depth = 0;
        for (osg::NodePtr above = parent; above != osg::NullFC; above = above->getParent(), ++depth)
            isAncestor = isAncestor || above == child;
        deepest = std::max(deepest, depth);
        refused += isAncestor ? 1 : 0;
        const osg::NodePtr before = child->getParent();
        parent->addChild(child);
        ASSERT_EQ(child->getParent(), isAncestor ? before : parent) << "step " << step;
    }
    EXPECT_GT(deepest, 30U);
    EXPECT_GT(refused, 100);
    for (osg::NodePtr node : nodes)
        osg::subRefCP(node);
}

TEST_F(Tree, LosesChildrenByHandleInAnyOrder) {
    for (const char* order : {"abcdefg", "gfedcba", "dacgfbe"}) {
        std::string left = "abcdefg";
        std::map<char, osg::NodePtr> byName;
        for (char name : left) {
            const std::string text(1, name);
            byName[name] = named(text.c_str());
            _root->addChild(byName[name]);
        }
        while (_root->getNChildren() > left.size())
            _root->subChild(0U);
        for (const char* name = order; *name != 0; ++name) {
            _root->subChild(byName.at(*name));
            left.erase(left.find(*name), 1);
            EXPECT_EQ(children(_root), left);
        }
    }
}

TEST_F(Tree, ReplacesChildrenInPlace) {
    const osg::NodePtr x = named("x");
    const ka_test::ContainerLife xLife(x);
    _root->addChild(_a);
    _root->addChild(x);
    _root->addChild(_c);
    EXPECT_TRUE(_root->replaceChildBy(x, _b));
    EXPECT_EQ("abc", children(_root));
    EXPECT_TRUE(xLife.isOver());
    const osg::NodePtr stranger = named("y");
    EXPECT_FALSE(_root->replaceChildBy(stranger, _b)) << "not a child";
    osg::releaseRefCP(stranger);
    EXPECT_FALSE(_root->replaceChildBy(_a, osg::NullFC));
    EXPECT_FALSE(_root->replaceChildBy(_a, _root));
    EXPECT_TRUE(_root->replaceChildBy(_a, _a));
    EXPECT_EQ("abc", children(_root));
    _root->replaceChild(2, _a);
    EXPECT_EQ("ba", children(_root)) << "a sibling takes the place";
    _root->replaceChild(9, _c);
    EXPECT_EQ("ba", children(_root));
}

TEST_F(Tree, ForgetsAChildThatIsDestroyedElsewhere) {
    const osg::NodePtr child = named("x");
    const ka_test::ContainerLife childLife(child);
    _root->addChild(child);
    _root->addChild(_a);
    osg::releaseRefCP(child);
    EXPECT_TRUE(childLife.isOver());
    EXPECT_EQ("a", children(_root));
}

TEST_F(Tree, CountsCoresAndSharesThem) {
    const osg::GroupPtr core = osg::Group::create();
    const ka_test::ContainerLife coreLife(core);
    _a->setCore(core);
    _b->setCore(core);
    _b->setCore(_b->getCore());
    EXPECT_EQ(2, core.getRefCount());
    EXPECT_EQ(2U, core->getParents().size());
    _a->setCore(osg::Transform::create());
    EXPECT_EQ(1, core.getRefCount());
    ASSERT_EQ(1U, core->getParents().size());
    EXPECT_TRUE(core->getParents()[0] == _b.get());
    _b->setCore(osg::NullFC);
    EXPECT_TRUE(coreLife.isOver());
    EXPECT_TRUE(_b->getCore() == osg::NullFC);
}

TEST_F(Tree, LosesACoreThatIsDestroyedElsewhere) {
    const osg::GroupPtr core = osg::Group::create();
    _a->setCore(core);
    osg::releaseRefCP(core);
    EXPECT_TRUE(_a->getCore() == osg::NullFC);
    EXPECT_EQ(nullptr, _a.get().getCore());
}

TEST_F(Tree, CopiesNodesWithoutTheirRelations) {
    _root->addChild(_a);
    _a->addChild(_b);
    _a->setCore(osg::Group::create());
    _a->setTravMask(5);
    osg::NodePtr copy = osg::NodePtr::dcast(_a->shallowCopy());
    EXPECT_EQ(5U, copy->getTravMask());
    EXPECT_EQ(0U, copy->getNChildren());
    EXPECT_TRUE(copy->getParent() == osg::NullFC);
    EXPECT_TRUE(copy->getCore() == osg::NullFC);
    osg::subRefCP(copy);
}

TEST_F(Tree, SwitchesNodesByTheirMask) {
    EXPECT_EQ(0xFFFFFFFFU, _a->getTravMask());
    EXPECT_TRUE(_a->getActive());
    _a->setActive(false);
    EXPECT_EQ(0U, _a->getTravMask());
    EXPECT_FALSE(_a->getActive());
    _a->setActive(true);
    EXPECT_EQ(0xFFFFFFFFU, _a->getTravMask());
}

TEST_F(Tree, KnowsWhatItFills) {
    const osg::GeoPositions3fPtr positions = osg::GeoPositions3f::create();
    positions->editMFPositions()->push_back(osg::Pnt3f(1.0F, 2.0F, 3.0F));
    positions->editMFPositions()->push_back(osg::Pnt3f(-1.0F, 0.0F, 4.0F));
    const osg::GeometryPtr geometry = osg::Geometry::create();
    geometry->setPositions(positions);
    _b->setCore(geometry);
    const osg::TransformPtr transform = osg::Transform::create();
    transform->editMatrix().setTranslate(10.0F, 0.0F, 0.0F);
    _a->setCore(transform);
    _root->addChild(_a);
    _a->addChild(_b);
    _a->addChild(_c);
    _root->updateVolume();
    osg::Pnt3f low;
    osg::Pnt3f high;
    _root->getVolume().getBounds(low, high);
    EXPECT_EQ(osg::Pnt3f(9.0F, 0.0F, 3.0F), low);
    EXPECT_EQ(osg::Pnt3f(11.0F, 2.0F, 4.0F), high);
    EXPECT_TRUE(_c->getVolume().isEmpty());
    _root->invalidateVolume();
    EXPECT_TRUE(_root->getVolume().isEmpty());
}

TEST_F(Tree, OfAnyDepthIsMeasuredCopiedAndDestroyedWithoutDeepStack) {
    constexpr int DEPTH = 100000;
    osg::NodePtr top = osg::Node::create();
    osg::NodePtr bottom = top;
    std::vector<osg::UInt32> ids;
    for (int i = 0; i < DEPTH; ++i) {
        const osg::NodePtr next = osg::Node::create();
        next->setCore(osg::Group::create());
        bottom->addChild(next);
        bottom = next;
        ids.push_back(next.getFieldContainerId());
    }
    top->updateVolume();
    EXPECT_EQ(osg::Matrix(), bottom->getToWorld());
    osg::subRefCP(top);
    for (const osg::UInt32 id : ids)
        ASSERT_TRUE(osg::FieldContainerFactory::the()->getContainer(id) == osg::NullFC);
}

TEST_F(Tree, SharesOneCoreAmongManyNodesAndIsDestroyedQuickly) {
    // Removing a node from its core's parents is a constant step; a search would take minutes here.
    const osg::RefPtr<osg::GroupPtr> core = osg::Group::create();
    osg::NodePtr top = osg::Node::create();
    osg::NodePtr bottom = top;
    for (int i = 0; i < 200000; ++i) {
        const osg::NodePtr next = osg::Node::create();
        next->setCore(core.get());
        (i % 2 == 0 ? top : bottom)->addChild(next);
        bottom = next;
    }
    osg::subRefCP(top);
    EXPECT_EQ(0U, core->getParents().size());
    EXPECT_EQ(1, core.get().getRefCount());
}

TEST(CoredNode, CarriesNodeAndCore) {
    osg::NodePtr node;
    osg::UInt32 id = 0;
    {
        osg::TransformNodePtr transform = osg::TransformNodePtr::create();
        transform->editMatrix().setTranslate(1.0F, 2.0F, 3.0F);
        node = transform.node();
        id = node.getFieldContainerId();
        EXPECT_TRUE(node->getCore() == transform.core());
        EXPECT_EQ(osg::Vec4f(1.0F, 2.0F, 3.0F, 1.0F), node->getToWorld()[3]);
    }
    EXPECT_TRUE(ka_test::isGone(id));
}

} // namespace
