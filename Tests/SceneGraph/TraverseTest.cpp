#include <OpenSG/OSGAction.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGRefPtr.h>
#include <OpenSG/OSGSimpleAttachments.h>
#include <gtest/gtest.h>
#include <string>

namespace {

using osg::Action;

/// r(a(c d) b(e)); visits are noted as a word, leaves in upper case.
class Traverse : public testing::Test {
  public:
    Traverse() {
        _root = named("r");
        _a = named("a");
        _b = named("b");
        _root->addChild(_a);
        _root->addChild(_b);
        _a->addChild(named("c"));
        _a->addChild(named("d"));
        _b->addChild(named("e"));
        instance = this;
    }

    static osg::NodePtr named(const char* name) {
        const osg::NodePtr node = osg::Node::create();
        osg::setName(node, name);
        return node;
    }

    Action::ResultE note(const osg::NodePtr& node) {
        const char* name = osg::getName(node);
        _visits += name == nullptr ? "?" : name;
        if (_onVisit)
            return _onVisit(node);
        return Action::Continue;
    }
    Action::ResultE noteMutable(osg::NodePtr& node) { return note(node); }
    Action::ResultE noteLeave(osg::NodePtr& node, Action::ResultE result) {
        _visits += static_cast<char>(*osg::getName(node) - 'a' + 'A');
        _results += std::to_string(result);
        return _onLeave ? _onLeave(node, result) : result;
    }
    static Action::ResultE noteStatic(const osg::NodePtr& node) { return instance->note(node); }

    Action::ResultE enterOnly() {
        return osg::traverse(_root, [this](osg::NodePtr& node) { return note(node); });
    }
    Action::ResultE enterAndLeave() {
        return osg::traverse(
            _root, [this](osg::NodePtr& node) { return note(node); },
            [this](osg::NodePtr& node, Action::ResultE result) { return noteLeave(node, result); });
    }
    void answer(const char* name, Action::ResultE result) {
        _onVisit = [name, result](const osg::NodePtr& node) {
            return std::string(name) == osg::getName(node) ? result : Action::Continue;
        };
    }

