// Colour space conversions and relief shades.
#include "orv/region.h"

#include <gtest/gtest.h>

struct Rgb {
    float r, g, b;
};

TEST(Color, RGBToHSV) {
    float h, s, v;
    OrvRGBToHSV(1, 0, 0, h, s, v);
    EXPECT_EQ(h, 0);
    EXPECT_EQ(s, 1);
    EXPECT_EQ(v, 1);
    OrvRGBToHSV(0, 1, 0, h, s, v);
    EXPECT_FLOAT_EQ(h, 120);
    OrvRGBToHSV(0, 0, 0.5f, h, s, v);
    EXPECT_FLOAT_EQ(h, 240);
    EXPECT_EQ(v, 0.5f);
    OrvRGBToHSV(1, 0, 0.5f, h, s, v);  // negative before the wrap
    EXPECT_FLOAT_EQ(h, 330);
    OrvRGBToHSV(0.8f, 0.4f, 0.4f, h, s, v);
    EXPECT_FLOAT_EQ(s, 0.5f);
    EXPECT_FLOAT_EQ(v, 0.8f);
    EXPECT_EQ(h, 0);

    h = 77;
    OrvRGBToHSV(0, 0, 0, h, s, v);  // black: no saturation, no hue
    EXPECT_EQ(h, 0);
    EXPECT_EQ(s, 0);
    EXPECT_EQ(v, 0);
    OrvRGBToHSV(0.4f, 0.4f, 0.4f, h, s, v);
    EXPECT_EQ(h, 0);
    EXPECT_EQ(s, 0);
    EXPECT_EQ(v, 0.4f);
}

TEST(Color, HSVToRGBWrapsAndClamps) {
    float r, g, b;
    OrvHSVToRGB(-30, 1, 1, r, g, b);  // -30 is 330
    EXPECT_FLOAT_EQ(r, 1);
    EXPECT_FLOAT_EQ(g, 0);
    EXPECT_FLOAT_EQ(b, 0.5f);
    OrvHSVToRGB(-30, 2, 1, r, g, b);  // s clamps to 1
    EXPECT_FLOAT_EQ(r, 1);
    EXPECT_FLOAT_EQ(g, 0);
    EXPECT_FLOAT_EQ(b, 0.5f);
    OrvHSVToRGB(780, 1, 3, r, g, b);  // 60, v clamps to 1
    EXPECT_FLOAT_EQ(r, 1);
    EXPECT_FLOAT_EQ(g, 1);
    EXPECT_FLOAT_EQ(b, 0);
    OrvHSVToRGB(200, 0, 0.7f, r, g, b);  // grey
    EXPECT_EQ(r, 0.7f);
    EXPECT_EQ(g, 0.7f);
    EXPECT_EQ(b, 0.7f);
    OrvHSVToRGB(360, 1, 1, r, g, b);  // 360 is 0
    EXPECT_FLOAT_EQ(r, 1);
    EXPECT_FLOAT_EQ(g, 0);
    EXPECT_FLOAT_EQ(b, 0);

    // One sample in each sextant.
    const float hues[6] = {30, 90, 150, 210, 270, 330};
    const Rgb expected[6] = {{1, 0.5f, 0}, {0.5f, 1, 0}, {0, 1, 0.5f},
                             {0, 0.5f, 1}, {0.5f, 0, 1}, {1, 0, 0.5f}};
    for (int i = 0; i < 6; i++) {
        OrvHSVToRGB(hues[i], 1, 1, r, g, b);
        EXPECT_FLOAT_EQ(r, expected[i].r) << hues[i];
        EXPECT_FLOAT_EQ(g, expected[i].g) << hues[i];
        EXPECT_FLOAT_EQ(b, expected[i].b) << hues[i];
    }
}

