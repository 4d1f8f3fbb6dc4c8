#include "CapturedOutput.h"
#include "Documents.h"
#include "RegistryFixture.h"
#include "kaAnimationCurve2D.h"
#include "kaAnimationField.h"
#include "kaAnimationManager.h"
#include "kaAnimationSequence.h"
#include "kaAnimationStreak.h"
#include "kaAnimationStrip.h"
#include "kaAnimationUnit.h"
#include "kaFile.h"

#include <QDomDocument>
#include <QString>
#include <algorithm>
#include <string>
#include <unistd.h>
#include <vector>

using namespace ka_test;

namespace {

struct Question {
    QWidget* parent = nullptr;
    std::string title;
    std::string filter;
    bool saving = false;
};

std::string answer;              ///< what the user types
std::vector<Question> questions; ///< what the user was asked

QString answering(QWidget* parent, const QString& title, const QString& filter, bool saving) {
    questions.push_back({parent, title.toStdString(), filter.toStdString(), saving});
    return QString::fromUtf8(answer.c_str());
}

class Saving : public RegistryFixture {
  protected:
    void SetUp() override {
        RegistryFixture::SetUp();
        questions.clear();
        kaAnimationManager::setAskFileNameCB(answering);
    }
    void TearDown() override {
        kaAnimationManager::setAskFileNameCB(nullptr);
        kaFile::setCheckWriteCallback({});
        RegistryFixture::TearDown();
    }

    static kaAnimationManager& manager() { return *kaAnimationManager::the(); }
    static kaAnimationField* makeField(kaUID id, const char* name, const char* attribute) {
        kaAnimationField* field = manager().createField(id);
        field->name = name;
        field->attribute = attribute;
        field->dirty = false;
        return field;
    }

    bool saveAs(const std::string& name) {
        const CapturedOutput swallowed;
        answer = name;
        return manager().saveAnimations(static_cast<QWidget*>(nullptr));
    }
    std::vector<std::string> filesWritten() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(_folder.path()))
            names.push_back(entry.path().filename().string());
        return names;
    }

    TemporaryFolder _folder;
};

kaControlPoint2D* makePoint(kaUID id, float x, float y) {
    kaControlPoint2D* point = kaAnimationManager::the()->createPoint2D(x, y, id);
    point->setTangentType(kaControlPoint2D::TANGENT_FLAT);
    return point;
}

void placeHandles(const kaControlPoint2D& point, float reach) {
    point.getInTangent()->setPosition(point.getPosition()[0] - reach, point.getPosition()[1]);
    point.getOutTangent()->setPosition(point.getPosition()[0] + reach, point.getPosition()[1]);
}

} // namespace

TEST_F(Saving, TheExampleIsWrittenByteForByte) {
    kaAnimationField* field = makeField(7, "translation", "X");
    field->fcID = 412;
    kaControlPoint2D* first = makePoint(11, 0.0F, 0.0F);
    kaControlPoint2D* second = makePoint(12, 25.0F, 10.0F);
    kaAnimationCurve2D* curve = manager().createCurve2D(field, "translationX", 21, false);
    curve->setPoints({first, second});
    placeHandles(*first, 5.0F);
    placeHandles(*second, 5.0F);
    kaAnimationUnit* block = manager().createUnit("Block", 31);
    block->addObject(curve);
    kaAnimationStreak* track = manager().createStreak("Track", 41);
    track->addObject(block);
    manager().createStrip("Clip", 51)->addObject(track);

    std::string expected = contentOf(testFile("example.xml"));
    const std::string node = "parentNodeID=\"412\""; // there is no scene here
    expected.replace(expected.find(node), node.size(), "parentNodeID=\"0\"");
    EXPECT_EQ(saved(), expected);
}

TEST_F(Saving, AnEmptyRegistryIsTheRootAlone) {
    EXPECT_EQ(saved(), "<!DOCTYPE ORVA>\n<AnimationPool objects=\"0\"/>\n");
}

TEST_F(Saving, PrintsOneLine) {
    const CapturedOutput output;
    manager().createAnimationXML();
    EXPECT_EQ(output.text(), "creating animation xml...\n");
}

TEST_F(Saving, AnInternalBlockIsCountedButNotWritten) {
    manager().createUnit("hidden", 31)->setInternal(true);
    EXPECT_EQ(saved(), "<!DOCTYPE ORVA>\n<AnimationPool objects=\"1\"/>\n");
}

