// Relief gadgets: the bevelled actors from which buttons, group boxes, check
// and radio boxes and dialogs are made. Each derives five make-ups from its
// own (face, lit edge, shaded edge, pressed face, disabled text), asked of
// the director so that gadgets of one look share them; only the actor's own
// make-up is saved.
#ifndef ORV_RELIEF_H
#define ORV_RELIEF_H

#include "orv/actor.h"
#include "orv/role.h"

class OrvBitmap;

// The five derived make-ups of a relief gadget, in this order.
enum {
    OrvReliefFace = 0,
    OrvReliefLit = 1,
    OrvReliefShaded = 2,
    OrvReliefPressed = 3,
    OrvReliefDisabled = 4,
    OrvReliefMakeUpCount = 5
};

// Derives the five make-ups of a gadget from `base` for a display of `depth`
// bits: shades of the background above one bit, stipples on one bit. Each
// result is counted once for the caller.
void OrvComputeReliefMakeUps(const OrvMakeUp* base, unsigned short depth,
                             OrvMakeUp* out[OrvReliefMakeUpCount]);

// The size that a label and a bitmap need (at 0, 0): lines of the label side
// by side with the bitmap (alignment 1 or 2) or stacked (4 or 8), `space` apart.
Orv2dRect OrvLabelBitmapSizes(OrvMakeUp* makeUp, const char* label, const OrvBitmap* bitmap,
                              OrvPosition alignment, unsigned short space);

// ---------------------------------------------------------------------------
// Relief rectangle
// ---------------------------------------------------------------------------

class OrvReliefRectangle : public OrvActor {
public:
    Orv2dRect rect;
    unsigned short thickness;  // of the bevel, in pixels
    OrvMakeUp* faceMakeUp;     // counted, like the four below
    OrvMakeUp* litMakeUp;
    OrvMakeUp* shadedMakeUp;
    OrvMakeUp* pressedMakeUp;
    OrvMakeUp* disabledMakeUp;
    unsigned long border_;  // non-zero draws the outer line

    OrvReliefRectangle(OrvDirector* director, const Orv2dRect& box, unsigned short thickness,
                       OrvMakeUp* look = nullptr);
    OrvReliefRectangle(const OrvReliefRectangle& source);
    ORV_PERSISTENT_ACTOR(OrvReliefRectangle)
    ~OrvReliefRectangle() override;

    // Changes the bevel's width; the same width again changes nothing.
    virtual void setThickness(unsigned short thickness);
    // Draws or omits the outer line.
    virtual void border(unsigned long on);
    // Flips the pressed look; the colours stay (unlike a plain actor's invert).
    void invert() override;
    // Modes and overwrite reach the derived make-ups too, which ghosts need.
    void setMode(OrvDrawMode mode) override;
    void setOverwrite(unsigned long on) override;
    // Repaints its own box at once when `redraw` is set and no cycle is open.
    unsigned long setHighlighted(unsigned long on, const Orv2dPoint& point,
                                 unsigned long redraw) override;
    // A new own make-up brings new derived ones.
    void notifyOnMakeUpChanged() override;
    // Derives the five make-ups from the actor's own and lets go of the old ones.
    virtual void computeMakeUps();

    void draw2d(OrvCanvas* canvas, const Orv2dMatrix* matrix) override;
    void apply2d(const Orv2dMatrix& matrix) override;
    Orv2dRect bbox2d(const Orv2dMatrix* matrix) const override;

    // Moves and sizes through the change protocol.
    void setRect(const Orv2dRect& rect);
    unsigned short getThickness() const { return thickness; }

    // The make-ups of the current state: face, top and left edges, bottom and right edges.
    void stateMakeUps(const OrvMakeUp*& face, const OrvMakeUp*& top,
                      const OrvMakeUp*& bottom) const;

protected:
    // Paints the part `box` (stage coordinates) of the stage at once, or adds
    // it to the open cycle; nothing off a stage.
    void repaintNow(const Orv2dRect& box);
    // The rectangle mapped, the way the canvas will see it.
    Orv2dRect mapped(const Orv2dMatrix* matrix) const;

private:
    void releaseMakeUps();
};

