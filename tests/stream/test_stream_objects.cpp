// Objects in the stream: numbering with references first, the actor's keys,
// shared make-ups, the object table and the failures of object blocks.
#include "stream_support.h"

#include "orv/engine.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <sstream>
#include <string>
#include <vector>

ORV_DEFINE_CLASS_INIT(StreamBox, "OrvActor", StreamBox::read)
ORV_DEFINE_CLASS_INIT(StreamRef, "OrvActor", StreamRef::read)

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

namespace {

class StreamObjects : public ::testing::Test {
protected:
    OrvDirector* director = nullptr;
    OrvMakeUp* red = nullptr;
    std::vector<OrvActor*> owned;

    void SetUp() override {
        if (!getenv("DISPLAY")) GTEST_SKIP() << "no DISPLAY";
        director = new OrvDirector("teststream", nullptr, 0, nullptr);
        red = director->makeUpForeground(director->defaultMakeUp, director->color("red"));
        OrvCount(red);
    }
    void TearDown() override {
        for (OrvActor* a : owned) delete a;
        if (director) {
            OrvRelease(red);
            delete director;
        }
    }
    template <class T>
    T* keep(T* actor) {
        owned.push_back(actor);
        return actor;
    }
    std::string save(const std::vector<OrvActor*>& actors) {
        std::ostringstream out;
        OrvOStream writer(out);
        writer.defaultSize = Orv2dRect(0, 0, 100, 80);
        writer.write((unsigned)actors.size(), actors.data(), 1);
        writer.eof();
        return out.str();
    }
    // Reads and keeps every object; returns them up to the first null.
    std::vector<OrvActor*> load(const std::string& text, unsigned* count = nullptr) {
        std::istringstream in(text);
        OrvIStream reader(director, in);
        unsigned n = 0;
        OrvActor** actors = reader.read(n, 1);
        std::vector<OrvActor*> result;
        if (actors) {
            for (unsigned i = 0; i < n && actors[i]; i++) result.push_back(keep(actors[i]));
            delete[] actors;
        }
        if (count) *count = n;
        return result;
    }
};

}  // namespace

TEST_F(StreamObjects, ReferencedObjectsComeFirst) {
    StreamBox* a = keep(new StreamBox(director, red, Orv2dRect(1, 2, 3, 4)));
    StreamBox* b = keep(new StreamBox(director, red, Orv2dRect(5, 6, 7, 8)));
    StreamRef* r = keep(new StreamRef(director, b));
    StreamRef* rr = keep(new StreamRef(director, r));
    // rr refers to r, which refers to b: b and r are written before rr although
    // they come after it in the array.
    std::string text = save({rr, a, r, b});
    size_t posB = text.find("StreamBox  1  {");
    size_t posR = text.find("StreamRef  2  {");
    size_t posRR = text.find("StreamRef  3  {");
    size_t posA = text.find("StreamBox  4  {");
    ASSERT_NE(posB, std::string::npos) << text;
    ASSERT_NE(posA, std::string::npos) << text;
    EXPECT_LT(posB, posR);
    EXPECT_LT(posR, posRR);
    EXPECT_LT(posRR, posA);
    EXPECT_NE(text.find("cardinal = 4\n"), std::string::npos);
    EXPECT_NE(text.find("\ttarget\t\t 1 \n"), std::string::npos) << text;
    EXPECT_NE(text.find("\ttarget\t\t 2 \n"), std::string::npos) << text;
    // The numbers are gone again from the actors.
    OrvKey* number = OrvGetKey("P_num", 0);
    ASSERT_NE(number, nullptr);
    for (OrvActor* x : std::vector<OrvActor*>{a, b, r, rr})
        EXPECT_FALSE(x->hasUserProperty(number));

    std::vector<OrvActor*> back = load(text);
    ASSERT_EQ(back.size(), 4u);
    StreamBox* b2 = dynamic_cast<StreamBox*>(back[0]);
    StreamRef* r2 = dynamic_cast<StreamRef*>(back[1]);
    StreamRef* rr2 = dynamic_cast<StreamRef*>(back[2]);
    StreamBox* a2 = dynamic_cast<StreamBox*>(back[3]);
    ASSERT_TRUE(b2 && r2 && rr2 && a2);
    EXPECT_EQ(r2->target, b2);
    EXPECT_EQ(rr2->target, r2);
    EXPECT_EQ(b2->box.x, 5);
    EXPECT_EQ(a2->box.h, 4u);
    EXPECT_EQ(a2->makeUp, red);  // the director gives back the shared make-up
}

