// gadget_dialog: a small dialog built from relief and value gadgets: check
// boxes and radio boxes in group boxes, a slider that drives a value label,
// a scroll bar, a thumb wheel, and OK and Cancel buttons.
//
//   gadget_dialog              opens the dialog on $DISPLAY; OK prints the
//                              choices, either button quits
//   gadget_dialog --shot FILE  clicks through the dialog with synthetic
//                              events, writes FILE (binary PPM) and exits
#include <orv/orvis.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <string>

namespace {

struct Dialog;

// A callback that calls back into the dialog.
class Action : public OrvCallback {
public:
    Dialog* dialog;
    void (*run)(Dialog*, OrvActor*);
    Action(Dialog* d, void (*f)(Dialog*, OrvActor*)) : dialog(d), run(f) {}
    void activate(OrvActor* actor) override { run(dialog, actor); }
};

// Shows which radio box the group left checked.
class SizeGroup : public OrvRadioGroup {
public:
    Dialog* dialog;
    explicit SizeGroup(Dialog* d) : dialog(d) {}
    void changed(OrvToggle* selected) override;
};

struct Dialog {
    OrvDirector* director;
    OrvStage* stage;
    OrvToggle* styles[3];
    OrvToggle* sizes[3];
    OrvSlider* volume;
    OrvReliefLabel* volumeLabel;
    OrvReliefLabel* status;
    OrvScrollBar* bar;
    OrvThumbWheel* wheel;
    OrvMakeUp* panel;

    explicit Dialog(OrvDirector* d) : director(d) {
        panel = d->makeUpBackground(d->defaultMakeUp, d->color("gray80"));
        OrvCount(panel);
        stage = new OrvStage(d, Orv2dRect(60, 60, 440, 330), "Orvis gadgets", 0, 1);
        stage->setBackground(d->color("gray80"));
        build();
    }
    ~Dialog() {
        delete stage;
        OrvRelease(panel);
    }

    OrvReliefLabel* button(const char* text, long x, long y, void (*f)(Dialog*, OrvActor*)) {
        OrvReliefLabel* b = new OrvReliefLabel(director, Orv2dRect(x, y, 1, 1), text, 2, panel);
        b->fitToContents();
        b->setRect(Orv2dRect(x, y, b->rect.w < 80 ? 80 : b->rect.w, b->rect.h));
        b->allowHighlight(1);
        b->setCallback(new Action(this, f));
        stage->append(b, 1);
        return b;
    }

    void build() {
        stage->beginDrawing();
        // Style: three independent check boxes in a group box.
        stage->append(new OrvCluster(director, Orv2dRect(15, 15, 190, 120), "Style", 2, panel));
        const char* styleNames[] = {"Bold", "Italic", "Underlined"};
        for (int i = 0; i < 3; i++) {
            styles[i] = new OrvToggle(director, Orv2dRect(30, 40 + 28 * i, 160, 20), styleNames[i],
                                      2, panel);
            styles[i]->setCallback(new Action(this, [](Dialog* dl, OrvActor*) { dl->report(); }));
            stage->append(styles[i], 1);
        }
        // Size: radio boxes, one of which stays checked.
        stage->append(new OrvCluster(director, Orv2dRect(225, 15, 200, 120), "Size", 2, panel));
        SizeGroup* group = new SizeGroup(this);
        const char* sizeNames[] = {"Small", "Medium", "Large"};
        for (int i = 0; i < 3; i++) {
            sizes[i] = new OrvToggle(director, Orv2dRect(240, 40 + 28 * i, 170, 20), sizeNames[i],
                                     2, panel);
            sizes[i]->useDiamond(1);
            group->add(sizes[i]);
            stage->append(sizes[i], 1);
        }
        sizes[1]->setChecked(1);
        // Volume: a slider whose label follows it while it moves.
        stage->append(new OrvCluster(director, Orv2dRect(15, 150, 410, 110), "Volume", 2, panel));
        volume = new OrvSlider(director, Orv2dRect(30, 178, 260, 28), OrvHorizontal, 2, panel);
        volume->setValues(0, 100, 40, 12);
        Action* follow = new Action(this, [](Dialog* dl, OrvActor*) { dl->showVolume(); });
        volume->setSecondaryCallback(follow);  // each step of a drag
        volume->setCallback(follow);           // and the end of it
        stage->append(volume, 1);
        volumeLabel = new OrvReliefLabel(director, Orv2dRect(305, 178, 105, 28), "", 2, panel);
        volumeLabel->invert();  // sunken: it shows, it is not pressed
        stage->append(volumeLabel, 1);
        volumeLabel->setRole((OrvRole*)nullptr);  // after append, which gives the default
        bar = new OrvScrollBar(director, Orv2dRect(30, 218, 260, 18), OrvHorizontal, 2, panel);
        bar->setValues(0, 100, 10, 20);
        bar->setIncrement(5);
        stage->append(bar, 1);
        wheel = new OrvThumbWheel(director, Orv2dRect(305, 218, 105, 18), OrvHorizontal, 2, panel);
        wheel->setValue(30);
        stage->append(wheel, 1);
        // Status line and the two buttons.
        status = new OrvReliefLabel(director, Orv2dRect(15, 275, 225, 40), "", 1, panel);
        status->showBackground(0);
        stage->append(status, 1);
        status->setRole((OrvRole*)nullptr);
        button("OK", 250, 280, [](Dialog* dl, OrvActor*) {
            dl->report();
            printf("%s\n", dl->status->label);
            OrvExit(0);
        });
        button("Cancel", 345, 280, [](Dialog*, OrvActor*) { OrvExit(0); });
        showVolume();
        report();
        stage->flushDrawing(1);
    }

