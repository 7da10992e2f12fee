#include <orv/orvis.h>

#include <cstdio>

// These names are Xlib macros: they compile here only if no public header
// lets Xlib or GL leak into the application.
static int None = 0, Bool = 1, Status = 2, Above = 3;

int main() {
    OrvList list;
    list.append((void*)"stage");
    Orv2dRect r(10, 20, 30, 40);
    Orv2dMatrix m(2.0f, 2.0f);
    m.apply(r);
    std::printf("%u %d %d %u %u\n", list.length() + None + Bool + Status + Above - 6, r.x, r.y, r.w,
                r.h);
    return OrvGetClassInfo("OrvRectangle") ? 0 : 1;
}