TEST_F(StreamObjects, ActorKeysAndSharedMakeUps) {
    StreamBox* a = keep(new StreamBox(director, red, Orv2dRect(10, 20, 30, 40)));
    a->setName("name \"quoted\"\nwith\\ and \027");
    a->layer = 3;
    a->setSelected(1);
    a->setSensitive(0);
    a->setInverted(1);
    a->setCallbackName(OrvGetKey("pressed", 1));
    a->setSecondaryCallbackName(OrvGetKey("released", 1));
    StreamBox* b = keep(new StreamBox(director, red, Orv2dRect(0, 0, 5, 5)));
    std::string text = save({a, b});
    // Only the first use writes the make-up; the second refers to it.
    EXPECT_NE(text.find("\tmakeUp 1 {\n"), std::string::npos) << text;
    EXPECT_NE(text.find("\tmakeUp\t\t.USE 1\n"), std::string::npos) << text;
    EXPECT_EQ(text.find("makeUp 2"), std::string::npos);
    EXPECT_NE(text.find("\tname\t\t\"name \\\"quoted\\\"\\nwith\\\\ and \\027\"\n"),
              std::string::npos)
        << text;
    EXPECT_NE(text.find("\tcallback\tpressed\n"), std::string::npos) << text;
    EXPECT_NE(text.find("\tsCallback\treleased\n"), std::string::npos) << text;
    EXPECT_NE(text.find("\tlayer\t\t3\n"), std::string::npos) << text;

    std::vector<OrvActor*> back = load(text);
    ASSERT_EQ(back.size(), 2u);
    OrvActor* a2 = back[0];
    EXPECT_STREQ(a2->getName(), a->getName());
    EXPECT_EQ(a2->layer, 3);
    EXPECT_FALSE(a2->isSelected());  // never written as selected
    EXPECT_EQ(a2->flags, a->flags & ~0x4u);
    EXPECT_EQ(a2->getCallbackName(), OrvGetKey("pressed", 0));
    EXPECT_EQ(a2->getSecondaryCallbackName(), OrvGetKey("released", 0));
    EXPECT_EQ(a2->makeUp, back[1]->makeUp);
    EXPECT_EQ(a2->makeUp, red);
}

namespace {
OrvEngine* makeBlinker() {
    return new OrvInverterEngine();
}
}  // namespace

TEST_F(StreamObjects, EngineKeyNamesTheClassOrStandsAlone) {
    OrvRegisterEngine("Inverter", makeBlinker);
    StreamBox* withEngine = keep(new StreamBox(director, red, Orv2dRect(0, 0, 5, 5)));
    withEngine->setEngine(new OrvInverterEngine(withEngine));
    StreamBox* dropped = keep(new StreamBox(director, red, Orv2dRect(1, 1, 5, 5)));
    dropped->setEngine(new OrvVisibleEngine(dropped));
    delete dropped->getEngine();
    dropped->setEngine(nullptr);
    StreamBox* plain = keep(new StreamBox(director, red, Orv2dRect(2, 2, 5, 5)));
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
    EXPECT_EQ(((StreamBox*)back[2])->box, Orv2dRect(2, 2, 5, 5));

    // A name nobody registered: reported, the actor has no engine, reading goes on.
    std::string unknown = text;
    unknown.replace(unknown.find("Inverter"), 8, "Blinking");
    CaptureStdout();
    back = load(unknown);
    EXPECT_EQ(GetCapturedStdout(), "Engine (Blinking) not found ...\n");
    ASSERT_EQ(back.size(), 3u);
    EXPECT_EQ(back[0]->getEngine(), nullptr);
    EXPECT_TRUE(back[0]->getProperty(OrvHasEngineBit));
}