// ---------------------------------------------------------------------------
// Relief label: a relief with text and a bitmap
// ---------------------------------------------------------------------------

class OrvReliefLabel : public OrvReliefRectangle {
public:
    char* label;              // owned, never null; shown through the message lookup
    OrvPosition alignment;    // of the bitmap against the text
    OrvBitmap* bitmap;        // locked
    unsigned short space;     // between text and bitmap
    unsigned long backShown;  // 1: the relief is drawn under the contents
    unsigned long attached;   // 1: text and bitmap centred together

    OrvReliefLabel(OrvDirector* director, const Orv2dRect& box, const char* text,
                   unsigned short thickness, OrvMakeUp* look = nullptr);
    OrvReliefLabel(const OrvReliefLabel& source);
    ORV_PERSISTENT_ACTOR(OrvReliefLabel)
    ~OrvReliefLabel() override;

    // Shows a bitmap beside the text; null for none. The label holds a lock on it.
    virtual void setBitmap(OrvBitmap* bitmap);
    // The place of the bitmap against the text (the name keeps its spelling).
    virtual void setAlignement(OrvPosition alignment);
    // Replaces the text; lines are separated by newlines.
    virtual void setLabel(const char* text);
    // The pixels between text and bitmap, as the size of the contents counts them.
    virtual void setLabelBitmapSpace(unsigned short space);
    // Sizes the box to the contents plus four times the thickness; the origin stays.
    virtual void fitToContents();
    // With 0 only the contents are drawn, without the relief.
    virtual void showBackground(unsigned long on);
    // With 1 text and bitmap are centred together; with 0 they start at the left.
    virtual void attach(unsigned long on);
    // The size of the contents in the given make-up's font.
    virtual Orv2dRect getLabelBitmapSizes(OrvMakeUp* makeUp) const;
    // "Button".
    const char* defaultRole() const override;

    void draw2d(OrvCanvas* canvas, const Orv2dMatrix* matrix) override;

    const char* getLabel() const { return label; }

protected:
    // Text and bitmap inside the mapped box `r`, in the make-up of the state.
    void drawContents(OrvCanvas* canvas, const Orv2dRect& r);
    // Holds `b` as the bitmap shown, letting go of the one before.
    void useBitmap(OrvBitmap* b);
};

// ---------------------------------------------------------------------------
// Cluster: a group box whose interior lets the pointer through
// ---------------------------------------------------------------------------

class OrvCluster : public OrvReliefLabel {
public:
    OrvCluster(OrvDirector* director, const Orv2dRect& box, const char* title,
               unsigned short thickness, OrvMakeUp* look = nullptr);
    OrvCluster(const OrvCluster& source);
    ORV_PERSISTENT_ACTOR(OrvCluster)

    // The label's size, then 50 pixels plus the thickness more in height for the members.
    void fitToContents() override;
    // Hit on the frame band and the title only, so members inside get their events.
    unsigned long contains2d(const Orv2dPoint& point, const Orv2dMatrix* matrix) override;
    // An etched frame and the title on it; the interior is not painted.
    void draw2d(OrvCanvas* canvas, const Orv2dMatrix* matrix) override;

    // The title strip, in mapped coordinates; empty without a title.
    Orv2dRect titleBox(const Orv2dMatrix* matrix) const;
    // The frame's rectangle: the box less the upper half of the title.
    Orv2dRect frameBox(const Orv2dMatrix* matrix) const;
};

// ---------------------------------------------------------------------------
// Icon states: a picture that changes with the state
// ---------------------------------------------------------------------------

class OrvIconStates : public OrvReliefLabel {
public:
    // [0] the first state's bitmap and [1] its partner; [2] and [3] the second's. Locked.
    OrvBitmap* bitmaps[4];
    unsigned long state1, state2;

