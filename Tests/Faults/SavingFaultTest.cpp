#include "Builders.h"
#include "CapturedOutput.h"
#include "FailingAllocation.h"
#include "RegistryFixture.h"
#include "TemporaryFolder.h"
#include "TestScene.h"
#include "kaAnimationManager.h"

#include <new>
#include <string>

namespace {

using namespace ka_test;

kaAnimationManager& manager() {
    return *kaAnimationManager::the();
}

/// The output gathers text in a buffer that grows where its room ends: where that is in an element, depends
/// on the lengths of all that stands before. So every length of a name is tried.
class SavingWithoutMemory : public RegistryFixture, public testing::WithParamInterface<std::size_t> {
  protected:
    static constexpr std::size_t LengthsAtOnce = 60;

    /// Calls `save` again and again, each time with one more allocation that succeeds, until none fails.
    /// `save` says whether it has left everything as it should.
    template <class Save>
    void tryEveryAllocation(Save&& save) {
        kaAnimationCurve2D* curve = makeCurve(std::vector<Spot>{{0.0F, 1.0F}, {10.0F, 2.0F}});
        kaAnimationStreak* track = makeTrack({makeBlock({curve}), makeSequence("event", 20.0F, 30.0F)});
        makeClip({track});
        for (std::size_t length = GetParam(); length < GetParam() + LengthsAtOnce; ++length) {
            track->setName(std::string(length, 'n'));
            bool failed = true;
            for (std::size_t point = 0; failed; ++point) {
                ASSERT_LT(point, 5000U);
                ASSERT_TRUE(save(point, failed)) << "length " << length << ", allocation " << point;
            }
        }
    }
};

TEST_P(SavingWithoutMemory, GivesNoTextOrTheWholeOne) {
    tryEveryAllocation([](std::size_t point, bool& failed) {
        const CapturedOutput quiet;
        const QString whole = manager().createAnimationXML();
        const FailingAllocation failure(point);
        const QString text = manager().createAnimationXML();
        FailingAllocation::disarm();
        failed = FailingAllocation::hasFailed();
        return text == (failed ? QString() : whole);
    });
}

TEST_P(SavingWithoutMemory, SaysThatAFileIsNotWritten) {
    const TemporaryFolder folder;
    const std::string file = folder.at("saved.xml");
    tryEveryAllocation([&file](std::size_t point, bool& failed) {
        const CapturedOutput quiet;
        const FailingAllocation failure(point);
        const bool saved = manager().saveAnimations(file.c_str());
        FailingAllocation::disarm();
        failed = FailingAllocation::hasFailed();
        return saved != failed;
    });
}

INSTANTIATE_TEST_SUITE_P(Lengths, SavingWithoutMemory, testing::Range<std::size_t>(0, 480, 60),
                         [](const auto& row) { return "from_" + std::to_string(row.param); });

} // namespace