TEST_F(StreamObjects, PropertiesStringIsTheFlagWord) {
    StreamBox* a = keep(new StreamBox(director, nullptr, Orv2dRect(0, 0, 1, 1)));
    a->flags = 0x0318007Au | 0x4u;  // default flags, selected
    std::string text = save({a});
    // Character i tells bit i + 1; the selected bit is not written.
    EXPECT_NE(text.find("\tproperties\t1011110000000000001100011000000\n"), std::string::npos)
        << text;
    // A string of any length is accepted: a short one sets what it has.
    std::string edited = text;
    size_t at = edited.find("1011110000000000001100011000000");
    edited.replace(at, 31, "0001");
    std::vector<OrvActor*> back = load(edited);
    ASSERT_EQ(back.size(), 1u);
    EXPECT_EQ(back[0]->flags, 0x10u);
    // Bits 18 and 26 are cleared on sight. Bit 26 announces a balloon, which
    // must then follow; with it, the actor keeps the balloon and not the bit.
    edited = text;
    edited.replace(at, 31, "0000000000000000010000000000000");
    back = load(edited);
    ASSERT_EQ(back.size(), 1u);
    EXPECT_EQ(back[0]->flags, 0u);
    edited = text;
    edited.replace(at, 32,
                   "0000000000000000000000000100000\n\tlabel\t\"Tip\"\n\tbitmap\t\"\"\n"
                   "\tmask\t\"\"\n\tposition 2\n\tusData\t0\n");
    back = load(edited);
    ASSERT_EQ(back.size(), 1u);
    EXPECT_EQ(back[0]->flags, 0u);
    EXPECT_STREQ(back[0]->getBalloonLabel(), "Tip");
}

TEST_F(StreamObjects, MakeUpBlockText) {
    OrvMakeUp* m = director->makeUpLineWidth(red, 2);
    StreamBox* a = keep(new StreamBox(director, m, Orv2dRect(0, 0, 1, 1)));
    std::string text = save({a});
    size_t from = text.find("\tmakeUp 1 {\n");
    size_t to = text.find("\t}\n", from);
    ASSERT_NE(from, std::string::npos);
    std::string block = text.substr(from, to + 3 - from);
    OrvRasterFont* font = m->font();
    std::string expected = std::string("\tmakeUp 1 {\n") +
                           "\t\t% foreground\n"
                           "\t\tcolorName\t\"red\"\n"
                           "\t\t% background\n" +
                           (m->background()->name && m->background()->name[0] != '#'
                                ? std::string("\t\tcolorName\t\"") + m->background()->name + "\"\n"
                                : std::string()) +
                           "";
    // The foreground part is exact; the rest key by key.
    EXPECT_EQ(block.compare(0, expected.size(), expected), 0) << block;
    const std::string keys[] = {"\t\tpattern\t\tNone\n",
                                "\t\tlineWidth\t2\n",
                                std::string("\t\trasterFont\t") + font->name + "\n",
                                "\t\tcolorPattern\tNone\n",
                                "\t\tfillStyle\t0\n",
                                "\t\tarcMode\t\t0\n",
                                "\t\tfillRule\t0\n",
                                "\t\tsmooth\t\tyes\n",
                                "\t\tdistinguish\tno\n",
                                "\t\tcull\t\t1\n",
                                "\t\tfrontStyle\t4\n",
                                "\t\tbackStyle\t4\n",
                                "\t\tmarkerType\t1\n",
                                "\t\tmarkerScale\t2\n",
                                "\t\tpointSize\t3\n",
                                "\t\tvfont\t\tNone\n",
                                "\t\ttexture\tNone\n"};
    size_t last = 0;
    for (const std::string& k : keys) {
        size_t at = block.find(k);
        EXPECT_NE(at, std::string::npos) << k << " in\n" << block;
        EXPECT_GT(at, last) << k;
        last = at;
    }
    std::vector<OrvActor*> back = load(text);
    ASSERT_EQ(back.size(), 1u);
    EXPECT_EQ(back[0]->makeUp, m);
}

