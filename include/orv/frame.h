// Frames and decors: window furniture drawn by one actor on a stage (a relief
// border with corner grips, a title bar with its boxes, scroll bars) around an
// interior rectangle. A frame puts a child window there, by default a stage of
// its own, so that a whole window can stand on a stage as one actor. The roles
// that move, resize, iconify and scroll them live here too.
#ifndef ORV_FRAME_H
#define ORV_FRAME_H

#include "orv/relief.h"
#include "orv/value.h"
#include "orv/stage.h"

class OrvDecor;
class OrvFrame;
class OrvView;
class OrvCursor;

// ---------------------------------------------------------------------------
// Title bar
// ---------------------------------------------------------------------------

// The bar along the top of a decor: the menu box at the left, the title in
// the middle (the area that moves the decor), the iconify box and a third box
// at the right. Each box shows pressed while its press flag is set.
class OrvDecorTitleBar : public OrvReliefLabel {
public:
    unsigned long pressed[4];  // one press flag per box, first to fourth
    unsigned long dragging;    // a move of the decor is under way

    OrvDecorTitleBar(OrvDirector* director, const Orv2dRect& box, const char* title,
                     OrvMakeUp* look = nullptr);
    OrvDecorTitleBar(const OrvDecorTitleBar& source);
    ORV_PERSISTENT_ACTOR(OrvDecorTitleBar)

    // Divides the bar, mapped, into the menu box, the iconify box, the third
    // box and the fourth area, which holds the title and moves the decor.
    virtual void itemsSize(Orv2dRect& first, Orv2dRect& second, Orv2dRect& third, Orv2dRect& fourth,
                           const Orv2dMatrix* matrix) const;
    // The box (1 to 4) that holds the point, or 0.
    int boxAt(const Orv2dPoint& point, const Orv2dMatrix* matrix) const;
    // Clears the four press flags and the drag.
    void release();

    void draw2d(OrvCanvas* canvas, const Orv2dMatrix* matrix) override;
    // "DecorTitleBar".
    const char* defaultRole() const override;

private:
    void drawBox(OrvCanvas* canvas, const Orv2dRect& box, int which, unsigned long down);
};

// ---------------------------------------------------------------------------
// Decor
// ---------------------------------------------------------------------------

class OrvDecor : public OrvActor {
public:
    Orv2dRect rect;  // in the decor's own coordinates
    Orv2dRect scratch;
    OrvScrollBar* vScrollBar;  // owned, like the other sub-actors
    unsigned long vBarOnRight;
    OrvScrollBar* hScrollBar;
    unsigned long hBarAtBottom;
    unsigned short scrollBarWidth;
    unsigned short borderWidth;
    OrvReliefRectangle* innerBorder;  // sunken, borderWidth - 2 inside the rectangle
    OrvReliefRectangle* outerBorder;  // raised, the whole rectangle
    unsigned short cornerLength;      // of the corner grips along the border
    unsigned short titleHeight;
    OrvDecorTitleBar* titleBar;
    OrvActor* iconActor;  // what stands for the decor when iconified
    unsigned long iconified;
    Orv2dMatrix transformer;  // the decor's placement, before the stage's transformer

    // "ScrollBarInDecor": the property under which the bars and the title bar keep their decor.
    static OrvKey* _inDecor;

    OrvDecor(OrvDirector* director, const Orv2dRect& box, OrvMakeUp* look = nullptr);
    OrvDecor(const OrvDecor& source);
    ORV_PERSISTENT_ACTOR(OrvDecor)
    ~OrvDecor() override;

    // Moves and sizes the decor so that its outer rectangle (stage space) becomes `box`.
    virtual void fitToSize(const Orv2dRect& box);
    // Adds or removes the bars; a vPosition of 1 puts the vertical bar on the
    // right and an hPosition of 8 the horizontal one at the bottom. 0 when
    // nothing changes, and then nothing is repainted.
    virtual unsigned long showScrollBars(unsigned long horizontal, unsigned long vertical,
                                         OrvPosition hPosition, OrvPosition vPosition,
                                         unsigned short width);
    // Removes both bars.
    virtual void hideScrollBars();
    // The layout, the one place that computes it: the interior in window
    // coordinates, the other five in the stage's space. Returns the whole
    // rectangle in window coordinates.
    virtual Orv2dRect itemsSize(Orv2dRect& interior, Orv2dRect& hBar, Orv2dRect& vBar,
                                Orv2dRect& inner, Orv2dRect& outer, Orv2dRect& title) const;
    // Shows the icon in place of the decor, or the decor again.
    virtual void iconify(unsigned long on);
    // Brings what the bars show into the interior; nothing for a plain decor.
    virtual void adjust();
    // Brings the bars in step with the interior; nothing for a plain decor.
    virtual void adjustScrollBars();
    // Widens or narrows the decor so that its title shows whole.
    virtual void fitToContents();
    // Makes the title bar on first use.
    virtual void createTitle(const char* title);
    // Makes the icon used when none was given: the title on a relief.
    virtual void createDefaultIcon();
    // Lays the furniture out again on the current rectangle.
    virtual void internalUpdate();

