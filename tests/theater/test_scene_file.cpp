// A scene saved with its stage and read back: the same text and cameras, and a file cut
// anywhere leaves a message and no part of a scene behind. Needs the scene itself.
#include "theater_support.h"

namespace {

class SceneFile : public XTest {
protected:
    std::vector<OrvStage*> stages;
    void TearDown() override {
        for (OrvStage* s : stages) delete s;
        XTest::TearDown();
    }
    OrvStage* newStage() {
        stages.push_back(new OrvStage(director, Orv2dRect(0, 0, 260, 200), "scene file", 0, 1));
        OrvTestWaitViewable(dpy, stages.back()->window());
        return stages.back();
    }
    // Three cameras, the second removed and the third current (a general view, whose
    // decomposed values six digits do not hold exactly), a porthole, no z-buffer, focus and
    // highlight make-ups, two lights and an environment.
    OrvScene* scene(OrvStage* stage) {
        OrvScene* s = new OrvScene(director, Orv2dRect(10, 10, 220, 170), 1);
        stage->append(s);
        stage->drawAll(nullptr, 1);
        OrvCamera second, third;
        third.lookAt(Orv3dPoint(1, 2, 3), Orv3dPoint(0, 0.5f, -1), Orv3dVector(0.2f, 1, 0));
        third.perspective(Orv3dRect(-1, -0.75f, 2, 1.5f), 1, 20);
        s->add(second);
        s->add(third);
        s->useCamera(2);
        s->removeCamera(1);
        s->porthole(Orv2dRect(0, 0, 150, 100));
        s->useZBuffer(0);
        s->focusMakeUp(director->makeUpForeground(director->defaultMakeUp, director->color("red")));
        s->highlightMakeUp(
            director->makeUpForeground(director->defaultMakeUp, director->color("blue")));
        s->add(new OrvPointLight(OrvRGB(1, 1, 0.5f), 0.8f, Orv3dPoint(1, 2, 3)));
        s->add(new OrvDirectionalLight(OrvRGB(0, 0.5f, 1), 1, Orv3dVector(0, -1, 0)));
        s->environment(director->environment(OrvRGB(0.1f, 0.2f, 0.3f), 0.5f, 1, 0.1f, 0, 1, 1));
        return s;
    }
    // The text of the stage, without its date and the camera values that are decomposed.
    std::string save(OrvStage* s) {
        std::ostringstream out;
        s->save(out);
        full = out.str();
        std::istringstream in(full.substr(full.find('\n') + 1));
        std::string text;
        for (std::string line; std::getline(in, line);)
            if (line.find("\t\tposition") && line.find("\t\tlookAt") && line.find("\t\tlookUp"))
                text += line + "\n";
        return text;
    }
    std::string full;  // the last text saved, whole
    OrvScene* read(OrvStage* s, const std::string& text, std::string& messages) {
        std::istringstream in(text);
        Orv2dRect size;
        messages = OrvTestOutput([&] { s->read(in, size, -1); });
        unsigned n = 0;
        OrvActor** all = s->objects(n);
        OrvScene* found = n ? (OrvScene*)all[0] : nullptr;
        delete[] all;
        return found;
    }
    unsigned children(OrvStage* s) {
        XSync(dpy, False);
        Window root, parent, *list = nullptr;
        unsigned n = 0;
        XQueryTree(dpy, s->window(), &root, &parent, &list, &n);
        if (list) XFree(list);
        return n;
    }
};

}  // namespace

TEST_F(SceneFile, SavedReadAndSavedAgainAlike) {
    OrvScene* first = scene(newStage());
    std::string text = save(stages[0]), written = full, messages;
    for (const char* item : {"% OrvScene class ...", "cameraCardinal\t2\n", "currentCamera\t1\n",
                             "zbuffer\t\tno\n", "lightCardinal\t2\n", "roleProducerAcc\tno\n"})
        EXPECT_NE(text.find(item), std::string::npos) << item;
    OrvScene* second = read(newStage(), written, messages);
    EXPECT_EQ(messages, "");
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(save(stages[1]), text);
    // The hole is gone and the current camera followed; the decomposed values agree.
    ASSERT_EQ(second->cameraCardinal(), 2u);
    EXPECT_EQ(second->currentCameraIndex, 1u);
    for (unsigned i = 0; i < 2; i++)
        for (int k = 0; k < 16; k++) {
            EXPECT_NEAR(second->getCamera(i)->orientation().m[k],
                        first->getCamera(2 * i)->orientation().m[k], 1e-5);
            EXPECT_NEAR(second->getCamera(i)->mapping().m[k],
                        first->getCamera(2 * i)->mapping().m[k], 1e-5);
        }
    // Six digits in the file: the porthole comes back within their rounding.
    EXPECT_NEAR(second->porthole_.y, first->porthole_.y, 1e-6);
    EXPECT_NEAR(second->porthole_.w, first->porthole_.w, 1e-6);
    EXPECT_NEAR(second->porthole_.h, first->porthole_.h, 1e-6);
    EXPECT_NE(second->highlightRender, nullptr);
    EXPECT_EQ(second->interactiveMode, 3u);
    EXPECT_EQ(second->useScissor, 0u);
    // Side by side, both shown by one theater holding a lit sheet: the same picture, once the
    // read scene has its porthole again (making its window set the porthole to the window).
    XMoveWindow(dpy, stages[1]->window(), 270, 0);
    OrvTheater theater(director);
    theater.append(new LitSheet(director), 0);
    theater.connect(first);
    theater.connect(second);
    second->porthole(Orv2dRect(0, 0, 150, 100));
    OrvTestRunFor(60);
    theater.drawAll(nullptr, 1);
    glFinish();
    std::vector<unsigned long> shown = snapshot(first->interior);
    EXPECT_LT(std::count(shown.begin(), shown.end(), shown[0]), (long)shown.size() - 500);
    EXPECT_EQ(shown, snapshot(second->interior));
}

TEST_F(SceneFile, CutAtEveryOffset) {
    scene(newStage());
    save(stages[0]);
    const std::string text = full;
    size_t end = text.rfind("\n}\n") + 1;  // the scene's closing brace
    // Cut before its number, "cardinal" reads as 0: an empty file, which needs no message.
    size_t counted = text.find('\n', text.find("cardinal = "));
    OrvStage* s = newStage();
    unsigned windows = children(s), environments = director->environments->length();
    for (size_t k = 0; k <= text.size(); k++) {
        std::string messages;
        OrvScene* got = read(s, text.substr(0, k), messages);
        ASSERT_EQ(got != nullptr, k > end) << "offset " << k;
        EXPECT_TRUE(got || k < counted || !messages.empty()) << "offset " << k;
        s->drawAll(nullptr, 1);
        ASSERT_EQ(children(s), windows + (got ? 1 : 0)) << "offset " << k;
        s->empty(1);
        ASSERT_EQ(director->environments->length(), environments) << "offset " << k;
    }
}