TEST_F(StreamObjects, BadObjectsKeepWhatCameBefore) {
    StreamBox* a = keep(new StreamBox(director, red, Orv2dRect(1, 1, 1, 1)));
    StreamBox* b = keep(new StreamBox(director, red, Orv2dRect(2, 2, 2, 2)));
    StreamBox* c = keep(new StreamBox(director, red, Orv2dRect(3, 3, 3, 3)));
    b->setName("b");
    std::string text = save({a, b, c});
    struct Case {
        const char* from;
        const char* to;
        const char* message;
        size_t kept;
    };
    const Case cases[] = {
        // An unknown class stops the reading at that object.
        {"StreamBox  2  {", "NoClass  2  {",
         "OrvIStream : Class NoClass not found ...\n## OrvIStream : Bad format in object 1\n", 1},
        // A wrong key inside a block drops the object even if its braces match.
        {"\tname\t\t\"b\"", "\tnome\t\t\"b\"",
         "OrvActor::OrvActor : Bad key (nome name).\nOrvIStream : Not a 2dRect object.\n"
         "OrvIStream : bad separator.\n## OrvIStream : Bad format in object 1\n",
         1},
        {"\tlayer\t\t0\n\tproperties\t1011110010000000001100011000000\n\tname",
         "\tlayer\t\tzero\n\tproperties\t1011110010000000001100011000000\n\tname",
         "OrvIStream : Not a 2dRect object.\nOrvIStream : bad separator.\n## OrvIStream : Bad "
         "format in object 1\n",
         1},
        {"StreamBox  2  {", "StreamBox  2  (",
         "## OrvIStream: Bad separator.\n## OrvIStream : Bad format in object 1\n", 1},
        {"\trect2d\t2 2 2 2\n}", "\trect2d\t2 2 2 2\n]",
         "OrvIStream : bad separator.\n## OrvIStream : Bad format in object 1\n", 1},
        {"\trect2d\t2 2 2 2", "\tpoint2d\t2 2 2 2",
         "OrvIStream : Not a 2dRect object.\nOrvIStream : bad separator.\n## OrvIStream : Bad "
         "format in object 1\n",
         1},
        {"\tmakeUp\t\t.USE 1\n\tlayer\t\t0\n\tproperties\t1011110010000000001100011000000\n\tname",
         "\tmakeUp\t\t.USE 9\n\tlayer\t\t0\n\tproperties\t1011110010000000001100011000000\n\tname",
         "OrvIStream : MakeUp not found (.USE 9)\n", 3},
    };
    for (const Case& k : cases) {
        std::string edited = text;
        size_t at = edited.find(k.from);
        ASSERT_NE(at, std::string::npos) << k.from << "\n" << text;
        edited.replace(at, strlen(k.from), k.to);
        CaptureStdout();
        std::vector<OrvActor*> back = load(edited);
        EXPECT_EQ(GetCapturedStdout(), k.message) << k.to;
        EXPECT_EQ(back.size(), k.kept) << k.to;
        if (k.kept == 3) {
            EXPECT_EQ(back[1]->makeUp,
                      director->defaultMakeUp);  // an unknown .USE means the default
        }
    }
}

TEST_F(StreamObjects, ReferencesOutOfRangeReadAsNull) {
    StreamBox* b = keep(new StreamBox(director, red, Orv2dRect(1, 1, 1, 1)));
    StreamRef* r = keep(new StreamRef(director, b));
    std::string text = save({r, b});
    EXPECT_NE(text.find("\ttarget\t\t 1 \n"), std::string::npos);
    const char* numbers[] = {" 0 ", " 2 ", " 3 ", " 4294967295 ", " 99999999 "};
    for (const char* n : numbers) {
        std::string edited = text;
        edited.replace(edited.find(" 1 \n"), 3, n);
        std::vector<OrvActor*> back = load(edited);
        ASSERT_EQ(back.size(), 2u) << n;
        EXPECT_EQ(dynamic_cast<StreamRef*>(back[1])->target, nullptr) << n;
    }
}
