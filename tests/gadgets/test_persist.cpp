// Gadgets saved and read back: every class with values other than its
// defaults comes back equal (the same fields and the same text when saved
// again), and a file cut at every offset gives a diagnostic, no crash, and
// only whole gadgets on the stage.
#include <sstream>
#include <string>
#include <vector>

#include "orv/stream.h"
#include "gadget_support.h"

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

namespace {

std::string dataDir(const char* sub) {
    const char* dir = getenv("ORV_TEST_DATA");
    return std::string(dir ? dir : "tests/data") + "/" + sub;
}

class GadgetFile : public ::testing::Test {
protected:
    OrvDirector* director = nullptr;
    std::vector<OrvStage*> stages;
    std::vector<OrvMakeUp*> held;

    void SetUp() override {
        if (!getenv("DISPLAY")) GTEST_SKIP() << "no DISPLAY";
        director = new OrvDirector("testgadgetfile", nullptr, 0, nullptr);
        director->prependToPath(dataDir("stream").c_str());
        director->prependToPath(dataDir("gadgets").c_str());
    }
    void TearDown() override {
        for (OrvStage* s : stages) delete s;
        for (OrvMakeUp* m : held) OrvRelease(m);
        delete director;
    }
    OrvStage* newStage() {
        OrvStage* s = new OrvStage(director, Orv2dRect(0, 0, 320, 240), "file", 0, 0);
        stages.push_back(s);
        return s;
    }
    OrvMakeUp* look(const char* fg, const char* bg) {
        OrvMakeUp* m = director->makeUpBackground(
            director->makeUpForeground(director->defaultMakeUp, director->color(fg)),
            director->color(bg));
        OrvCount(m);
        held.push_back(m);
        return m;
    }
    // One gadget of every class, none with its defaults.
    void fill(OrvStage* s) {
        OrvBitmap* mark = director->readBitmap(director->rootCanvas, "mark.xbm");
        OrvBitmap* dot = director->readBitmap(director->rootCanvas, "dot.xbm");
        OrvMakeUp* blue = look("navy", "light blue");

        OrvReliefRectangle* plate =
            new OrvReliefRectangle(director, Orv2dRect(1, 2, 30, 40), 3, blue);
        plate->border(0);
        plate->invert();
        s->append(plate, 1);

        OrvReliefLabel* label =
            new OrvReliefLabel(director, Orv2dRect(40, 5, 90, 40), "Two \"lines\"\nof\ttext", 1);
        label->setAlignement(OrvTop);
        label->setLabelBitmapSpace(6);
        label->showBackground(0);
        label->attach(0);
        label->setBitmap(mark);
        label->setName("label one");
        s->append(label);

        OrvCluster* cluster = new OrvCluster(director, Orv2dRect(5, 50, 150, 90), "Group", 4);
        s->append(cluster);

        OrvIconStates* icon = new OrvIconStates(director, Orv2dRect(160, 5, 30, 30), mark, dot, 2);
        icon->setState(3, 9);
        icon->invertBitmaps();
        icon->invert();
        s->append(icon);

        OrvToggle* toggle = new OrvToggle(director, Orv2dRect(160, 40, 100, 20), "Radio", 2, blue);
        toggle->useDiamond(1);
        toggle->setCheckSize(20);
        toggle->margin(7);
        toggle->setChecked(1);
        toggle->setRole("Button");
        s->append(toggle);

        OrvScrollBar* bar = new OrvScrollBar(director, Orv2dRect(290, 10, 20, 200), OrvVertical, 1);
        bar->setValues(-20, 80, 33, 12);
        bar->setIncrement(4);
        bar->setPageIncrement(25);
        s->append(bar);

        OrvSlider* slider = new OrvSlider(director, Orv2dRect(10, 150, 200, 24), OrvHorizontal, 2);
        slider->setValues(-5, 55, 17, 14);
        s->append(slider);

        OrvThumbWheel* wheel =
            new OrvThumbWheel(director, Orv2dRect(10, 190, 200, 20), OrvHorizontal, 2, blue);
        wheel->setValue(355);
        wheel->setWrap(0);
        wheel->arrows(1);
        s->append(wheel, 2);
    }
    std::string save(OrvStage* s) {
        std::ostringstream out;
        s->save(out);
        return out.str();
    }
};

std::string afterFirstLine(const std::string& text) {
    return text.substr(text.find('\n') + 1);
}

// The saved form of one actor without the lines of name, role and flags.
std::string identity(const OrvActor* actor) {
    std::ostringstream out;
    OrvOStream writer(out);
    writer.write(1, &actor, 1);
    std::istringstream lines(afterFirstLine(out.str()));
    std::string line, kept;
    while (std::getline(lines, line))
        if (line.find("\tname\t") == std::string::npos &&
            line.find("\trole\t") == std::string::npos &&
            line.find("\tproperties\t") == std::string::npos)
            kept += line + "\n";
    return kept;
}

template <class T>
T* find(OrvStage* s, int n) {
    unsigned count = 0;
    OrvActor** all = s->objects(count);
    T* found = nullptr;
    for (unsigned i = 0; i < count; i++)
        if (T* t = dynamic_cast<T*>(all[i]))
            if (strcmp(t->className(), T::_classInfo->name) == 0 && n-- == 0) found = t;
    delete[] all;
    return found;
}

}  // namespace

