#include "CapturedOutput.h"
#include "Documents.h"
#include "RegistryFixture.h"
#include "kaAnimationCurve2D.h"
#include "kaAnimationManager.h"
#include "kaControlPoint2D.h"
#include "kaDocumentParser.h"

#include <QString>
#include <QXmlAttributes>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

using namespace ka_test;

namespace {

/// What programs that read and write documents ask for, without anything from inside the library.
class HostInterface : public RegistryFixture {
  protected:
    static kaAnimationManager& manager() { return *kaAnimationManager::the(); }
};

const std::string threeElements = documentOf(pointElement("12", 5, 0) + pointElement("11", 0, 0) +
                                             containerElement("curve", 2, "21", "field=\"0\"", {"11", "12"}));

class Tags : public kaDocumentParser::Visitor {
  public:
    void beginElement(int depth, int, const QString& tag, const QXmlAttributes&) override {
        if (depth == 2)
            tags.push_back(tag.toStdString());
    }
    void text(const QString&) override {}
    void endElement(int) override {}

    std::vector<std::string> tags;
};

} // namespace

TEST_F(HostInterface, ARefusedTextSaysWhyAndWhere) {
    EXPECT_FALSE(load("<AnimationPool>\n<point id=\"1\" typeID=\"1\">\n</AnimationPool>"));
    EXPECT_EQ(kaAnimationManager::getLoadFault().line, 3);
    EXPECT_NE(kaAnimationManager::getLoadFault().message, "");
    ASSERT_TRUE(load(threeElements));
    EXPECT_EQ(kaAnimationManager::getLoadFault().message, "");
    EXPECT_EQ(kaAnimationManager::getLoadFault().line, 0);
}

TEST_F(HostInterface, AFileThatIsNotThereAndAnEmptySourceSayWhyWithoutAPlace) {
    const TemporaryFolder folder;
    EXPECT_FALSE(
        manager().loadAnimations(QString::fromStdString((folder.path() / "none.xml").string()), true));
    EXPECT_NE(kaAnimationManager::getLoadFault().message, "");
    EXPECT_EQ(kaAnimationManager::getLoadFault().line, 0);
    EXPECT_FALSE(manager().loadAnimations(QString(), false));
    EXPECT_EQ(kaAnimationManager::getLoadFault().message, "the text is empty");
}

TEST_F(HostInterface, WritingGivesTheSavedTextAndCountsUpToItsElements) {
    ASSERT_TRUE(load(threeElements));
    const std::size_t total = manager().getObjectCount() + manager().getFieldCount();
    std::string text;
    std::vector<std::pair<std::size_t, std::size_t>> steps;
    manager().writeAnimations([&](std::string_view piece) { text += piece; },
                              [&](std::size_t done, std::size_t of) { steps.emplace_back(done, of); });
    EXPECT_EQ(text, saved());
    ASSERT_EQ(steps.size(), total);
    for (std::size_t i = 0; i < total; ++i)
        EXPECT_EQ(steps[i], std::make_pair(i + 1, total));
    text.clear();
    manager().writeAnimations([&](std::string_view piece) { text += piece; });
    EXPECT_EQ(text, saved());
}

TEST_F(HostInterface, ASinkMayThrow) {
    ASSERT_TRUE(load(threeElements));
    EXPECT_THROW(manager().writeAnimations([](std::string_view) { throw std::runtime_error("full"); }),
                 std::runtime_error);
    EXPECT_EQ(manager().getObjectCount(), 3U);
}

TEST_F(HostInterface, ObjectsOfATypeComeInOrderOfTheirIds) {
    ASSERT_TRUE(load(threeElements));
    const std::vector<kaAnimationObject*> points = {manager().getPoint2D(11), manager().getPoint2D(12)};
    EXPECT_EQ(manager().getObjects(KA_TYPE_POINT), points);
    EXPECT_EQ(manager().getObjects(KA_TYPE_CURVE),
              (std::vector<kaAnimationObject*>{manager().getCurve2D(21)}));
    EXPECT_TRUE(manager().getObjects(KA_TYPE_STRIP).empty());
    EXPECT_TRUE(manager().getObjects(KA_TYPE_COUNT).empty());
    EXPECT_TRUE(manager().getObjects(~0U).empty());
}

TEST_F(HostInterface, AVisitorIsToldOfElementsUpToTheFault) {
    Tags visitor;
    kaDocumentFault fault;
    EXPECT_TRUE(kaDocumentParser::visitFile(QString::fromStdString(testFile("example.xml").string()), 1 << 20,
                                            visitor, &fault));
    EXPECT_EQ(visitor.tags.size(), 7U); // the example's six objects and one field
    EXPECT_EQ(fault.message, "");
    EXPECT_FALSE(kaDocumentParser::visitFile(QString::fromStdString(testFile("example.xml").string()), 10,
                                             visitor, &fault));
    EXPECT_NE(fault.message, "");
}
