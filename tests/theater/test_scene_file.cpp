// A scene saved with its stage and read back: the same text, cameras and picture, and a file cut
// anywhere leaves a message and no part of a scene behind.
#include "theater_support.h"

namespace {

// The fixture's scene with three cameras, the second removed and the third current (a general
// view, whose decomposed values six digits do not hold exactly), a porthole, no z-buffer, focus
// and highlight make-ups, a light of each class, one not fixed, a plain one (saved in the spot
// form), and an environment; and a stage to read it into.
class SceneFile : public TheaterTest {
protected:
    OrvStage* other = nullptr;
    void SetUp() override {
        TheaterTest::SetUp();
        if (!director) return;
        other = new OrvStage(director, Orv2dRect(0, 0, 500, 260), "read", 0, 1);
        OrvTestWaitViewable(dpy, other->window());
        OrvCamera second, third;
        third.lookAt(Orv3dPoint(1, 2, 3), Orv3dPoint(0, 0.5f, -1), Orv3dVector(0.2f, 1, 0));
        third.perspective(Orv3dRect(-1, -0.75f, 2, 1.5f), 1, 20);
        scene->add(second);
        scene->add(third);
        scene->useCamera(2);
        scene->removeCamera(1);
        scene->porthole(Orv2dRect(0, 0, 150, 100));
        scene->useZBuffer(0);
        scene->focusMakeUp(paint("red"));
        scene->highlightMakeUp(paint("blue"));
        OrvLight* point = new OrvPointLight(OrvRGB(1, 1, 0.5f), 0.8f, Orv3dPoint(1, 2, 3));
        point->fixed(0);
        scene->add(point);
        scene->add(new OrvDirectionalLight(OrvRGB(0, 0.5f, 1), 1, Orv3dVector(0, -1, 0)));
        scene->add(new OrvSpotLight(OrvRGB(0.5f, 0.5f, 0.5f), 0.5f, Orv3dPoint(0, 4, 0),
                                    Orv3dVector(0, -1, 0), 12, 30));
        // Dark: a plain light sends no place, and its saved form reads back as a spot light.
        scene->add(new OrvLight(OrvRGB(0, 0, 0), 1));
        scene->environment(director->environment(OrvRGB(0.1f, 0.2f, 0.3f), 0.5f, 1, 0.1f, 0, 1, 1));
    }
    void TearDown() override {
        delete other;
        TheaterTest::TearDown();
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
    OrvScene* read(const std::string& text, std::string& messages) {
        std::istringstream in(text);
        Orv2dRect size;
        messages = OrvTestOutput([&] { other->read(in, size, -1); });
        unsigned n = 0;
        OrvActor** all = other->objects(n);
        OrvScene* found = n ? (OrvScene*)all[0] : nullptr;
        delete[] all;
        return found;
    }
};

}  // namespace

TEST_F(SceneFile, SavedReadAndSavedAgainAlike) {
    std::string text = save(stage), messages;
    for (const char* item : {"% OrvScene class ...", "cameraCardinal\t2\n", "currentCamera\t1\n",
                             "zbuffer\t\tno\n", "lightCardinal\t4\n", "roleProducerAcc\tno\n",
                             "\tfixed\t\tno\n\t}\n\tdirectionalLight {"})
        EXPECT_NE(text.find(item), std::string::npos) << item;
    OrvScene* second = read(full, messages);
    EXPECT_EQ(messages, "");
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(save(other), text);
    // The hole is gone and the current camera followed; the decomposed values agree.
    ASSERT_EQ(std::make_tuple(2u, 1u),
              std::make_tuple(second->cameraCardinal(), second->currentCameraIndex));
    for (unsigned i = 0; i < 2; i++)
        for (int k = 0; k < 16; k++) {
            EXPECT_NEAR(second->getCamera(i)->orientation().m[k],
                        scene->getCamera(2 * i)->orientation().m[k], 1e-5);
            EXPECT_NEAR(second->getCamera(i)->mapping().m[k],
                        scene->getCamera(2 * i)->mapping().m[k], 1e-5);
        }
    EXPECT_NE(second->environment_, scene->environment_);  // never shared by content
    EXPECT_EQ(std::make_tuple(true, 3u, 0u),
              std::make_tuple(second->highlightRender != nullptr, second->interactiveMode,
                              second->useScissor));
    // Side by side, both shown by the theater holding a lit sheet: the same picture, once the
    // read scene has its porthole again (making its window set the porthole to the window).
    XMoveWindow(dpy, other->window(), 510, 0);
    theater->append(litSheet(director), 0);
    theater->connect(second);
    second->porthole(Orv2dRect(0, 0, 150, 100));
    settle();
    theater->drawAll(nullptr, 1);
    glFinish();
    std::vector<unsigned long> shown = snapshot(scene->interior);
    EXPECT_LT(std::count(shown.begin(), shown.end(), shown[0]), (long)shown.size() - 500);
    EXPECT_EQ(shown, snapshot(second->interior));
}

TEST_F(SceneFile, CutAtEveryOffset) {
    save(stage);
    const std::string text = full;
    size_t end = text.rfind("\n}\n") + 1;  // the scene's closing brace
    // Cut before its number, "cardinal" reads as 0: an empty file, which needs no message.
    size_t counted = text.find('\n', text.find("cardinal = "));
    auto children = [&] {
        XSync(dpy, False);
        Window root, parent, *list = nullptr;
        unsigned n = 0;
        XQueryTree(dpy, other->window(), &root, &parent, &list, &n);
        if (list) XFree(list);
        return n;
    };
    unsigned windows = children(), environments = director->environments->length();
    for (size_t k = 0; k <= text.size(); k++) {
        std::string messages;
        OrvScene* got = read(text.substr(0, k), messages);
        ASSERT_EQ(got != nullptr, k > end) << "offset " << k;
        EXPECT_TRUE(got || k < counted || !messages.empty()) << "offset " << k;
        other->drawAll(nullptr, 1);
        ASSERT_EQ(children(), windows + (got ? 1 : 0)) << "offset " << k;
        other->empty(1);
        ASSERT_EQ(director->environments->length(), environments) << "offset " << k;
    }
}
