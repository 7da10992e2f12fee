// The drawing port: a drawable with a size, a clip region and the 2D primitives.
// Views are canvases on windows, bitmaps canvases on pixmaps.
#ifndef ORV_CANVAS_H
#define ORV_CANVAS_H

#include "orv/base.h"
#include "orv/geometry.h"
#include "orv/region.h"

class OrvDirector;
class OrvMakeUp;
class OrvColor;
class OrvPattern;
class OrvLineStyle;
class OrvCursor;
class OrvRasterFont;
class OrvVectorialFont;
class OrvView;
class OrvBitmap;

// Where a text or picture is placed; combinations are sums.
typedef unsigned long OrvPosition;
enum {
    OrvLeft = 1,
    OrvRight = 2,
    OrvTop = 4,
    OrvBottom = 8,
    OrvCenter = 16,
    OrvHorizontal = 32,
    OrvVertical = 64
};

// How drawn pixels combine with those in place (X raster functions).
typedef unsigned long OrvDrawMode;
enum {
    OrvCopyMode = 0,
    OrvOrMode = 1,
    OrvAndMode = 2,
    OrvXorMode = 3,
    OrvInvertMode = 4,
    OrvCopyInvertedMode = 5,
    OrvOrInvertedMode = 6,
    OrvAndInvertedMode = 7,
    OrvEquivMode = 8
};

// The X raster function of a draw mode.
int OrvDrawModeFunction(OrvDrawMode mode);

class OrvCanvas {
public:
    OrvCanvas(const OrvCanvas&) = delete;
    OrvCanvas& operator=(const OrvCanvas&) = delete;
    unsigned long width, height;  // never 0
    unsigned long drawable;       // X Drawable
    OrvDirector* director;
    unsigned short depth;
    char* name;        // malloc'ed
    Orv2dRegion clip;  // empty: no clip
    unsigned style;
    int preparing;
    unsigned long colormap;  // X Colormap
    void* visual;            // X Visual*
    int sharesRootResources;

    OrvCanvas(OrvDirector* director, unsigned long width, unsigned long height, void* drawable);

    virtual ~OrvCanvas();
    virtual void setClip(const Orv2dRegion* region);
    virtual void getClip(Orv2dRegion& region) const;
    virtual const Orv2dRegion* getClip() const;
    virtual void polyLine(const OrvMakeUp* makeUp, unsigned long count, const Orv2dPoint* points,
                          unsigned long filled, const Orv2dMatrix* matrix = nullptr);
    virtual void points(const OrvMakeUp* makeUp, unsigned long count, const Orv2dPoint* points,
                        const Orv2dMatrix* matrix = nullptr);
    virtual void arc(const OrvMakeUp* makeUp, const Orv2dRect& rect, float start, float end,
                     unsigned long filled, const Orv2dMatrix* matrix = nullptr);
    virtual void bitblit(const OrvMakeUp* makeUp, const OrvCanvas* source, const Orv2dRect& rect,
                         const Orv2dPoint& point, unsigned long mask = 0,
                         const Orv2dMatrix* matrix = nullptr);
    virtual void string(const OrvMakeUp* makeUp, const Orv2dPoint& point, const char* text,
                        int length = 0, OrvPosition position = OrvLeft, unsigned long mnemonic = 0,
                        const Orv2dMatrix* matrix = nullptr);
    virtual void bezier(const OrvMakeUp* makeUp, unsigned long count, const Orv2dPoint* points,
                        unsigned long filled, const Orv2dMatrix* matrix = nullptr);
    virtual void rectangle(const OrvMakeUp* makeUp, const Orv2dRect& rect, unsigned long filled,
                           const Orv2dMatrix* matrix = nullptr);
    virtual void bitblit(const OrvMakeUp* makeUp, const Orv2dMatrix& matrix,
                         const OrvCanvas* source, unsigned long mask, const Orv2dRegion* clip);
    virtual void string(const OrvMakeUp* makeUp, const Orv2dMatrix& matrix, const char* text,
                        int length, const Orv2dRegion* clip);
    virtual void prepare(const Orv2dRegion* region);
    virtual void end();
    virtual unsigned long isABitmap() const;
    virtual unsigned long isPrintDevice() const;
    virtual const char* className() const;
    virtual void initializeVisual();

