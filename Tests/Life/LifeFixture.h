#pragma once

#include "Builders.h"
#include "RegistryFixture.h"
#include "TestScene.h"
#include "kaAnimationField.h"
#include "kaAnimationManager.h"
#include "kaAnimationUtils.h"

#include <OpenSG/OSGAnimAttachment.h>
#include <string>
#include <vector>

namespace ka_test {

/// An empty module and a small scene. Ids are new in every test, because the registry never forgets which
/// fields a scene has referenced.
class LifeFixture : public RegistryFixture {
  protected:
    void SetUp() override;

    static kaAnimationManager& manager() { return *kaAnimationManager::the(); }

    static bool isRegistered(kaUID id) { return manager().getObject(id) != nullptr; }
    static bool isFieldRegistered(kaUID id) { return manager().getField(id) != nullptr; }

    /// A field record of a container; component 0 unless told.
    static kaAnimationField* makeField(const std::string& attribute, osg::UInt32 fcID,
                                       unsigned int valuePos = 0);

    /// A curve with two keys that is bound to `field`.
    static kaAnimationCurve2D* makeBoundCurve(kaAnimationField* field);

    /// The node's animation attachment, made without discovery of fields when there is none.
    static osg::AnimAttachmentPtr attachmentOf(const osg::NodePtr& node);
    static void listObject(const osg::NodePtr& node, kaUID id);
    static void listField(const osg::NodePtr& node, kaUID id);
    static std::vector<kaUID> listedObjects(const osg::NodePtr& node);
    static std::vector<kaUID> listedFields(const osg::NodePtr& node);

    TestScene scene;
};

} // namespace ka_test
