#include "Builders.h"
#include "RegistryFixture.h"
#include "kaAnimationField.h"
#include "kaWatchedMemory.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <malloc.h>
#include <random>
#include <unistd.h>

using namespace ka_test;

namespace {

/// More than three of the largest pieces that memory for keys comes in.
constexpr std::size_t Keys = 20000;

class KeyMemory : public RegistryFixture {
  protected:
    static kaControlPoint2D* make(std::size_t number) {
        const auto x = static_cast<float>(number);
        kaControlPoint2D* key = kaAnimationManager::the()->createPoint2D(x, -x, 0);
        key->getInTangent()->setPosition(x - 0.25F, 1.0F);
        key->getOutTangent()->setPosition(x + 0.25F, 2.0F);
        return key;
    }

    static void expectToBe(const kaControlPoint2D& key, std::size_t number) {
        const auto x = static_cast<float>(number);
        ASSERT_EQ(key.getPosition(), osg::Pnt2f(x, -x));
        ASSERT_EQ(key.getInTangent()->getPosition(), osg::Pnt2f(x - 0.25F, 1.0F));
        ASSERT_EQ(key.getOutTangent()->getPosition(), osg::Pnt2f(x + 0.25F, 2.0F));
        ASSERT_EQ(kaAnimationManager::the()->getPoint2D(key.getId()), &key);
    }

