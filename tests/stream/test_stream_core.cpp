// The text layer of the stream: strings, typed items, comments, header,
// object table and their diagnostics, on plain string streams.
#include "orv_fixtures.h"

namespace {

std::string written(const char* text, unsigned length = 0, unsigned long terminate = 0) {
    std::ostringstream out;
    OrvWriteString(out, text, length, terminate);
    return out.str();
}

std::string readBack(const std::string& text, bool* ok = nullptr) {
    std::istringstream in(text);
    std::string result = OrvReadString(in);
    if (ok) *ok = !in.fail();
    return result;
}

}  // namespace

TEST(StreamStrings, WrittenAndReadBack) {
    // Backslash, quote, newline, return and 027 are escaped; a tab and other control characters
    // pass as they are; an explicit length stops early; a terminator may follow.
    EXPECT_EQ(
        std::vector<std::string>({"\"\"", "\"\"", "\"a\\\\b\"", "\"say \\\"hi\\\"\"",
                                  "\"l1\\nl2\\r\"", "\"m\\027x\"", "\"a\tb\001\"", "\"abc\"",
                                  std::string("\"ab\"\0", 5)}),
        std::vector<std::string>({written(nullptr), written(""), written("a\\b"),
                                  written("say \"hi\""), written("l1\nl2\r"), written("m\027x"),
                                  written("a\tb\001"), written("abcdef", 3), written("ab", 0, 1)}));
    const char* hard = "new\nline \"quote\" back\\slash \027 tab\t end\r";
    bool ok = false;
    EXPECT_EQ(readBack(written(hard), &ok), hard);
    EXPECT_TRUE(ok);
    // Blanks and newlines before the string are skipped; any opening character is taken as the
    // quote; unknown escapes keep their backslash, a partial \027 keeps what it took; a long
    // string is whole.
    const std::string big(10000, 'z');
    const std::pair<std::string, std::string> reads[] = {
        {written(""), ""},        {"  \n 'abc\" rest", "abc"},    {"\"a\\tb\"", "a\\tb"},
        {"\"\\0x\"", "\\x"},      {"\"\\02x\"", "\\x"},           {"\"\\027\"", "\027"},
        {"\"" + big + "\"", big}, {"\"unfinished", "unfinished"},
    };
    for (const auto& r : reads) EXPECT_EQ(readBack(r.first), r.second) << r.first;
    // A string cut by the end of the stream leaves the stream failed.
    for (const char* cut : {"\"unfinished", "", "\"ends in escape\\"}) {
        readBack(cut, &ok);
        EXPECT_FALSE(ok) << cut;
    }
}

// What a writer prints.
std::string printed(const std::function<void(OrvOStream&)>& write) {
    std::ostringstream out;
    OrvOStream s(out);
    write(s);
    return out.str();
}

TEST(StreamItems, WrittenText) {
    EXPECT_EQ(printed([](OrvOStream& s) {
                  s << Orv2dRect(1, -2, 30, 40) << Orv2dPoint(-5, 6) << (unsigned short)7
                    << (short)-8 << (unsigned int)9 << (int)-10 << (unsigned long)11 << (long)-12
                    << 1.5f << 3.14159265358979 << "a \"label\"\twith tab";
                  s.writePosition(5);
              }),
              "rect2d\t1 -2 30 40\npoint2d\t-5 6\nusData\t7\nsData\t-8\nuiData\t9\niData\t-10\n"
              "ulData\t11\nlData\t-12\nfData\t1.5\ndData\t3.14159\n"
              "label\t\"a \\\"label\\\"\twith tab\"\nposition 5\n");
    // Keys are padded with tabs to two tab stops; comments follow on their line or start one.
    EXPECT_EQ(printed([](OrvOStream& s) {
                  s.indentation = 3;
                  s << (int)1;
                  s.key("ratio") << "yes\n";
                  s.key("position") << "1 2 3\n";
                  s.key("sevenchr") << "x\n";
                  s.writeComments("OrvActor class", 1);
                  s.indentation = 12;
                  s << (int)2;
                  s.indentation = 0;
                  s.key("k") << 'v';
                  s.writeComments("end", 0);
              }),
              "\t\t\tiData\t1\n\t\t\tratio\t\tyes\n\t\t\tposition\t1 2 3\n\t\t\tsevenchr\tx\n"
              "\t\t\t% OrvActor class\n\t\t\t\t\t\t\t\t\t\tiData\t2\nk\t\tv\t% end");
}

