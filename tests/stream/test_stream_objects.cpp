// Objects in the stream: numbering with references first, the actor's keys, shared make-ups, the
// object table and the failures of object blocks.
#include "orv/engine.h"
#include "orv_fixtures.h"

// Refers to another actor by its number in the file.
class StreamRef : public OrvActor {
public:
    OrvActor* target;
    StreamRef(OrvDirector* d, OrvActor* t) : OrvActor(d, nullptr), target(t) {}
    explicit StreamRef(OrvIStream& in) : OrvActor(in), target(nullptr) {
        char buffer[1024];
        if (_OrvReadItem_(in, buffer, "target")) target = in.readIndex();
    }
    OrvClassInfo* classInfo() const override { return _classInfo; }
    void mapReferences(void (*function)(OrvActor*, void*), void* data) override {
        if (target) function(target, data);
    }
    void write(OrvOStream& out) const override {
        OrvActor::write(out);
        out.key("target");
        out.writeIndex(target);
        out.stream << '\n';
    }
    static OrvActor* read(OrvIStream& in) { return new StreamRef(in); }
    static OrvClassInfo* _classInfo;
};
ORV_DECLARE_CLASS_INIT(StreamRef)
ORV_DEFINE_CLASS_INIT(StreamRef, "OrvActor", StreamRef::read)

