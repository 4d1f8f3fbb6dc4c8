#include "Gallery.h"

#include "kaAnimationManager.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>

namespace ka_test {

namespace {

using Spots = std::vector<Spot>;
using Keys = std::vector<Key>;

constexpr float INF = std::numeric_limits<float>::infinity();
constexpr float NAN_VALUE = std::numeric_limits<float>::quiet_NaN();

float above(float value) {
    return std::nextafter(value, INF);
}

float below(float value) {
    return std::nextafter(value, -INF);
}

Spot between(const Spot& a, const Spot& b, float share) {
    return {a.x + (b.x - a.x) * share, a.y + (b.y - a.y) * share};
}

GalleryCurve curve(const std::string& name, const Keys& keys) {
    GalleryCurve result{name, {}};
    for (const Key& key : keys)
        result.keys.push_back({key});
    return result;
}

/// Handles on the straight line to the neighbour, at that share of the way.
GalleryCurve chain(const std::string& name, const Spots& spots, float share) {
    Keys keys;
    for (std::size_t i = 0; i < spots.size(); ++i) {
        const Spot in = i > 0 ? between(spots[i], spots[i - 1], share) : spots[i];
        const Spot out = i + 1 < spots.size() ? between(spots[i], spots[i + 1], share) : spots[i];
        keys.push_back({spots[i], in, out});
    }
    return curve(name, keys);
}

GalleryCurve steps(const std::string& name, const Spots& spots) {
    return chain(name, spots, 0.0F);
}

/// One segment from (0, 0) to (30, 1) whose handles stand at the given frames and values.
GalleryCurve segment(const std::string& name, const Spot& out, const Spot& in) {
    return curve(name, {{{0, 0}, {0, 0}, out}, {{30, 1}, in, {30, 1}}});
}

/// Flat handles that reach half way.
GalleryCurve waves(const std::string& name, int count, float stride, float height) {
    Keys keys;
    for (int i = 0; i < count; ++i) {
        const float x = stride * static_cast<float>(i);
        const float y = i % 2 == 0 ? 0.0F : height;
        keys.push_back({{x, y}, {x - stride * 0.5F, y}, {x + stride * 0.5F, y}});
    }
    return curve(name, keys);
}

/// Uneven values on every frame, as motion capture gives them.
GalleryCurve captured(const std::string& name, int count) {
    Spots spots;
    unsigned int state = 1;
    float value = 0.0F;
    for (int i = 0; i < count; ++i) {
        state = state * 1103515245U + 12345U;
        value += (static_cast<float>(state >> 16U) / 65535.0F - 0.5F) * 4.0F;
        spots.push_back({static_cast<float>(i), value});
    }
    return chain(name, spots, 0.5F);
}

void addFewKeys(std::vector<GalleryCurve>& all) {
    all.push_back(curve("no_key", {}));
    all.push_back(steps("one_key", {{5, 7}}));
    all.push_back(steps("two_keys_at_one_frame_first_zero", {{5, 0}, {5, 3}}));
    all.push_back(steps("two_keys_at_one_frame_first_nonzero", {{5, 2}, {5, 0}}));
    all.push_back(steps("three_keys_at_one_frame", {{4, 1}, {4, 2}, {4, 3}}));
    all.push_back(steps("two_of_three_keys_at_one_frame", {{0, 1}, {10, 5}, {10, 9}}));
    all.push_back(chain("two_of_four_keys_at_one_frame", {{0, 1}, {10, 5}, {10, 9}, {20, 2}}, 0.5F));
    all.push_back(chain("minus_zero_and_zero", {{-0.0F, 1}, {0.0F, 2}, {8, 3}}, 0.5F));
    all.push_back(chain("given_out_of_order", {{20, 3}, {0, 1}, {10, 2}}, 0.0F));
    all.push_back(chain("almost_equal_frames", {{10, 0}, {above(10), 1}, {20, 2}}, 0.5F));
}

void addPlainShapes(std::vector<GalleryCurve>& all) {
    all.push_back(steps("step", {{0, 1}, {10, 2}}));
    all.push_back(steps("stairs", {{0, 1}, {10, 2}, {20, -3}, {25, 0}}));
    all.push_back(chain("straight_with_handles_half_way", {{0, 0}, {10, 1}}, 0.5F));
    all.push_back(chain("straight_down", {{-5, 40}, {45, -10}}, 0.5F));
    all.push_back(chain("constant", {{0, 2.5F}, {10, 2.5F}, {20, 2.5F}}, 0.5F));
    all.push_back(chain("zigzag", {{0, 0}, {10, 5}, {20, -5}, {30, 5}, {40, 0}}, 0.5F));
    all.push_back(segment("ease", {15, 0}, {15, 1}));
    all.push_back(segment("ease_in", {20, 0}, {25, 0.75F}));
    all.push_back(segment("ease_out", {5, 0.75F}, {10, 1}));
    all.push_back(segment("overshoot", {15, 2}, {15, -1}));
    all.push_back(segment("one_side_on_its_key", {0, 0}, {15, 1}));
    all.push_back(segment("other_side_on_its_key", {15, 0}, {30, 1}));
    all.push_back(segment("handles_on_the_far_keys", {30, 1}, {0, 0}));
    all.push_back(segment("vertical_in_the_middle", {30, 0}, {0, 1}));
    all.push_back(waves("waves", 9, 10.0F, 3.0F));
    all.push_back(captured("captured_motion", 200));
}

void addThirds(std::vector<GalleryCurve>& all) {
    all.push_back(segment("thirds", {10, 0.5F}, {20, 0.5F}));
    all.push_back(segment("thirds_next_below", {below(10), 0.5F}, {20, 0.5F}));
    all.push_back(segment("thirds_next_above", {above(10), 0.5F}, {20, 0.5F}));
    all.push_back(segment("thirds_in_next_below", {10, 0.5F}, {below(20), 0.5F}));
    all.push_back(segment("thirds_in_next_above", {10, 0.5F}, {above(20), 0.5F}));
    all.push_back(segment("thirds_both_apart", {below(10), 0.5F}, {above(20), 0.5F}));
    all.push_back(segment("thirds_off_by_a_thousandth", {9.999F, 0.5F}, {20.001F, 0.5F}));
    all.push_back(segment("thirds_off_by_a_hundredth", {9.99F, 0.5F}, {20.01F, 0.5F}));
    all.push_back(segment("parabola_from_the_left", {0, 0.25F}, {10, 0.5F}));
    all.push_back(segment("parabola_in_the_middle", {5, 0.25F}, {15, 0.5F}));
    all.push_back(segment("parabola_to_the_right", {20, 0.5F}, {30, 0.75F}));
    all.push_back(curve("thirds_of_three_frames", {{{0, 0}, {0, 0}, {1, 1}}, {{3, 1}, {2, 0}, {3, 1}}}));
    all.push_back(curve("thirds_of_seven_frames",
                        {{{0, 0}, {0, 0}, {7.0F / 3.0F, 1}}, {{7, 1}, {14.0F / 3.0F, 0}, {7, 1}}}));
}

void addHandlesAstray(std::vector<GalleryCurve>& all) {
    all.push_back(segment("recurving", {45, 0}, {-15, 1}));
    all.push_back(segment("recurving_far", {300, 0}, {-270, 1}));
    all.push_back(segment("just_recurving", {30.003F, 0}, {-0.003F, 1}));
    all.push_back(segment("out_handle_past_the_next_key", {40, 0}, {25, 1}));
    all.push_back(segment("in_handle_before_the_previous_key", {5, 0}, {-10, 1}));
    all.push_back(segment("handles_crossed", {20, 0}, {10, 1}));
    all.push_back(segment("handles_away_from_the_segment", {-15, 0}, {45, 1}));
    all.push_back(segment("both_before_the_segment", {-20, 0}, {-10, 1}));
    all.push_back(segment("both_after_the_segment", {40, 0}, {50, 1}));
    all.push_back(segment("cusp_near_the_left_key", {0.0003F, 0.5F}, {0.0001F, 0.5F}));
}

void addExtremeNumbers(std::vector<GalleryCurve>& all) {
    all.push_back(chain("frames_near_one_million", {{1e6F, 0}, {1e6F + 1, 1}, {1e6F + 7, -1}}, 0.5F));
    all.push_back(chain("frames_near_one_million_thirds", {{1e6F, 0}, {1e6F + 30, 1}}, 1.0F / 3.0F));
    all.push_back(chain("frames_at_float_resolution", {{16777214, 0}, {16777216, 1}, {16777220, 2}}, 0.5F));
    all.push_back(chain("frames_near_one_millionth", {{1e-6F, 0}, {2e-6F, 1}, {5e-6F, -1}}, 0.5F));
    all.push_back(chain("denormal_frames", {{0, 0}, {1e-42F, 1}, {3e-42F, 2}}, 0.5F));
    all.push_back(chain("negative_frames", {{-100, 4}, {-50, 2}, {-10, 8}}, 0.5F));
    all.push_back(chain("huge_values", {{0, -1e30F}, {10, 1e30F}, {20, 3e38F}}, 0.5F));
    all.push_back(chain("values_around_one_millionth", {{0, 2e-6F}, {10, -2e-6F}, {20, 5e-7F}}, 0.5F));
    all.push_back(chain("huge_frames", {{-1e30F, 0}, {1e30F, 1}}, 0.5F));
    all.push_back(curve("nan_value", {stepKey(0, 0), stepKey(10, NAN_VALUE), stepKey(20, 1)}));
    all.push_back(segment("nan_handle", {NAN_VALUE, 0}, {15, 1}));
    all.push_back(segment("infinite_handle", {INF, 0}, {15, 1}));
    all.push_back(curve("infinite_last_frame", {stepKey(0, 0), {{INF, 1}, {20, 1}, {INF, 1}}}));
}

GalleryCurve without(GalleryCurve curve, const std::string& name, std::size_t key, bool GalleryKey::*what) {
    curve.name = name;
    GalleryKey& changed = curve.keys[key];
    changed.*what = true;
    if (changed.noIn)
        changed.at.in = changed.at.key;
    if (changed.noOut)
        changed.at.out = changed.at.key;
    return curve;
}

void addDamaged(std::vector<GalleryCurve>& all) {
    const GalleryCurve wave = waves("", 4, 10.0F, 3.0F);
    all.push_back(without(wave, "no_out_handle", 1, &GalleryKey::noOut));
    all.push_back(without(wave, "no_in_handle", 1, &GalleryKey::noIn));
    all.push_back(without(without(wave, "", 1, &GalleryKey::noIn), "no_handles", 1, &GalleryKey::noOut));
    all.push_back(without(wave, "first_key_forgotten", 0, &GalleryKey::forgotten));
    all.push_back(without(wave, "middle_key_forgotten", 2, &GalleryKey::forgotten));
    all.push_back(without(wave, "last_key_forgotten", 3, &GalleryKey::forgotten));
    GalleryCurve lonely = without(wave, "", 0, &GalleryKey::forgotten);
    lonely = without(lonely, "", 1, &GalleryKey::forgotten);
    all.push_back(without(lonely, "one_key_left", 3, &GalleryKey::forgotten));
    all.push_back(without(all.back(), "no_key_left", 2, &GalleryKey::forgotten));
}

std::vector<GalleryCurve> makeGallery() {
    std::vector<GalleryCurve> all;
    addFewKeys(all);
    addPlainShapes(all);
    addThirds(all);
    addHandlesAstray(all);
    addExtremeNumbers(all);
    addDamaged(all);
    return all;
}

/// A key that is freed without its curve hearing of it.
void forgetKey(kaControlPoint2D* point) {
    point->setParent(0);
    kaAnimationManager::the()->destroyPoint2D(point);
}

} // namespace

const std::vector<GalleryCurve>& gallery() {
    static const std::vector<GalleryCurve> all = makeGallery();
    return all;
}

const GalleryCurve& galleryCurve(const std::string& name) {
    const auto found = std::find_if(gallery().begin(), gallery().end(),
                                    [&](const GalleryCurve& entry) { return entry.name == name; });
    if (found == gallery().end()) {
        std::fprintf(stderr, "the gallery has no curve \"%s\"\n", name.c_str());
        std::abort();
    }
    return *found;
}

kaAnimationCurve2D* build(const GalleryCurve& curve) {
    kaAnimationManager* manager = kaAnimationManager::the();
    kaAnimationCurve2D* built = manager->createCurve2D(0ULL);
    std::vector<kaControlPoint2D*> points;
    for (const GalleryKey& key : curve.keys) {
        points.push_back(makeKey(key.at));
        if (key.noIn)
            manager->destroyPoint2D(points.back()->getInTangent());
        if (key.noOut)
            manager->destroyPoint2D(points.back()->getOutTangent());
    }
    built->setPoints(points);
    for (std::size_t i = 0; i < points.size(); ++i)
        if (curve.keys[i].forgotten)
            forgetKey(points[i]);
    return built;
}

std::vector<Key> sampledKeys(const GalleryCurve& curve) {
    std::vector<Key> keys;
    for (const GalleryKey& key : curve.keys)
        if (!key.forgotten)
            keys.push_back(key.at);
    std::stable_sort(keys.begin(), keys.end(), [](const Key& a, const Key& b) { return a.key.x < b.key.x; });
    const auto sameFrame = [](const Key& a, const Key& b) { return a.key.x == b.key.x; };
    keys.erase(std::unique(keys.begin(), keys.end(), sameFrame), keys.end());
    return keys;
}

} // namespace ka_test