TEST(StreamItems, ThreeDimensionalItems) {
    Orv3dMatrix m;
    for (int i = 0; i < 16; i++) m.m[i] = (float)i * 0.5f;
    std::string text = printed([&](OrvOStream& s) {
        s.indentation = 1;
        s << m << Orv3dPoint(1, 2, 3) << Orv3dVector(0.25f, 0, -1) << Orv4dPoint(1, 2, 3, 4)
          << Orv3dRect(1, 2, 3, 4) << Orv3dVolume(1, 2, 3, 4, 5, 6);
    });
    EXPECT_EQ(text, "\tmatrix3d \n\t0 0.5 1 1.5\n\t2 2.5 3 3.5\n\t4 4.5 5 5.5\n\t6 6.5 7 7.5\n"
                    "\tpoint3d\t1 2 3\n\tvector3d\t0.25 0 -1\n\tpoint4d\t1 2 3 4\n"
                    "\trect3d\t1 2 3 4\n\tvolume3d\t1 2 3 4 5 6\n");
    std::istringstream in(text);
    OrvIStream is(nullptr, in);
    Orv3dMatrix back;
    Orv3dPoint p;
    Orv3dVector vec;
    Orv4dPoint p4;
    Orv3dRect r2;
    Orv3dVolume v2;
    is >> back >> p >> vec >> p4 >> r2 >> v2;
    EXPECT_EQ(back, m);
    EXPECT_EQ(v2, Orv3dVolume(1, 2, 3, 4, 5, 6));
    EXPECT_EQ(is.faults, 0u);
}

TEST(StreamItems, ReadBackAndWrongKeys) {
    std::istringstream in("% a comment line\n\trect2d\t1 -2 30 40 % comment after the value\n"
                          "point2d\t-5 6\nusData 7 sData -8\n  uiData 9\tiData -10 ulData 11 "
                          "lData -12 fData 1.5 dData 2.25\nlabel \"x\\ny\"\nposition 5\n"
                          "sData 3\n"       // asked as usData
                          "label\t\"cut");  // string cut by the end
    OrvIStream s(nullptr, in);
    Orv2dRect r;
    Orv2dPoint p;
    unsigned short us = 0;
    short ss = 0;
    unsigned int ui = 0;
    int ii = 0;
    unsigned long ul = 0, position = 0;
    long ll = 0;
    float f = 0;
    double d = 0;
    char* label = nullptr;
    s >> r >> p >> us >> ss >> ui >> ii >> ul >> ll >> f >> d >> label;
    s.readPosition(position);
    EXPECT_EQ(r, Orv2dRect(1, -2, 30, 40));
    EXPECT_EQ(p, Orv2dPoint(-5, 6));
    EXPECT_EQ(std::vector<long>({7, -8, 9, -10, 11, -12, 5}),
              std::vector<long>({us, ss, ui, ii, (long)ul, ll, (long)position}));
    EXPECT_EQ(std::vector<double>({1.5, 2.25}), std::vector<double>({f, d}));
    EXPECT_STREQ(label, "x\ny");
    // The value is left as it was; a cut string does not replace the label.
    unsigned short keep = 77;
    char* old = label;
    EXPECT_EQ("OrvIStream : Bad data.\nOrvIStream : Bad label value.\n",
              OrvTestOutput([&] { s >> keep >> label; }));
    EXPECT_EQ(keep, 77);
    EXPECT_EQ(label, old);
    EXPECT_EQ(s.faults, 2u);
    delete[] label;
    // A wrong key is taken: "point2d" read as a rectangle leaves "1 2" for the next item.
    std::istringstream bad("point2d 1 2 rect2d 1 2 3 4");
    OrvIStream b(nullptr, bad);
    Orv2dRect r2(9, 9, 9, 9);
    Orv2dPoint p2(8, 8);
    EXPECT_EQ("OrvIStream : Not a 2dRect object.\nOrvIStream : Not a 2dPoint object.\n",
              OrvTestOutput([&] { b >> r2 >> p2; }));
    EXPECT_EQ(Orv2dPoint(9, 8), Orv2dPoint(r2.x, p2.x));
    std::istringstream bad2("fData 1 usData 2 xx \"a\" posi 3");
    OrvIStream b2(nullptr, bad2);
    float f2 = 0;
    double d2 = 4;
    char* l2 = nullptr;
    unsigned long pos2 = 7;
    EXPECT_EQ(
        "OrvIStream : Bad data.\nOrvIStream : Bad label value.\nOrvIStream : Bad position data.\n",
        OrvTestOutput([&] {
            b2 >> f2 >> d2 >> l2;
            b2.readPosition(pos2);
        }));
    EXPECT_EQ(std::vector<double>({1, 4, 7}), std::vector<double>({f2, d2, (double)pos2}));
    EXPECT_EQ(l2, nullptr);
}

