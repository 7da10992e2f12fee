// Free cameras: the matrices they build (against properties and double-precision products
// computed here), their messages in order, print and rays.
#include <array>
#include <cmath>

#include "orv_fixtures.h"
#include "orv/camera.h"

namespace {

typedef std::array<double, 16> M;
M mul(const M& a, const M& b) {
    M r{};
    for (int i = 0; i < 4; i++)
        for (int j = 0; j < 4; j++)
            for (int k = 0; k < 4; k++) r[i * 4 + j] += a[i * 4 + k] * b[k * 4 + j];
    return r;
}
// Rotation about z (axis 2) or x (axis 0) by degrees.
M turn(int axis, double deg) {
    double c = cos(deg * M_PI / 180), s = sin(deg * M_PI / 180);
    if (axis == 2) return {c, -s, 0, 0, s, c, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    return {1, 0, 0, 0, 0, c, -s, 0, 0, s, c, 0, 0, 0, 0, 1};
}
void expectMatrix(const Orv3dMatrix& m, const M& want, const std::string& what) {
    for (int i = 0; i < 16; i++) EXPECT_NEAR(m.m[i], want[i], 1e-6) << what << " element " << i;
}
void expectNear(std::initializer_list<double> got, std::initializer_list<double> want,
                const std::string& what, double tolerance = 1e-6) {
    for (size_t i = 0; i < got.size(); i++)
        EXPECT_NEAR(got.begin()[i], want.begin()[i], tolerance) << what << " " << i;
}
Orv3dPoint through(const Orv3dMatrix& m, Orv3dPoint p) {
    m.apply(p);
    return p;
}

}  // namespace

TEST(Camera, LookAtAndPolarViews) {
    // A general view: a rotation that takes the eye to the origin, the target down -z and the
    // up vector into the upper half of the y-z plane.
    OrvCamera camera;
    Orv3dPoint eye(1, 2, 3), at(-2, 0.5f, 1), up(1.3f, 3, 3.2f);  // up as eye + (0.3, 1, 0.2)
    camera.lookAt(eye, at, Orv3dVector(0.3f, 1, 0.2f));
    const Orv3dMatrix& o = camera.orientation();
    for (int i = 0; i < 3; i++)
        for (int j = 0; j < 3; j++)
            EXPECT_NEAR(o(i, 0) * o(j, 0) + o(i, 1) * o(j, 1) + o(i, 2) * o(j, 2), i == j, 1e-6);
    EXPECT_NEAR(o.det3(), 1, 1e-6);
    Orv3dPoint e = through(o, eye), a = through(o, at), u = through(o, up);
    expectNear({e.x, e.y, e.z, a.x, a.y, a.z + sqrt(9 + 2.25 + 4), u.x}, {0, 0, 0, 0, 0, 0, 0},
               "lookAt", 1e-5);
    EXPECT_GT(u.y, 0);
    Orv3dPoint p = camera.position();
    Orv3dVector d = camera.lookAt();
    expectNear({p.x, p.y, p.z, d.x * sqrt(15.25), d.y * sqrt(15.25), d.z * sqrt(15.25)},
               {1, 2, 3, -3, -1.5, -2}, "decomposed", 1e-5);

    camera.lookAt(5.0f, 30.0, 45.0, 60.0);
    M t = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, -5, 0, 0, 0, 1};
    expectMatrix(o, mul(t, mul(turn(2, -60), mul(turn(0, -45), turn(2, -30)))), "polar");
    e = through(o, camera.position());
    expectNear({e.x, e.y, e.z}, {0, 0, 0}, "polar eye", 1e-5);
}

TEST(Camera, LookFromEachSideOfTheDefaultCube) {
    struct Row {
        OrvPosition side;
        Orv3dPoint eye;
        Orv3dVector up;
    } rows[] = {{OrvFront, {0, 0, 1.5f}, {0, 1, 0}}, {OrvBack, {0, 0, -1.5f}, {0, 1, 0}},
                {OrvTop, {0, 1.5f, 0}, {0, 0, 1}},   {OrvBottom, {0, -1.5f, 0}, {0, 0, 1}},
                {OrvLeft, {-1.5f, 0, 0}, {0, 1, 0}}, {OrvRight, {1.5f, 0, 0}, {0, 1, 0}}};
    for (const Row& row : rows) {
        OrvCamera camera, expected;
        EXPECT_EQ(camera.lookAt(row.side, 0.5f), 1u) << row.side;
        expected.lookAt(row.eye, Orv3dPoint(0, 0, 0), row.up);
        EXPECT_EQ(camera.orientation(), expected.orientation()) << row.side;
    }
    OrvCamera camera, untouched;
    EXPECT_EQ(OrvTestOutput([&] { EXPECT_EQ(camera.lookAt(OrvCenter, 0.5f), 0u); }),
              "OrvCamera::lookAt : Bad position argument.\n");
    EXPECT_EQ(camera.orientation(), untouched.orientation());
}

