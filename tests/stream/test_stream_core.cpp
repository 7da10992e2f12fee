// The text layer of the stream: strings, typed items, comments, header,
// object table and their diagnostics, on plain string streams.
#include "orv/stream.h"

#include <gtest/gtest.h>

#include <cstring>
#include <sstream>
#include <string>
#include <vector>

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

namespace {

std::string written(const char* text, unsigned length = 0) {
    std::ostringstream out;
    OrvWriteString(out, text, length);
    return out.str();
}

std::string readBack(const std::string& text, bool* ok = nullptr) {
    std::istringstream in(text);
    std::string result = OrvReadString(in);
    if (ok) *ok = !in.fail();
    return result;
}

}  // namespace

TEST(StreamStrings, EscapesAndRoundTrip) {
    // Backslash, quote, newline, return and 027 are escaped; a tab and other control characters
    // pass as they are; an explicit length stops early.
    EXPECT_EQ(
        std::vector<std::string>({"\"\"", "\"\"", "\"a\\\\b\"", "\"say \\\"hi\\\"\"",
                                  "\"l1\\nl2\\r\"", "\"m\\027x\"", "\"a\tb\001\"", "\"abc\""}),
        std::vector<std::string>({written(nullptr), written(""), written("a\\b"),
                                  written("say \"hi\""), written("l1\nl2\r"), written("m\027x"),
                                  written("a\tb\001"), written("abcdef", 3)}));
    {
        std::ostringstream out;
        OrvWriteString(out, "ab", 0, 1);
        EXPECT_EQ(out.str(), std::string("\"ab\"\0", 5));
    }
    const char* hard = "new\nline \"quote\" back\\slash \027 tab\t end\r";
    bool ok = false;
    EXPECT_EQ(readBack(written(hard), &ok), hard);
    EXPECT_TRUE(ok);
    EXPECT_EQ(readBack(written("")), "");
}

TEST(StreamStrings, ReaderRules) {
    // Blanks and newlines before the string are skipped; any opening
    // character is taken as the quote.
    EXPECT_EQ(readBack("  \n 'abc\" rest"), "abc");
    // Unknown escapes keep their backslash; a partial \027 keeps what it took.
    EXPECT_EQ(readBack("\"a\\tb\""), "a\\tb");
    EXPECT_EQ(readBack("\"\\0x\""), "\\x");
    EXPECT_EQ(readBack("\"\\02x\""), "\\x");
    EXPECT_EQ(readBack("\"\\027\""), "\027");
    // The result lives in one growing buffer: a long string is whole.
    std::string big(10000, 'z');
    EXPECT_EQ(readBack("\"" + big + "\""), big);
    // A string cut by the end of the stream leaves the stream failed.
    bool ok = true;
    EXPECT_EQ(readBack("\"unfinished", &ok), "unfinished");
    EXPECT_FALSE(ok);
    ok = true;
    readBack("", &ok);
    EXPECT_FALSE(ok);
    ok = true;
    readBack("\"ends in escape\\", &ok);
    EXPECT_FALSE(ok);
}

TEST(StreamItems, WrittenText) {
    std::ostringstream out;
    OrvOStream s(out);
    s << Orv2dRect(1, -2, 30, 40);
    s << Orv2dPoint(-5, 6);
    s << (unsigned short)7 << (short)-8 << (unsigned int)9 << (int)-10 << (unsigned long)11
      << (long)-12;
    s << 1.5f << 3.14159265358979;
    s << "a \"label\"\twith tab";
    s.writePosition(5);
    EXPECT_EQ(out.str(), "rect2d\t1 -2 30 40\n"
                         "point2d\t-5 6\n"
                         "usData\t7\n"
                         "sData\t-8\n"
                         "uiData\t9\n"
                         "iData\t-10\n"
                         "ulData\t11\n"
                         "lData\t-12\n"
                         "fData\t1.5\n"
                         "dData\t3.14159\n"
                         "label\t\"a \\\"label\\\"\twith tab\"\n"
                         "position 5\n");
    EXPECT_STREQ(s.className(), "OrvStream");
}

TEST(StreamItems, IndentationKeysAndComments) {
    std::ostringstream out;
    OrvOStream s(out);
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
    out << '\n';
    EXPECT_EQ(out.str(), "\t\t\tiData\t1\n"
                         "\t\t\tratio\t\tyes\n"
                         "\t\t\tposition\t1 2 3\n"
                         "\t\t\tsevenchr\tx\n"
                         "\t\t\t% OrvActor class\n"
                         "\t\t\t\t\t\t\t\t\t\tiData\t2\n"
                         "k\t\tv\t% end\n");
}

