// Producers in a scene by XTest drags: the move keeps the picked point under the pointer,
// the rectangle selects what lies inside it, ghosts leave no pixel behind on either buffer,
// and abort in the middle of a drag changes nothing; the scene's ghosts.
#include "input_support.h"

class Producer3dTest : public InputTest {
protected:
    void SetUp() override {
        InputTest::SetUp();
        if (director) theater->setProducer(new OrvSelectProducer(scene));
    }
    std::vector<unsigned long> front() { return snapshot(scene->interior); }
    // The back buffer, as snapshot() reads the window.
    std::vector<unsigned long> back() {
        unsigned long w = scene->interior->width, h = scene->interior->height;
        glXMakeCurrent(dpy, scene->drawingCanvas(), (GLXContext)scene->context());
        std::vector<unsigned char> c(w * h * 4);
        glReadBuffer(GL_BACK);
        glReadPixels(0, 0, (int)w, (int)h, GL_RGBA, GL_UNSIGNED_BYTE, c.data());
        std::vector<unsigned long> pixels;
        for (unsigned long y = h; y-- > 0;)
            for (unsigned long x = 0; x < w; x++)
                pixels.push_back((unsigned long)c[(y * w + x) * 4] << 16 |
                                 (unsigned long)c[(y * w + x) * 4 + 1] << 8 |
                                 c[(y * w + x) * 4 + 2]);
        return pixels;
    }
    // The window pixel of a square's top-left corner, where its matrix puts it.
    Orv2dPoint corner(Square* s) {
        Orv3dPoint c(s->volume.x, s->volume.y + s->volume.h, s->volume.z);
        if (s->to3dWorld()) s->to3dWorld()->apply(c);
        return at(c);
    }
};

// Orthographic and perspective (the square off the origin's depth), by the move producer
// and by the move role: the point pressed ends under the release, within a pixel.
TEST_F(Producer3dTest, MoveKeepsThePickedPointUnderThePointer) {
    for (auto [perspective, role] : {std::pair(0, 0), {1, 0}, {1, 1}}) {
        if (perspective) {
            scene->currentCamera()->lookAt(Orv3dPoint(0, 0, 5), Orv3dPoint(), Orv3dVector(0, 1, 0));
            scene->currentCamera()->perspective(40, 1, 1, 100);
        }
        if (role) theater->setProducer(nullptr);
        Square* s = square(perspective ? Orv3dVolume(-1.8f, -0.6f, -2, 1.2f, 1.2f, 0)
                                       : Orv3dVolume(-0.9f, -0.3f, -2, 0.6f, 0.6f, 0),
                           "S", role ? OrvGetRole("Move") : nullptr);
        settle();
        Orv2dPoint c = corner(s), from(c.x + 6, c.y + 6), to(from.x + 70, from.y + 23);
        drag(from, to);
        Orv2dPoint moved = corner(s);
        EXPECT_NEAR(to.x - 6, moved.x, 1) << perspective << role;
        EXPECT_NEAR(to.y - 6, moved.y, 1) << perspective << role;
        const int probes[][3] = {{to.x, to.y, 0xff0000},
                                 {moved.x + 2, moved.y + 2, 0xff0000},
                                 {moved.x - 2, moved.y - 2, 0},
                                 {from.x, from.y, 0}};
        for (const auto& p : probes) EXPECT_EQ((unsigned long)p[2], pixel(scene, p[0], p[1]));
        theater->remove(s, 1);
        delete s;
    }
}

// A drag on empty space selects the actors that lie wholly inside its rectangle.
TEST_F(Producer3dTest, RectangleSelectsWhatLiesInside) {
    Square* in[] = {square(Orv3dVolume(-0.8f, -0.2f, 0, 0.4f, 0.4f, 0), "A"),
                    square(Orv3dVolume(-0.2f, -0.2f, 0, 0.4f, 0.4f, 0), "B")};
    square(Orv3dVolume(0.4f, -0.2f, 0, 0.4f, 0.4f, 0), "C");
    drag(at(Orv3dPoint(-0.95f, 0.5f, 0)), at(Orv3dPoint(0.5f, -0.5f, 0)));
    EXPECT_EQ(std::set<OrvActor*>(in, in + 2), selected());
}

