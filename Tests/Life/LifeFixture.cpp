#include "LifeFixture.h"

namespace ka_test {

void LifeFixture::SetUp() {
    RegistryFixture::SetUp();
    static unsigned long long seed = 0;
    seed += 1000003ULL;
    kaAnimationManager::random(seed);
}

kaAnimationField* LifeFixture::makeField(const std::string& attribute, osg::UInt32 fcID,
                                         unsigned int valuePos) {
    kaAnimationField* field = manager().createField(0);
    field->attribute = attribute;
    field->name = attribute;
    field->fcID = fcID;
    field->valuePos = valuePos;
    return field;
}

kaAnimationCurve2D* LifeFixture::makeBoundCurve(kaAnimationField* field) {
    kaAnimationCurve2D* curve = makeCurve(std::vector<Spot>{{0.0F, 0.0F}, {10.0F, 1.0F}});
    kaAnimationField* own = manager().getField(curve->getField());
    curve->setAnimationField(field);
    manager().destroyField(own);
    return curve;
}

osg::AnimAttachmentPtr LifeFixture::attachmentOf(const osg::NodePtr& node) {
    return osg::AnimAttachmentPtr::dcast(kaAnimationUtils::createAnimationAttachment(node, false));
}

void LifeFixture::listObject(const osg::NodePtr& node, kaUID id) {
    attachmentOf(node)->getObjectIDs().push_back(id);
}

void LifeFixture::listField(const osg::NodePtr& node, kaUID id) {
    attachmentOf(node)->getFieldIDs().push_back(id);
}

std::vector<kaUID> LifeFixture::listedObjects(const osg::NodePtr& node) {
    const auto& ids = attachmentOf(node)->getObjectIDs();
    return {ids.begin(), ids.end()};
}

std::vector<kaUID> LifeFixture::listedFields(const osg::NodePtr& node) {
    const auto& ids = attachmentOf(node)->getFieldIDs();
    return {ids.begin(), ids.end()};
}

} // namespace ka_test