TEST(StreamItems, ThreeDimensionalItems) {
    std::ostringstream out;
    OrvOStream s(out);
    s.indentation = 1;
    Orv3dMatrix m;
    for (int i = 0; i < 16; i++) m.m[i] = (float)i * 0.5f;
    s << m;
    s << Orv3dPoint(1, 2, 3) << Orv3dVector(0.25f, 0, -1) << Orv4dPoint(1, 2, 3, 4);
    s << Orv3dRect(1, 2, 3, 4) << Orv3dVolume(1, 2, 3, 4, 5, 6);
    EXPECT_EQ(out.str(), "\tmatrix3d \n"
                         "\t0 0.5 1 1.5\n"
                         "\t2 2.5 3 3.5\n"
                         "\t4 4.5 5 5.5\n"
                         "\t6 6.5 7 7.5\n"
                         "\tpoint3d\t1 2 3\n"
                         "\tvector3d\t0.25 0 -1\n"
                         "\tpoint4d\t1 2 3 4\n"
                         "\trect3d\t1 2 3 4\n"
                         "\tvolume3d\t1 2 3 4 5 6\n");
    std::istringstream in(out.str());
    OrvIStream is(nullptr, in);
    Orv3dMatrix back;
    Orv3dPoint p;
    Orv3dVector vec;
    Orv4dPoint p4;
    Orv3dRect r2;
    Orv3dVolume v2;
    is >> back >> p >> vec >> p4 >> r2 >> v2;
    for (int i = 0; i < 16; i++) EXPECT_FLOAT_EQ(back.m[i], i * 0.5f);
    EXPECT_EQ(std::vector<float>({3, 0.25f, 4, 4, 6}),
              std::vector<float>({p.z, vec.x, p4.w, r2.h, v2.d}));
    EXPECT_EQ(is.faults, 0u);
}

TEST(StreamItems, ReadBackAndWrongKeys) {
    std::istringstream in("% a comment line\n"
                          "\trect2d\t1 -2 30 40 % comment after the value\n"
                          "point2d\t-5 6\n"
                          "usData 7 sData -8\n"
                          "  uiData 9\tiData -10 ulData 11 lData -12 fData 1.5 dData 2.25\n"
                          "label \"x\\ny\"\n"
                          "position 5\n"
                          "sData 3\n"       // asked as usData
                          "label\t\"cut");  // string cut by the end
    OrvIStream s(nullptr, in);
    Orv2dRect r;
    Orv2dPoint p;
    unsigned short us = 0;
    short ss = 0;
    unsigned int ui = 0;
    int ii = 0;
    unsigned long ul = 0;
    long ll = 0;
    float f = 0;
    double d = 0;
    char* label = nullptr;
    unsigned long position = 0;
    s >> r >> p >> us >> ss >> ui >> ii >> ul >> ll >> f >> d >> label;
    s.readPosition(position);
    EXPECT_EQ(r, Orv2dRect(1, -2, 30, 40));
    EXPECT_EQ(p, Orv2dPoint(-5, 6));
    EXPECT_EQ(std::vector<long>({7, -8, 9, -10, 11, -12, 5}),
              std::vector<long>({us, ss, ui, ii, (long)ul, ll, (long)position}));
    EXPECT_EQ(std::vector<double>({1.5, 2.25}), std::vector<double>({f, d}));
    ASSERT_NE(label, nullptr);
    EXPECT_STREQ(label, "x\ny");
    EXPECT_EQ(s.faults, 0u);

    CaptureStdout();
    unsigned short keep = 77;
    s >> keep;
    EXPECT_EQ(keep, 77);  // the value is left as it was
    char* old = label;
    s >> label;
    EXPECT_EQ(label, old);  // a cut string does not replace the label
    EXPECT_EQ(GetCapturedStdout(), "OrvIStream : Bad data.\nOrvIStream : Bad label value.\n");
    EXPECT_EQ(s.faults, 2u);
    delete[] label;

    std::istringstream bad("point2d 1 2 rect2d 1 2 3 4 fData 1 usData 2 xx \"a\" posi 3");
    OrvIStream b(nullptr, bad);
    Orv2dRect r2(9, 9, 9, 9);
    Orv2dPoint p2(8, 8);
    float f2 = 0;
    double d2 = 4;
    char* l2 = nullptr;
    unsigned long pos2 = 7;
    CaptureStdout();
    b >> r2;  // takes "point2d", leaves "1 2" for the next item
    b >> p2;
    EXPECT_EQ(GetCapturedStdout(),
              "OrvIStream : Not a 2dRect object.\nOrvIStream : Not a 2dPoint object.\n");
    EXPECT_EQ(r2.x, 9);
    EXPECT_EQ(p2.x, 8);
    std::istringstream bad2("fData 1 usData 2 xx \"a\" posi 3");
    OrvIStream b2(nullptr, bad2);
    CaptureStdout();
    b2 >> f2 >> d2 >> l2;
    b2.readPosition(pos2);
    EXPECT_EQ(
        GetCapturedStdout(),
        "OrvIStream : Bad data.\nOrvIStream : Bad label value.\nOrvIStream : Bad position data.\n");
    EXPECT_FLOAT_EQ(f2, 1);
    EXPECT_DOUBLE_EQ(d2, 4);
    EXPECT_EQ(l2, nullptr);
    EXPECT_EQ(pos2, 7u);
}

