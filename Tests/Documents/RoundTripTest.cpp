#include "Builders.h"
#include "CapturedOutput.h"
#include "Documents.h"
#include "Gallery.h"
#include "RegistryFixture.h"
#include "kaAnimationField.h"
#include "kaAnimationManager.h"

#include <QDomDocument>
#include <QString>
#include <random>
#include <string>
#include <vector>

using namespace ka_test;

namespace {

kaAnimationManager& manager() {
    return *kaAnimationManager::the();
}

/// The two passes over a whole DOM, through the public readers.
void loadThroughDom(const std::string& latin1) {
    QDomDocument document;
    ASSERT_TRUE(document.setContent(QString::fromLatin1(latin1.data(), static_cast<int>(latin1.size()))));
    const QDomElement root = document.documentElement();
    for (QDomElement element = root.firstChildElement(); !element.isNull();
         element = element.nextSiblingElement()) {
        manager().readFieldDomElement(element.attribute("typeID").isEmpty() ? QDomElement() : element);
        manager().readPointDomElement(element);
        manager().readCurveDomElement(element);
        manager().readBlockDomElement(element);
        manager().readTrackDomElement(element);
        manager().readClipDomElement(element);
        manager().readSequenceDomElement(element);
    }
    for (QDomElement element = root.firstChildElement(); !element.isNull();
         element = element.nextSiblingElement())
        manager().readChildren(element);
}

/// A registry with some of everything; coordinates are whole quarters, so that six decimals hold them.
void buildAnything(std::mt19937& random) {
    const auto quarter = [&random] {
        return static_cast<float>(static_cast<int>(random() % 4000)) / 4.0F - 500.0F;
    };
    std::vector<kaAnimationObject*> loose;
    for (int i = 0; i < 6; ++i) {
        std::vector<kaAnimationCurve2D*> curves;
        for (unsigned int c = random() % 3; c > 0; --c) {
            std::vector<Key> keys;
            for (unsigned int k = random() % 6; k > 0; --k)
                keys.push_back({{quarter(), quarter()}, {quarter(), quarter()}, {quarter(), quarter()}});
            curves.push_back(makeCurve(keys));
            kaAnimationField* field = manager().getField(curves.back()->getField());
            field->name = "f\xe9ld<" + std::to_string(random() % 10);
            field->attribute = field->name + "XYZW"[random() % 4];
            field->value = quarter();
            field->dirty = random() % 2 != 0;
            curves.back()->setRepeating(random() % 2 != 0);
        }
        kaAnimationUnit* block = makeBlock(curves);
        block->setActive(random() % 2 != 0);
        block->setName("block \"" + std::to_string(i) + "\"");
        loose.push_back(block);
        loose.push_back(makeSequence("sequence & " + std::to_string(i), quarter(), quarter()));
    }
    std::vector<kaAnimationObject*> tracks;
    for (std::size_t i = 0; i < loose.size(); i += 3)
        tracks.push_back(makeTrack({loose[i], loose[i + 1], loose[i + 2]}));
    kaAnimationStrip* nested = makeClip({tracks[0], tracks[1]});
    makeClip({makeTrack({nested}), tracks[2], tracks[3]});
}

} // namespace

class RoundTrip : public RegistryFixture {};

TEST_F(RoundTrip, SavedLoadedAndSavedAgainIsTheSameText) {
    std::mt19937 random(1);
    for (int round = 0; round < 50; ++round) {
        buildAnything(random);
        const std::string first = saved();
        emptyModule();
        ASSERT_TRUE(load(first));
        ASSERT_EQ(saved(), first);
        emptyModule();
    }
}

TEST_F(RoundTrip, TheSameThroughAFile) {
    std::mt19937 random(2);
    const TemporaryFolder folder;
    buildAnything(random);
    const CapturedOutput swallowed;
    ASSERT_TRUE(manager().saveAnimations(folder.at("a.xml").c_str()));
    emptyModule();
    ASSERT_TRUE(manager().loadAnimations(QString::fromStdString(folder.at("a.xml")), true));
    ASSERT_TRUE(manager().saveAnimations(folder.at("b.xml").c_str()));
    EXPECT_EQ(contentOf(folder.at("b.xml")), contentOf(folder.at("a.xml")));
}

TEST_F(RoundTrip, TheDocumentAndThePublicReadersMakeTheSame) {
    std::mt19937 random(3);
    for (int round = 0; round < 20; ++round) {
        buildAnything(random);
        const std::string text = saved();
        emptyModule();
        ASSERT_TRUE(load(text));
        const std::string fromDocument = stateOfRegistry();
        emptyModule();
        loadThroughDom(text);
        EXPECT_EQ(stateOfRegistry(), fromDocument);
        emptyModule();
    }
}

TEST_F(RoundTrip, TheDocumentAndThePublicReadersMakeTheSameOfDamagedDocuments) {
    const std::string original = contentOf(testFile("example.xml"));
    const std::string pieces = "0123456789-+. \"=naeid<>/";
    std::mt19937 random(4);
    int loaded = 0;
    for (int i = 0; i < 5000; ++i) {
        std::string text = original;
        for (unsigned int edits = 1 + random() % 2; edits > 0; --edits)
            text.replace(random() % text.size(), random() % 3,
                         std::string(random() % 3, pieces[random() % pieces.size()]));
        if (!load(text))
            continue;
        ++loaded;
        const std::string fromDocument = stateOfRegistry();
        emptyModule();
        loadThroughDom(text);
        ASSERT_EQ(stateOfRegistry(), fromDocument) << text;
        emptyModule();
    }
    EXPECT_GT(loaded, 500) << "too few documents survive to say anything";
}

TEST_F(RoundTrip, NamedCurvesKeepTheirKeys) {
    for (const GalleryCurve& named : gallery()) {
        build(named);
        const std::string first = saved();
        emptyModule();
        ASSERT_TRUE(load(first)) << named.name;
        const std::string second = saved();
        emptyModule();
        ASSERT_TRUE(load(second)) << named.name;
        EXPECT_EQ(saved(), second) << named.name;
        emptyModule();
    }
}
