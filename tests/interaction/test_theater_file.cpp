// A theater's 3D file: its layout, a round trip to the same text and pixels, and files that are
// cut, name unknown classes, hold a default scene of the wrong class or the wrong dimension.
#include "../theater/theater_support.h"

#include <cstdio>

#include "orv/actor3d.h"
#include "orv/lines3d.h"

#include "../scene/vertex_samples.h"

// A scene class of an application's own: a subtype of OrvScene is a default scene.
class SavedOffScene : public OrvScene {
public:
    explicit SavedOffScene(OrvDirector* d) : OrvScene(d, Orv2dRect(0, 0, 40, 30), 1) {}
    explicit SavedOffScene(OrvIStream& in) : OrvScene(in) {}
    unsigned long isOffScreenRenderer() const override { return 1; }
    OrvClassInfo* classInfo() const override { return _classInfo; }
    static OrvActor* read(OrvIStream& in) { return new SavedOffScene(in); }
    static OrvClassInfo* _classInfo;
};
ORV_DECLARE_CLASS_INIT(SavedOffScene)
ORV_DEFINE_CLASS_INIT(SavedOffScene, "OrvScene", SavedOffScene::read)

class TheaterFileTest : public TheaterTest {
protected:
    SampleArrays arrays;
    OrvTheater* fresh = nullptr;
    void SetUp() override {
        TheaterTest::SetUp();
        if (!director) return;
        fresh = new OrvTheater(director);
        // Every 3D actor class, in three layers, with names, roles and a make-up shared by two.
        OrvMakeUp* red =
            director->makeUpForeground(director->defaultMakeUp, director->color("red"));
        OrvSeries* mesh = new OrvSeries(OrvQuadMesh, 1, 2);
        mesh->setNonIndexed(arrays.points, nullptr, nullptr, nullptr, nullptr);
        Orv3dActor* faces = new Orv3dActorFaceSet(director, compactSample(arrays), red);
        Orv3dActor* shape = new Orv3dShape(director, mesh, nullptr, nullptr, red);
        Orv3dActor* more = new Orv3dActorFaceSet(director, fullSample(arrays));
        faces->scale(0.5f, 0.5f, 0.5f, 0), shape->translate(-1, -0.5f, 0, 0);
        faces->setName("faces"), shape->setName("shape");
        faces->setRole(OrvGetRole("Button")), more->setRole(OrvGetRole("Toggle"));
        theater->append(faces, 0), theater->append(shape, 1), theater->append(more, 1);
        theater->append(new Orv3dActor(director), 2);
        // And the line actors, sharing the red make-up.
        const Orv3dPoint zig[4] = {{-1, 0, 0}, {0, 1, 0}, {1, 0, 0}, {2, 1, 0}};
        theater->append(new Orv3dLine(director, zig[0], zig[1], red), 2);
        theater->append(new Orv3dPolyline(director, 3, zig, nullptr), 2);
        theater->append(new Orv3dSplinePath(director, 3, zig, 4, red), 2);
        theater->append(new Orv3dCurvePath(director, 4, zig, 3, nullptr), 2);
        theater->append(new Orv3dWall(director, zig[0], 2, 0.5f, OrvWallY, red), 0);
        theater->append(new Orv3dWalls(director, zig[0], 2, 0.5f, nullptr), 0);
    }
    void TearDown() override {
        delete fresh;
        TheaterTest::TearDown();
    }
    static std::string save(OrvTheater* t, const OrvScene* s) {
        std::ostringstream out;
        t->save(out, s);
        return out.str();
    }
    static std::string undated(const std::string& s) { return s.substr(s.find('\n')); }
    // Reads the text into the fresh theater: the answer, what was printed, and the scene.
    unsigned long read(const std::string& text, std::string& said, OrvScene** got = nullptr) {
        std::istringstream in(text);
        OrvScene* s = nullptr;
        unsigned long done = 0;
        said = OrvTestOutput([&] { done = fresh->read(in, s, -1); });
        if (got)
            *got = s;
        else
            delete s;
        return done;
    }
};

// The lines that are not indented, after the date, joined by "|": the file's skeleton.
static std::string skeleton(const std::string& text) {
    std::istringstream in(text.substr(text.find('\n') + 1));
    std::string all;
    for (std::string line; std::getline(in, line);)
        if (line.empty() || line[0] != '\t') all += line + "|";
    return all;
}

