// Colour space conversions and the shades of relief gadgets.
#include "orv/region.h"

#include <cmath>

void OrvRGBToHSV(float r, float g, float b, float& h, float& s, float& v) {
    float mx = r > g ? r : g;
    if (b > mx) mx = b;
    float mn = r < g ? r : g;
    if (b < mn) mn = b;
    v = mx;
    s = mx != 0 ? (mx - mn) / mx : 0;
    if (s == 0) {
        h = 0;
        return;
    }
    float delta = mx - mn;
    if (r == mx)
        h = (g - b) / delta;
    else if (g == mx)
        h = 2 + (b - r) / delta;
    else
        h = 4 + (r - g) / delta;
    h *= 60;
    if (h < 0) h += 360;
}

void OrvHSVToRGB(float h, float s, float v, float& r, float& g, float& b) {
    if (s < 0) s = 0;
    if (s > 1) s = 1;
    if (v < 0) v = 0;
    if (v > 1) v = 1;
    while (h < 0) h += 360;
    while (h >= 360) h -= 360;
    if (s == 0) {
        r = g = b = v;
        return;
    }
    float x = h / 60;
    float i = std::floor(x);
    float f = x - i;
    float p = v * (1 - s);
    float q = v * (1 - s * f);
    float t = v * (1 - s * (1 - f));
    switch ((int)i) {
        case 1:
            r = q, g = v, b = p;
            break;
        case 2:
            r = p, g = v, b = t;
            break;
        case 3:
            r = p, g = q, b = v;
            break;
        case 4:
            r = t, g = p, b = v;
            break;
        case 5:
            r = v, g = p, b = q;
            break;
        default:
            r = v, g = t, b = p;
            break;
    }
}

void OrvRGBToHLS(float r, float g, float b, float& h, float& l, float& s) {
    float mx = r > g ? r : g;
    if (b > mx) mx = b;
    float mn = r < g ? r : g;
    if (b < mn) mn = b;
    l = (mx + mn) / 2;
    if (mx == mn) {
        s = 0;
        h = 0;
        return;
    }
    float delta = mx - mn;
    s = l <= 0.5f ? delta / (mx + mn) : delta / (2 - mx - mn);
    float rc = (mx - r) / delta, gc = (mx - g) / delta, bc = (mx - b) / delta;
    if (r == mx)
        h = bc - gc;
    else if (g == mx)
        h = 2 + rc - bc;
    else
        h = 4 + gc - rc;
    h *= 60;
    if (h < 0) h += 360;
    h /= 360;
}

static float orvHLSValue(double m1, double m2, double hue) {
    if (hue > 360) hue -= 360;
    if (hue < 0) hue += 360;
    if (hue < 60) return (float)(m1 + (m2 - m1) * hue / 60);
    if (hue < 180) return (float)m2;
    if (hue < 240) return (float)(m1 + (m2 - m1) * (240 - hue) / 60);
    return (float)m1;
}

void OrvHLSToRGB(float h, float l, float s, float& r, float& g, float& b) {
    double hue = (double)h * 360;
    double m2 = l <= 0.5f ? (double)l * (1.0 + s) : (double)(l + s - l * s);
    if (s == 0) {
        r = g = b = l;
        return;
    }
    double m1 = 2.0 * l - m2;
    r = orvHLSValue(m1, m2, hue + 120);
    g = orvHLSValue(m1, m2, hue);
    b = orvHLSValue(m1, m2, hue - 120);
}

static float orvCap(float x) {
    return x > 1 ? 1 : x;
}

// Light colours get a paler lit edge, dark ones a brighter one and a more
// saturated shade, so the relief reads on both.
void OrvComputeReliefShades(float r, float g, float b, OrvReliefShades& out) {
    float s, v;
    OrvRGBToHSV(r, g, b, out.h, s, v);
    if (v > 0.5f) {
        out.s[0] = orvCap((float)(s * 0.7));
        out.v[0] = orvCap((float)(v * 1.4));
        out.s[1] = s;
        out.v[1] = orvCap((float)(v * 0.7142857));
    } else {
        out.s[0] = s;
        out.v[0] = orvCap((float)(v * 1.6));
        out.s[1] = orvCap((float)(s * 1.42));
        out.v[1] = orvCap((float)(v * 0.625));
    }
    out.s[2] = s;
    out.v[2] = orvCap((float)(v * 0.8695652));
}