    OrvIconStates(OrvDirector* director, const Orv2dRect& box, OrvBitmap* first, OrvBitmap* second,
                  unsigned short thickness, OrvMakeUp* look = nullptr);
    OrvIconStates(const OrvIconStates& source);
    ORV_PERSISTENT_ACTOR(OrvIconStates)
    ~OrvIconStates() override;

    // Stores the two values, nothing else.
    virtual void setState(unsigned long first, unsigned long second);
    // The pressed look shows the second state's bitmap.
    void invert() override;
    // Swaps the bitmap in use with its partner.
    virtual void invertBitmaps();
    // Refused: the bitmaps belong to the states.
    void setBitmap(OrvBitmap* bitmap) override;
    // "Toggle".
    const char* defaultRole() const override;

    // The bitmap of the current state.
    OrvBitmap* shownBitmap() const { return bitmaps[isInverted() ? 2 : 0]; }
};

// ---------------------------------------------------------------------------
// Toggle: a check box, or a radio box with the diamond
// ---------------------------------------------------------------------------

class OrvToggle : public OrvReliefLabel {
public:
    unsigned long diamond;     // 1: radio box
    unsigned long checkSize;   // side of the box
    unsigned short margin_;    // between box and text
    OrvMakeUp* markMakeUp[2];  // counted: [0] the check mark, [1] the radio mark

    OrvToggle(OrvDirector* director, const Orv2dRect& box, const char* text,
              unsigned short thickness, OrvMakeUp* look = nullptr);
    OrvToggle(const OrvToggle& source);
    ORV_PERSISTENT_ACTOR(OrvToggle)
    ~OrvToggle() override;

    // The side of the box, in pixels.
    virtual void setCheckSize(unsigned long size);
    // 1 draws a radio box (a diamond), 0 a check box.
    virtual void useDiamond(unsigned long on);
    // The pixels between the box and the text.
    virtual void margin(unsigned short pixels);
    // "Toggle".
    const char* defaultRole() const override;
    // The mark's make-ups: "red" and "blue" above one bit, the actor's own on one bit.
    virtual void computeToggleMakeUps();
    // A sunken square, with the check mark when inverted.
    virtual void drawCheckBox(OrvCanvas* canvas, const Orv2dRect& box);
    // A sunken diamond, its interior filled when inverted.
    virtual void drawRadioBox(OrvCanvas* canvas, const Orv2dRect& box);

    // The label's size, then the box and the margin in width, the box at least in height.
    void fitToContents() override;
    void draw2d(OrvCanvas* canvas, const Orv2dMatrix* matrix) override;
    void notifyOnMakeUpChanged() override;

    unsigned long isChecked() const { return isInverted(); }
    // Checks or clears through the pressed look, with a repaint.
    void setChecked(unsigned long on);
    // The box, in mapped coordinates.
    Orv2dRect checkBox(const Orv2dMatrix* matrix) const;

private:
    void releaseMarks();
};

// A set of toggles that are radio boxes of one another: the members are the
// toggles of one stage that hold this callback. Activation leaves exactly the
// activated member checked, then calls changed().
class OrvRadioGroup : public OrvCallback {
public:
    void activate(OrvActor* actor) override;
    // Told once per activation, with the member now checked.
    virtual void changed(OrvToggle* selected);
    // Makes the toggle a member: it holds this callback.
    void add(OrvToggle* toggle);
    // The checked member on that stage, or null.
    OrvToggle* selected(OrvStage* stage) const;
};

ORV_DECLARE_CLASS_INIT(OrvReliefRectangle)
ORV_DECLARE_CLASS_INIT(OrvReliefLabel)
ORV_DECLARE_CLASS_INIT(OrvCluster)
ORV_DECLARE_CLASS_INIT(OrvIconStates)
ORV_DECLARE_CLASS_INIT(OrvToggle)

#endif