TEST(Color, HLSHueRunsFromZeroToOne) {
    float h, l, s;
    OrvRGBToHLS(0.3f, 0.3f, 0.3f, h, l, s);
    EXPECT_EQ(h, 0);
    EXPECT_EQ(s, 0);
    EXPECT_FLOAT_EQ(l, 0.3f);
    OrvRGBToHLS(1, 0, 0, h, l, s);
    EXPECT_EQ(h, 0);
    EXPECT_FLOAT_EQ(l, 0.5f);
    EXPECT_FLOAT_EQ(s, 1);
    OrvRGBToHLS(0, 1, 0, h, l, s);
    EXPECT_FLOAT_EQ(h, 1.0f / 3);
    OrvRGBToHLS(0.2f, 0.4f, 0.6f, h, l, s);
    EXPECT_FLOAT_EQ(h, 210.0f / 360);
    EXPECT_FLOAT_EQ(l, 0.4f);
    EXPECT_FLOAT_EQ(s, 0.5f);
    OrvRGBToHLS(1, 0.5f, 0.5f, h, l, s);  // l above one half
    EXPECT_FLOAT_EQ(l, 0.75f);
    EXPECT_FLOAT_EQ(s, 1);
    OrvRGBToHLS(1, 0, 0.5f, h, l, s);
    EXPECT_FLOAT_EQ(h, 330.0f / 360);

    float r, g, b;
    OrvHLSToRGB(1.0f / 3, 0.5f, 1, r, g, b);
    EXPECT_NEAR(r, 0, 1e-6);
    EXPECT_NEAR(g, 1, 1e-6);
    EXPECT_NEAR(b, 0, 1e-6);
    OrvHLSToRGB(0, 0.75f, 1, r, g, b);
    EXPECT_FLOAT_EQ(r, 1);
    EXPECT_FLOAT_EQ(g, 0.5f);
    EXPECT_FLOAT_EQ(b, 0.5f);
    OrvHLSToRGB(0.9f, 0.25f, 0, r, g, b);
    EXPECT_EQ(r, 0.25f);
    EXPECT_EQ(g, 0.25f);
    EXPECT_EQ(b, 0.25f);
}

TEST(Color, RoundTrips) {
    const Rgb colours[] = {
        {0.1f, 0.2f, 0.3f}, {0.9f, 0.1f, 0.4f},    {0.25f, 0.75f, 0.5f}, {1, 1, 0},
        {0.6f, 0.3f, 0.9f}, {0.05f, 0.05f, 0.06f}, {0.99f, 0.5f, 0.01f}, {0.3f, 0.8f, 0.2f}};
    for (const Rgb& c : colours) {
        float h, s, v, r, g, b;
        OrvRGBToHSV(c.r, c.g, c.b, h, s, v);
        EXPECT_GE(h, 0);
        EXPECT_LT(h, 360);
        OrvHSVToRGB(h, s, v, r, g, b);
        EXPECT_NEAR(r, c.r, 1e-5);
        EXPECT_NEAR(g, c.g, 1e-5);
        EXPECT_NEAR(b, c.b, 1e-5);

        float l;
        OrvRGBToHLS(c.r, c.g, c.b, h, l, s);
        EXPECT_GE(h, 0);
        EXPECT_LT(h, 1);
        OrvHLSToRGB(h, l, s, r, g, b);
        EXPECT_NEAR(r, c.r, 1e-5);
        EXPECT_NEAR(g, c.g, 1e-5);
        EXPECT_NEAR(b, c.b, 1e-5);
    }
}

TEST(Color, ReliefShades) {
    OrvReliefShades light;
    OrvComputeReliefShades(0.8f, 0.4f, 0.4f, light);  // v 0.8, s 0.5
    EXPECT_EQ(light.h, 0);
    EXPECT_FLOAT_EQ(light.s[0], 0.35f);
    EXPECT_EQ(light.v[0], 1);  // 1.12 capped
    EXPECT_FLOAT_EQ(light.s[1], 0.5f);
    EXPECT_FLOAT_EQ(light.v[1], 0.8f * 0.7142857f);
    EXPECT_FLOAT_EQ(light.s[2], 0.5f);
    EXPECT_FLOAT_EQ(light.v[2], 0.8f * 0.8695652f);

    OrvReliefShades dark;
    OrvComputeReliefShades(0.1f, 0.2f, 0.1f, dark);  // v 0.2, s 0.5, h 120
    EXPECT_FLOAT_EQ(dark.h, 120);
    EXPECT_FLOAT_EQ(dark.s[0], 0.5f);
    EXPECT_FLOAT_EQ(dark.v[0], 0.32f);
    EXPECT_FLOAT_EQ(dark.s[1], 0.71f);
    EXPECT_FLOAT_EQ(dark.v[1], 0.125f);
    EXPECT_FLOAT_EQ(dark.v[2], 0.2f * 0.8695652f);

    OrvReliefShades half;  // exactly 0.5 is dark
    OrvComputeReliefShades(0.5f, 0.25f, 0.25f, half);
    EXPECT_FLOAT_EQ(half.v[0], 0.8f);
    EXPECT_FLOAT_EQ(half.v[1], 0.3125f);

    OrvReliefShades vivid;  // saturation 1 of a dark colour stays capped
    OrvComputeReliefShades(0, 0, 0.4f, vivid);
    EXPECT_EQ(vivid.s[1], 1);
    EXPECT_FLOAT_EQ(vivid.h, 240);
    OrvReliefShades white;
    OrvComputeReliefShades(1, 1, 1, white);
    EXPECT_EQ(white.v[0], 1);
    EXPECT_EQ(white.s[0], 0);
    EXPECT_FLOAT_EQ(white.v[1], 0.7142857f);
}