TEST(Camera, ProjectionsAndTheirChecksInOrder) {
    OrvCamera camera;
    EXPECT_EQ(camera.perspective(60.0, 1.0f, 1.0f, 100.0f), 1u);
    const double t = tan(M_PI / 6), r = -101 / 99.0, s = -200 / 99.0;
    const Orv3dRect& v = camera.viewport();
    expectNear({v.x, v.y, v.w, v.h}, {-t, -t, 2 * t, 2 * t}, "rectangle");
    expectMatrix(camera.mapping(), {1 / t, 0, 0, 0, 0, 1 / t, 0, 0, 0, 0, r, s, 0, 0, -1, 0},
                 "perspective(60, 1, 1, 100)");
    EXPECT_EQ(camera.orthographic(Orv3dRect(-1, -2, 4, 3), -5, 15), 1u);  // near may be < 0
    expectMatrix(camera.mapping(),
                 {0.5, 0, 0, -0.5, 0, 2 / 3.0, 0, 1 / 3.0, 0, 0, -0.1, -0.5, 0, 0, 0, 1},
                 "orthographic");
    EXPECT_EQ(camera.isPerspective(), 0u);

    const std::string p = "OrvCamera::perspective", o = "OrvCamera::orthographic";
    const std::string positive = p + ": Near and far must be positive (>).\n";
    const Orv3dRect good(-1, -1, 2, 2), flat(0, 0, 0, 0), thin(0, 0, 1, 0);
    struct Row {
        int form;  // 0 by angle, 1 perspective rectangle, 2 orthographic
        double fovy;
        Orv3dRect rect;
        float near, far;
        std::string message;
    } rows[] = {{0, -0.5, {}, 1, 10, p + " : Fovy value outbounds [0.0, 180.0]\n"},
                {0, 180.5, {}, 1, 10, p + " : Fovy value outbounds [0.0, 180.0]\n"},
                {0, 0.0, {}, 1, 10, p + " : Rectangle width equals 0.\n"},
                {1, 0, flat, 0, 0, positive},
                {1, 0, good, 1, -1, positive},
                {1, 0, flat, 1, 1, p + " : Rectangle width equals 0.\n"},
                {1, 0, thin, 1, 1, p + " : Rectangle height equals 0.\n"},
                {1, 0, good, 1, 1, p + " : Near equals far.\n"},
                {2, 0, flat, 1, 1, o + " : Rectangle width equals 0.\n"},
                {2, 0, thin, 1, 1, o + " : Rectangle height equals 0.\n"},
                {2, 0, good, -2, -2, o + " : Near equals far.\n"}};
    for (const Row& row : rows) {
        OrvCamera c, untouched;
        unsigned long result = 1;
        EXPECT_EQ(OrvTestOutput([&] {
                      result = row.form == 0   ? c.perspective(row.fovy, 1, row.near, row.far)
                               : row.form == 1 ? c.perspective(row.rect, row.near, row.far)
                                               : c.orthographic(row.rect, row.near, row.far);
                  }),
                  row.message);
        EXPECT_EQ(std::make_tuple(0ul, untouched.mapping(), untouched.viewport()),
                  std::make_tuple(result, c.mapping(), c.viewport()))
            << row.message;
    }
}

TEST(Camera, ViewAllZoomAndTranslate) {
    // A free camera frames the cube of side 2 about the origin: r is its half diagonal.
    const double r = sqrt(3.0), top = 0.5 / (r + 0.5);  // near 0.5, 2 seen from the eye
    OrvCamera flat, deep, moved;
    deep.perspective(60.0, 1, 1, 10);
    for (OrvCamera* c : {&flat, &deep}) c->viewAll(0.5f);
    Orv3dPoint e = flat.position();
    Orv3dRect v = flat.viewport(), w = deep.viewport();
    expectNear({e.x, e.y, e.z, v.x, v.y, v.w, v.h, flat.nearDistance(), flat.farDistance()},
               {0, 0, r + 0.5, -r, -r, 2 * r, 2 * r, 0.5, 0.5 + 2 * r}, "orthographic");
    expectNear({w.x, w.y, w.w, w.h, deep.nearDistance(), deep.farDistance()},
               {-top, -top, 2 * top, 2 * top, 0.5, 3 * r + 1}, "perspective");
    EXPECT_NEAR(OrvCalculateAngle(2, 1), 90, 1e-9);

    deep.zoom(2);
    w = deep.viewport();
    expectNear({w.x, w.y, w.w, w.h}, {-2 * top, -2 * top, 4 * top, 4 * top}, "zoomed");
    Orv3dMatrix mapping = deep.mapping();
    deep.zoom(0);
    EXPECT_EQ(deep.mapping(), mapping);
    EXPECT_EQ(deep.viewport(), w);

    moved.translate(1, 2, 3);  // in the view's frame: the eye goes the other way
    e = moved.position();
    expectNear({e.x, e.y, e.z}, {-1, -2, -2}, "translated");
}

TEST(Camera, SingularPrintAndFreeRay) {
    OrvCamera camera, plain;
    camera.lookAt(Orv3dPoint(1, 1, 1), Orv3dPoint(1, 1, 1), Orv3dVector(0, 1, 0));
    EXPECT_EQ(OrvTestOutput([&] { camera.position(); }),
              "## Camera orientation: singular matrix (can't be inversed).\n");
    EXPECT_EQ(OrvTestOutput([&] { camera.position(); }), "");  // decomposed once

    plain.keepRatio(0);
    plain.perspective(Orv3dRect(-1, -0.5f, 2, 1), 0.25f, 8);
    EXPECT_EQ(OrvTestOutput([&] { plain.print(); }),
              "Camera : \n\t- perspective\n\t- ratio    : no\n"
              "\t- eye      : <0.000000, 0.000000, 1.000000>\n"
              "\t- lookat   : <0.000000, 0.000000, -1.000000>\n"
              "\t- lookup   : <0.000000, 1.000000, 0.000000>\n"
              "\t- viewport : <-1.000000, -0.500000, 2.000000, 1.000000>\n"
              "\t- Near     : 0.250000\n\t- Far      : 8.000000\n");

    Orv3dPoint origin(7, 8, 9);
    Orv3dVector direction(1, 2, 3);
    EXPECT_EQ(OrvTestOutput([&] { plain.spawnRay(5, 5, origin, direction, 0); }),
              "OrvCamera::spawnRay: The camera must be connected to a scene.\n");
    EXPECT_EQ(origin, Orv3dPoint(7, 8, 9));
    EXPECT_EQ(direction, Orv3dVector(1, 2, 3));
}