TEST_F(Saving, ACurveWithoutItsFieldIsCountedAndBare) {
    kaAnimationField* field = makeField(7, "a", "b");
    manager().createCurve2D(field, "curve", 21, false);
    manager().destroyField(field);
    EXPECT_EQ(saved(), "<!DOCTYPE ORVA>\n<AnimationPool objects=\"1\">\n <curve/>\n</AnimationPool>\n");
}

TEST_F(Saving, KindsComeInOrderAndWithinAKindIds) {
    manager().createStrip("top 9", 9);
    manager().createStrip("top 2", 2);
    kaAnimationStreak* track = manager().createStreak("track", 8);
    track->addObject(manager().createStrip("nested", 7));
    manager().createSequence("sequence", 6);
    manager().createUnit("block", 5);
    manager().createCurve2D(makeField(15, "n", "a"), "curve", 4, false);
    makePoint(3, 0.0F, 0.0F);
    makeField(10, "n", "a");
    const std::string text = saved();
    std::vector<std::size_t> places;
    for (const char* id : {"10", "15", "3", "4", "5", "6", "7", "8", "2", "9"}) {
        places.push_back(text.find(" id=\"" + std::string(id) + "\" typeID"));
        EXPECT_NE(places.back(), std::string::npos) << id;
    }
    EXPECT_TRUE(std::is_sorted(places.begin(), places.end())) << text;
}

TEST_F(Saving, ASingleFloatHasSixDigitsAndACoordinateSixDecimals) {
    makeField(7, "n", "a")->value = 0.1F;
    makePoint(11, 0.1F, 0.0F);
    const std::string text = saved();
    EXPECT_NE(text.find("value=\"0.1\""), std::string::npos);
    EXPECT_NE(text.find("<position>0.100000 0.000000</position>"), std::string::npos);
}

TEST_F(Saving, NamesAreLatin1BytesAndEscaped) {
    manager().createUnit("caf\xe9 <\"&\"> \x80\n", 31);
    const std::string text = saved();
    EXPECT_NE(text.find("name=\"caf\xe9 &lt;&quot;&amp;&quot;> \x80&#xa;\""), std::string::npos) << text;
}

TEST_F(Saving, ChangesNothing) {
    ASSERT_TRUE(load(contentOf(testFile("example.xml"))));
    const std::string before = stateOfRegistry();
    kaAnimationManager::random(ID_SEED);
    saved();
    EXPECT_EQ(stateOfRegistry(), before);
    EXPECT_EQ(manager().createUID(), IdSequence().next());
}

TEST_F(Saving, TheTextIsWhatADomWouldWriteButForTheOrderOfAttributes) {
    ASSERT_TRUE(load(contentOf(testFile("example.xml"))));
    manager().createUnit("a <b> & \"c\" ]]> \t\r\n \x01\xff", 32);
    QDomDocument document("ORVA");
    QDomElement root = document.createElement("AnimationPool");
    root.setAttribute("objects", "8");
    document.appendChild(root);
    root.appendChild(manager().createFieldDomElement(document, manager().getField(7)));
    root.appendChild(manager().createPointDomElement(document, manager().getPoint2D(11)));
    root.appendChild(manager().createPointDomElement(document, manager().getPoint2D(12)));
    root.appendChild(manager().createCurveDomElement(document, manager().getCurve2D(21)));
    root.appendChild(manager().createBlockDomElement(document, manager().getUnit(31)));
    root.appendChild(manager().createBlockDomElement(document, manager().getUnit(32)));
    root.appendChild(manager().createTrackDomElement(document, manager().getStreak(41)));
    root.appendChild(manager().createClipDomElement(document, manager().getStrip(51)));
    EXPECT_EQ(withSortedAttributes(saved()),
              withSortedAttributes(document.toString(1).toLatin1().toStdString()));
}

// Files.

TEST_F(Saving, AFileHoldsTheTextInLatin1) {
    manager().createUnit("caf\xe9", 31);
    const std::string file = _folder.at("a.xml");
    const CapturedOutput output;
    EXPECT_TRUE(manager().saveAnimations(file.c_str()));
    EXPECT_EQ(output.text(), "creating animation xml...\n");
    EXPECT_EQ(contentOf(file), saved());
    EXPECT_NE(contentOf(file).find("caf\xe9"), std::string::npos);
}

