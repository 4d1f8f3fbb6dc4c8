#include "kaOpenSGUtils.h"

#include <OpenSG/OSGAttachment.h>
#include <OpenSG/OSGBaseFunctions.h>
#include <OpenSG/OSGChangeList.h>
#include <OpenSG/OSGContainer.h>
#include <OpenSG/OSGThread.h>
#include <gtest/gtest.h>
#include <string>

namespace {

// Writes down what it is told, with what the change list held at that moment.
class Witness : public osg::Container<Witness, osg::Attachment> {
  public:
    static constexpr const osg::Char8* TypeName = "Witness";
    enum : osg::UInt32 { NextFieldId = Inherited::NextFieldId };
    static osg::FieldContainerType& getClassType() {
        static auto& type = osg::declareType<Witness>({});
        return type;
    }
    void changed(osg::BitVector mask, osg::UInt32 origin) override {
        const osg::ChangeList* list = osg::PThreadBase::getCurrentChangeList();
        seen += "mask " + std::to_string(mask) + " origin " + std::to_string(origin) + " recorded " +
                std::to_string(list ? list->sizeChanged() : 0) + '\n';
        Inherited::changed(mask, origin);
    }

    std::string seen;

  protected:
    Witness() = default;
    Witness(const Witness&) = default;
    ~Witness() override = default;

  private:
    friend struct osg::ContainerAccess;
};

class AnnounceChange : public testing::Test {
  protected:
    AnnounceChange() {
        osg::osgInit();
        _list.setReadOnly(false);
        osg::PThreadBase::setCurrentChangeList(&_list);
        _witness = Witness::create();
        osg::addRefCP(_witness);
        _list.clearAll();
    }
    ~AnnounceChange() override {
        osg::FieldContainerPtr::_ignore_change = false;
        osg::PThreadBase::setCurrentChangeList(_before);
        osg::subRefCP(_witness);
    }

    osg::ChangeList* _before = osg::PThreadBase::getCurrentChangeList();
    osg::ChangeList _list;
    Witness::Ptr _witness;
};

} // namespace

TEST_F(AnnounceChange, RecordsFirstAndThenTellsTheContainer) {
    kaOpenSGUtils::announceChange(_witness, 0x6);
    EXPECT_EQ(_witness->seen, "mask 6 origin 1 recorded 1\n");
    ASSERT_EQ(_list.sizeChanged(), 1U);
    EXPECT_EQ(*_list.beginChanged(), (osg::ChangeList::ChangedEntry{_witness.getFieldContainerId(), 0x6}));
}

TEST_F(AnnounceChange, OnlyRecordsWhileChangesAreIgnored) {
    osg::FieldContainerPtr::_ignore_change = true;
    kaOpenSGUtils::announceChange(_witness, 0x2);
    EXPECT_EQ(_witness->seen, "");
    EXPECT_EQ(_list.sizeChanged(), 1U);
}

TEST_F(AnnounceChange, OnlyTellsTheContainerWithoutAChangeList) {
    osg::PThreadBase::setCurrentChangeList(nullptr);
    kaOpenSGUtils::announceChange(_witness, 0x2);
    EXPECT_EQ(_witness->seen, "mask 2 origin 1 recorded 0\n");
    EXPECT_EQ(_list.sizeChanged(), 0U);
}

TEST_F(AnnounceChange, IgnoresNull) {
    kaOpenSGUtils::announceChange(osg::NullFC, 0x2);
    EXPECT_EQ(_list.sizeChanged(), 0U);
}
