// The message database: messages and their languages, merging, the text file (written, read
// back, refused, cut short), and the director's lookup with ORVLANG and ORVDB.
#include <fstream>
#include <unistd.h>

#include "orv/message.h"
#include "orv_fixtures.h"

namespace {

OrvKey* lang(const char* name) {
    return OrvGetKey(name, 1);
}

TEST(Message, TextsByLanguage) {
    OrvMessage m("Open");
    EXPECT_EQ(m.getValue(lang("english")), nullptr);
    m.putMessage(lang("english"), "Open", 1);
    m.putMessage(lang("french"), "Ouvrir", 1);
    EXPECT_EQ(m.values.first->key, lang("french")) << "a new language goes in at the head";
    // A repeated language has its text replaced; the message takes over a text given without copy.
    char* owned = strdup("Ouvre");
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

TEST(MessageDatabase, PutGetRemoveAndMerge) {
    OrvMessageDatabase db, more(3);
    EXPECT_EQ(db.size, 11u);
    db.putMessage("Quit", lang("german"), "Beenden", 1);
    EXPECT_STREQ(db.getMessage("Quit", lang("german")), "Beenden");
    EXPECT_EQ(db.getMessage("Quit", lang("french")), nullptr);
    EXPECT_EQ(db.getMessage("Help", lang("german")), nullptr);
    // makeMessage starts over: the old message and its texts go.
    OrvMessage* fresh = db.makeMessage("Quit");
    EXPECT_EQ(db.find("Quit"), fresh);
    EXPECT_EQ(db.cardinal, 1u);
    EXPECT_EQ(db.getMessage("Quit", lang("german")), nullptr);
    db.putMessage("Save", lang("german"), "Sichern", 1);
    db.putMessage("Quit", lang("german"), "Beenden", 1);
    db.putMessage("Quit", lang("english"), "Quit", 1);
    db.remove(lang("german"));  // out of every message
    EXPECT_EQ(db.getMessage("Save", lang("german")), nullptr);
    EXPECT_EQ(db.getMessage("Quit", lang("german")), nullptr);
    EXPECT_STREQ(db.getMessage("Quit", lang("english")), "Quit");
    EXPECT_EQ(db.removeMessage("Save"), 1);
    EXPECT_EQ(db.removeMessage("Save"), 0);
    EXPECT_EQ(db.cardinal, 1u);
    // Merging adds languages and messages and replaces texts, with copies of its own.
    db.putMessage("Open", lang("french"), "Ouvrir", 1);
    db.putMessage("Open", lang("english"), "Open", 1);
    more.putMessage("Open", lang("french"), "Ouvre", 1);
    more.putMessage("Open", lang("italian"), "Apri", 1);
    more.putMessage("Help", lang("italian"), "Aiuto", 1);
    db.add(&more);
    more.clean();
    EXPECT_EQ(db.cardinal, 3u);
    EXPECT_STREQ(db.getMessage("Open", lang("english")), "Open");
    EXPECT_STREQ(db.getMessage("Open", lang("french")), "Ouvre");
    EXPECT_STREQ(db.getMessage("Open", lang("italian")), "Apri");
    EXPECT_STREQ(db.getMessage("Help", lang("italian")), "Aiuto");
    EXPECT_STREQ(db.getMessage("Quit", lang("english")), "Quit");
    db.clean();
    EXPECT_EQ(db.cardinal, 0u);
    EXPECT_EQ(db.find("Quit"), nullptr);
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
    EXPECT_EQ(text.find('\n'), strlen("// OrvMessageDatabase 1 ") + 24) << text;
    for (const char* line :
         {"// OrvMessageDatabase 1 ", "\nTotal 2\n", "\n\"A name with blanks\" 2\n",
          "\n\"english\" \"say \\\"hi\\\"\\\\ now\\nnext line\\r\\027 end\ttab\"\n",
          "\n\"pig latin\" \"\"\n", "\n\"quote\\\"d\" 1\n"})
        EXPECT_NE(text.find(line), std::string::npos) << line << " in " << text;
    OrvMessageDatabase back;
    std::istringstream in(text);
    ASSERT_EQ(back.read(in), 1);
    EXPECT_EQ(back.cardinal, 2u);
    EXPECT_STREQ(back.getMessage("A name with blanks", lang("english")), awkward);
    EXPECT_STREQ(back.getMessage("A name with blanks", lang("pig latin")), "");
    EXPECT_STREQ(back.getMessage("quote\"d", lang("english")), "plain");
    // Through a file too, and merged on top of what is there.
    char path[] = "/tmp/orv-dbm-XXXXXX";
    close(mkstemp(path));
    ASSERT_EQ(db.write(path), 1);
    OrvMessageDatabase merged;
    merged.putMessage("quote\"d", lang("english"), "old", 1);
    merged.putMessage("quote\"d", lang("french"), "vieux", 1);
    ASSERT_EQ(merged.read(path), 1);
    EXPECT_STREQ(merged.getMessage("quote\"d", lang("english")), "plain");
    EXPECT_STREQ(merged.getMessage("quote\"d", lang("french")), "vieux");
    EXPECT_EQ(merged.cardinal, 2u);
    unlink(path);
    EXPECT_EQ(OrvTestOutput([&] { EXPECT_EQ(merged.read(path), 0); }),
              std::string("OrvMessageDatabase::read : Couldn't open file ") + path + ".\n");
    EXPECT_EQ(OrvTestOutput([&] { EXPECT_EQ(db.write("/nonexistent-dir/x.dbm"), 0); }),
              "OrvMessageDatabase::write : Couldn't open file /nonexistent-dir/x.dbm.\n");
}

TEST(MessageDatabase, BadFilesAndEveryCutAreRefusedWithTheReport) {
    const std::string refused = "## Not a valid Orvis message database file.\n";
    struct Case {
        std::string text;
        int result;
        unsigned cardinal;
    } cases[] = {
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
        EXPECT_EQ(OrvTestOutput([&] { result = db.read(in); }), c.result ? "" : refused) << c.text;
        EXPECT_EQ(result, c.result) << c.text;
        EXPECT_EQ(db.cardinal, c.cardinal) << c.text;
    }
    OrvMessageDatabase db;
    db.putMessage("First message", lang("english"), "one \"1\"", 1);
    db.putMessage("First message", lang("french"), "un", 1);
    db.putMessage("Second", lang("english"), "two\nlines", 1);
    std::ostringstream out;
    db.write(out);
    const std::string whole = out.str();
    // Only the closing newline may go without loss.
    for (size_t cut = 0; cut < whole.size(); cut++) {
        OrvMessageDatabase part;
        std::istringstream in(whole.substr(0, cut));
        int result = -1;
        std::string said = OrvTestOutput([&] { result = part.read(in); });
        EXPECT_EQ(result, cut + 1 == whole.size() ? 1 : 0) << "cut at " << cut;
        EXPECT_EQ(said, cut + 1 == whole.size() ? "" : refused) << "cut at " << cut;
    }
}

// A director reads the database at start-up: ORVDB names the file, found through the search
// path; ORVLANG chooses the language.
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
        std::ofstream(dir + "/menus.dbm")
            << "// OrvMessageDatabase 1 Thu Jan  1 00:00:00 1970\nTotal 2\n"
               "\"File\" 2\n\"french\" \"Fichier\"\n\"english\" \"File\"\n"
               "\"Edit\" 1\n\"french\" \"\\303\\251dition\"\n";
    }
    void TearDown() override {
        for (const char* v : {"ORVLANG", "ORVDB", "ORVPATH"}) unsetenv(v);
        if (!dir.empty()) (void)!system(("rm -rf '" + dir + "'").c_str());
    }
};