namespace {

class StreamObjects : public StreamTest {
protected:
    OrvMakeUp* red = nullptr;
    void SetUp() override {
        StreamTest::SetUp();
        if (director) red = makeUp("red");
    }
    TestBox* box(int x, int y, unsigned w, unsigned h, OrvMakeUp* m) {
        return keep(new TestBox(director, m, Orv2dRect(x, y, w, h)));
    }
    // The text with its first occurrence of `from` replaced.
    static std::string edited(std::string text, const std::string& from, const std::string& to) {
        size_t at = text.find(from);
        EXPECT_NE(at, std::string::npos) << from << "\n" << text;
        return at == std::string::npos ? text : text.replace(at, from.size(), to);
    }
};

TEST_F(StreamObjects, ReferencedObjectsComeFirst) {
    TestBox* a = box(1, 2, 3, 4, red);
    TestBox* b = box(5, 6, 7, 8, red);
    StreamRef* r = keep(new StreamRef(director, b));
    StreamRef* rr = keep(new StreamRef(director, r));
    // rr refers to r, which refers to b: b and r are written before rr although they come after
    // it in the array.
    std::string text = save({rr, a, r, b});
    std::vector<size_t> at;
    for (const char* head : {"TestBox  1  {", "StreamRef  2  {", "StreamRef  3  {", "TestBox  4  {",
                             "cardinal = 4\n", "\ttarget\t\t 1 \n", "\ttarget\t\t 2 \n"})
        at.push_back(text.find(head));
    EXPECT_TRUE(at[0] < at[1] && at[1] < at[2] && at[2] < at[3] && at[3] != std::string::npos &&
                at[4] != std::string::npos && at[5] != std::string::npos &&
                at[6] != std::string::npos)
        << text;
    // The numbers are gone again from the actors.
    OrvKey* number = OrvGetKey("P_num", 0);
    for (OrvActor* x : std::vector<OrvActor*>{a, b, r, rr})
        EXPECT_FALSE(x->hasUserProperty(number));
    std::vector<OrvActor*> back = load(text);
    ASSERT_EQ(back.size(), 4u);
    TestBox* b2 = dynamic_cast<TestBox*>(back[0]);
    StreamRef* r2 = dynamic_cast<StreamRef*>(back[1]);
    StreamRef* rr2 = dynamic_cast<StreamRef*>(back[2]);
    TestBox* a2 = dynamic_cast<TestBox*>(back[3]);
    ASSERT_TRUE(b2 && r2 && rr2 && a2);
    EXPECT_EQ(r2->target, b2);
    EXPECT_EQ(rr2->target, r2);
    EXPECT_EQ(std::vector<Orv2dRect>({{5, 6, 7, 8}, {1, 2, 3, 4}}),
              std::vector<Orv2dRect>({b2->box, a2->box}));
    EXPECT_EQ(a2->makeUp, red);  // the director gives back the shared make-up
    // References out of range read as null.
    for (const char* n : {" 0 ", " 5 ", " 4294967295 ", " 99999999 "}) {
        back = load(edited(text, " 2 \n", n));
        ASSERT_EQ(back.size(), 4u) << n;
        EXPECT_EQ(dynamic_cast<StreamRef*>(back[2])->target, nullptr) << n;
    }
}

// The whole make-up block is in tests/data/stream/small.orv; here a make-up of its own, written
// once and referred to after, comes back as the same shared object.
TEST_F(StreamObjects, ActorKeysAndSharedMakeUps) {
    OrvMakeUp* wide = director->makeUpLineWidth(red, 2);
    TestBox* a = box(10, 20, 30, 40, wide);
    a->setName("name \"quoted\"\nwith\\ and \027");
    a->layer = 3;
    a->setSelected(1);
    a->setSensitive(0);
    a->setInverted(1);
    a->setCallbackName(OrvGetKey("pressed", 1));
    a->setSecondaryCallbackName(OrvGetKey("released", 1));
    std::string text = save({a, box(0, 0, 5, 5, wide)});
    for (const char* line : {"\tmakeUp 1 {\n", "\t\tlineWidth\t2\n", "\tmakeUp\t\t.USE 1\n",
                             "\tcallback\tpressed\n", "\tsCallback\treleased\n", "\tlayer\t\t3\n",
                             "\tname\t\t\"name \\\"quoted\\\"\\nwith\\\\ and \\027\"\n"})
        EXPECT_NE(text.find(line), std::string::npos) << line << " in\n" << text;
    EXPECT_EQ(text.find("makeUp 2"), std::string::npos);
    std::vector<OrvActor*> back = load(text);
    ASSERT_EQ(back.size(), 2u);
    EXPECT_STREQ(back[0]->getName(), a->getName());
    EXPECT_EQ(back[0]->layer, 3);
    EXPECT_EQ(back[0]->flags, a->flags & ~0x4u);  // never written as selected
    EXPECT_EQ(back[0]->getCallbackName(), OrvGetKey("pressed", 0));
    EXPECT_EQ(back[0]->getSecondaryCallbackName(), OrvGetKey("released", 0));
    EXPECT_EQ(std::vector<OrvMakeUp*>({wide, wide}),
              std::vector<OrvMakeUp*>({back[0]->makeUp, back[1]->makeUp}));
}

TEST_F(StreamObjects, EngineKeyNamesTheClassOrStandsAlone) {
    OrvRegisterEngine("Inverter", []() -> OrvEngine* { return new OrvInverterEngine(); });
    TestBox* withEngine = box(0, 0, 5, 5, red);
    withEngine->setEngine(new OrvInverterEngine(withEngine));
    TestBox* dropped = box(1, 1, 5, 5, red);
    dropped->setEngine(new OrvVisibleEngine(dropped));
    delete dropped->getEngine();
    dropped->setEngine(nullptr);
    TestBox* plain = box(2, 2, 5, 5, red);
    std::string text = save({withEngine, dropped, plain});
    EXPECT_NE(text.find("\tengine\t\tInverter\n"), std::string::npos) << text;
    EXPECT_NE(text.find("\tengine\t\t\n"), std::string::npos) << text;

    std::vector<OrvActor*> back = load(text);
    ASSERT_EQ(back.size(), 3u) << "a key that stands alone must not swallow the next line";
    OrvEngine* engine = back[0]->getEngine();
    ASSERT_NE(engine, nullptr);
    EXPECT_STREQ(engine->className(), "Inverter");
    EXPECT_EQ(engine->target, back[0]);
    EXPECT_TRUE(engine->isRunning());
    EXPECT_EQ(back[1]->getEngine(), nullptr);
    EXPECT_TRUE(back[1]->getProperty(OrvHasEngineBit)) << "the bit stays as read";
    EXPECT_FALSE(back[2]->getProperty(OrvHasEngineBit));
    EXPECT_EQ(((TestBox*)back[2])->box, Orv2dRect(2, 2, 5, 5));
    // A name nobody registered: reported, the actor has no engine, reading goes on.
    EXPECT_EQ("Engine (Blinking) not found ...\n",
              OrvTestOutput([&] { back = load(edited(text, "Inverter", "Blinking")); }));
    ASSERT_EQ(back.size(), 3u);
    EXPECT_EQ(back[0]->getEngine(), nullptr);
    EXPECT_TRUE(back[0]->getProperty(OrvHasEngineBit));
}

TEST_F(StreamObjects, PropertiesStringIsTheFlagWord) {
    TestBox* a = box(0, 0, 1, 1, nullptr);
    a->flags = 0x0318007Au | 0x4u;  // default flags, selected
    // Character i tells bit i + 1; the selected bit is not written.
    const std::string word = "1011110000000000001100011000000";
    std::string text = save({a});
    EXPECT_NE(text.find("\tproperties\t" + word + "\n"), std::string::npos) << text;
    // A string of any length is accepted: a short one sets what it has; bits 18 and 26 are
    // cleared on sight.
    std::vector<OrvActor*> back = load(edited(text, word, "0001"));
    ASSERT_EQ(back.size(), 1u);
    EXPECT_EQ(back[0]->flags, 0x10u);
    // Bit 18 is cleared on sight. Bit 26 announces a balloon, which must then follow; with it,
    // the actor keeps the balloon and not the bit.
    back = load(edited(text, word, "0000000000000000010000000000000"));
    ASSERT_EQ(back.size(), 1u);
    EXPECT_EQ(back[0]->flags, 0u);
    back = load(edited(text, word + "\n",
                       "0000000000000000000000000100000\n\tlabel\t\"Tip\"\n\tbitmap\t\"\"\n"
                       "\tmask\t\"\"\n\tposition 2\n\tusData\t0\n"));
    ASSERT_EQ(back.size(), 1u);
    EXPECT_EQ(back[0]->flags, 0u);
    EXPECT_STREQ(back[0]->getBalloonLabel(), "Tip");
}

TEST_F(StreamObjects, BadObjectsKeepWhatCameBefore) {
    TestBox* b = box(2, 2, 2, 2, red);
    b->setName("b");
    std::string text = save({box(1, 1, 1, 1, red), b, box(3, 3, 3, 3, red)});
    const std::string props = "\tproperties\t1011110010000000001100011000000\n\tname",
                      noRect = "OrvIStream : Not a 2dRect object.\n",
                      stop = "## OrvIStream : Bad format in object 1\n",
                      sep = "OrvIStream : bad separator.\n";
    const struct {
        std::string from, to, message;
        size_t kept;
    } cases[] = {
        // An unknown class stops the reading at that object.
        {"TestBox  2  {", "NoClass  2  {", "OrvIStream : Class NoClass not found ...\n" + stop, 1},
        // A wrong key inside a block drops the object even if its braces match.
        {"\tname\t\t\"b\"", "\tnome\t\t\"b\"",
         "OrvActor::OrvActor : Bad key (nome name).\n" + noRect + sep + stop, 1},
        {"\tlayer\t\t0\n" + props, "\tlayer\t\tzero\n" + props, noRect + sep + stop, 1},
        {"TestBox  2  {", "TestBox  2  (", "## OrvIStream: Bad separator.\n" + stop, 1},
        {"\trect2d\t2 2 2 2\n}", "\trect2d\t2 2 2 2\n]", sep + stop, 1},
        {"\trect2d\t2 2 2 2", "\tpoint2d\t2 2 2 2", noRect + sep + stop, 1},
        // An unknown .USE means the default make-up.
        {"\tmakeUp\t\t.USE 1\n\tlayer\t\t0\n" + props, "\tmakeUp\t\t.USE 9\n\tlayer\t\t0\n" + props,
         "OrvIStream : MakeUp not found (.USE 9)\n", 3},
    };
    for (const auto& k : cases) {
        std::vector<OrvActor*> back;
        EXPECT_EQ(k.message, OrvTestOutput([&] { back = load(edited(text, k.from, k.to)); }))
            << k.to;
        EXPECT_EQ(back.size(), k.kept) << k.to;
        EXPECT_EQ(k.kept == 3 ? back[1]->makeUp : nullptr,
                  k.kept == 3 ? director->defaultMakeUp : nullptr);
    }
}

}  // namespace