    // The relief border, both plates of `width` in all.
    void showDecoration(unsigned short width);
    void hideDecoration();
    void showTitleBar(const char* title, unsigned short height);
    void hideTitleBar();
    // Takes `actor` (owned from now on) as the icon; the old one is deleted.
    void icon(OrvActor* actor);
    OrvActor* getIcon() const { return iconActor; }
    // The background of the plates and the title bar.
    void setDecorationColor(OrvColor* color);
    unsigned long isIconified() const { return iconified; }
    const char* getTitle() const;
    // The rectangle through the decor's own transformer (stage space).
    Orv2dRect placed() const;
    // Repaints one of the sub-actors at once (or in the open nest), as it stands now.
    void redrawPart(const OrvActor* part);

    // "Decor".
    const char* defaultRole() const override;
    // Highlights the border plates and repaints only the border.
    unsigned long setHighlighted(unsigned long on, const Orv2dPoint& point,
                                 unsigned long redraw) override;
    // The bars, plates, title bar and icon.
    void map(void (*function)(OrvActor*, void*), void* data) override;
    // The border handles: sides, and corners within cornerLength of a corner.
    Orv2dDragger* dragger2d(const Orv2dPoint& point, const Orv2dMatrix* matrix) override;
    void draw2d(OrvCanvas* canvas, const Orv2dMatrix* matrix) override;
    // Composes into the decor's own transformer; the icon moves along.
    void apply2d(const Orv2dMatrix& matrix) override;
    Orv2dRect bbox2d(const Orv2dMatrix* matrix) const override;
    unsigned long contains2d(const Orv2dPoint& point, const Orv2dMatrix* matrix) override;
    // The sub-actors draw on behalf of this stage.
    void setStage(OrvStage* stage) override;

protected:
    // The layout applied to the sub-actors; gives the interior in window coordinates.
    Orv2dRect placeItems();
    // Makes the sub-actor draw on the decor's stage and know its decor.
    void adopt(OrvActor* part);
    // Whether the make-up draws ghosts (exclusive or, equivalence).
    unsigned long ghostMode() const;
    // The eight corner grips.
    void drawGrips(OrvCanvas* canvas, const Orv2dMatrix* matrix);
    // Paints part of the stage at once, or adds it to the open nest.
    void repaintWindowRegion(const Orv2dRegion& region);

private:
    OrvScrollBar* makeBar(OrvPosition direction);
    void copyFurniture(const OrvDecor& source);
};

// ---------------------------------------------------------------------------
// Frame
// ---------------------------------------------------------------------------

// Keeps a frame's scroll bars in step with its interior stage: the contents,
// the size and the transformer of that stage move the bars. x and y are the
// origin of the interior's contents at the last adjustment, in bar units.
class OrvFrameStageHook : public OrvStageHook {
public:
    OrvFrame* frame;
    long x, y;

    explicit OrvFrameStageHook(OrvFrame* owner) : frame(owner), x(0), y(0) {}
    void contents() override;
    void stageResized() override;
    void transformer(const Orv2dMatrix* newMatrix, const Orv2dMatrix* oldMatrix) override;
    // The frame deletes it.
    unsigned long deletedByStage() const override;
};

class OrvFrame : public OrvDecor {
public:
    // The child window, made on demand: a stage, or in a subclass another view.
    OrvView* interior;
    unsigned long interiorVisible;
    unsigned long outlined_;  // a one-pixel line around the interior
    char* fileName;           // owned; the .orv file loaded into the interior
    unsigned long doubleBuffer;
    OrvFrameStageHook* stageHook;  // owned

    OrvFrame(OrvDirector* director, const Orv2dRect& box, unsigned long interiorVisible,
             OrvMakeUp* look = nullptr);
    OrvFrame(const OrvFrame& source);
    ORV_PERSISTENT_ACTOR(OrvFrame)
    ~OrvFrame() override;

    // The interior as a stage, made first when the frame stands on a stage;
    // null when the interior is another kind of view.
    virtual OrvStage* getInteriorStage() const;
    // The interior, whatever its kind; null until it is made.
    virtual OrvView* getView();
    // Makes the child window in `stage` at `box` (window coordinates): a stage by default.
    virtual OrvView* buildStage(OrvStage* stage, const Orv2dRect& box) const;
    // Makes the interior on `stage`, once.
    virtual void make(OrvStage* stage, const Orv2dMatrix* matrix);
    // Scrolls the interior by what the bars moved since the last adjustment.
    virtual void adjustStage(OrvStage* stage);
    // Sets the bars from the interior's contents and visible part.
    virtual void adjustScrollBars(OrvStage* stage);
    // The interior's cursor.
    virtual void setCursor(OrvCursor* cursor);
    virtual OrvCursor* getCursor() const;
    // A one-pixel outline around the interior.
    virtual void outlined(unsigned long on);
    // Asked of the interior stage, now or when it is made.
    virtual void useDoubleBuffer(unsigned long on);
    // The interior's box in its parent, or an empty rectangle.
    virtual Orv2dRect bboxVisible() const;