TEST(StreamItems, ReadItemFamilyAndComments) {
    std::istringstream in("layer\t\t3\nproperties\t0101\npattern None\ncount -4\n"
                          "smooth\t\tyes distinguish no cull maybe\nwrong 1\n");
    OrvIStream s(nullptr, in);
    char buffer[1024], value[1024], pattern[1024];
    unsigned long ul = 0, flag = 5, flag2 = 5;
    long l = 0;
    EXPECT_EQ(
        _OrvReadItem_(s, buffer, "layer", ul) + _OrvReadItem_(s, buffer, "properties", value) +
            _OrvReadItem_(s, buffer, "pattern", pattern) + _OrvReadItem_(s, buffer, "count", l) +
            _OrvReadItemBoolean_(s, buffer, "smooth", flag) +
            _OrvReadItemBoolean_(s, buffer, "distinguish", flag2),
        6);
    EXPECT_EQ(std::vector<long>({3, -4, 1, 0}),
              std::vector<long>({(long)ul, l, (long)flag, (long)flag2}));
    EXPECT_EQ(std::string(value) + "/" + pattern, "0101/");  // None reads as empty
    EXPECT_EQ("## OrvIStream: Definition error (bool).\n"
              "OrvIStream: Definition error. (right wrong)\n",
              OrvTestOutput([&] {
                  EXPECT_EQ(_OrvReadItemBoolean_(s, buffer, "cull", flag), 0);
                  EXPECT_EQ(_OrvReadItem_(s, buffer, "right", ul), 0);
              }));
    std::istringstream in2("a 1 b 2 c 3");
    OrvIStream s2(nullptr, in2);
    EXPECT_EQ("OrvIStream: Definition error (x a)\nOrvIStream: Definition error (y 1)\n"
              "OrvIStream: Definition error. (z b)\n",
              OrvTestOutput([&] {
                  EXPECT_EQ(_OrvReadItem_(s2, buffer, "x") + _OrvReadItem_(s2, buffer, "y", value) +
                                _OrvReadItem_(s2, buffer, "z", l),
                            0);
              }));
    // A bad number fails the item without a report of its own; the stream stays failed.
    std::istringstream in3("layer abc");
    OrvIStream s3(nullptr, in3);
    ul = 9;
    EXPECT_EQ(_OrvReadItem_(s3, buffer, "layer", ul), 0);
    EXPECT_EQ(ul, 9u);
    EXPECT_TRUE(s3.stream.fail());
    // Comments are skipped wherever they stand, a long run of them in a loop; words are bounded
    // to 1023 characters.
    std::string many = "% one\n%two\n  \t\n% three\n\t word % tail\n%\n%\n\n  last\n";
    for (int i = 0; i < 200000; i++) many += "%c\n";
    std::istringstream in4(many + "end" + std::string(3000, 'w'));
    OrvIStream s4(nullptr, in4);
    std::string words;
    for (int i = 0; i < 3; i++) {
        s4.nextItem();
        s4.word(buffer);
        words += (i ? " " : "") + std::string(buffer);
    }
    EXPECT_EQ(words, "word last end" + std::string(1020, 'w'));
}