TEST_F(DirectorMessages, LanguageAndFileFromTheEnvironment) {
    const std::string absolute = dir + "/menus.dbm";
    struct Case {
        const char *lang, *db;    // null: unset
        const char *file, *edit;  // expected for "File" and "Edit"
        const char* language;     // expected language name
    } cases[] = {
        {"french", "menus.dbm", "Fichier", "\\303\\251dition", "french"},
        {nullptr, "menus.dbm", "File", "Edit", "english"},
        {"german", "menus.dbm", "File", "Edit", "german"},  // a language the file lacks
        {"french", nullptr, "File", "Edit", "french"},      // no orv.dbm on the path
        {"french", "absent.dbm", "File", "Edit", "french"},
        {"french", absolute.c_str(), "Fichier", "\\303\\251dition", "french"},  // not on the path
    };
    setenv("ORVPATH", dir.c_str(), 1);
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.lang ? c.lang : "-") + " " + (c.db ? c.db : "-"));
        c.lang ? setenv("ORVLANG", c.lang, 1) : unsetenv("ORVLANG");
        c.db ? setenv("ORVDB", c.db, 1) : unsetenv("ORVDB");
        if (c.db == absolute.c_str()) unsetenv("ORVPATH");
        OrvDirector* d = nullptr;
        std::string said =
            OrvTestOutput([&] { d = new OrvDirector("msgtest", nullptr, 0, nullptr); });
        EXPECT_EQ(said.find("database"), std::string::npos) << "a missing file is no error";
        ASSERT_NE(d->database, nullptr);
        EXPECT_EQ(d->database->size, 11u);
        EXPECT_EQ(d->language, OrvGetKey(c.language, 0));
        EXPECT_STREQ(OrvGetMessage(d, "File"), c.file);
        EXPECT_STREQ(OrvGetMessage(d, "Edit"), c.edit);
        const char* name = "Nothing";
        EXPECT_EQ(OrvGetMessage(d, name), name) << "the name itself";
        // close deletes the database first.
        d->close();
        EXPECT_EQ(d->database, nullptr);
        EXPECT_STREQ(OrvGetMessage(d, "Edit"), "Edit");
        delete d;
    }
    EXPECT_STREQ(OrvGetMessage(nullptr, "File"), "File");
}

}  // namespace
