#include "readers/ConfinedFolder.h"

#include "MotionTesting.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

namespace ka::motion {
namespace {

namespace fs = std::filesystem;
using ::testing::EndsWith;

class ConfinedFolderTest : public ::testing::Test {
  protected:
    void SetUp() override {
        fs::create_directories(_temporary.at("models/parts"));
        _temporary.put("secret.txt", "secret");
        _temporary.put("models/walk.gltf", "model");
        _temporary.put("models/parts/a.bin", "part");
    }

    testing::TemporaryFolder _temporary;
};

TEST_F(ConfinedFolderTest, ReadsTheModelAndWhatLiesBelowItsFolder) {
    const ConfinedFolder folder(_temporary.at("models/walk.gltf"));
    EXPECT_EQ(folder.modelName(), "walk.gltf");
    EXPECT_EQ(folder.read("walk.gltf", 100), "model");
    EXPECT_EQ(folder.read("./parts/a.bin", 100), "part");
    EXPECT_EQ(folder.read("parts/../walk.gltf", 100), "model");
}

TEST_F(ConfinedFolderTest, RefusesEveryWayOut) {
    fs::create_symlink("../secret.txt", _temporary.at("models/link.txt"));
    fs::create_directory_symlink("..", _temporary.at("models/up"));
    const ConfinedFolder folder(_temporary.at("models/walk.gltf"));
    for (const std::string& name :
         {std::string("../secret.txt"), std::string("parts/../../secret.txt"), _temporary.at("secret.txt"),
          std::string("link.txt"), std::string("up/secret.txt"), std::string("/etc/passwd"),
          std::string("../../../../../../etc/passwd")}) {
        EXPECT_EQ(folder.resolve(name), std::nullopt) << name;
        EXPECT_EQ(folder.read(name, 100), std::nullopt) << name;
    }
}

TEST_F(ConfinedFolderTest, ANeighbourWhoseNameBeginsTheSameIsOutside) {
    fs::create_directories(_temporary.at("models2"));
    _temporary.put("models2/b.bin", "other");
    const ConfinedFolder folder(_temporary.at("models/walk.gltf"));
    EXPECT_EQ(folder.resolve("../models2/b.bin"), std::nullopt);
}

TEST_F(ConfinedFolderTest, TakesPlainFilesOnly) {
    ASSERT_EQ(mkfifo(_temporary.at("models/pipe").c_str(), 0600), 0);
    const ConfinedFolder folder(_temporary.at("models/walk.gltf"));
    EXPECT_EQ(folder.read("parts", 100), std::nullopt);
    EXPECT_EQ(folder.read("pipe", 100), std::nullopt);
    EXPECT_EQ(folder.read("missing", 100), std::nullopt);
}

TEST_F(ConfinedFolderTest, RefusesFilesBeyondTheLimit) {
    const ConfinedFolder folder(_temporary.at("models/walk.gltf"));
    EXPECT_EQ(folder.read("walk.gltf", 5), "model");
    EXPECT_EQ(folder.read("walk.gltf", 4), std::nullopt);
}

TEST_F(ConfinedFolderTest, AModelNamedByALinkStandsWhereTheLinkLeads) {
    fs::create_symlink("models/walk.gltf", _temporary.at("shortcut.gltf"));
    const ConfinedFolder folder(_temporary.at("shortcut.gltf"));
    EXPECT_EQ(folder.read("parts/a.bin", 100), "part");
    EXPECT_EQ(folder.resolve("../secret.txt"), std::nullopt);
}

TEST_F(ConfinedFolderTest, SaysWhyAModelCannotBeRead) {
    const auto reason = [&](const std::string& name) {
        return testing::failureOf([&] { ConfinedFolder folder(_temporary.at(name)); });
    };
    EXPECT_THAT(reason("none.gltf"), EndsWith("none.gltf: no such file"));
    EXPECT_THAT(reason("models"), EndsWith("models: not a plain file"));
}

} // namespace
} // namespace ka::motion
