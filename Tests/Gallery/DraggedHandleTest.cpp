#include "RegistryFixture.h"
#include "SegmentSupport.h"

#include <cmath>
#include <functional>

using namespace ka_test;

namespace {

constexpr int STEPS = 10000;
constexpr double LENGTH = 25.0;

/// From this magnitude of the cubic coefficient A on the formula is used, with an error in value of its own,
/// which is largest where the time nearly stands still while the value changes.
constexpr double SMALL_CUBE = 1e-5;
constexpr double FORMULA_ERROR = 2e-5;
/// Of values up to 2 to a float.
constexpr double ROUNDING = 6e-8;

/// A handle of the segment from (0, 0.2) to (25, 1.4) on its way through the place where A = 0.
struct Drag {
    const char* name;
    double fixed; ///< the other handle, in parts of the segment
    bool out;     ///< whether it is the out handle that moves
    double reach; ///< how far it moves to either side of that place, in parts of the segment
};

SegmentCase segmentAt(const Drag& drag, double moving, float frame) {
    const auto at = [](double part) { return static_cast<float>(LENGTH * part); };
    SegmentCase segment;
    segment.left.key = segment.left.in = {0.0F, 0.2F};
    segment.right.key = segment.right.out = {static_cast<float>(LENGTH), 1.4F};
    segment.left.out = {at(drag.out ? moving : drag.fixed), 1.9F};
    segment.right.in = {at(drag.out ? drag.fixed : moving), 0.1F};
    segment.frame = frame;
    return segment;
}

double errorAllowed(const SegmentCase& segment) {
    const double a = timePolynomial(segment.left, segment.right).a;
    return std::fabs(a) < SMALL_CUBE ? ROUNDING : FORMULA_ERROR;
}

class DraggedHandle : public RegistryFixture, public testing::WithParamInterface<Drag> {
  protected:
    /// Moves the handle in 10 000 steps. @return over how many signs of A, |A| < 1e-5 counted as one of its
    /// own.
    static int drag(float frame) {
        ModuleSegment module;
        const Drag& drag = GetParam();
        const double middle = drag.out ? drag.fixed - 1.0 / 3.0 : drag.fixed + 1.0 / 3.0;
        Step last;
        bool seen[3] = {};
        for (int i = 0; i <= STEPS; ++i) {
            const double part = middle + drag.reach * (2.0 * i / STEPS - 1.0);
            const SegmentCase segment = segmentAt(drag, part, frame);
            const double a = timePolynomial(segment.left, segment.right).a;
            seen[a <= -SMALL_CUBE ? 0 : a < SMALL_CUBE ? 1 : 2] = true;
            const Step now = step(module, segment);
            if (i > 0)
                expectNoJump(last, now, segment);
            last = now;
            if (HasFailure())
                break;
        }
        return seen[0] + seen[1] + seen[2];
    }

  private:
    struct Step {
        double value = 0.0;
        double truth = 0.0;
        double allowed = 0.0;
    };

    static Step step(ModuleSegment& module, const SegmentCase& segment) {
        const Sample sample = module.sample(segment);
        const std::vector<long double> values = trueValues(segment.left, segment.right, segment.frame);
        EXPECT_TRUE(sample.written) << segment;
        EXPECT_EQ(values.size(), 1U) << segment;
        return {static_cast<double>(sample.value), values.empty() ? 0.0 : static_cast<double>(values[0]),
                errorAllowed(segment)};
    }

    /// What the movement of the handle allows is the difference between the true values.
    static void expectNoJump(const Step& last, const Step& now, const SegmentCase& segment) {
        EXPECT_LE(std::fabs(now.value - last.value),
                  std::fabs(now.truth - last.truth) + now.allowed + last.allowed)
            << segment;
        EXPECT_NEAR(now.value, now.truth, now.allowed) << segment;
    }
};

TEST_P(DraggedHandle, NeverMovesAValueByMoreThanItMovesItself) {
    for (float frame : {0.5F, 1.0F, 5.5F, 12.5F, 18.75F, 24.0F, 24.5F}) {
        SCOPED_TRACE(frame);
        EXPECT_EQ(drag(frame), 3) << "what the drag is to pass";
    }
}

INSTANTIATE_TEST_SUITE_P(Drags, DraggedHandle,
                         testing::Values(Drag{"out_handle_through_the_third", 2.0 / 3.0, true, 0.3},
                                         Drag{"out_handle_slowly", 2.0 / 3.0, true, 3e-5},
                                         Drag{"in_handle_through_the_third", 1.0 / 3.0, false, 0.3},
                                         Drag{"in_handle_slowly", 1.0 / 3.0, false, 1e-4},
                                         Drag{"a_short_out_handle", 0.35, true, 4e-6},
                                         Drag{"an_out_handle_above_its_key", 1.0 / 3.0, true, 1e-5},
                                         Drag{"an_in_handle_beside_a_short_one", 0.0168, false, 2e-4},
                                         Drag{"an_out_handle_that_points_backwards", 0.2, true, 5e-5},
                                         Drag{"an_in_handle_beyond_its_key", 0.75, false, 5e-5}),
                         [](const auto& row) { return row.param.name; });

} // namespace
