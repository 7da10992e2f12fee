// Decors, frames and balloon data saved and read back: the same fields and
// the same text when saved again; a file cut at every offset gives a
// diagnostic and only whole objects; and the decor's and the frame's own
// messages for a bad icon block and a bad key.
#include "orv/shapes.h"
#include "frame_support.h"

namespace {

class FrameFile : public StreamTest {
protected:
    std::string interiorFile;

    void SetUp() override {
        StreamTest::SetUp();
        if (!director) return;
        director->prependToPath(OrvTestData("stream").c_str());
        interiorFile = "/tmp/orv-frame-file-" + std::to_string(getpid()) + ".orv";
    }
    void TearDown() override {
        StreamTest::TearDown();
        std::remove(interiorFile.c_str());
    }
    // An unmapped stage: a frame's interior waits until it is asked for.
    OrvStage* newStage() {
        stages.push_back(new OrvStage(director, Orv2dRect(0, 0, 420, 300), "file", 0, 0));
        return stages.back();
    }
    // A decor with all its furniture, an icon and a balloon; a bare decor
    // moved by its transformer; a frame; a rectangle with a balloon.
    void fill(OrvStage* s, bool withFile) {
        OrvDecor* decor = new OrvDecor(director, Orv2dRect(10, 20, 200, 150));
        decor->showTitleBar("A \"quoted\" title", 22);
        decor->showDecoration(7);
        decor->showScrollBars(1, 1, OrvBottom, OrvLeft, 16);
        decor->icon(new OrvReliefLabel(director, Orv2dRect(5, 5, 60, 20), "Icon", 2));
        decor->setName("decor one");
        decor->setBalloonData("Decor tip", nullptr, OrvBottom, 3);
        s->append(decor);

        OrvDecor* bare = new OrvDecor(director, Orv2dRect(0, 0, 30, 30));
        bare->apply2d(Orv2dMatrix(Orv2dPoint(300, 200)));
        s->append(bare, 1);

        OrvFrame* frame = new OrvFrame(director, Orv2dRect(220, 20, 180, 140), 0);
        frame->showTitleBar("Frame", 20);
        frame->showScrollBars(1, 0, OrvBottom, OrvLeft, 16);
        frame->outlined(1);
        frame->useDoubleBuffer(1);
        if (withFile) frame->file(interiorFile.c_str());
        s->append(frame);

        OrvBitmap* mark = director->readBitmap(director->rootCanvas, "mark.xbm");
        OrvActor* box = new OrvFilledRectangle(director, Orv2dRect(5, 250, 40, 20));
        box->setBalloonData("Tip\nline \"two\"", mark, OrvTop, 6);
        s->append(box);
    }
    template <class T>
    T* nth(OrvStage* s, int n) {
        for (OrvActor* a : OrvTestObjects(s))
            if (!strcmp(a->className(), T::_classInfo->name) && n-- == 0) return static_cast<T*>(a);
        return nullptr;
    }
};

}  // namespace

