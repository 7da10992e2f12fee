// Value gadgets: scroll bars, sliders and thumb wheels, relief rectangles
// that show and change an integer value. Their roles turn pointer events into
// value steps; callers observe them through the roles' drag and valueChanged.
#ifndef ORV_VALUE_H
#define ORV_VALUE_H

#include "orv/relief.h"
#include "orv/event.h"

class OrvScrollBar;
class OrvSlider;
class OrvThumbWheel;

// The user property under which a bar keeps the OrvCallback of its owner (a
// list, a frame), which is told of each step of an arrow held down. The owner
// keeps the callback alive as long as the bar.
OrvKey* OrvScrollBarOwnerKey();

// ---------------------------------------------------------------------------
// Scroll bar
// ---------------------------------------------------------------------------

class OrvScrollBar : public OrvReliefRectangle {
public:
    long min, max, value;
    long sliderSize;          // length of the thumb, in value units
    long increment;           // step of the arrows
    long pageIncrement;       // step of a page
    OrvPosition position;     // OrvVertical (64) lays the bar out vertically
    unsigned long lastDrawn;  // where the thumb was last drawn; 65535 for nowhere

    OrvScrollBar(OrvDirector* director, const Orv2dRect& box, OrvPosition direction,
                 unsigned short thickness, OrvMakeUp* look = nullptr);
    OrvScrollBar(const OrvScrollBar& source);
    ORV_PERSISTENT_ACTOR(OrvScrollBar)
    ~OrvScrollBar() override;

    // Range, value and thumb at once, put in order and clamped, then repainted.
    virtual void setValues(long min, long max, long value, long sliderSize);
    // The step of the arrows, at least 1.
    virtual void setIncrement(long step);
    // Kept between 1 and the range.
    virtual void setPageIncrement(long step);
    // Clamped so that the thumb stays inside; nothing when the value stays.
    virtual void setValue(long value);
    // OrvVertical lays the bar out from top to bottom, anything else from left to right.
    virtual void setPosition(OrvPosition position);
    // The value under a point of the trough, before clamping.
    virtual long positionToValue(const Orv2dPoint& point, const Orv2dMatrix* matrix) const;
    // The two arrows, the trough and the thumb, mapped; returns the whole box.
    // A bar too short for its arrows gives the whole box for all four.
    virtual Orv2dRect computeBBox(Orv2dRect& first, Orv2dRect& second, Orv2dRect& trough,
                                  Orv2dRect& thumb, const Orv2dMatrix* matrix) const;
    // Repaints at once: the whole bar for a non-zero argument, otherwise the
    // trough, and that only when the thumb has moved on the screen.
    virtual void bufferedDraw(unsigned long whole);
    // Whether the value stands at its end toward a direction (1 down, 2 up).
    virtual unsigned long atEnd(unsigned long direction) const;
    // False here; a thumb wheel's value may reach max.
    virtual unsigned long isThumbWheel() const;

    void draw2d(OrvCanvas* canvas, const Orv2dMatrix* matrix) override;
    // The thumb shows the highlight; the bar repaints itself.
    unsigned long setHighlighted(unsigned long on, const Orv2dPoint& point,
                                 unsigned long redraw) override;
    // The thumb shows the pressed look.
    void invert() override;
    // "ScrollBar".
    const char* defaultRole() const override;

    long getValue() const { return value; }
    unsigned long isVertical() const { return position == OrvVertical; }

protected:
    void drawH(OrvCanvas* canvas, const Orv2dMatrix* matrix);
    void drawV(OrvCanvas* canvas, const Orv2dMatrix* matrix);
    // The frame, the arrows and the trough, common to bars and wheels.
    void drawFrameAndArrows(OrvCanvas* canvas, const Orv2dRect& whole, const Orv2dRect& first,
                            const Orv2dRect& second, unsigned long vertical);
    // The thumb's place along the trough, as lastDrawn records it.
    unsigned long thumbKey(const Orv2dRect& trough, const Orv2dRect& thumb) const;

private:
    void drawBar(OrvCanvas* canvas, const Orv2dMatrix* matrix, unsigned long vertical);
};

// ---------------------------------------------------------------------------
// Slider
// ---------------------------------------------------------------------------

class OrvSlider : public OrvReliefRectangle {
public:
    int min, max, value;
    unsigned long thumb;  // length of the thumb, in pixels
    OrvPosition position;

    OrvSlider(OrvDirector* director, const Orv2dRect& box, OrvPosition direction,
              unsigned short thickness, OrvMakeUp* look = nullptr);
    OrvSlider(const OrvSlider& source);
    ORV_PERSISTENT_ACTOR(OrvSlider)
    ~OrvSlider() override;

    // Range, value and thumb at once, put in order and clamped, then repainted.
    virtual void setValues(int min, int max, int value, unsigned long thumb);
    // Clamped to min and max; nothing when the value stays.
    virtual void setValue(int value);
    void getValues(int& min, int& max, int& value, unsigned long& thumb) const;
    // OrvVertical lays the slider out from top to bottom, anything else from left to right.
    virtual void setPosition(OrvPosition position);
    // The value whose thumb centre lies under the point, clamped.
    virtual int positionToValue(const Orv2dPoint& point, const Orv2dMatrix* matrix) const;
    // Repaints the slider at once.
    virtual void bufferedDraw(unsigned long whole);

    void draw2d(OrvCanvas* canvas, const Orv2dMatrix* matrix) override;
    // "Slider".
    const char* defaultRole() const override;