    void showVolume() {
        char text[32];
        snprintf(text, sizeof text, "Volume %d", volume->getValue());
        volumeLabel->setLabel(text);
    }

    void report() {
        std::string s;
        for (OrvToggle* t : styles)
            if (t->isChecked()) s += std::string(s.empty() ? "" : "+") + t->getLabel();
        if (s.empty()) s = "Plain";
        for (OrvToggle* t : sizes)
            if (t->isChecked()) s += std::string(", ") + t->getLabel();
        status->setLabel(s.c_str());
    }

    // A press and a release of button 1, as the stage would receive them.
    void click(long x, long y, long toX = -1, long toY = -1) {
        OrvEvent e;
        memset(&e, 0, sizeof e);
        e.type = OrvButtonDown;
        e.button = 1;
        e.x = x;
        e.y = y;
        stage->handleInput(e);
        if (toX >= 0) {
            e.type = OrvButtonDragged;
            e.x = toX;
            e.y = toY;
            stage->handleInput(e);
        }
        e.type = OrvButtonUp;
        stage->handleInput(e);
    }

    // The window's picture through the library's own painting into a bitmap,
    // written as PPM.
    bool shot(const char* path) {
        OrvBitmap* picture = new OrvBitmap(stage, stage->width, stage->height, stage->depth);
        stage->bufferedDraw(picture, Orv2dPoint(0, 0));
        bool written = OrvSaveViewPPM(picture, path) != 0;
        delete picture;
        return written;
    }
};

void SizeGroup::changed(OrvToggle*) {
    dialog->report();
}

}  // namespace

int main(int argc, char** argv) {
    const char* shotPath = argc > 2 && strcmp(argv[1], "--shot") == 0 ? argv[2] : nullptr;
    OrvDirector* director = new OrvDirector("gadget_dialog", nullptr, argc, argv);
    Dialog* dialog = new Dialog(director);
    if (!shotPath) OrvPlay();

    // Let the window come up, then use the dialog as a person would.
    for (int i = 0; i < 50; i++) {
        OrvDispatchToTimers();
        OrvUSleep(10000);
    }
    dialog->click(60, 50);    // Bold
    dialog->click(60, 106);   // Underlined
    dialog->click(270, 106);  // Large
    Orv2dRect knob = dialog->volume->thumbBox(nullptr);
    long cx = knob.x + (long)knob.w / 2, cy = knob.y + (long)knob.h / 2;
    dialog->click(cx, cy, cx + 80, cy);  // the volume, dragged up
    dialog->click(284, 227);             // a step of the bar's second arrow
    dialog->click(340, 227, 360, 227);   // the wheel, turned
    for (int i = 0; i < 20; i++) {
        OrvDispatchToTimers();
        OrvUSleep(10000);
    }
    printf("%s; %s; bar %ld; wheel %ld\n", dialog->status->label, dialog->volumeLabel->label,
           dialog->bar->getValue(), dialog->wheel->getValue());
    int ok = dialog->shot(shotPath);
    delete dialog;
    delete director;
    return ok ? 0 : 1;
}
