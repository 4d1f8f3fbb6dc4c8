#include "HostType.h"

#include <OpenSG/OSGFieldContainerFactory.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGNode.h>
#include <gtest/gtest.h>
#include <stdexcept>
#include <vector>

namespace {

/// A core whose `changed` throws while `armed`.
class Mine : public osg::Container<Mine, osg::NodeCore> {
  public:
    static constexpr const osg::Char8* TypeName = "ThrowingCore";
    enum : osg::UInt32 { NextFieldId = Inherited::NextFieldId };
    static osg::FieldContainerType& getClassType() {
        static osg::FieldContainerType& type = osg::declareType<Mine>({});
        return type;
    }
    void changed(osg::BitVector mask, osg::UInt32 origin) override {
        Inherited::changed(mask, origin);
        if (armed)
            throw std::runtime_error("from the host");
    }
    static inline bool armed = false;

  private:
    friend struct osg::ContainerAccess;
};

/// An attachment that does the same.
class Tag : public osg::Container<Tag, osg::Attachment> {
  public:
    static constexpr const osg::Char8* TypeName = "ThrowingAttachment";
    enum : osg::UInt32 { NextFieldId = Inherited::NextFieldId };
    static osg::FieldContainerType& getClassType() {
        static osg::FieldContainerType& type = osg::declareType<Tag>({});
        return type;
    }
    void changed(osg::BitVector mask, osg::UInt32 origin) override {
        Inherited::changed(mask, origin);
        if (Mine::armed)
            throw std::runtime_error("from the host");
    }

  private:
    friend struct osg::ContainerAccess;
};

class ThrowingHost : public testing::Test {
  protected:
    ~ThrowingHost() override { Mine::armed = false; }

    /// A node with a core and an attachment of the host's.
    osg::NodePtr made() {
        const osg::NodePtr node = osg::Node::create();
        const auto core = Mine::create();
        const auto tag = Tag::create();
        node->setCore(core);
        node->addAttachment(tag);
        for (const osg::FieldContainerPtr& container :
             {osg::FieldContainerPtr(node), osg::FieldContainerPtr(core), osg::FieldContainerPtr(tag)})
            _ids.push_back(container.getFieldContainerId());
        return node;
    }
    std::size_t remaining() const {
        std::size_t count = 0;
        for (const osg::UInt32 id : _ids)
            count += osg::FieldContainerFactory::the()->getContainer(id) != osg::NullFC ? 1 : 0;
        return count;
    }

    std::vector<osg::UInt32> _ids;
};

/// Destruction goes on to its end, and the host hears of its own exception after it.
TEST_F(ThrowingHost, InTheMiddleOfADestructionDoesNotStopIt) {
    osg::NodePtr root = made();
    osg::addRefCP(root);
    for (int i = 0; i < 3; ++i) {
        const osg::NodePtr child = made();
        root->addChild(child);
        child->addChild(made());
    }
    ASSERT_EQ(21U, remaining());
    Mine::armed = true;
    EXPECT_THROW(osg::subRefCP(root), std::runtime_error);
    EXPECT_EQ(0U, remaining());
}

TEST_F(ThrowingHost, DoesNotStopLaterDestruction) {
    osg::NodePtr first = made();
    osg::NodePtr second = made();
    osg::addRefCP(first);
    osg::addRefCP(second);
    Mine::armed = true;
    EXPECT_THROW(osg::subRefCP(first), std::runtime_error);
    Mine::armed = false;
    osg::subRefCP(second);
    EXPECT_EQ(0U, remaining());
}

/// The container is gone from the store at once, so that nobody meets it half destroyed.
TEST_F(ThrowingHost, IsHeardOnceForManyExceptions) {
    osg::NodePtr root = made();
    osg::addRefCP(root);
    root->addChild(made());
    Mine::armed = true;
    int heard = 0;
    try {
        osg::subRefCP(root);
    } catch (const std::runtime_error&) {
        ++heard;
    }
    EXPECT_EQ(1, heard);
    osg::NodePtr later = osg::Node::create();
    EXPECT_NO_THROW(osg::subRefCP(later)) << "nothing is left to be told";
    EXPECT_EQ(0U, remaining());
}

} // namespace