    unsigned long isInteriorVisible() const { return interiorVisible; }
    // Shows or hides the interior window.
    void show();
    void hide();
    // Loads a .orv file into the interior, now or when it is made.
    void file(const char* name);

    unsigned long showScrollBars(unsigned long horizontal, unsigned long vertical,
                                 OrvPosition hPosition, OrvPosition vPosition,
                                 unsigned short width) override;
    void iconify(unsigned long on) override;
    void adjust() override;
    void adjustScrollBars() override;
    // Sizes the frame so that the interior shows its whole contents.
    void fitToContents() override;
    void internalUpdate() override;

    void setVisible(unsigned long on) override;
    // The frame's, then the interior's background, and a full repaint of the interior.
    void setBackground(OrvColor* color) override;
    void draw2d(OrvCanvas* canvas, const Orv2dMatrix* matrix) override;
    void setStage(OrvStage* stage) override;

    // The interior window's rectangle in the stage's window coordinates.
    Orv2dRect interiorRect() const;
    // Moves and sizes the child window to `box`; tells it of a new size.
    void placeInterior(const Orv2dRect& box);

protected:
    // The interior when it is a stage; never makes it.
    OrvStage* interiorAsStage() const;
    // Shows the interior only when the frame is visible, not iconified and interiorVisible.
    void showInterior();
    void makeStageHook();

private:
    static void interiorDestroyed(OrvView* view, void* frame);
    void loadFile();
};

// ---------------------------------------------------------------------------
// Roles: shared instances named by their class names
// ---------------------------------------------------------------------------

// Resizes a decor by its border: the handle under the press gives the sides
// that follow the pointer. The title shows the size while the drag lasts.
class OrvDecorReshapeRole : public OrvRole {
public:
    unsigned long active;
    unsigned long liveResize;  // 1: the decor follows each step; 0: a ghost does
    OrvPosition position;      // the handle of the drag under way
    Orv2dPoint start;          // the press, in the stage's space
    Orv2dRect box;             // the decor's box at the press, in window coordinates
    Orv2dRect current;         // the new box, window coordinates
    char* savedTitle;          // owned while a drag shows sizes in the title
    unsigned long gesture;

    OrvDecorReshapeRole();
    ~OrvDecorReshapeRole() override;
    int input2d(OrvActor* actor, const OrvEvent& event, OrvStage* stage) override;
    const char* className() const override { return "DecorReshape"; }
    int allowPointerMoved() const override { return 1; }
    // The box the handle gives for the pointer at `point` (window
    // coordinates), no smaller than the border and the title need.
    virtual Orv2dRect compute2d(OrvDecor* decor, const Orv2dPoint& point) const;
    // Resizes the decor to `rect` (window coordinates).
    virtual void validate2d(OrvDecor* decor, OrvStage* stage, const Orv2dRect& rect);
    // Draws or erases the rubber band of `rect` by exclusive or.
    virtual void ghost2d(OrvStage* stage, const Orv2dRect& rect);
    void saveTitle(OrvDecor* decor);
    void restoreTitle(OrvDecor* decor);
    // Writes "(WxH)" into the title label.
    void showSizes(OrvDecor* decor, const Orv2dRect& rect);
};

// The four boxes of a title bar: a press sets the box's flag and shows it
// pressed; leaving the box releases it for good. The fourth box moves the
// decor through a move role; the second iconifies it on release.
class OrvDecorTitleBarRole : public OrvRole {
public:
    unsigned long pressed[4];
    OrvMoveRole move;  // moves the decor while the title is dragged; immediate

    OrvDecorTitleBarRole();
    int input2d(OrvActor* actor, const OrvEvent& event, OrvStage* stage) override;
    const char* className() const override { return "DecorTitleBar"; }
    // The release of the third box (and the first, until menus exist); nothing by default.
    virtual void validate(OrvActor* actor, OrvStage* stage);

private:
    void redrawBox(OrvDecorTitleBar* bar, OrvStage* stage, int which);
};

// The default role of a decor: the bars, the title bar and the border each
// get their events; an iconified decor is dragged, and restored by a double click.
class OrvDecorRole : public OrvRole {
public:
    int barPressed;  // 1 horizontal, 2 vertical: the bar that a press under way began in

    OrvDecorRole() : barPressed(0) {}
    int input2d(OrvActor* actor, const OrvEvent& event, OrvStage* stage) override;
    const char* className() const override { return "Decor"; }
    int allowPointerMoved() const override { return 1; }
};

// Makes the shared instances of the three roles once.
class orvinitOrvDecorRoles {
public:
    orvinitOrvDecorRoles();
    static int _counter;
};
static orvinitOrvDecorRoles _orvinitOrvDecorRoles;

ORV_DECLARE_CLASS_INIT(OrvDecorTitleBar)
ORV_DECLARE_CLASS_INIT(OrvDecor)
ORV_DECLARE_CLASS_INIT(OrvFrame)

#endif