TEST_F(GadgetFile, EveryClassComesBackEqual) {
    OrvStage* first = newStage();
    fill(first);
    std::string text = save(first);
    const char* comments[] = {"% OrvReliefRectangle class", "% OrvReliefLabel class",
                              "% OrvCluster class",         "% OrvIconStates class ...",
                              "% OrvToggle class",          "% OrvScrollBar class",
                              "% OrvSlider class",          "% OrvThumbWheel class"};
    for (const char* c : comments) EXPECT_NE(text.find(c), std::string::npos) << c;

    OrvStage* second = newStage();
    Orv2dRect size;
    CaptureStdout();
    std::istringstream in(text);
    EXPECT_EQ(second->read(in, size, -1), 1u);
    EXPECT_EQ(GetCapturedStdout(), "");
    ASSERT_EQ(second->cardinal(), first->cardinal());
    EXPECT_EQ(afterFirstLine(save(second)), afterFirstLine(text));

    OrvReliefRectangle* plate = find<OrvReliefRectangle>(second, 0);
    ASSERT_NE(plate, nullptr);
    EXPECT_EQ(plate->rect, Orv2dRect(1, 2, 30, 40));
    EXPECT_EQ(plate->thickness, 3);
    EXPECT_EQ(plate->border_, 0u);
    EXPECT_TRUE(plate->isInverted());
    EXPECT_EQ(plate->layer, 1);
    EXPECT_EQ(plate->makeUp, find<OrvReliefRectangle>(first, 0)->makeUp);
    EXPECT_EQ(plate->litMakeUp, find<OrvReliefRectangle>(first, 0)->litMakeUp);

    OrvReliefLabel* label = find<OrvReliefLabel>(second, 0);
    ASSERT_NE(label, nullptr);
    EXPECT_STREQ(label->label, "Two \"lines\"\nof\ttext");
    EXPECT_EQ(label->alignment, (OrvPosition)OrvTop);
    EXPECT_EQ(label->space, 6);
    EXPECT_EQ(label->backShown, 0u);
    EXPECT_EQ(label->attached, 0u);
    ASSERT_NE(label->bitmap, nullptr);
    EXPECT_STREQ(label->bitmap->name, "mark.xbm");
    EXPECT_STREQ(label->getName(), "label one");

    OrvCluster* cluster = find<OrvCluster>(second, 0);
    ASSERT_NE(cluster, nullptr);
    EXPECT_STREQ(cluster->label, "Group");
    EXPECT_EQ(cluster->thickness, 4);

    OrvIconStates* icon = find<OrvIconStates>(second, 0);
    OrvIconStates* icon0 = find<OrvIconStates>(first, 0);
    ASSERT_NE(icon, nullptr);
    EXPECT_EQ(icon->state1, 3u);
    EXPECT_EQ(icon->state2, 9u);
    for (int i = 0; i < 4; i++) EXPECT_EQ(icon->bitmaps[i], icon0->bitmaps[i]) << i;
    EXPECT_TRUE(icon->isInverted());
    EXPECT_EQ(icon->bitmap, icon0->bitmap);

    OrvToggle* toggle = find<OrvToggle>(second, 0);
    ASSERT_NE(toggle, nullptr);
    EXPECT_EQ(toggle->diamond, 1u);
    EXPECT_EQ(toggle->checkSize, 20u);
    EXPECT_EQ(toggle->margin_, 7);
    EXPECT_TRUE(toggle->isChecked());
    EXPECT_EQ(toggle->markMakeUp[0], find<OrvToggle>(first, 0)->markMakeUp[0]);
    EXPECT_EQ(toggle->markMakeUp[1], find<OrvToggle>(first, 0)->markMakeUp[1]);
    EXPECT_STREQ(toggle->getRole()->className(), "Button");

    OrvScrollBar* bar = find<OrvScrollBar>(second, 0);
    ASSERT_NE(bar, nullptr);
    EXPECT_EQ(bar->min, -20);
    EXPECT_EQ(bar->max, 80);
    EXPECT_EQ(bar->value, 33);
    EXPECT_EQ(bar->sliderSize, 12);
    EXPECT_EQ(bar->increment, 4);
    EXPECT_EQ(bar->pageIncrement, 25);
    EXPECT_EQ(bar->position, (OrvPosition)OrvVertical);
    EXPECT_STREQ(bar->getRole()->className(), "ScrollBar");

    OrvSlider* slider = find<OrvSlider>(second, 0);
    ASSERT_NE(slider, nullptr);
    int lo, hi, v;
    unsigned long thumb;
    slider->getValues(lo, hi, v, thumb);
    EXPECT_EQ(lo, -5);
    EXPECT_EQ(hi, 55);
    EXPECT_EQ(v, 17);
    EXPECT_EQ(thumb, 14u);

    OrvThumbWheel* wheel = find<OrvThumbWheel>(second, 0);
    ASSERT_NE(wheel, nullptr);
    EXPECT_EQ(wheel->value, 355);  // beyond a scroll bar's max - slider size
    EXPECT_EQ(wheel->wrap, 0u);
    EXPECT_EQ(wheel->arrows_, 1u);
    EXPECT_EQ(wheel->markMakeUp, find<OrvThumbWheel>(first, 0)->markMakeUp);
    EXPECT_EQ(wheel->layer, 2);

    // Copies are equal too, but for what a copy does not take: name, role and the flags that tell
    // of them.
    unsigned count = 0;
    OrvActor** all = first->objects(count);
    for (unsigned i = 0; i < count; i++) {
        OrvActor* copy = all[i]->copy();
        EXPECT_EQ(copy->classInfo(), all[i]->classInfo());
        EXPECT_EQ(identity(copy), identity(all[i])) << all[i]->className();
        delete copy;
    }
    delete[] all;
}

