#include "CapturedOutput.h"
#include "Documents.h"
#include "RegistryFixture.h"
#include "kaAnimationManager.h"

#include <QString>
#include <algorithm>
#include <string>
#include <vector>

using namespace ka_test;

// elements/ keeps one document for every kind of element, as they were first written, and broken/ one for
// every kind of damage.

namespace {

std::vector<std::string> filesIn(const char* folder) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(testFile(folder)))
        names.push_back(entry.path().string());
    std::sort(names.begin(), names.end());
    return names;
}

std::string nameOf(const testing::TestParamInfo<std::string>& file) {
    std::string name = std::filesystem::path(file.param).stem().string();
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}

bool loadFile(const std::string& name) {
    const CapturedOutput swallowed;
    return kaAnimationManager::the()->loadAnimations(QString::fromStdString(name), true);
}

class ElementFile : public RegistryFixture, public testing::WithParamInterface<std::string> {};
class BrokenFile : public RegistryFixture, public testing::WithParamInterface<std::string> {};

} // namespace

TEST_P(ElementFile, IsWrittenAsItWasRead) {
    ASSERT_TRUE(loadFile(GetParam()));
    EXPECT_EQ(saved(), contentOf(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(Kinds, ElementFile, testing::ValuesIn(filesIn("elements")), nameOf);

TEST_P(BrokenFile, IsRefusedAndChangesNothing) {
    kaAnimationManager::the()->createUnit("before", 31);
    const std::string before = stateOfRegistry();
    const std::string text = contentOf(GetParam());
    EXPECT_FALSE(loadFile(GetParam()));
    EXPECT_FALSE(load(text));
    EXPECT_EQ(stateOfRegistry(), before);
    EXPECT_EQ(kaAnimationManager::the()->createUID(), IdSequence().next()) << "an id was drawn";
}

INSTANTIATE_TEST_SUITE_P(Kinds, BrokenFile, testing::ValuesIn(filesIn("broken")), nameOf);