TEST_F(TheaterFileTest, LayoutAndARoundTripToTheSameTextAndPixels) {
    const std::string bare = save(theater, nullptr), full = save(theater, scene);
    const std::string
        blocks =
            "OrvStream 3d|cardinal = 10|Orv3dActorFaceSet  1  {|}|Orv3dWall  2  {|}|Orv3dWalls  3  "
            "{|}|Orv3dShape  4  {|}|Orv3dActorFaceSet  5  {|}|Orv3dActor  6  {|}|Orv3dLine  7  {|}|"
            "Orv3dPolyline  8  {|}|Orv3dSplinePath  9  {|}|Orv3dCurvePath  10  {|}|defaultScene = ",
        end = "||% Do not modify or delete the last line (Orvis plugins).|% EOF|";
    EXPECT_EQ(0u, bare.find("% Orvis 1 "));
    EXPECT_EQ(blocks + "no" + end, skeleton(bare));
    EXPECT_EQ(blocks + "yes|OrvScene  0  {|}" + end, skeleton(full));
    for (const char* item :
         {"\tname\t\t\"faces\"\n", "\trole\t\tButton\n", "\tlayer\t\t2\n", "\tmakeUp\t\t.USE"})
        EXPECT_NE(std::string::npos, bare.find(item)) << item;
    std::string said;
    OrvScene* back = nullptr;
    ASSERT_EQ(1ul, read(full, said, &back));
    EXPECT_EQ("", said);
    EXPECT_EQ(undated(full), undated(save(fresh, back)));
    delete back;
    // The same frame in the same scene, from the read theater.
    settle();
    std::vector<unsigned long> drawn = snapshot(scene->interior);
    EXPECT_GT(std::count(drawn.begin(), drawn.end(), 0ul), 1000);
    EXPECT_LT(std::count(drawn.begin(), drawn.end(), 0ul), 59000);
    theater->disconnect(scene);
    fresh->connect(scene);
    settle();
    EXPECT_EQ(drawn, snapshot(scene->interior));
}

// Cut anywhere, a file is read whole or not at all, with a message, and leaves nothing behind.
TEST_F(TheaterFileTest, EveryCutReadsWholeOrNothing) {
    const unsigned shares = listed();
    for (const OrvScene* s : {(const OrvScene*)nullptr, (const OrvScene*)scene}) {
        const std::string text = save(theater, s);
        const size_t whole = s ? text.rfind("\n}\n") + 2 : text.find("= no") + 4;
        for (size_t k = 0; k <= text.size(); k++) {
            std::string said;
            unsigned long done = read(text.substr(0, k), said);
            ASSERT_EQ(std::make_tuple(k >= whole ? 1ul : 0ul, k >= whole, k >= whole ? 10u : 0u),
                      std::make_tuple(done, said.empty(), fresh->cardinal()))
                << k << said;
            fresh->empty(1);
            ASSERT_EQ(shares, listed()) << k;
        }
    }
}

// Unknown classes, a default scene of the wrong class (a subtype will do), the key after the
// actors (only "defaultSize" and a missing "=" are refused), the wrong dimension, and files.
TEST_F(TheaterFileTest, FaultsAndTheirMessages) {
    const std::string bare = save(theater, nullptr);
    const size_t tail = bare.find("defaultScene = no");
    const size_t plain = bare.find("Orv3dActor  6  {");
    const std::string block = bare.substr(plain, bare.find("\n}\n", plain) + 3 - plain);
    SavedOffScene off(director);
    std::ostringstream flat;
    stage->save(flat);
    auto swap = [&](const char* from, const char* to) {
        std::string t = bare;
        return t.replace(t.find(from), strlen(from), to);
    };
    const struct {
        std::string text, said;
        unsigned long done;
        std::string scene;  // the class of the default scene read
    } rows[] = {
        {swap("Orv3dShape  4", "Orv3dShapeX  4"),
         "OrvIStream : Class Orv3dShapeX not found ...\n## OrvIStream : Bad format in object 3\n",
         0, ""},
        {bare.substr(0, tail) + "defaultScene = yes\n" + block,
         "OrvTheater::read : Bad class name Orv3dActor : OrvSceneexpected.\n", 0, ""},
        {save(theater, &off), "", 1, "SavedOffScene"},
        {swap("defaultScene =", "defaultSize ="),
         "## OrvTheater::read : Error OrvIStream defaultSize \n", 0, ""},
        {swap("defaultScene =", "defaultScene :"),
         "## OrvTheater::read : Error OrvIStream defaultSize \n", 0, ""},
        {swap("defaultScene =", "anyWord ="), "", 1, ""},
        {swap("= no", "= maybe"), "## OrvTheater::read : Error OrvIStream defaultScene \n", 0, ""},
        {flat.str(), "## OrvIStream : Bad file definition. (3d 2d)\n  ## 3d file expected ...\n", 0,
         ""},
    };
    for (const auto& r : rows) {
        std::string said;
        OrvScene* got = nullptr;
        unsigned long done = read(r.text, said, &got);
        EXPECT_EQ(std::make_tuple(r.done, r.said, r.done ? 10u : 0u, r.scene),
                  std::make_tuple(done, said, fresh->cardinal(),
                                  std::string(got ? got->className() : "")));
        delete got;
        fresh->empty(1);
    }
    std::istringstream in(bare);
    Orv2dRect size;
    unsigned before = stage->cardinal();
    EXPECT_EQ("## OrvIStream : Bad file definition. (2d 3d)\n  ## 2d file expected ...\n",
              OrvTestOutput([&] { stage->read(in, size, -1); }));
    EXPECT_EQ(before, stage->cardinal());
    // The forms with a file name; a layer puts everything there.
    std::string path = testing::TempDir() + "theater_file.orv";
    theater->save(path.c_str(), scene);
    EXPECT_EQ(1ul, fresh->read(path.c_str(), 2));
    EXPECT_EQ(10u, fresh->layer(2, 0)->count);
    std::remove(path.c_str());
    EXPECT_EQ("## OrvTheater::read : Can't open /none/x.orv\n",
              OrvTestOutput([&] { fresh->read("/none/x.orv", 0); }));
}
