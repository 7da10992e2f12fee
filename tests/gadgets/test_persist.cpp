// Gadgets saved and read back: every class with values other than its defaults comes back with
// the same fields and the same text when saved again; copies keep the same fields; a file cut at
// every offset gives a diagnostic, no crash, and only whole gadgets on the stage.
#include "orv/relief.h"
#include "orv/value.h"
#include "frame_support.h"

namespace {

class GadgetFile : public StreamTest {
protected:
    void SetUp() override {
        StreamTest::SetUp();
        if (!director) return;
        director->prependToPath(OrvTestData("stream").c_str());
        director->prependToPath(OrvTestData("gadgets").c_str());
    }
    // One gadget of every class, none with its defaults.
    OrvStage* filled() {
        OrvStage* s = newStage();
        OrvBitmap* mark = director->readBitmap(director->rootCanvas, "mark.xbm");
        OrvBitmap* dot = director->readBitmap(director->rootCanvas, "dot.xbm");
        OrvMakeUp* blue = director->makeUpBackground(makeUp("navy"), director->color("light blue"));

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

        s->append(new OrvCluster(director, Orv2dRect(5, 50, 150, 90), "Group", 4));

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

        OrvScrollBar* bar = new OrvScrollBar(director, Orv2dRect(190, 10, 20, 160), OrvVertical, 1);
        bar->setValues(-20, 80, 33, 12);
        bar->setIncrement(4);
        bar->setPageIncrement(25);
        s->append(bar);

        OrvSlider* slider = new OrvSlider(director, Orv2dRect(10, 150, 200, 24), OrvHorizontal, 2);
        slider->setValues(-5, 55, 17, 14);
        s->append(slider);

        OrvThumbWheel* wheel =
            new OrvThumbWheel(director, Orv2dRect(10, 160, 200, 20), OrvHorizontal, 2, blue);
        wheel->setValue(355);  // beyond a scroll bar's max - slider size
        wheel->setWrap(0);
        wheel->arrows(1);
        s->append(wheel, 2);
        return s;
    }
};

// The fields of a gadget that a file and a copy must keep, as text.
std::string fields(OrvActor* a) {
    std::ostringstream o;
    o << a->className();
    if (OrvReliefRectangle* r = dynamic_cast<OrvReliefRectangle*>(a))
        o << " rect " << r->rect.x << "," << r->rect.y << "," << r->rect.w << "," << r->rect.h
          << " thick " << r->thickness << " border " << r->border_ << " inverted "
          << r->isInverted() << " look " << r->makeUp << " " << r->litMakeUp;
    if (OrvReliefLabel* l = dynamic_cast<OrvReliefLabel*>(a))
        o << " label [" << l->label << "] align " << l->alignment << " space " << l->space
          << " back " << l->backShown << " attached " << l->attached << " bitmap "
          << (l->bitmap ? l->bitmap->name : "-");
    if (OrvIconStates* i = dynamic_cast<OrvIconStates*>(a))
        o << " states " << i->state1 << " " << i->state2 << " bitmaps " << i->bitmaps[0] << " "
          << i->bitmaps[1] << " " << i->bitmaps[2] << " " << i->bitmaps[3] << " " << i->bitmap;
    if (OrvToggle* t = dynamic_cast<OrvToggle*>(a))
        o << " diamond " << t->diamond << " check " << t->checkSize << " margin " << t->margin_
          << " checked " << t->isChecked() << " marks " << t->markMakeUp[0] << " "
          << t->markMakeUp[1];
    if (OrvScrollBar* b = dynamic_cast<OrvScrollBar*>(a))
        o << " range " << b->min << " " << b->max << " " << b->value << " " << b->sliderSize
          << " steps " << b->increment << " " << b->pageIncrement << " position " << b->position;
    if (OrvSlider* s = dynamic_cast<OrvSlider*>(a)) {
        int lo, hi, v;
        unsigned long thumb;
        s->getValues(lo, hi, v, thumb);
        o << " values " << lo << " " << hi << " " << v << " " << thumb;
    }
    if (OrvThumbWheel* w = dynamic_cast<OrvThumbWheel*>(a))
        o << " wrap " << w->wrap << " arrows " << w->arrows_ << " mark " << w->markMakeUp;
    return o.str();
}

}  // namespace

TEST_F(GadgetFile, EveryClassComesBackEqualAndCopiesToo) {
    OrvStage* first = filled();
    std::string text = save(first);
    for (const char* c :
         {"ReliefRectangle class", "ReliefLabel class", "Cluster class", "IconStates class ...",
          "Toggle class", "ScrollBar class", "Slider class", "ThumbWheel class"})
        EXPECT_NE(text.find(std::string("% Orv") + c), std::string::npos) << c;
    OrvStage* second = newStage();
    Orv2dRect size;
    std::istringstream in(text);
    EXPECT_EQ(OrvTestOutput([&] { EXPECT_EQ(second->read(in, size, -1), 1u); }), "");
    auto body = [](const std::string& t) { return t.substr(t.find('\n')); };
    EXPECT_EQ(body(save(second)), body(text));
    std::vector<OrvActor*> was = OrvTestObjects(first), is = OrvTestObjects(second);
    ASSERT_EQ(is.size(), 8u);
    for (size_t i = 0; i < was.size(); i++) {
        EXPECT_EQ(fields(is[i]), fields(was[i]));
        EXPECT_EQ(is[i]->layer, was[i]->layer) << was[i]->className();
        OrvActor* copy = was[i]->copy();
        EXPECT_EQ(fields(copy), fields(was[i])) << "copied";
        delete copy;
    }
    auto named = [&is](const char* c) {
        for (OrvActor* a : is)
            if (!strcmp(a->className(), c)) return a;
        return (OrvActor*)nullptr;
    };
    EXPECT_STREQ(named("OrvReliefLabel")->getName(), "label one");
    EXPECT_STREQ(named("OrvToggle")->getRole()->className(), "Button");
    EXPECT_STREQ(named("OrvScrollBar")->getRole()->className(), "ScrollBar");
}

TEST_F(GadgetFile, TruncatedAtEveryOffset) {
    OrvTestEveryCut(newStage(), save(filled()), 8);
}