TEST_F(GadgetFile, TruncatedAtEveryOffset) {
    OrvStage* source = newStage();
    fill(source);
    std::string text = save(source);
    std::vector<size_t> ends;  // where each object's block closes
    for (size_t i = 0; i < text.size(); i++)
        if (text[i] == '}' && (i == 0 || text[i - 1] == '\n')) ends.push_back(i);
    ASSERT_EQ(ends.size(), 8u);
    size_t cardinalEnd = text.find('\n', text.find("cardinal = ")) + 1;
    OrvStage* s = newStage();
    for (size_t k = 0; k <= text.size(); k++) {
        std::istringstream in(text.substr(0, k));
        Orv2dRect size;
        CaptureStdout();
        unsigned long ok = s->read(in, size, -1);
        std::string messages = GetCapturedStdout();
        size_t complete = 0;
        while (complete < ends.size() && ends[complete] < k) complete++;
        ASSERT_EQ(s->cardinal(), complete) << "offset " << k;
        EXPECT_EQ(ok, complete ? 1u : 0u) << "offset " << k;
        // A cut inside a gadget's block names the object it spoils.
        if (complete < ends.size() && k >= cardinalEnd) {
            std::string last =
                "## OrvIStream : Bad format in object " + std::to_string(complete) + "\n";
            ASSERT_GE(messages.size(), last.size()) << "offset " << k;
            EXPECT_EQ(messages.substr(messages.size() - last.size()), last) << "offset " << k;
        }
        s->empty(1);
    }
}
