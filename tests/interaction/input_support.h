// Input in a scene: XTest gestures on the scene's window, a flat square that moves by its
// matrix, and a role that logs what it is offered as "name:type".
#ifndef ORV_INPUT_SUPPORT_H
#define ORV_INPUT_SUPPORT_H

#include "../theater/theater_support.h"

#include "orv/actor3d.h"

#include <cmath>
#include <map>
#include <memory>
#include <set>

// An unlit square in the plane z of its volume, placed by its matrix.
class Square : public BoxActor {
public:
    unsigned long color;
    std::string name;
    Square(OrvDirector* d, const Orv3dVolume& v, unsigned long c, const char* n)
        : BoxActor(d, v), color(c), name(n) {}
    void draw3d(const OrvScene*) const override {
        glDisable(GL_LIGHTING);
        glColor3ub((GLubyte)(color >> 16), (GLubyte)(color >> 8), (GLubyte)color);
        glTranslatef(0, 0, volume.z);
        glRectf(volume.x, volume.y, volume.x + volume.w, volume.y + volume.h);
        glTranslatef(0, 0, -volume.z);
    }
};

class LogRole : public OrvRole {
public:
    Log* log;
    int answer = 1;
    bool grabs = false;  // takes the theater's pointer events from press to release
    std::function<void(OrvTheater*)> onPress;
    explicit LogRole(Log* l) : log(l) {}
    int input3d(OrvActor* a, const OrvEvent& e, OrvTheater* t, OrvScene*) override {
        static const std::map<int, const char*> names = {
            {OrvKeyUp, "keyup"},     {OrvKeyDown, "key"},        {OrvButtonDown, "down"},
            {OrvButtonUp, "up"},     {OrvButtonDragged, "drag"}, {OrvEnterActor, "enter"},
            {OrvLeaveActor, "leave"}};
        if (names.count(e.type)) log->push_back(((Square*)a)->name + ":" + names.at(e.type));
        if (e.type == OrvButtonDown && onPress) onPress(t);
        if (grabs && e.type == OrvButtonDown) t->grabbed = a;
        if (grabs && e.type == OrvButtonUp) t->grabbed = nullptr;
        return answer;
    }
    const char* className() const override { return "LogRole"; }
};

class InputTest : public TheaterTest {
protected:
    Log log;
    std::vector<std::unique_ptr<OrvRole>> roles;  // outlive the theater's actors
    void SetUp() override {
        TheaterTest::SetUp();
        if (director) director->setDoubleClickPeriod(0);
    }
    Square* square(const Orv3dVolume& v, const char* name, OrvRole* role = nullptr,
                   unsigned long color = 0xff0000) {
        Square* s = new Square(director, v, color, name);
        s->setRole(role);
        theater->append(s, 0);
        return s;
    }
    LogRole* logRole() {
        roles.emplace_back(new LogRole(&log));
        return (LogRole*)roles.back().get();
    }
    // The window pixel of a world point.
    Orv2dPoint at(const Orv3dPoint& p) {
        Orv3dPoint w = toWindow(scene, p);
        return Orv2dPoint((int32_t)std::lround(w.x), (int32_t)std::lround(w.y));
    }
    void moveTo(long x, long y) {
        OrvTestMoveIn(dpy, scene->drawingCanvas(), (int)x, (int)y);
        settle(30);
    }
    void button(bool down) {
        OrvTestButton(dpy, 1, down);
        settle(30);
    }
    void click(const Orv2dPoint& p) {
        moveTo(p.x, p.y);
        button(true);
        button(false);
    }
    // A press at from, moves to `to` in steps (middle() runs half way), the release.
    void drag(const Orv2dPoint& from, const Orv2dPoint& to, std::function<void()> middle = {},
              std::function<void()> before = {}) {
        moveTo(from.x, from.y);
        button(true);
        for (int i = 1; i <= 4; i++) {
            moveTo(from.x + (to.x - from.x) * i / 4, from.y + (to.y - from.y) * i / 4);
            if (i == 2 && middle) middle();
        }
        if (before) before();
        button(false);
    }
    void type(unsigned long keysym, unsigned long modifier = 0) {
        OrvTestFocus(dpy, scene->drawingCanvas());
        OrvTestType(dpy, keysym, modifier);
        settle(40);
    }
    // The log so far, joined with repeats counted once, and forgotten.
    std::string taken() {
        std::string s;
        for (size_t i = 0; i < log.size(); i++)
            if (!i || log[i] != log[i - 1]) s += (s.empty() ? "" : " ") + log[i];
        log.clear();
        return s;
    }
    std::set<OrvActor*> selected() {
        unsigned n = 0;
        OrvActor** all = theater->selections(n);
        std::set<OrvActor*> s(all, all + n);
        delete[] all;
        return s;
    }
};

#endif
