// Shared drawing resources: colours, patterns, line styles, cursors and raster fonts.
// Each is counted by its holders and realised lazily, once per canvas, as an X object.
#ifndef ORV_RESOURCE_H
#define ORV_RESOURCE_H

#include "orv/base.h"
#include "orv/geometry.h"

class OrvDirector;
class OrvCanvas;
class OrvBitmap;

// Bits of a raster font style; 0x1000 marks a font named by its X name.
typedef unsigned long OrvFontStyle;
enum {
    OrvFontBold = 1,
    OrvFontUnderlined = 2,
    OrvFontItalic = 4,
    OrvFontSystem = 0x1000
};

// The byte that marks the mnemonic character of a label.
const char OrvMnemonicMark = 23;

class OrvResource {
public:
    OrvResource(const OrvResource&) = delete;
    OrvResource& operator=(const OrvResource&) = delete;
    OrvDirector* director;
    int count;
    char* name;
    OrvAList internals;  // key: the canvas; value: its X object

    OrvResource(OrvDirector* director, const char* name = nullptr);
    virtual void setName(const char* name);
    virtual unsigned long internal(const OrvCanvas* canvas) const = 0;
    virtual ~OrvResource();

    // The canvas under which a realisation for `canvas` is kept.
    const OrvCanvas* internalKey(const OrvCanvas* canvas) const;
    int hasInternal(const OrvCanvas* key) const;
    unsigned long internalValue(const OrvCanvas* key) const;
    void add(const OrvCanvas* canvas, unsigned long value);
};

// The counting rule: a holder adds one; letting go subtracts one and deletes below one.
inline void OrvCount(OrvResource* r) {
    if (r) r->count++;
}
inline void OrvRelease(OrvResource* r) {
    if (r && --r->count < 1) delete r;
}

class OrvColor : public OrvResource {
public:
    unsigned long flag;
    float red, green, blue;
    unsigned long colormap;  // where the pixel was allocated
    int allocated;

    OrvColor(OrvDirector* director, float r, float g, float b, unsigned long flag);
    ~OrvColor() override;
    unsigned long internal(const OrvCanvas* canvas) const override;
    unsigned long index(const OrvCanvas* canvas) const { return internal(canvas); }
    void remove(const OrvCanvas* canvas);
    void getHSV(float& h, float& s, float& v) const;
    void getHLS(float& h, float& l, float& s) const;

    // A plain colour lights as its own diffuse colour; materials say more.
    virtual unsigned long isMaterial() const { return 0; }
    virtual void ambient(float& r, float& g, float& b) const;
    virtual void diffuse(float& r, float& g, float& b) const;
    virtual void specular(float& r, float& g, float& b) const;
    virtual void emissive(float& r, float& g, float& b) const;
    virtual float shininess() const;
    virtual float transparency() const;
};

// Three shades of a base colour for relief edges: lit, shaded and pressed. A shade
// the director cannot give is replaced by its default foreground.
void OrvComputeReliefColors(const OrvColor* base, OrvColor*& first, OrvColor*& second,
                            OrvColor*& third);

class OrvPattern : public OrvResource {
public:
    unsigned char* data;  // width times height bytes
    unsigned short depth;
    unsigned long width, height;

    OrvPattern(OrvCanvas* canvas, unsigned long width, unsigned long height,
               const unsigned char* data);
    ~OrvPattern() override;
    unsigned long internal(const OrvCanvas* canvas) const override;  // the depth-1 OrvBitmap
    OrvBitmap* bitmap(const OrvCanvas* canvas) const { return (OrvBitmap*)internal(canvas); }
    void remove(const OrvCanvas* canvas);
};

class OrvLineStyle : public OrvResource {
public:
    unsigned short offset;
    // The number of dashes; named apart from the reference count it would otherwise hide.
    unsigned short dashCount;
    unsigned char* dashes;
    unsigned short pattern;  // for glLineStipple; 0xFFFF is solid

    OrvLineStyle(OrvDirector* director, unsigned short count, const unsigned char* dashes,
                 unsigned short offset, unsigned short pattern);
    ~OrvLineStyle() override;
    unsigned long internal(const OrvCanvas* canvas) const override;
    void remove(const OrvCanvas* canvas);
};

class OrvCursor : public OrvResource {
public:
    OrvCursor(OrvDirector* director, const char* name);
    ~OrvCursor() override;
    unsigned long internal(const OrvCanvas* canvas) const override;
    void remove(const OrvCanvas* canvas);
};

class OrvRasterFont : public OrvResource {
public:
    Orv2dRect box;  // the largest logical extent
    unsigned short size;
    OrvFontStyle style;
    char* systemName;

    OrvRasterFont(OrvDirector* director, const char* family, unsigned short size,
                  OrvFontStyle style, const char* foundry);
    ~OrvRasterFont() override;
    unsigned long internal(const OrvCanvas* canvas) const override;  // the X font set
    void remove(const OrvCanvas* canvas);

    const char* family() const;
    const char* foundary() const;  // misspelt; kept as it is for behaviour compatibility
    Orv2dRect bbox(const char* text, int length, unsigned long mnemonic) const;
    Orv2dRect bbox(const unsigned short* text, int length, unsigned long mnemonic) const;
    int mnemonicPosition(const char* text, int length) const;
    const char* mnemonicString(const char* text, int length) const;
};

// The key under which a font of these attributes is kept ("%family-size-BIU-foundry").
const char* OrvFontKey(const char* family, unsigned short size, OrvFontStyle style,
                       const char* foundry);

#endif