    void line(const OrvMakeUp* makeUp, const Orv2dPoint& from, const Orv2dPoint& to,
              const Orv2dMatrix* matrix = nullptr);
    void reliefRectangle(const OrvMakeUp* frame, const OrvMakeUp* surface, const OrvMakeUp* light,
                         const OrvMakeUp* dark, const Orv2dRect& rect, unsigned long thickness,
                         unsigned long drawFrame, const Orv2dMatrix* matrix = nullptr);
    void reliefDiamond(const OrvMakeUp* frame, const OrvMakeUp* surface, const OrvMakeUp* light,
                       const OrvMakeUp* dark, const Orv2dRect& rect, unsigned long thickness,
                       unsigned long drawFrame, const Orv2dMatrix* matrix = nullptr);
    void clipString(const OrvMakeUp* makeUp, const Orv2dRect& rect, const char* text,
                    int length = 0, OrvPosition position = OrvCenter, unsigned long mnemonic = 0,
                    const Orv2dMatrix* matrix = nullptr);
    void clipBitmap(const OrvMakeUp* makeUp, const Orv2dRect& rect, const OrvBitmap* bitmap,
                    OrvPosition position = OrvCenter, unsigned long mask = 0,
                    const Orv2dMatrix* matrix = nullptr);
    void clipStringBitmap(const OrvMakeUp* makeUp, const Orv2dRect& rect, const char* text,
                          const OrvBitmap* bitmap, int length = 0, unsigned long mnemonic = 0,
                          OrvPosition position = OrvCenter, OrvPosition bitmapPosition = OrvLeft,
                          const Orv2dMatrix* matrix = nullptr);
    void testClip(const OrvMakeUp* makeUp) const;

    // Realisation of resources on this canvas; each returns non-zero on success.
    int make2dColor(OrvColor* color, unsigned long& index);
    int makeFont(OrvRasterFont* font, const char* name);
    int makeLineStyle(OrvLineStyle* lineStyle);
    int makeCursor(OrvCursor* cursor);
    int makeMakeUp(const OrvMakeUp* makeUp, unsigned long ghost);
    int makePattern(OrvPattern* pattern);

    // The canvas whose realisations this one uses.
    const OrvCanvas* resourceCanvas() const;
    // The drawable on which graphic contexts for this canvas are made.
    unsigned long contextDrawable() const;

private:
    void copyArea(const OrvMakeUp* makeUp, unsigned long sourceDrawable, unsigned short sourceDepth,
                  const OrvBitmap* sourceMask, const Orv2dRect& rect, const Orv2dPoint& point,
                  unsigned long mask);
};

class OrvBitmap : public OrvCanvas {
public:
    unsigned long lockCount;
    OrvList colors;  // counted OrvColor* that its pixels use
    OrvBitmap* mask;

    OrvBitmap(const OrvCanvas* canvas, unsigned long width, unsigned long height,
              unsigned long depth);
    ~OrvBitmap() override;
    unsigned long isABitmap() const override;
    unsigned long isPrintDevice() const override;
    const char* className() const override;

    void lock();
    void unLock();
    void setMask(OrvBitmap* mask);
    // The pixels of a rectangle in the server's ZPixmap layout, `size` bytes: a new array,
    // free with delete[]; null when the rectangle is empty or cannot be read.
    unsigned char* getBits(unsigned long& size, const Orv2dRect& rect) const;
    void setBits(const Orv2dRect& rect, const unsigned char* data, unsigned long size,
                 unsigned short pad, unsigned long lsbFirst);
    void useColor(OrvColor* color);
};

// Writes the pixels of a canvas (a view's window, which must be showing, or a bitmap) as a
// binary PPM: "P6\n<width> <height>\n255\n", then the rows from the top, three bytes a pixel.
// Colours come through the canvas's visual (the colormap on indexed screens); a set bit of a
// depth-1 bitmap is black. 1 when written; 0, with a message, when nothing could be.
int OrvSaveViewPPM(const OrvCanvas* canvas, const char* file);

// Sets the raster function of the canvas's depth-1 graphic context. The name, without the
// prefix, is kept as it is for behaviour compatibility.
void SetDepth1Mode(const OrvCanvas* canvas, OrvDrawMode mode, unsigned long on);

// Splits a text at newlines into static copies, valid until the next call.
char** OrvTextToLabels(const char* text, unsigned& count);

// Copies between the front and back GL buffers of a 3D view. The name, bracketed like a
// file-local one, is kept as it is for behaviour compatibility.
unsigned long _OrvBitBlit_(const OrvView* view, const Orv2dRect& rect, unsigned long direction,
                           unsigned long flag);

#endif