TEST(StreamItems, ReadItemFamily) {
    std::istringstream in("layer\t\t3\n"
                          "properties\t0101\n"
                          "pattern None\n"
                          "count -4\n"
                          "smooth\t\tyes distinguish no cull maybe\n"
                          "wrong 1\n");
    OrvIStream s(nullptr, in);
    char buffer[1024];
    char value[1024];
    unsigned long ul = 0;
    long l = 0;
    unsigned long flag = 5;
    EXPECT_EQ(_OrvReadItem_(s, buffer, "layer", ul), 1);
    EXPECT_EQ(ul, 3u);
    EXPECT_EQ(_OrvReadItem_(s, buffer, "properties", value), 1);
    EXPECT_STREQ(value, "0101");
    EXPECT_EQ(_OrvReadItem_(s, buffer, "pattern", value), 1);
    EXPECT_STREQ(value, "");
    EXPECT_EQ(_OrvReadItem_(s, buffer, "count", l), 1);
    EXPECT_EQ(l, -4);
    EXPECT_EQ(_OrvReadItemBoolean_(s, buffer, "smooth", flag), 1);
    EXPECT_EQ(flag, 1u);
    EXPECT_EQ(_OrvReadItemBoolean_(s, buffer, "distinguish", flag), 1);
    EXPECT_EQ(flag, 0u);
    CaptureStdout();
    EXPECT_EQ(_OrvReadItemBoolean_(s, buffer, "cull", flag), 0);
    EXPECT_EQ(_OrvReadItem_(s, buffer, "right", ul), 0);
    EXPECT_EQ(GetCapturedStdout(), "## OrvIStream: Definition error (bool).\n"
                                   "OrvIStream: Definition error. (right wrong)\n");
    std::istringstream in2("a 1 b 2 c 3");
    OrvIStream s2(nullptr, in2);
    CaptureStdout();
    EXPECT_EQ(_OrvReadItem_(s2, buffer, "x"), 0);
    EXPECT_EQ(_OrvReadItem_(s2, buffer, "y", value), 0);
    EXPECT_EQ(_OrvReadItem_(s2, buffer, "z", l), 0);
    EXPECT_EQ(GetCapturedStdout(), "OrvIStream: Definition error (x a)\n"
                                   "OrvIStream: Definition error (y 1)\n"
                                   "OrvIStream: Definition error. (z b)\n");
    // A bad number fails the item without a report of its own; the stream
    // stays failed.
    std::istringstream in3("layer abc");
    OrvIStream s3(nullptr, in3);
    ul = 9;
    EXPECT_EQ(_OrvReadItem_(s3, buffer, "layer", ul), 0);
    EXPECT_EQ(ul, 9u);
    EXPECT_TRUE(s3.stream.fail());
}

TEST(StreamItems, NextItemSkipsCommentsEverywhere) {
    std::istringstream in("% one\n%two\n  \t\n% three\n\t word % tail\n%\n%\n\n  last");
    OrvIStream s(nullptr, in);
    char text[1024];
    s.nextItem();
    s.word(text);
    EXPECT_STREQ(text, "word");
    s.nextItem();
    s.word(text);
    EXPECT_STREQ(text, "last");
    s.nextItem();
    s.word(text);
    EXPECT_STREQ(text, "");
    // A long run of comment lines is handled in a loop.
    std::string many;
    for (int i = 0; i < 200000; i++) many += "%c\n";
    many += "end";
    std::istringstream in2(many);
    OrvIStream s2(nullptr, in2);
    s2.nextItem();
    s2.word(text);
    EXPECT_STREQ(text, "end");
    // Words are bounded to 1023 characters.
    std::istringstream in3(std::string(3000, 'w'));
    OrvIStream s3(nullptr, in3);
    s3.word(text);
    EXPECT_EQ(strlen(text), 1023u);
}