// Mid-drag the ghost shows and a partial repaint across it keeps it as it was; after the
// release both buffers hold exactly what a fresh repaint paints.
TEST_F(Producer3dTest, GhostsLeaveNoPixelBehind) {
    square(Orv3dVolume(-0.8f, -0.2f, 0, 0.4f, 0.4f, 0), "A");
    for (auto [from, to] : {std::pair(Orv3dPoint(-0.6f, 0, 0), Orv3dPoint(0.3f, 0.4f, 0)),
                            {Orv3dPoint(0.9f, 0.9f, 0), Orv3dPoint(-0.1f, -0.7f, 0)}}) {
        std::vector<unsigned long> clean = front();
        Orv2dPoint mid = at(Orv3dPoint((from.x + to.x) / 2, (from.y + to.y) / 2, 0));
        drag(at(from), at(to), [&, mid = mid] {
            std::vector<unsigned long> ghosted = front();
            EXPECT_NE(clean, ghosted);
            theater->beginDrawing();
            theater->invalidate(Orv2dRect(mid.x - 4, mid.y - 30, 8, 60));
            theater->flushDrawing(1);
            EXPECT_EQ(1ul, scene->useScissor);
            EXPECT_TRUE(ghosted == front());
        });
        std::vector<unsigned long> released = front(), backBuffer = back();
        theater->drawAll(scene, nullptr, 1);
        settle();
        EXPECT_TRUE(released == front()) << from.x;
        EXPECT_TRUE(backBuffer == front()) << from.x;
    }
}

// abort in the middle of a move or of a rectangle: the release changes nothing.
TEST_F(Producer3dTest, AbortMidDragLeavesTheTheaterUnchanged) {
    Square* a = square(Orv3dVolume(-0.8f, -0.2f, 0, 0.4f, 0.4f, 0), "A");
    for (Orv3dPoint from : {Orv3dPoint(-0.6f, 0, 0), Orv3dPoint(0.9f, 0.9f, 0)}) {
        std::set<OrvActor*> pressed;
        drag(at(from), at(Orv3dPoint(0.5f, 0.5f, 0)), [&] {
            pressed = selected();
            theater->getProducer(scene)->abort();
        });
        EXPECT_EQ(nullptr, a->to3dWorld()) << from.x;
        EXPECT_EQ(pressed, selected()) << from.x;
    }
}

// Each ghost drawn once shows on the window, drawn again is gone.
TEST_F(Producer3dTest, GhostsDrawnTwiceAreGone) {
    const Orv2dPoint p[] = {{40, 40}, {40, 90}, {90, 90},  {90, 40},
                            {60, 30}, {60, 80}, {110, 80}, {110, 30}};
    Orv3dPoint flat[8];
    for (int i = 0; i < 8; i++) flat[i] = Orv3dPoint(p[i].x + 100.5f, p[i].y, 0.5f);
    std::function<void()> ghosts[] = {[&] { scene->lineGhost(p[0], p[6]); },
                                      [&] { scene->polyLineGhost(4, p + 2); },
                                      [&] { scene->arcGhost(Orv2dRect(50, 50, 80, 60), 0, 270); },
                                      [&] { scene->stringGhost(p[1], "ghost"); },
                                      [&] { scene->bezierGhost(4, p + 3); },
                                      [&] { scene->rectangleGhost(Orv2dRect(20, 30, 150, 100)); },
                                      [&] { scene->boxGhost(p); },
                                      [&] { scene->boxGhost(flat); }};
    std::vector<unsigned long> clean = front();
    for (auto& ghost : ghosts) {
        ghost();
        EXPECT_NE(clean, front());
        ghost();
        EXPECT_EQ(clean, front());
    }
}
