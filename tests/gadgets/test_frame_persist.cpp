// Decors, frames and balloon data saved and read back: the same fields and
// the same text when saved again; a file cut at every offset gives a
// diagnostic and only whole objects; and the decor's and the frame's own
// messages for a bad icon block and a bad key.
#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

#include "orv/shapes.h"
#include "orv/stream.h"
#include "frame_support.h"

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

namespace {

std::string dataDir(const char* sub) {
    const char* dir = getenv("ORV_TEST_DATA");
    return std::string(dir ? dir : "tests/data") + "/" + sub;
}

std::string afterFirstLine(const std::string& text) {
    return text.substr(text.find('\n') + 1);
}

class FrameFile : public XTest {
protected:
    std::vector<OrvStage*> stages;
    std::string interiorFile;

    void SetUp() override {
        XTest::SetUp();
        if (!director) return;
        director->prependToPath(dataDir("stream").c_str());
        interiorFile = "/tmp/orv-frame-file-" + std::to_string(getpid()) + ".orv";
    }
    void TearDown() override {
        for (OrvStage* s : stages) delete s;
        XTest::TearDown();
        std::remove(interiorFile.c_str());
    }
    OrvStage* newStage() {
        OrvStage* s = new OrvStage(director, Orv2dRect(0, 0, 420, 300), "file", 0, 0);
        stages.push_back(s);
        return s;
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
    std::string save(OrvStage* s) {
        std::ostringstream out;
        s->save(out);
        return out.str();
    }
    template <class T>
    T* nth(OrvStage* s, int n) {
        unsigned count = 0;
        OrvActor** all = s->objects(count);
        T* found = nullptr;
        for (unsigned i = 0; i < count && !found; i++)
            if (!strcmp(all[i]->className(), T::_classInfo->name) && n-- == 0)
                found = static_cast<T*>(all[i]);
        delete[] all;
        return found;
    }
};

}  // namespace

TEST_F(FrameFile, DecorFrameAndBalloonsComeBackEqual) {
    OrvStage* first = newStage();
    CaptureStdout();  // the interior's file does not exist yet
    fill(first, true);
    GetCapturedStdout();
    std::string text = save(first);
    for (const char* c : {"% OrvDecor class ...", "% OrvFrame class ...", "decorIcon\t{"})
        EXPECT_NE(text.find(c), std::string::npos) << c;

    OrvStage* second = newStage();
    Orv2dRect size;
    CaptureStdout();
    std::istringstream in(text);
    EXPECT_EQ(second->read(in, size, -1), 1u);
    EXPECT_EQ(GetCapturedStdout(), "");
    ASSERT_EQ(second->cardinal(), first->cardinal());
    // Saved again, the same text: every field came back; what follows is what text alone
    // cannot show.
    EXPECT_EQ(afterFirstLine(save(second)), afterFirstLine(text));

    OrvDecor* decor = nth<OrvDecor>(second, 0);
    ASSERT_NE(decor, nullptr);
    EXPECT_STREQ(decor->getTitle(), "A \"quoted\" title");
    ASSERT_NE(decor->getIcon(), nullptr);
    EXPECT_STREQ(decor->getIcon()->className(), "OrvReliefLabel");
    EXPECT_STREQ(((OrvReliefLabel*)decor->getIcon())->getLabel(), "Icon");
    EXPECT_STREQ(decor->getBalloonLabel(), "Decor tip");
    // The sub-actors know their decor and draw on its stage.
    EXPECT_EQ(decor->hScrollBar->getUserProperty(OrvDecor::_inDecor), (void*)decor);
    EXPECT_EQ(decor->titleBar->drawingStage(), second);

    OrvDecor* bare = nth<OrvDecor>(second, 1);
    ASSERT_NE(bare, nullptr);
    EXPECT_EQ(bare->bbox2d(nullptr), Orv2dRect(300, 200, 30, 30));
    EXPECT_EQ(bare->layer, 1);

    OrvFrame* frame = nth<OrvFrame>(second, 0);
    ASSERT_NE(frame, nullptr);
    EXPECT_EQ(frame->interiorVisible, 0u);
    EXPECT_STREQ(frame->fileName, interiorFile.c_str());
    // Its interior is made on the new stage when asked for, from the file, double-buffered.
    EXPECT_EQ(frame->getView(), nullptr);
    ASSERT_NE(frame->getInteriorStage(), nullptr);
    EXPECT_NE(frame->getInteriorStage()->hasDoubleBuffer(), nullptr);

    OrvActor* box = nth<OrvFilledRectangle>(second, 0);
    ASSERT_NE(box, nullptr);
    EXPECT_STREQ(box->getBalloonLabel(), "Tip\nline \"two\"");
    ASSERT_NE(box->getBalloonBitmap(), nullptr);
    EXPECT_STREQ(box->getBalloonBitmap()->name, "mark.xbm");
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
    std::string text = save(source);
    std::vector<size_t> ends;  // where each object's block closes
    for (size_t i = 0; i < text.size(); i++)
        if (text[i] == '}' && (i == 0 || text[i - 1] == '\n')) ends.push_back(i);
    ASSERT_EQ(ends.size(), 4u);
    size_t cardinalEnd = text.find('\n', text.find("cardinal = ")) + 1;
    OrvStage* s = newStage();
    for (size_t k = 0; k <= text.size(); k++) {
        std::istringstream in(text.substr(0, k));
        Orv2dRect size;
        CaptureStdout();
        s->read(in, size, -1);
        std::string messages = GetCapturedStdout();
        size_t complete = 0;
        while (complete < ends.size() && ends[complete] < k) complete++;
        ASSERT_EQ(s->cardinal(), complete) << "offset " << k;
        if (complete < ends.size() && k >= cardinalEnd) {
            std::string last =
                "## OrvIStream : Bad format in object " + std::to_string(complete) + "\n";
            ASSERT_GE(messages.size(), last.size()) << "offset " << k;
            EXPECT_EQ(messages.substr(messages.size() - last.size()), last) << "offset " << k;
        }
        s->empty(1);
    }
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
        CaptureStdout();
        s->read(in, size, -1);
        std::string messages = GetCapturedStdout();
        EXPECT_NE(messages.find(row.message), std::string::npos) << row.what << ": " << messages;
        EXPECT_EQ(s->cardinal(), row.kept) << row.what;
        s->empty(1);
    }
}