    int getValue() const { return value; }
    unsigned long isVertical() const { return position == OrvVertical; }
    // The thumb, mapped.
    Orv2dRect thumbBox(const Orv2dMatrix* matrix) const;

private:
    // The run of thumb centres along the axis: its start and its length.
    void track(const Orv2dRect& r, long& start, long& length) const;
};

// ---------------------------------------------------------------------------
// Thumb wheel
// ---------------------------------------------------------------------------

class OrvThumbWheel : public OrvScrollBar {
public:
    OrvMakeUp* markMakeUp;  // counted
    unsigned long wrap;     // 1: the value goes round from max to min
    unsigned long arrows_;  // 1: arrows at both ends

    OrvThumbWheel(OrvDirector* director, const Orv2dRect& box, OrvPosition direction,
                  unsigned short thickness, OrvMakeUp* look = nullptr);
    OrvThumbWheel(const OrvThumbWheel& source);
    ORV_PERSISTENT_ACTOR(OrvThumbWheel)
    ~OrvThumbWheel() override;

    // With wrap the value is brought round into min to max; otherwise clamped to them.
    void setValue(long value) override;
    // Stored as given, without the scroll bar's clamping.
    void setValues(long min, long max, long value, long sliderSize) override;
    void setPageIncrement(long step) override;
    // Arrows at both ends step the value by the increment.
    virtual void arrows(unsigned long on);
    // With 0 the value stops at min and max instead of going round.
    virtual void setWrap(unsigned long on);
    // The value as an angle in degrees: a full turn over the range.
    virtual float angle() const;
    void setMode(OrvDrawMode mode) override;
    void setOverwrite(unsigned long on) override;
    unsigned long isThumbWheel() const override;
    unsigned long atEnd(unsigned long direction) const override;
    // Arrows only when asked for; the thumb is the whole wheel.
    Orv2dRect computeBBox(Orv2dRect& first, Orv2dRect& second, Orv2dRect& trough, Orv2dRect& thumb,
                          const Orv2dMatrix* matrix) const override;
    void draw2d(OrvCanvas* canvas, const Orv2dMatrix* matrix) override;
    void notifyOnMakeUpChanged() override;
    // "ThumbWheel".
    const char* defaultRole() const override;

private:
    void makeMark();
};

// ---------------------------------------------------------------------------
// Roles and their repeat timers
// ---------------------------------------------------------------------------

// Presses of button 1 on a bar: an arrow steps and repeats, the trough sets
// the value under the pointer, the thumb follows the pointer. Only one press
// is under way in the application, so its state lives in statics.
class OrvSBRole : public OrvRole {
public:
    OrvSBRole() : OrvRole(1) {}
    int input2d(OrvActor* actor, const OrvEvent& event, OrvStage* stage) override;
    const char* className() const override { return "ScrollBar"; }
    // Each step of a press; the default runs the bar's secondary callback.
    virtual void drag(OrvStage* stage, OrvScrollBar* bar);
    // The end of a press; the default asks the stage to run the bar's callback.
    virtual void valueChanged(OrvStage* stage, OrvScrollBar* bar);
};

class OrvSliderRole : public OrvRole {
public:
    OrvSliderRole() : OrvRole(1) {}
    int input2d(OrvActor* actor, const OrvEvent& event, OrvStage* stage) override;
    const char* className() const override { return "Slider"; }
    // Each step of a press; the default runs the slider's secondary callback.
    virtual void drag(OrvStage* stage, OrvSlider* slider);
    // The end of a press; the default asks the stage to run the slider's callback.
    virtual void valueChanged(OrvStage* stage, OrvSlider* slider);
};

class OrvThumbWheelRole : public OrvRole {
public:
    OrvThumbWheelRole() : OrvRole(1) {}
    int input2d(OrvActor* actor, const OrvEvent& event, OrvStage* stage) override;
    const char* className() const override { return "ThumbWheel"; }
    // Each step of a press; the default runs the wheel's secondary callback.
    virtual void drag(OrvStage* stage, OrvThumbWheel* wheel);
    // The end of a press; the default asks the stage to run the wheel's callback.
    virtual void valueChanged(OrvStage* stage, OrvThumbWheel* wheel);
};

// The repeat of an arrow held down: first after 200 ms, then 10 ms sooner at
// each step down to 10 ms; it stops at the end of the range.
class OrvCSBTimer : public OrvTimer {
public:
    OrvSBRole* role;
    OrvStage* stage;
    OrvScrollBar* bar;
    unsigned long direction;  // 1 down, 2 up
    Orv2dMatrix transformer;  // the stage's when the press began

    OrvCSBTimer(OrvSBRole* role, OrvStage* stage, OrvScrollBar* bar, unsigned long direction);
    // One step of the arrow: value, drag, end test, owner, period.
    void activate() override;
};

class OrvThumbWheelTimer : public OrvTimer {
public:
    OrvThumbWheelRole* role;
    OrvStage* stage;
    OrvThumbWheel* bar;
    unsigned long direction;  // 1 down, 2 up
    Orv2dMatrix transformer;  // the stage's when the press began

    OrvThumbWheelTimer(OrvThumbWheelRole* role, OrvStage* stage, OrvThumbWheel* wheel,
                       unsigned long direction);
    // One step of the arrow, as the scroll bar's timer does it.
    void activate() override;
};

// Make the shared instances of the three roles once, before any file's statics run.
class orvinitOrvValueRoles {
public:
    orvinitOrvValueRoles();
    static int _counter;
};
static orvinitOrvValueRoles _orvinitOrvValueRoles;

ORV_DECLARE_CLASS_INIT(OrvScrollBar)
ORV_DECLARE_CLASS_INIT(OrvSlider)
ORV_DECLARE_CLASS_INIT(OrvThumbWheel)

#endif
