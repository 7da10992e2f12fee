// Colour space conversions and relief shades.
#include "orv/region.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

// The three results of a conversion of one colour space to another.
template <void (*convert)(float, float, float, float&, float&, float&)>
std::vector<float> to(float a, float b, float c) {
    float x, y, z;
    convert(a, b, c, x, y, z);
    return {x, y, z};
}
const auto hsv = to<OrvRGBToHSV>, hls = to<OrvRGBToHLS>, fromHSV = to<OrvHSVToRGB>,
           fromHLS = to<OrvHLSToRGB>;

void expectNear(const std::vector<float>& want, const std::vector<float>& got) {
    for (size_t i = 0; i < want.size(); i++) EXPECT_NEAR(want[i], got[i], 1e-5) << "channel " << i;
}

}  // namespace

TEST(Color, HSVBothWays) {
    expectNear({0, 1, 1}, hsv(1, 0, 0));
    expectNear({120, 1, 1}, hsv(0, 1, 0));
    expectNear({240, 1, 0.5f}, hsv(0, 0, 0.5f));
    expectNear({330, 1, 1}, hsv(1, 0, 0.5f));  // negative before the wrap
    expectNear({0, 0.5f, 0.8f}, hsv(0.8f, 0.4f, 0.4f));
    expectNear({0, 0, 0}, hsv(0, 0, 0));  // black: no saturation, no hue
    expectNear({0, 0, 0.4f}, hsv(0.4f, 0.4f, 0.4f));
    // Hues wrap, s and v clamp to 1; one sample in each sextant.
    expectNear({1, 0, 0.5f}, fromHSV(-30, 2, 1));
    expectNear({1, 1, 0}, fromHSV(780, 1, 3));
    expectNear({1, 0, 0}, fromHSV(360, 1, 1));
    expectNear({0.7f, 0.7f, 0.7f}, fromHSV(200, 0, 0.7f));
    const std::vector<float> sextants[6] = {{1, 0.5f, 0}, {0.5f, 1, 0}, {0, 1, 0.5f},
                                            {0, 0.5f, 1}, {0.5f, 0, 1}, {1, 0, 0.5f}};
    for (int i = 0; i < 6; i++) expectNear(sextants[i], fromHSV(30 + 60 * i, 1, 1));
}

TEST(Color, HLSHueRunsFromZeroToOne) {
    expectNear({0, 0.3f, 0}, hls(0.3f, 0.3f, 0.3f));
    expectNear({0, 0.5f, 1}, hls(1, 0, 0));
    expectNear({1.0f / 3, 0.5f, 1}, hls(0, 1, 0));
    expectNear({210.0f / 360, 0.4f, 0.5f}, hls(0.2f, 0.4f, 0.6f));
    expectNear({0, 0.75f, 1}, hls(1, 0.5f, 0.5f));  // l above one half
    expectNear({330.0f / 360, 0.5f, 1}, hls(1, 0, 0.5f));
    expectNear({0, 1, 0}, fromHLS(1.0f / 3, 0.5f, 1));
    expectNear({1, 0.5f, 0.5f}, fromHLS(0, 0.75f, 1));
    expectNear({0.25f, 0.25f, 0.25f}, fromHLS(0.9f, 0.25f, 0));
}

TEST(Color, ReliefShades) {
    // A light colour (v 0.8, s 0.5): the lit edge loses saturation, its value capped at 1.
    OrvReliefShades light;
    OrvComputeReliefShades(0.8f, 0.4f, 0.4f, light);
    expectNear({0, 0.35f, 1, 0.5f, 0.8f * 0.7142857f, 0.5f, 0.8f * 0.8695652f},
               {light.h, light.s[0], light.v[0], light.s[1], light.v[1], light.s[2], light.v[2]});
    // A dark one (v 0.2, s 0.5, h 120) is brightened by 1.6 and saturated by 1.42; exactly 0.5
    // counts as dark; a saturation of 1 stays capped.
    OrvReliefShades dark, half, vivid, white;
    OrvComputeReliefShades(0.1f, 0.2f, 0.1f, dark);
    expectNear({120, 0.5f, 0.32f, 0.71f, 0.125f, 0.2f * 0.8695652f},
               {dark.h, dark.s[0], dark.v[0], dark.s[1], dark.v[1], dark.v[2]});
    OrvComputeReliefShades(0.5f, 0.25f, 0.25f, half);
    expectNear({0.8f, 0.3125f}, {half.v[0], half.v[1]});
    OrvComputeReliefShades(0, 0, 0.4f, vivid);
    expectNear({240, 1}, {vivid.h, vivid.s[1]});
    OrvComputeReliefShades(1, 1, 1, white);
    expectNear({1, 0, 0.7142857f}, {white.v[0], white.s[0], white.v[1]});
}
