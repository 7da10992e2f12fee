#include <orv/orvis.h>

#include <cstdio>

int main() {
    OrvList list;
    list.append((void*)"stage");
    Orv2dRect r(10, 20, 30, 40);
    Orv2dMatrix m(2.0f, 2.0f);
    m.apply(r);
    std::printf("%u %d %d %u %u\n", list.length(), r.x, r.y, r.w, r.h);
    return 0;
}