TEST_F(Saving, AnExistingFileIsReplacedAsAWhole) {
    const std::string file = _folder.put("a.xml", std::string(10000, 'x'));
    const CapturedOutput swallowed;
    EXPECT_TRUE(manager().saveAnimations(file.c_str()));
    EXPECT_EQ(contentOf(file), "<!DOCTYPE ORVA>\n<AnimationPool objects=\"0\"/>\n");
}

TEST_F(Saving, AFileThatCannotBeOpenedGivesFalse) {
    const CapturedOutput output;
    EXPECT_FALSE(manager().saveAnimations(_folder.at("none/a.xml").c_str()));
    EXPECT_FALSE(manager().saveAnimations(_folder.path().c_str()));
    EXPECT_FALSE(manager().saveAnimations(static_cast<const char*>(nullptr)));
    EXPECT_FALSE(manager().saveAnimations(""));
    EXPECT_TRUE(filesWritten().empty());
    EXPECT_EQ(output.text(), "creating animation xml...\ncreating animation xml...\n"
                             "creating animation xml...\ncreating animation xml...\n");
}

TEST_F(Saving, AFullDiskIsNotNoticed) {
    if (::access("/dev/full", W_OK) != 0)
        GTEST_SKIP() << "no /dev/full here";
    const CapturedOutput swallowed;
    EXPECT_TRUE(manager().saveAnimations("/dev/full"));
}

TEST_F(Saving, APathsBytesAreTakenAsLatin1) {
    const CapturedOutput swallowed;
    EXPECT_TRUE(manager().saveAnimations(_folder.at("caf\xe9.xml").c_str()));
    EXPECT_EQ(filesWritten().size(), 1U);
}

// The dialog.

TEST_F(Saving, TheUserIsAskedOnce) {
    EXPECT_TRUE(saveAs(_folder.at("a.xml")));
    ASSERT_EQ(questions.size(), 1U);
    EXPECT_EQ(questions[0].parent, nullptr);
    EXPECT_EQ(questions[0].title, "Save Animations");
    EXPECT_EQ(questions[0].filter, "*.xml");
    EXPECT_TRUE(questions[0].saving);
}

TEST_F(Saving, TheNameGetsItsExtension) {
    EXPECT_TRUE(saveAs(_folder.at("anim")));
    EXPECT_EQ(filesWritten(), (std::vector<std::string>{"anim.xml"}));
}

TEST_F(Saving, ANameWithTheExtensionStays) {
    EXPECT_TRUE(saveAs(_folder.at("anim.xml")));
    EXPECT_EQ(filesWritten(), (std::vector<std::string>{"anim.xml"}));
}

TEST_F(Saving, AnExtensionInCapitalsGetsASecondOne) {
    EXPECT_TRUE(saveAs(_folder.at("anim.XML")));
    EXPECT_EQ(filesWritten(), (std::vector<std::string>{"anim.XML.xml"}));
}

TEST_F(Saving, ACancelledQuestionSavesNothing) {
    const CapturedOutput output;
    answer.clear();
    EXPECT_FALSE(manager().saveAnimations(static_cast<QWidget*>(nullptr)));
    EXPECT_EQ(output.text(), "");
}

TEST_F(Saving, ARefusedFileIsNotWritten) {
    std::string asked;
    kaFile::setCheckWriteCallback([&asked](const std::string& name, bool ask, bool quiet) {
        asked = name + (ask ? " ask" : "") + (quiet ? " quiet" : "");
        return false;
    });
    EXPECT_FALSE(saveAs(_folder.at("caf\xc3\xa9")));
    EXPECT_EQ(asked, _folder.at("caf\xc3\xa9.xml") + " ask");
    EXPECT_TRUE(filesWritten().empty());
}

TEST_F(Saving, LoadingAsksToo) {
    manager().createUnit("kept", 31);
    EXPECT_TRUE(saveAs(_folder.at("anim")));
    answer = _folder.at("anim.xml");
    const CapturedOutput swallowed;
    EXPECT_TRUE(manager().loadAnimations(static_cast<QWidget*>(nullptr)));
    EXPECT_EQ(questions.back().title, "Load Animations");
    EXPECT_EQ(questions.back().filter, "*.xml");
    EXPECT_FALSE(questions.back().saving);
    EXPECT_EQ(manager().getObjects().size(), 2U);
    answer.clear();
    EXPECT_FALSE(manager().loadAnimations(static_cast<QWidget*>(nullptr)));
}