    static Traverse* instance;
    osg::NodeRefPtr _root;
    osg::NodePtr _a;
    osg::NodePtr _b;
    std::string _visits;
    std::string _results;
    std::function<Action::ResultE(const osg::NodePtr&)> _onVisit;
    std::function<Action::ResultE(const osg::NodePtr&, Action::ResultE)> _onLeave;
};

Traverse* Traverse::instance = nullptr;

TEST_F(Traverse, VisitsParentsFirstAndChildrenInOrder) {
    EXPECT_EQ(Action::Continue, enterOnly());
    EXPECT_EQ("racdbe", _visits);
}

TEST_F(Traverse, TakesFunctionsAndMethods) {
    osg::traverse(_root, osg::osgTypedFunctionFunctor1CPtrRef<Action::ResultE, osg::NodePtr>(&noteStatic));
    EXPECT_EQ("racdbe", _visits);
    _visits.clear();
    osg::traverse(_root, osg::osgTypedMethodFunctor1ObjPtrCPtrRef<Action::ResultE, Traverse, osg::NodePtr>(
                             this, &Traverse::noteMutable));
    EXPECT_EQ("racdbe", _visits);
    _visits.clear();
    osg::traverse(
        _root,
        osg::osgTypedMethodFunctor1ObjPtrCPtrRef<Action::ResultE, Traverse, osg::NodePtr>(this,
                                                                                          &Traverse::note),
        osg::osgTypedMethodFunctor2ObjPtrCPtrRef<Action::ResultE, Traverse, osg::NodePtr, Action::ResultE>(
            this, &Traverse::noteLeave));
    EXPECT_EQ("racCdDAbeEBR", _visits);
}

TEST_F(Traverse, LooksAtNoMask) {
    _a->setActive(false);
    enterOnly();
    EXPECT_EQ("racdbe", _visits);
}

TEST_F(Traverse, PassesOverTheChildrenOnSkip) {
    answer("a", Action::Skip);
    EXPECT_EQ(Action::Continue, enterOnly());
    EXPECT_EQ("rabe", _visits);
}

TEST_F(Traverse, StopsOnQuit) {
    answer("c", Action::Quit);
    EXPECT_EQ(Action::Quit, enterOnly());
    EXPECT_EQ("rac", _visits);
    _visits.clear();
    answer("r", Action::Quit);
    EXPECT_EQ(Action::Quit, enterOnly());
    EXPECT_EQ("r", _visits);
}

TEST_F(Traverse, LeavesEveryNodeAfterItsChildren) {
    EXPECT_EQ(Action::Continue, enterAndLeave());
    EXPECT_EQ("racCdDAbeEBR", _visits);
    EXPECT_EQ("000000", _results);
}

TEST_F(Traverse, LeavesWhatItEnteredAfterQuit) {
    answer("c", Action::Quit);
    EXPECT_EQ(Action::Quit, enterAndLeave());
    EXPECT_EQ("racCAR", _visits);
    EXPECT_EQ("222", _results);
}

TEST_F(Traverse, EndsWhenALeaveSaysQuit) {
    _onLeave = [](const osg::NodePtr& node, Action::ResultE result) {
        return std::string("c") == osg::getName(node) ? Action::Quit : result;
    };
    EXPECT_EQ(Action::Quit, enterAndLeave());
    EXPECT_EQ("racCAR", _visits);
    EXPECT_EQ("022", _results);
}

TEST_F(Traverse, TellsALeaveContinueAfterSkip) {
    answer("a", Action::Skip);
    EXPECT_EQ(Action::Continue, enterAndLeave());
    EXPECT_EQ("raAbeEBR", _visits);
    EXPECT_EQ("0000", _results);
}

TEST_F(Traverse, VisitsANullRootOnceInTheEnterForm) {
    _root = osg::NullFC;
    EXPECT_EQ(Action::Continue, enterOnly());
    EXPECT_EQ("?", _visits);
    _visits.clear();
    EXPECT_EQ(Action::Continue, enterAndLeave());
    EXPECT_EQ("", _visits);
}

TEST_F(Traverse, GoesThroughSeveralTrees) {
    const std::vector<osg::NodePtr> roots = {_a, _b};
    osg::traverse(roots, [this](osg::NodePtr& node) { return note(node); });
    EXPECT_EQ("acdbe", _visits);
    _visits.clear();
    answer("a", Action::Quit);
    EXPECT_EQ(Action::Quit,
              osg::traverse(
                  roots, [this](osg::NodePtr& node) { return note(node); },
                  [this](osg::NodePtr& node, Action::ResultE result) { return noteLeave(node, result); }));
    EXPECT_EQ("aA", _visits);
}

TEST_F(Traverse, PassesOverNodesThatACallbackDestroyed) {
    _onVisit = [this](const osg::NodePtr& node) {
        if (std::string("a") == osg::getName(node))
            _root->subChild(_b);
        return Action::Continue;
    };
    enterOnly();
    EXPECT_EQ("racd", _visits);
}

TEST_F(Traverse, SurvivesACallbackThatDestroysTheVisitedNodeItself) {
    _onVisit = [this](const osg::NodePtr& node) {
        if (std::string("a") == osg::getName(node))
            _root->subChild(node);
        return Action::Continue;
    };
    enterOnly();
    EXPECT_EQ("rabe", _visits);
    _visits.clear();
    _onVisit = [this](const osg::NodePtr&) {
        _root = osg::NullFC;
        return Action::Continue;
    };
    EXPECT_EQ(Action::Continue, enterAndLeave());
    EXPECT_EQ("r", _visits);
}

TEST_F(Traverse, DoesNotMeetANodeTwiceThatACallbackMoves) {
    _onVisit = [this](const osg::NodePtr& node) {
        if (std::string("a") == osg::getName(node))
            _a->addChild(_b);
        return Action::Continue;
    };
    enterOnly();
    EXPECT_EQ("racdbe", _visits) << "b is met below a, and not again below r";
}

TEST_F(Traverse, MeetsChildrenThatTheVisitOfTheirParentAdds) {
    _onVisit = [](const osg::NodePtr& node) {
        if (std::string("e") == osg::getName(node))
            node->addChild(named("x"));
        return Action::Continue;
    };
    enterOnly();
    EXPECT_EQ("racdbex", _visits);
}

TEST(TraverseDeep, NeedsNoDeepStack) {
    const osg::NodeRefPtr root = osg::Node::create();
    osg::NodePtr bottom = root;
    for (int i = 0; i < 100000; ++i) {
        const osg::NodePtr next = osg::Node::create();
        bottom->addChild(next);
        bottom = next;
    }
    int entered = 0;
    int left = 0;
    osg::traverse(
        root,
        [&](osg::NodePtr&) {
            ++entered;
            return Action::Continue;
        },
        [&](osg::NodePtr&, Action::ResultE result) {
            ++left;
            return result;
        });
    EXPECT_EQ(100001, entered);
    EXPECT_EQ(100001, left);
}

} // namespace