TEST(StreamFile, HeaderEofAndEmptyFile) {
    std::string text = printed([](OrvOStream& s) {
        s.defaultSize = Orv2dRect(0, 0, 400, 300);
        s.write(0, nullptr, 1);
        s.eof();
    });
    EXPECT_EQ(text.find("% Orvis 1 "), 0u);
    EXPECT_EQ(text.substr(34), "\nOrvStream 2d\ndefaultSize = 0 0 400 300\ncardinal = 0\n\n"
                               "% Do not modify or delete the last line (Orvis plugins).\n% EOF\n");
    // It reads back as no objects, with the size taken.
    std::istringstream in(text);
    OrvIStream is(nullptr, in);
    unsigned count = 99;
    OrvActor** actors = is.read(count, 1);
    ASSERT_NE(actors, nullptr);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(actors[0], nullptr);
    EXPECT_EQ(Orv2dPoint(400, 300), Orv2dPoint(is.defaultSize.w, is.defaultSize.h));
    delete[] actors;
    // A 3D writer has no size line.
    EXPECT_NE(printed([](OrvOStream& s) {
                  s.write(0, nullptr, 0);
              }).find("\nOrvStream 3d\ncardinal = 0\n"),
              std::string::npos);
}

TEST(StreamFile, HeaderAndCountDiagnostics) {
    const std::string v2 = "% Orvis 1 date\nOrvStream 2d\n", v3 = "% Orvis 1 date\nOrvStream 3d\n",
                      size = v2 + "defaultSize = 1 2 3 4\n";
    const struct {
        std::string text;
        unsigned long is2d;
        std::string message;
        bool array;
        unsigned count;
    } cases[] = {
        {v3 + "cardinal = 0\n", 1,
         "## OrvIStream : Bad file definition. (2d 3d)\n  ## 2d file expected ...\n", false, 0},
        {v2 + "cardinal = 0\n", 0,
         "## OrvIStream : Bad file definition. (3d 2d)\n  ## 3d file expected ...\n", false, 0},
        {"#" + size.substr(1) + "cardinal = 0\n", 1, "OrvIStream : header error\n", true, 0},
        {v2 + "defaultSize : 1 2 3 4\ncardinal = 0\n", 1, "## OrvIStream : size error\n", false, 0},
        {v2 + "size = 1 2 3 4\ncardinal = 0\n", 1,
         "## OrvIStream : size error (defaultSize size)\n", false, 0},
        {size + "cardinal 0\n", 1, "## OrvIStream : cardinal error\n", false, 0},
        {size + "count = 0\n", 1, "## OrvIStream : cardinal error (cardinal count)\n", false, 0},
        {v3 + "cardinal = 0\n", 0, "", true, 0},
        {"", 1,
         "OrvIStream : header error\n## OrvIStream : Bad file definition. (2d )\n  ## 2d file "
         "expected ...\n",
         false, 0},
        // An unknown class stops the reading; the huge count is not lowered.
        {size + "cardinal = 4000000000\n% a comment between objects\n"
                "NoSuchClass  1  {\n\tlayer\t\t0\n}\n",
         1,
         "OrvIStream : Class NoSuchClass not found ...\n## OrvIStream : Bad format in object 0\n",
         true, 4000000000u},
    };
    for (const auto& c : cases) {
        std::istringstream in(c.text);
        OrvIStream is(nullptr, in);
        unsigned count = 5;
        OrvActor** actors = nullptr;
        EXPECT_EQ(c.message, OrvTestOutput([&] { actors = is.read(count, c.is2d); })) << c.text;
        EXPECT_EQ(actors != nullptr, c.array) << c.text;
        EXPECT_EQ(count, c.count) << c.text;
        EXPECT_EQ(actors && count ? actors[0] : nullptr, nullptr) << c.text;
        EXPECT_EQ(is.objects, nullptr) << "the table does not outlive the reading";
        delete[] actors;
    }
}
