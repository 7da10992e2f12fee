// The message database: messages and their languages, merging, the text file
// (written, read back, refused, cut short), and the director's lookup with
// ORVLANG and ORVDB.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <unistd.h>

#include "orv/director.h"
#include "orv/message.h"

#include <X11/Xlib.h>

namespace {

OrvKey* lang(const char* name) {
    return OrvGetKey(name, 1);
}

std::string captured(const std::function<void()>& f) {
    testing::internal::CaptureStdout();
    f();
    return testing::internal::GetCapturedStdout();
}

TEST(Message, TextsByLanguage) {
    OrvMessage m("Open");
    EXPECT_STREQ(m.name, "Open");
    EXPECT_EQ(m.getValue(lang("english")), nullptr);
    m.putMessage(lang("english"), "Open", 1);
    m.putMessage(lang("french"), "Ouvrir", 1);
    EXPECT_STREQ(m.getValue(lang("french")), "Ouvrir");
    EXPECT_EQ(m.values.first->key, lang("french")) << "a new language goes in at the head";
    // A repeated language has its text replaced; the message takes over a text given without copy.
    char* owned = (char*)malloc(8);
    strcpy(owned, "Ouvre");
    m.putMessage(lang("french"), owned, 0);
    EXPECT_EQ(m.getValue(lang("french")), owned);
    EXPECT_EQ(m.values.length(), 2u);
    OrvMessage* c = m.copy();
    EXPECT_STREQ(c->name, "Open");
    EXPECT_STREQ(c->getValue(lang("french")), "Ouvre");
    EXPECT_NE(c->getValue(lang("french")), owned) << "the copy has texts of its own";
    EXPECT_EQ(c->values.first->key, lang("french")) << "and their order";
    EXPECT_EQ(m.remove(lang("french")), 1);
    EXPECT_EQ(m.remove(lang("french")), 0);
    EXPECT_EQ(m.getValue(lang("french")), nullptr);
    EXPECT_STREQ(c->getValue(lang("french")), "Ouvre");
    delete c;
}

TEST(MessageDatabase, MakePutGetRemove) {
    OrvMessageDatabase db;
    EXPECT_EQ(db.size, 11u);
    EXPECT_EQ(db.find("Quit"), nullptr);
    EXPECT_EQ(db.getMessage("Quit", lang("english")), nullptr);
    db.putMessage("Quit", lang("english"), "Quit", 1);
    db.putMessage("Quit", lang("german"), "Beenden", 1);
    OrvMessage* quit = db.find("Quit");
    ASSERT_NE(quit, nullptr);
    EXPECT_EQ(db.cardinal, 1u);
    EXPECT_STREQ(db.getMessage("Quit", lang("german")), "Beenden");
    EXPECT_EQ(db.getMessage("Quit", lang("french")), nullptr);
    // makeMessage starts over: the old message and its texts go.
    OrvMessage* fresh = db.makeMessage("Quit");
    EXPECT_EQ(db.find("Quit"), fresh);
    EXPECT_EQ(db.cardinal, 1u);
    EXPECT_EQ(db.getMessage("Quit", lang("german")), nullptr);
    db.putMessage("Save", lang("german"), "Sichern", 1);
    db.putMessage("Quit", lang("german"), "Beenden", 1);
    db.putMessage("Quit", lang("english"), "Quit", 1);
    // A language out of every message.
    db.remove(lang("german"));
    EXPECT_EQ(db.getMessage("Save", lang("german")), nullptr);
    EXPECT_EQ(db.getMessage("Quit", lang("german")), nullptr);
    EXPECT_STREQ(db.getMessage("Quit", lang("english")), "Quit");
    EXPECT_EQ(db.removeMessage("Save"), 1);
    EXPECT_EQ(db.removeMessage("Save"), 0);
    EXPECT_EQ(db.cardinal, 1u);
    db.clean();
    EXPECT_EQ(db.cardinal, 0u);
    EXPECT_EQ(db.find("Quit"), nullptr);
}

TEST(MessageDatabase, MergeAddsLanguagesAndReplacesTexts) {
    OrvMessageDatabase base, more(3);
    base.putMessage("Open", lang("english"), "Open", 1);
    base.putMessage("Open", lang("french"), "Ouvrir", 1);
    base.putMessage("Close", lang("english"), "Close", 1);
    more.putMessage("Open", lang("french"), "Ouvre", 1);
    more.putMessage("Open", lang("italian"), "Apri", 1);
    more.putMessage("Help", lang("italian"), "Aiuto", 1);
    base.add(&more);
    EXPECT_EQ(base.cardinal, 3u);
    EXPECT_STREQ(base.getMessage("Open", lang("english")), "Open") << "kept";
    EXPECT_STREQ(base.getMessage("Open", lang("french")), "Ouvre") << "replaced";
    EXPECT_STREQ(base.getMessage("Open", lang("italian")), "Apri") << "added";
    EXPECT_STREQ(base.getMessage("Help", lang("italian")), "Aiuto") << "new message";
    EXPECT_STREQ(base.getMessage("Close", lang("english")), "Close");
    // The merged texts are copies: the other database may go.
    more.clean();
    EXPECT_STREQ(base.getMessage("Help", lang("italian")), "Aiuto");
}

TEST(MessageDatabase, FileRoundTripKeepsBlanksQuotesAndEscapes) {
    OrvMessageDatabase db;
    const char* awkward = "say \"hi\"\\ now\nnext line\r\x17 end\ttab";
    db.putMessage("A name with blanks", lang("english"), awkward, 1);
    db.putMessage("A name with blanks", lang("pig latin"), "", 1);
    db.putMessage("quote\"d", lang("english"), "plain", 1);
    std::ostringstream out;
    ASSERT_EQ(db.write(out), 1);
    std::string text = out.str();
    // Line 1: the version and the date of OrvDate; line 2: the count.
    std::string first = text.substr(0, text.find('\n'));
    EXPECT_EQ(first.rfind("// OrvMessageDatabase 1 ", 0), 0u) << first;
    EXPECT_EQ(first.size(), strlen("// OrvMessageDatabase 1 ") + 24) << first;
    EXPECT_NE(text.find("\nTotal 2\n"), std::string::npos);
    EXPECT_NE(text.find("\n\"A name with blanks\" 2\n"), std::string::npos) << text;
    EXPECT_NE(text.find("\n\"english\" \"say \\\"hi\\\"\\\\ now\\nnext line\\r\\027 end\ttab\"\n"),
              std::string::npos)
        << text;
    EXPECT_NE(text.find("\n\"pig latin\" \"\"\n"), std::string::npos) << text;
    EXPECT_NE(text.find("\n\"quote\\\"d\" 1\n"), std::string::npos) << text;

    OrvMessageDatabase back;
    std::istringstream in(text);
    ASSERT_EQ(back.read(in), 1);
    EXPECT_EQ(back.cardinal, 2u);
    EXPECT_STREQ(back.getMessage("A name with blanks", lang("english")), awkward);
    EXPECT_STREQ(back.getMessage("A name with blanks", lang("pig latin")), "");
    EXPECT_STREQ(back.getMessage("quote\"d", lang("english")), "plain");

    // Through a file too, and merged on top of what is there.
    char path[] = "/tmp/orv-dbm-XXXXXX";
    int fd = mkstemp(path);
    ASSERT_GE(fd, 0);
    close(fd);
    ASSERT_EQ(db.write(path), 1);
    OrvMessageDatabase merged;
    merged.putMessage("quote\"d", lang("english"), "old", 1);
    merged.putMessage("quote\"d", lang("french"), "vieux", 1);
    ASSERT_EQ(merged.read(path), 1);
    EXPECT_STREQ(merged.getMessage("quote\"d", lang("english")), "plain");
    EXPECT_STREQ(merged.getMessage("quote\"d", lang("french")), "vieux");
    EXPECT_EQ(merged.cardinal, 2u);
    unlink(path);
    EXPECT_EQ(captured([&] { EXPECT_EQ(merged.read(path), 0); }),
              std::string("OrvMessageDatabase::read : Couldn't open file ") + path + ".\n");
    EXPECT_EQ(captured([&] { EXPECT_EQ(db.write("/nonexistent-dir/x.dbm"), 0); }),
              "OrvMessageDatabase::write : Couldn't open file /nonexistent-dir/x.dbm.\n");
}

TEST(MessageDatabase, BadFilesAreRefusedWithTheReport) {
    const std::string refused = "## Not a valid Orvis message database file.\n";
    struct Case {
        const char* text;
        int result;
        unsigned cardinal;
    };
    const Case cases[] = {
        {"// OrvMessageDatabase 1 date\nTotal 1\n\"m\" 1\n\"english\" \"text\"\n", 1, 1},
        {"// OrvMessageDatabase 1.0\nTotal 0\n", 1, 0},
        {"// OrvMessageDatabase 0.5 anything\nTotal 1\n\"m\" 0\n", 1, 1},
        {"// OrvMessageDatabase 1.5 date\nTotal 1\n\"m\" 1\n\"english\" \"text\"\n", 0, 0},
        {"// OrvMessageDatabase two\nTotal 0\n", 0, 0},
        {"/ OrvMessageDatabase 1\nTotal 0\n", 0, 0},
        {"// OrvDatabase 1\nTotal 0\n", 0, 0},
        {"", 0, 0},
        {"// OrvMessageDatabase 1 date\nTotal\n", 0, 0},
        // Too few messages: what was read stays.
        {"// OrvMessageDatabase 1 date\nTotal 3\n\"m\" 1\n\"english\" \"text\"\n", 0, 1},
        {"// OrvMessageDatabase 1 date\nTotal 1\n\"m\" two\n", 0, 1},
    };
    for (const Case& c : cases) {
        OrvMessageDatabase db;
        std::istringstream in(c.text);
        int result = -1;
        std::string out = captured([&] { result = db.read(in); });
        EXPECT_EQ(result, c.result) << c.text;
        EXPECT_EQ(out, c.result ? "" : refused) << c.text;
        EXPECT_EQ(db.cardinal, c.cardinal) << c.text;
    }
}

TEST(MessageDatabase, EveryCutOfAFileReportsOrReadsWhole) {
    OrvMessageDatabase db;
    db.putMessage("First message", lang("english"), "one \"1\"", 1);
    db.putMessage("First message", lang("french"), "un", 1);
    db.putMessage("Second", lang("english"), "two\nlines", 1);
    std::ostringstream out;
    db.write(out);
    const std::string whole = out.str();
    for (size_t cut = 0; cut < whole.size(); cut++) {
        OrvMessageDatabase part;
        std::istringstream in(whole.substr(0, cut));
        int result = -1;
        std::string said = captured([&] { result = part.read(in); });
        // Only the closing newline may go without loss.
        if (cut == whole.size() - 1) {
            EXPECT_EQ(result, 1);
            continue;
        }
        EXPECT_EQ(result, 0) << "cut at " << cut;
        EXPECT_EQ(said, "## Not a valid Orvis message database file.\n") << "cut at " << cut;
        EXPECT_LE(part.cardinal, 2u);
    }
}

// A director reads the database at start-up: ORVDB names the file, found through the
// search path; ORVLANG chooses the language.
class DirectorMessages : public testing::Test {
protected:
    std::string dir;
    void SetUp() override {
        if (!getenv("DISPLAY")) GTEST_SKIP() << "no DISPLAY";
        static Display* keeper = XOpenDisplay(getenv("DISPLAY"));
        (void)keeper;
        char t[] = "/tmp/orv-msg-XXXXXX";
        ASSERT_NE(mkdtemp(t), nullptr);
        dir = t;
        std::ofstream f(dir + "/menus.dbm");
        f << "// OrvMessageDatabase 1 Thu Jan  1 00:00:00 1970\nTotal 2\n"
             "\"File\" 2\n\"french\" \"Fichier\"\n\"english\" \"File\"\n"
             "\"Edit\" 1\n\"french\" \"\\303\\251dition\"\n";
    }
    void TearDown() override {
        unsetenv("ORVLANG");
        unsetenv("ORVDB");
        unsetenv("ORVPATH");
        if (!dir.empty()) {
            unlink((dir + "/menus.dbm").c_str());
            rmdir(dir.c_str());
        }
    }
};

TEST_F(DirectorMessages, LanguageAndFileFromTheEnvironment) {
    struct Case {
        const char* lang;    // null: unset
        const char* db;      // null: unset
        const char* file;    // expected for "File"
        const char* edit;    // expected for "Edit"
        const char* format;  // expected language name
    };
    const Case cases[] = {
        {"french", "menus.dbm", "Fichier", "\\303\\251dition", "french"},
        {nullptr, "menus.dbm", "File", "Edit", "english"},
        {"german", "menus.dbm", "File", "Edit", "german"},  // a language the file lacks
        {"french", nullptr, "File", "Edit", "french"},      // no orv.dbm on the path
        {"french", "absent.dbm", "File", "Edit", "french"},
    };
    for (const Case& c : cases) {
        if (c.lang)
            setenv("ORVLANG", c.lang, 1);
        else
            unsetenv("ORVLANG");
        if (c.db)
            setenv("ORVDB", c.db, 1);
        else
            unsetenv("ORVDB");
        setenv("ORVPATH", dir.c_str(), 1);
        std::string said;
        OrvDirector* d = nullptr;
        testing::internal::CaptureStdout();
        d = new OrvDirector("msgtest", nullptr, 0, nullptr);
        said = testing::internal::GetCapturedStdout();
        EXPECT_EQ(said.find("database"), std::string::npos) << "a missing file is no error";
        ASSERT_NE(d->database, nullptr);
        EXPECT_EQ(d->database->size, 11u);
        EXPECT_EQ(d->language, OrvGetKey(c.format, 0));
        EXPECT_STREQ(OrvGetMessage(d, "File"), c.file) << (c.lang ? c.lang : "-");
        EXPECT_STREQ(OrvGetMessage(d, "Edit"), c.edit) << (c.lang ? c.lang : "-");
        const char* name = "Nothing";
        EXPECT_EQ(OrvGetMessage(d, name), name) << "the name itself";
        delete d;
    }
    EXPECT_STREQ(OrvGetMessage(nullptr, "File"), "File");
}

TEST_F(DirectorMessages, CloseDeletesTheDatabaseFirst) {
    setenv("ORVDB", (dir + "/menus.dbm").c_str(), 1);  // an absolute name ignores the path
    OrvDirector* d = new OrvDirector("msgtest", nullptr, 0, nullptr);
    ASSERT_NE(d->database, nullptr);
    EXPECT_EQ(d->database->cardinal, 2u);
    d->close();
    EXPECT_EQ(d->database, nullptr);
    EXPECT_STREQ(OrvGetMessage(d, "File"), "File");
    delete d;
}

}  // namespace