    /// Bytes that the process holds in memory.
    static std::size_t resident() {
        malloc_trim(0);
        std::size_t pages = 0;
        std::ifstream("/proc/self/statm") >> pages >> pages;
        return pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    }
};

TEST_F(KeyMemory, KeysThatComeWhereOthersWentDisturbNoOther) {
    std::vector<kaControlPoint2D*> keys(Keys);
    for (std::size_t i = 0; i < Keys; ++i)
        keys[i] = make(i);
    std::vector<std::size_t> order(Keys);
    for (std::size_t i = 0; i < Keys; ++i)
        order[i] = i;
    std::mt19937 random(3);
    for (std::size_t round = 1; round <= 3; ++round) {
        std::shuffle(order.begin(), order.end(), random);
        for (std::size_t i = 0; i < Keys / 2; ++i)
            kaAnimationManager::the()->destroyPoint2D(keys[order[i]]);
        for (std::size_t i = 0; i < Keys / 2; ++i)
            keys[order[i]] = make(order[i]);
        for (int more = 0; more < 10; ++more) // than went
            keys.push_back(make(keys.size()));
        for (std::size_t i = 0; i < keys.size(); ++i)
            ASSERT_NO_FATAL_FAILURE(expectToBe(*keys[i], i)) << "round " << round;
    }
}

TEST_F(KeyMemory, GivesEachKeyAndHandleTwoWholeLinesOfTheCache) {
    for (std::size_t i = 0; i < 100; ++i) {
        kaControlPoint2D* key = make(i);
        for (const kaControlPoint2D* point : {key, key->getInTangent(), key->getOutTangent()})
            EXPECT_EQ(reinterpret_cast<std::uintptr_t>(point) % 128, 0U);
    }
}

#ifdef KA_WATCHED_MEMORY

/// The next use of memory that is free ends the process with this.
constexpr const char* Stopped = "use-after-poison";

float read(const kaControlPoint2D* key) {
    return key->getPosition()[0];
}

TEST_F(KeyMemory, StopsWhoUsesAKeyThatIsGone) {
    kaControlPoint2D* key = make(1);
    kaControlPoint2D* handle = key->getInTangent();
    const kaControlPoint2D* beside = make(2);
    kaAnimationManager::the()->destroyPoint2D(key);
    EXPECT_DEATH(read(key), Stopped);
    EXPECT_DEATH(read(handle), Stopped);
    expectToBe(*beside, 2);
    for (std::size_t i = 0; i < 100; ++i)
        make(i); // elsewhere for now
    EXPECT_DEATH(read(key), Stopped);
}

TEST_F(KeyMemory, CountsKeysHandlesAndFields) {
    kaControlPoint2D* key = make(1);
    kaAnimationField* field = kaAnimationManager::the()->createField(0);
    EXPECT_EQ(kaWatchedMemory::inUse, 4U);
    kaAnimationManager::the()->destroyPoint2D(key);
    EXPECT_EQ(kaWatchedMemory::inUse, 1U);
    kaAnimationManager::the()->destroyField(field);
    EXPECT_EQ(kaWatchedMemory::inUse, 0U);
}

TEST_F(KeyMemory, StopsWhoUsesWhatIsYetToBecomeAKey) {
    const kaControlPoint2D* key = make(1); // and its two handles, the first of 32 blocks
    EXPECT_DEATH(
        read(reinterpret_cast<const kaControlPoint2D*>(reinterpret_cast<const char*>(key) + 16 * 128)),
        Stopped);
}

TEST_F(KeyMemory, StopsWhoUsesAFieldThatIsGone) {
    kaAnimationField* field = kaAnimationManager::the()->createField(0);
    kaAnimationManager::the()->destroyField(field);
    EXPECT_DEATH(field->value = 1.0F, Stopped);
    for (int i = 0; i < 100; ++i)
        kaAnimationManager::the()->createField(0);
    EXPECT_DEATH(field->value = 1.0F, Stopped);
}

#else // the sanitizer keeps what is freed

TEST_F(KeyMemory, GoesBackWithTheLastKey) {
    constexpr std::size_t Megabyte = 1 << 20;
    const auto makeAndDestroy = [] {
        std::vector<kaControlPoint2D*> keys(Keys);
        std::generate(keys.begin(), keys.end(),
                      [number = std::size_t{0}]() mutable { return make(number++); });
        const std::size_t most = resident();
        for (kaControlPoint2D* key : keys)
            kaAnimationManager::the()->destroyPoint2D(key);
        return most;
    };
    makeAndDestroy(); // what is made once and kept, as the index of objects is
    const std::size_t before = resident();
    EXPECT_GE(makeAndDestroy(), before + 5 * Megabyte);
    EXPECT_LE(resident(), before + Megabyte);
}

TEST_F(KeyMemory, NothingIsKeptForTheNextKeyOnceTheLastHasGone) {
    constexpr std::uintptr_t Page = 2 << 20;
    std::vector<kaControlPoint2D*> keys(Keys);
    std::generate(keys.begin(), keys.end(), [number = std::size_t{0}]() mutable { return make(number++); });
    const std::uintptr_t last = reinterpret_cast<std::uintptr_t>(keys.back()) / Page;
    for (kaControlPoint2D* key : keys)
        kaAnimationManager::the()->destroyPoint2D(key);
    EXPECT_NE(reinterpret_cast<std::uintptr_t>(make(1)) / Page, last) << "taken from a page that was kept";
}

TEST_F(KeyMemory, OneKeyThatIsLeftKeepsLittleMoreThanItsOwnPage) {
    constexpr std::size_t Megabyte = 1 << 20;
    constexpr std::size_t Many = 3 * Keys; // 22 MB with their handles
    for (const std::size_t survivor : {std::size_t{0}, Many / 2, Many - 1}) {
        const std::size_t before = resident();
        std::vector<kaControlPoint2D*> keys(Many);
        std::generate(keys.begin(), keys.end(),
                      [number = std::size_t{0}]() mutable { return make(number++); });
        const std::size_t most = resident();
        for (std::size_t i = 0; i < Many; ++i)
            if (i != survivor)
                kaAnimationManager::the()->destroyPoint2D(keys[i]);
        expectToBe(*keys[survivor], survivor);
        EXPECT_GE(most, resident() + 17 * Megabyte) << "key " << survivor;
        EXPECT_LE(resident(), before + 10 * Megabyte) << "the index of objects included";
        kaAnimationManager::the()->destroyPoint2D(keys[survivor]);
    }
}

TEST_F(KeyMemory, TheIndexOfObjectsShrinksWithTheNextOneToCome) {
    constexpr std::size_t Megabyte = 1 << 20;
    std::vector<kaControlPoint2D*> keys(5 * Keys); // 300 000 entries with their handles
    std::generate(keys.begin(), keys.end(), [number = std::size_t{0}]() mutable { return make(number++); });
    for (kaControlPoint2D* key : keys)
        kaAnimationManager::the()->destroyPoint2D(key);
    const std::size_t wide = resident();
    std::vector<kaControlPoint2D*> few;
    for (std::size_t i = 0; i < 100; ++i)
        few.push_back(make(i));
    EXPECT_LE(resident() + 2 * Megabyte, wide);
    for (std::size_t i = 0; i < few.size(); ++i)
        expectToBe(*few[i], i);
}

#endif

} // namespace