TEST(StreamFile, HeaderEofAndEmptyFile) {
    std::ostringstream out;
    OrvOStream s(out);
    s.defaultSize = Orv2dRect(0, 0, 400, 300);
    s.write(0, nullptr, 1);
    s.eof();
    std::string text = out.str();
    std::istringstream lines(text);
    std::string line;
    std::getline(lines, line);
    ASSERT_EQ(line.compare(0, 10, "% Orvis 1 "), 0);
    EXPECT_EQ(line.size(), 10u + 24u);
    std::string rest = text.substr(line.size() + 1);
    EXPECT_EQ(rest, "OrvStream 2d\n"
                    "defaultSize = 0 0 400 300\n"
                    "cardinal = 0\n"
                    "\n"
                    "% Do not modify or delete the last line (Orvis plugins).\n"
                    "% EOF\n");
    // It reads back as no objects, with the size taken.
    std::istringstream in(text);
    OrvIStream is(nullptr, in);
    unsigned count = 99;
    OrvActor** actors = is.read(count, 1);
    ASSERT_NE(actors, nullptr);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(actors[0], nullptr);
    EXPECT_EQ(is.defaultSize.w, 400u);
    EXPECT_EQ(is.defaultSize.h, 300u);
    delete[] actors;
    // A 3D writer has no size line.
    std::ostringstream out3;
    OrvOStream s3(out3);
    s3.write(0, nullptr, 0);
    EXPECT_NE(out3.str().find("\nOrvStream 3d\ncardinal = 0\n"), std::string::npos);
}

TEST(StreamFile, HeaderAndCountDiagnostics) {
    struct Case {
        const char* text;
        unsigned long is2d;
        const char* message;
        bool array;
    };
    const Case cases[] = {
        {"% Orvis 1 date\nOrvStream 3d\ncardinal = 0\n", 1,
         "## OrvIStream : Bad file definition. (2d 3d)\n  ## 2d file expected ...\n", false},
        {"% Orvis 1 date\nOrvStream 2d\ncardinal = 0\n", 0,
         "## OrvIStream : Bad file definition. (3d 2d)\n  ## 3d file expected ...\n", false},
        {"# Orvis 1 date\nOrvStream 2d\ndefaultSize = 1 2 3 4\ncardinal = 0\n", 1,
         "OrvIStream : header error\n", true},
        {"% Orvis 1 date\nOrvStream 2d\ndefaultSize : 1 2 3 4\ncardinal = 0\n", 1,
         "## OrvIStream : size error\n", false},
        {"% Orvis 1 date\nOrvStream 2d\nsize = 1 2 3 4\ncardinal = 0\n", 1,
         "## OrvIStream : size error (defaultSize size)\n", false},
        {"% Orvis 1 date\nOrvStream 2d\ndefaultSize = 1 2 3 4\ncardinal 0\n", 1,
         "## OrvIStream : cardinal error\n", false},
        {"% Orvis 1 date\nOrvStream 2d\ndefaultSize = 1 2 3 4\ncount = 0\n", 1,
         "## OrvIStream : cardinal error (cardinal count)\n", false},
        {"% Orvis 1 date\nOrvStream 3d\ncardinal = 0\n", 0, "", true},
        {"", 1,
         "OrvIStream : header error\n## OrvIStream : Bad file definition. (2d )\n  ## 2d file "
         "expected ...\n",
         false},
    };
    for (const Case& c : cases) {
        std::istringstream in(c.text);
        OrvIStream is(nullptr, in);
        unsigned count = 5;
        CaptureStdout();
        OrvActor** actors = is.read(count, c.is2d);
        EXPECT_EQ(GetCapturedStdout(), c.message) << c.text;
        EXPECT_EQ(actors != nullptr, c.array) << c.text;
        EXPECT_EQ(count, 0u);
        delete[] actors;
    }
}

TEST(StreamFile, UnknownClassAndHugeCount) {
    std::istringstream in(
        "% Orvis 1 Mon Nov 23 08:00:00 2026\nOrvStream 2d\ndefaultSize = 0 0 10 10\n"
        "cardinal = 4000000000\n"
        "% a comment between objects\n"
        "NoSuchClass  1  {\n\tlayer\t\t0\n}\n");
    OrvIStream is(nullptr, in);
    unsigned count = 0;
    CaptureStdout();
    OrvActor** actors = is.read(count, 1);
    EXPECT_EQ(
        GetCapturedStdout(),
        "OrvIStream : Class NoSuchClass not found ...\n## OrvIStream : Bad format in object 0\n");
    ASSERT_NE(actors, nullptr);
    EXPECT_EQ(count, 4000000000u);  // the count is not lowered
    EXPECT_EQ(actors[0], nullptr);
    delete[] actors;
    EXPECT_EQ(is.objects, nullptr);  // the table does not outlive the reading
    // A reference outside a reading is null.
    std::istringstream ref("5");
    OrvIStream r(nullptr, ref);
    EXPECT_EQ(r.readIndex(), nullptr);
}
