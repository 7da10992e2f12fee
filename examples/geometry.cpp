// A tour of the geometry foundation: a rotating stage matrix, a region of
// invalidated rectangles, a flattened Bézier curve and a hit test on it.
#include <orv/orvis.h>

#include <cstdio>

static void printRect(const char* label, const Orv2dRect& r) {
    std::printf("%s %d,%d %ux%u\n", label, r.x, r.y, r.w, r.h);
}

int main() {
    // A quarter turn about (100, 100): the constructor uses 3.14 for pi.
    Orv2dMatrix turn(Orv2dPoint(100, 100), 90);
    Orv2dPoint p(150, 100);
    turn.apply(p);
    std::printf("quarter turn of 150,100 about 100,100: %d,%d\n", p.x, p.y);
    turn.inverse(p);
    std::printf("and back: %d,%d\n", p.x, p.y);

    Orv2dRect box(0, 0, 40, 20);
    Orv2dMatrix(2.0f, 0.5f).apply(box);
    printRect("rectangle 0,0 40x20 scaled by 2, 0.5:", box);

    // A region collects what a stage must redraw; overlaps extend a member.
    Orv2dRegion region;
    region.extendBy(Orv2dRect(10, 10, 30, 30));
    region.extendBy(Orv2dRect(30, 30, 30, 30));
    region.extendBy(Orv2dRect(100, 10, 20, 20));
    std::printf("region of %u rectangles\n", (unsigned)region.count);
    for (unsigned i = 0; i < region.count; i++)
        printRect("  member", region.rectangle((unsigned short)i));
    printRect("  bounding box", region.bbox);

    // An arch flattened into a polyline, then hit tested.
    Orv2dPoint arch[4] = {{0, 0}, {0, 100}, {100, 100}, {100, 0}};
    unsigned n = 0;
    Orv2dPoint* pts = OrvCreateOpenBezier(4, arch, n);
    std::printf("arch flattened into %u points:", n);
    for (unsigned i = 0; i < n; i++) std::printf(" %d,%d", pts[i].x, pts[i].y);
    std::printf("\n");
    std::printf("50,74 hits flattened segment %d; 50,50 gives %d\n",
                OrvPointInBezier(Orv2dPoint(50, 74), 4, arch),
                OrvPointInBezier(Orv2dPoint(50, 50), 4, arch));

    Orv2dPoint head[3];
    OrvComputeArrow(Orv2dPoint(0, 0), Orv2dPoint(30, 40), 1, head);
    std::printf("arrow head: tip %d,%d base %d,%d and %d,%d\n", head[0].x, head[0].y, head[1].x,
                head[1].y, head[2].x, head[2].y);
    return 0;
}
