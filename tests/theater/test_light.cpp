// The camera, light and environment records with each reader message; the director's
// environments and default colours; what render3d leaves in GL's light state; where fixed
// and world lights fall on a lit sheet as the camera turns.
#include "theater_support.h"

#include "orv/light.h"

namespace {

template <class... T>
std::string saved(const T&... records) {
    std::ostringstream out;
    OrvOStream writer(out);
    (void)(writer << ... << records);
    return out.str();
}
void expectFloats(const GLfloat* got, std::vector<float> want, const std::string& what) {
    for (size_t i = 0; i < want.size(); i++) EXPECT_NEAR(got[i], want[i], 1e-6) << what << " " << i;
}

class Records : public TheaterTest {
protected:
    OrvPointLight point{OrvRGB(1, 0.5f, 0.25f), 0.75f, Orv3dPoint(1, 2, 3)};
    OrvDirectionalLight directional{OrvRGB(0, 0, 1), 1, Orv3dVector(0, -1, -0.5f)};
    OrvSpotLight spot{OrvRGB(0.5f, 0.5f, 0.5f), 0.5f, Orv3dPoint(0, 4, 0),
                      Orv3dVector(0, -1, 0),    12,   30};
};

}  // namespace

// Each record read back whole is the scene file's round trip; here, the reader's message for
// each fault, nothing made and nothing changed; and the saved form of no environment.
TEST_F(Records, ReaderMessages) {
    OrvCamera camera;
    OrvEnvironment* env = director->environment(OrvRGB(0.1f, 0.2f, 0.3f), 0.9f, 1, 0, 0, 1, 0);
    OrvCount(env);
    const OrvEnvironment* none = nullptr;
    EXPECT_EQ("environment\tno\n", saved(none));
    std::istringstream in(saved(none));
    OrvIStream reader(director, in);
    OrvEnvironment* read = env;
    reader >> read;
    EXPECT_EQ(nullptr, read);
    const std::string records[] = {saved(camera), saved(&point), saved(&directional), saved(&spot),
                                   saved(env)};
    struct Row {
        int record;
        std::string from, to, message;
    } rows[] = {
        {0, "camera", "camara", "OrvIStream : Not a camera object.\n"},
        {0, "{", "(", "OrvIStream : Camera, bad begin separator.\n"},
        {0, "lookUp", "lookUP", "OrvIStream : Bad data.\n"},
        {0, "\tno", "\tnah", "## OrvIStream: Definition error (bool).\n"},
        {0, "\n}", "\n)", "## OrvIStream: Bad end separator (OrvCamera).\n"},
        {1, "pointLight", "sunLight", "OrvIStream: Definition error (Light sunLight)\n"},
        {1, "{", "(", "OrvIStream : OrvPointLight, bad begin separator.\n"},
        {1, "\n}", "\n)", "OrvIStream : OrvPointLight, bad end separator.\n"},
        {2, "{", "(", "OrvIStream: OrvDirectionalLight, bad begin separator.\n"},  // no blank
        {2, "\n}", "\n)", "OrvIStream : OrvDirectionalLight, bad end separator.\n"},
        {3, "{", "(", "OrvIStream : OrvSpotLight, bad begin separator.\n"},
        {3, "cutOffAngle", "cutOff", "OrvIStream : Bad data.\n"},
        {3, "\n}", "\n)", "OrvIStream : OrvSpotLight, bad end separator.\n"},
        {4, "environment", "environs", "OrvIStream: Definition error (Environment environs)\n"},
        {4, "{", "(", "OrvIStream : OrvEnvironment, bad begin separator.\n"},
        {4, "\n}", "\n)", "OrvIStream : OrvEnvironment, bad end separator.\n"}};
    for (const Row& row : rows) {
        std::string spoilt = records[row.record];
        std::istringstream bad(spoilt.replace(spoilt.find(row.from), row.from.size(), row.to));
        OrvIStream badReader(director, bad);
        OrvCamera target, untouched;
        OrvLight* light = &point;
        OrvEnvironment* environment = env;
        EXPECT_EQ(OrvTestOutput([&] {
                      if (row.record == 0) badReader >> target;
                      if (row.record > 0 && row.record < 4) badReader >> light;
                      if (row.record == 4) badReader >> environment;
                  }),
                  row.message);
        // Nothing made, nothing changed.
        EXPECT_EQ(saved(target), saved(untouched)) << row.message;
        EXPECT_TRUE(row.record == 0 || !light || !environment) << row.message;
    }
    OrvRelease(env);
}

TEST_F(Records, DirectorEnvironmentsAndDefaults) {
    const OrvEnvironment* d = director->defaultEnvironment;
    ASSERT_NE(d, nullptr);
    EXPECT_EQ(saved(d),
              saved(director->environment(director->defaultAmbientColor(), 1, 1, 0, 0, 0, 0)));
    EXPECT_EQ(d->count, 1);
    const OrvRGB colours[] = {director->defaultAmbientColor(), director->defaultDiffuseColor(),
                              director->defaultSpecularColor(), director->defaultEmissiveColor()};
    EXPECT_EQ(
        saved(colours[0], colours[1], colours[2], colours[3]),
        "faceColor\t0.2 0.2 0.2\nfaceColor\t0.8 0.8 0.8\nfaceColor\t0 0 0\nfaceColor\t0 0 0\n");
    OrvEnvironment *a = director->environment(OrvRGB(), 1, 1, 0, 0, 0, 0),
                   *b = director->environment(OrvRGB(), 1, 1, 0, 0, 0, 0);
    EXPECT_TRUE(a != b && director->environments->find(a) && director->environments->find(b));
    OrvCount(a);
    OrvRelease(a);  // its last holder let go: out of the list; b waits for closeResources
    EXPECT_EQ(director->environments->find(a), nullptr);
    // Past GL's eight lights: the message, before anything reaches GL.
    for (unsigned short index : {8, 9})
        EXPECT_EQ(OrvTestOutput([&] { EXPECT_EQ(point.render3d(index, nullptr), 0u); }),
                  "OrvLight::render3d : Number of lights can't exceed 8 \n");
}