TEST_F(FrameFile, DecorFrameAndBalloonsComeBackEqual) {
    OrvStage* first = newStage();
    OrvTestOutput([&] { fill(first, true); });  // the interior's file does not exist yet
    std::string text = save(first);
    for (const char* c : {"% OrvDecor class ...", "% OrvFrame class ...", "decorIcon\t{"})
        EXPECT_NE(text.find(c), std::string::npos) << c;

    OrvStage* second = newStage();
    Orv2dRect size;
    std::istringstream in(text);
    EXPECT_EQ(OrvTestOutput([&] { EXPECT_EQ(second->read(in, size, -1), 1u); }), "");
    ASSERT_EQ(second->cardinal(), first->cardinal());
    // Saved again, the same text: every field came back; what follows is what text alone
    // cannot show.
    EXPECT_EQ(save(second).substr(text.find('\n')), text.substr(text.find('\n')));

    OrvDecor* decor = nth<OrvDecor>(second, 0);
    ASSERT_NE(decor, nullptr);
    // The sub-actors know their decor and draw on its stage.
    EXPECT_EQ(decor->hScrollBar->getUserProperty(OrvDecor::_inDecor), (void*)decor);
    EXPECT_EQ(decor->titleBar->drawingStage(), second);

    OrvDecor* bare = nth<OrvDecor>(second, 1);
    ASSERT_NE(bare, nullptr);
    EXPECT_EQ(bare->bbox2d(nullptr), Orv2dRect(300, 200, 30, 30));
    EXPECT_EQ(bare->layer, 1);

    OrvFrame* frame = nth<OrvFrame>(second, 0);
    ASSERT_NE(frame, nullptr);
    // Its interior is made on the new stage when asked for, from the file, double-buffered.
    EXPECT_EQ(frame->getView(), nullptr);
    ASSERT_NE(frame->getInteriorStage(), nullptr);
    EXPECT_NE(frame->getInteriorStage()->hasDoubleBuffer(), nullptr);

    OrvActor* box = nth<OrvFilledRectangle>(second, 0);
    ASSERT_NE(box, nullptr);
    // The flag that announces the balloon is not kept as state.
    EXPECT_EQ(box->getProperty(OrvBalloonFollowsBit), 0u);
    size_t flags = text.find("properties", text.find("OrvFilledRectangle"));
    ASSERT_NE(flags, std::string::npos);
    flags = text.find_first_of("01", flags + 10);
    EXPECT_EQ(text[flags + OrvBalloonFollowsBit - 1], '1');

    // A copy takes the furniture and the icon, not the balloon.
    OrvDecor* copy = (OrvDecor*)decor->copy();
    EXPECT_STREQ(copy->getTitle(), decor->getTitle());
    EXPECT_NE(copy->vScrollBar, nullptr);
    EXPECT_NE(copy->getIcon(), decor->getIcon());
    EXPECT_EQ(copy->getBalloonData(), nullptr);
    delete copy;
}

TEST_F(FrameFile, TruncatedAtEveryOffset) {
    OrvStage* source = newStage();
    fill(source, false);
    OrvTestEveryCut(newStage(), save(source), 4);
}

TEST_F(FrameFile, TheDecorAndFrameMessages) {
    OrvStage* source = newStage();
    fill(source, false);
    std::string text = save(source);
    size_t icon = text.find("decorIcon");
    ASSERT_NE(icon, std::string::npos);
    size_t iconEnd = text.find("\t\t}\n\t}\n", icon);
    ASSERT_NE(iconEnd, std::string::npos);
    struct Row {
        const char* what;
        size_t at;
        std::string from, to;
        std::string message;
        unsigned kept;  // objects read before the spoilt one
    } rows[] = {
        {"icon block opened badly", icon, "decorIcon\t{", "decorIcon\tnope",
         "OrvDecor :Bad begin separator (nope {) \n", 0},
        {"icon block closed badly", iconEnd, "\t\t}\n\t}\n", "\t\t}\n\t)\n",
         "OrvDecor :Bad end separator () })\n", 0},
        {"a frame's first key", text.find("\tfile\t"), "\tfile\t", "\tfil\t",
         "OrvFrame : OrvIStream bad key (fil file)\n", 1},
        {"a flag neither yes nor no", text.find("hScrollBar"), "hScrollBar\tyes",
         "hScrollBar\tmaybe", "## OrvIStream: Definition error (bool).\n", 0},
    };
    OrvStage* s = newStage();
    for (const Row& row : rows) {
        ASSERT_NE(row.at, std::string::npos) << row.what;
        std::string spoilt = text;
        ASSERT_EQ(spoilt.compare(row.at, row.from.size(), row.from), 0) << row.what;
        spoilt.replace(row.at, row.from.size(), row.to);
        std::istringstream in(spoilt);
        Orv2dRect size;
        std::string messages = OrvTestOutput([&] { s->read(in, size, -1); });
        EXPECT_NE(messages.find(row.message), std::string::npos) << row.what << ": " << messages;
        EXPECT_EQ(s->cardinal(), row.kept) << row.what;
        s->empty(1);
    }
}