// Diffuse and specular, position, spot direction, cut-off and exponent, then the attenuations
// of the scene's environment, and of the director's once the scene has none.
TEST_F(Records, LightsSentToGLAsTheyAre) {
    OrvLight* lights[] = {&point, &directional, &spot};
    const std::vector<float> want[] = {
        {1, .5f, .25f, .75f, 1, .5f, .25f, .75f, 1, 2, 3, 1, 0, 0, -1, 180, 0},
        {0, 0, 1, 1, 0, 0, 1, 1, 0, -1, -.5f, 0, 0, -1, -.5f, 180, 0},
        {.5f, .5f, .5f, .5f, .5f, .5f, .5f, .5f, 0, 4, 0, 1, 0, -1, 0, 30, 12}};
    const GLenum names[][3] = {
        {GL_DIFFUSE, GL_SPECULAR, GL_POSITION},
        {GL_SPOT_DIRECTION, GL_SPOT_CUTOFF, GL_SPOT_EXPONENT},
        {GL_CONSTANT_ATTENUATION, GL_LINEAR_ATTENUATION, GL_QUADRATIC_ATTENUATION}};
    const int sizes[] = {4, 4, 4, 3, 1, 1, 1, 1, 1};
    OrvEnvironment* env =
        director->environment(OrvRGB(0.1f, 0.2f, 0.3f), 0.9f, 2, 0.5f, 0.25f, 1, 0);
    OrvCount(env);  // past the scene's hold
    for (int pass = 0; pass < 2; pass++) {
        scene->environment(pass ? nullptr : env);
        scene->beginRendering(nullptr);
        glLoadIdentity();
        for (unsigned short i = 0; i < 3; i++) {
            std::string what = lights[i]->className() + std::string(" ") + std::to_string(pass);
            EXPECT_EQ(lights[i]->render3d(i, scene), 1u) << what;
            std::vector<float> got, expected = want[i];
            for (int k = 0; k < 9; k++) {
                GLfloat v[4];
                glGetLightfv(GL_LIGHT0 + i, names[k / 3][k % 3], v);
                got.insert(got.end(), v, v + sizes[k]);
            }
            expected.insert(expected.end(), {pass ? 1 : 2.f, pass ? 0 : .5f, pass ? 0 : .25f});
            expectFloats(got.data(), expected, what);
            EXPECT_TRUE(glIsEnabled(GL_LIGHT0 + i)) << what;
        }
        scene->endRendering();
    }
    scene->beginRendering(nullptr);
    env->render3d(scene);
    GLfloat ambient[4];
    GLint flags[2] = {-1, -1};
    glGetFloatv(GL_LIGHT_MODEL_AMBIENT, ambient);
    glGetIntegerv(GL_LIGHT_MODEL_LOCAL_VIEWER, flags);
    glGetIntegerv(GL_LIGHT_MODEL_TWO_SIDE, flags + 1);
    expectFloats(ambient, {0.1f, 0.2f, 0.3f, 0.9f}, "ambient");
    EXPECT_EQ(std::vector<GLint>(flags, flags + 2), std::vector<GLint>({1, 0}));
    scene->endRendering();
    OrvRelease(env);
}

// The camera turned a quarter about its line of sight: the light of a fixed light stays where
// the viewer saw it, and a world light's turns with the sheet under it.
TEST_F(Records, FixedLightsStayWithTheViewerWorldLightsWithTheWorld) {
    theater->append(litSheet(director), 0);
    OrvCamera* camera = scene->currentCamera();
    camera->perspective(30.0, 1, 1, 20);
    const Orv3dPoint under(0.4f, 0, 0);  // the point of the sheet the light stands over
    for (unsigned long fixed : {1ul, 0ul}) {
        camera->lookAt(Orv3dPoint(0, 0, 5), Orv3dPoint(0, 0, 0), Orv3dVector(0, 1, 0));
        // A fixed light's place is in the eye's frame, where the sheet lies at z -5.
        OrvPointLight* light = new OrvPointLight(OrvRGB(1, 1, 1), 1, Orv3dPoint(0.4f, 0, 0.25f));
        if (fixed) light->position(Orv3dPoint(0.4f, 0, -4.75f));
        light->fixed(fixed);
        scene->add(light);
        Orv3dPoint seen = toWindow(scene, under), at = brightest(scene);
        EXPECT_NEAR(seen.x, at.x, 1.5) << "fixed " << fixed;
        EXPECT_NEAR(seen.y, at.y, 1.5) << "fixed " << fixed;
        camera->lookAt(Orv3dPoint(0, 0, 5), Orv3dPoint(0, 0, 0), Orv3dVector(1, 0, 0));
        if (!fixed) seen = toWindow(scene, under);
        at = brightest(scene);
        EXPECT_NEAR(seen.x, at.x, 1.5) << "turned, fixed " << fixed;
        EXPECT_NEAR(seen.y, at.y, 1.5) << "turned, fixed " << fixed;
        scene->remove(light);
        delete light;
    }
}
