// Make-ups: the shared, immutable bundles of drawing attributes.
// Equal make-ups are one object, found through the director's table, so equal
// appearances also share their X graphic contexts.
#ifndef ORV_MAKEUP_H
#define ORV_MAKEUP_H

#include "orv/resource.h"
#include "orv/canvas.h"

class OrvVectorialFont;
class OrvTexture;
class OrvScene;

typedef unsigned long OrvFillStyle;  // 0 solid or opaque pattern, 1 stipple, 2 tile
enum {
    OrvFillSolid = 0,
    OrvFillStippled = 1,
    OrvFillTiled = 2
};
// OrvArcMode (zero pie slice, non-zero chord) comes with the region geometry.
typedef unsigned long OrvFillRule;  // zero even-odd, non-zero winding
enum {
    OrvEvenOddRule = 0,
    OrvWindingRule = 1
};
typedef unsigned long OrvCullingMode;
enum {
    OrvCullNone = 0,
    OrvCullBack = 1,
    OrvCullFront = 2,
    OrvCullBoth = 3
};
typedef unsigned long OrvFaceStyle;
enum {
    OrvFacePoints = 1,
    OrvFaceLines = 2,
    OrvFaceFilled = 4,
    OrvFaceHidden = 8
};
typedef unsigned long OrvMarkerType;

// All the attributes that make a make-up's identity, in the order they are compared.
struct OrvMakeUpValues {
    OrvColor* background;
    OrvColor* foreground;
    OrvPattern* pattern;
    OrvBitmap* colorPattern;
    OrvRasterFont* font;
    OrvLineStyle* lineStyle;
    unsigned short lineWidth;
    OrvFillStyle fillStyle;
    OrvArcMode arcMode;
    OrvFillRule fillRule;
    OrvVectorialFont* vfont;
    unsigned long distinguish;
    unsigned long smooth;
    OrvCullingMode cull;
    OrvFaceStyle frontStyle;
    OrvFaceStyle backStyle;
    OrvMarkerType markerType;
    unsigned short markerScale;
    OrvTexture* texture;
};

// Fields carry a trailing underscore where a virtual accessor of the same name reads them.
class OrvMakeUp : public OrvResource {
public:
    OrvColor* background_;
    OrvColor* foreground_;
    OrvLineStyle* lineStyle_;
    unsigned short lineWidth_;
    OrvPattern* pattern_;
    OrvDrawMode mode;
    unsigned long overwrite;
    mutable int clipValid;
    unsigned planeMask;

    OrvMakeUp(OrvDirector* director, OrvColor* background, OrvColor* foreground,
              OrvLineStyle* lineStyle, unsigned short lineWidth, OrvPattern* pattern);
    // Copies the attributes of `base`, without counting them.
    explicit OrvMakeUp(const OrvMakeUp* base);
    ~OrvMakeUp() override;

    unsigned long internal(const OrvCanvas* canvas) const override;  // the X graphic context

    virtual OrvColor* background() const;
    virtual OrvColor* foreground() const;
    virtual OrvLineStyle* lineStyle() const;
    virtual unsigned short lineWidth() const;
    virtual OrvRasterFont* font() const;
    virtual OrvBitmap* colorPattern() const;
    virtual OrvFillStyle fillStyle() const;
    virtual OrvArcMode arcMode() const;
    virtual OrvFillRule fillRule() const;
    virtual OrvPattern* pattern() const;
    virtual unsigned long smooth() const;
    virtual unsigned long distinguish() const;
    virtual OrvCullingMode cull() const;
    virtual OrvFaceStyle frontStyle() const;
    virtual OrvFaceStyle backStyle() const;
    virtual OrvMarkerType markerType() const;
    virtual unsigned short markerScale() const;
    virtual OrvTexture* texture() const;
    virtual OrvVectorialFont* vfont() const;
    // Sets GL to this make-up (or the scene's shadow make-up) for a surface
    // (lines 0) or for points, lines and markers (lines 1); repeats do nothing.
    virtual void render(const OrvScene* scene, unsigned long lines) const;

    void setMode(OrvDrawMode mode);
    void setOverwrite(unsigned long flag);
    void setPlaneMask(unsigned mask);
    Orv2dRect markerSize() const;
    void remove(const OrvCanvas* canvas);
    void values(OrvMakeUpValues& out) const;

    // Counts the attributes of a copy, so that deleting it releases them (as ghosts need).
    virtual void countResources();
    // 1 when this object counts its attributes: shared make-ups do, plain copies do not.
    int holdsCounts;

protected:
    void releaseResources();
};

class Orv2dMakeUp : public OrvMakeUp {
public:
    OrvRasterFont* font_;
    OrvBitmap* colorPattern_;
    OrvFillStyle fillStyle_;
    OrvArcMode arcMode_;
    OrvFillRule fillRule_;

    Orv2dMakeUp(OrvDirector* director, const OrvMakeUpValues& values);
    explicit Orv2dMakeUp(const OrvMakeUp* base);
    ~Orv2dMakeUp() override;
    void countResources() override;

    OrvRasterFont* font() const override;
    OrvBitmap* colorPattern() const override;
    OrvFillStyle fillStyle() const override;
    OrvArcMode arcMode() const override;
    OrvFillRule fillRule() const override;
};

class Orv3dMakeUp : public OrvMakeUp {
public:
    unsigned long smooth_;
    unsigned long distinguish_;
    OrvCullingMode cull_;
    OrvFaceStyle frontStyle_, backStyle_;
    OrvVectorialFont* vfont_;
    OrvMarkerType markerType_;
    unsigned short markerScale_;
    OrvTexture* texture_;

    Orv3dMakeUp(OrvDirector* director, const OrvMakeUpValues& values);
    explicit Orv3dMakeUp(const OrvMakeUp* base);
    ~Orv3dMakeUp() override;
    void countResources() override;

    unsigned long smooth() const override;
    unsigned long distinguish() const override;
    OrvCullingMode cull() const override;
    OrvFaceStyle frontStyle() const override;
    OrvFaceStyle backStyle() const override;
    OrvMarkerType markerType() const override;
    unsigned short markerScale() const override;
    OrvTexture* texture() const override;
    OrvVectorialFont* vfont() const override;
};

class OrvTotalMakeUp : public OrvMakeUp {
public:
    OrvRasterFont* font_;
    OrvBitmap* colorPattern_;
    OrvFillStyle fillStyle_;
    OrvArcMode arcMode_;
    OrvFillRule fillRule_;
    unsigned long smooth_;
    unsigned long distinguish_;
    OrvCullingMode cull_;
    OrvFaceStyle frontStyle_, backStyle_;
    OrvVectorialFont* vfont_;
    OrvMarkerType markerType_;
    unsigned short markerScale_;
    OrvTexture* texture_;

    OrvTotalMakeUp(OrvDirector* director, const OrvMakeUpValues& values);
    explicit OrvTotalMakeUp(const OrvMakeUp* base);
    ~OrvTotalMakeUp() override;
    void countResources() override;

    OrvRasterFont* font() const override;
    OrvBitmap* colorPattern() const override;
    OrvFillStyle fillStyle() const override;
    OrvArcMode arcMode() const override;
    OrvFillRule fillRule() const override;
    unsigned long smooth() const override;
    unsigned long distinguish() const override;
    OrvCullingMode cull() const override;
    OrvFaceStyle frontStyle() const override;
    OrvFaceStyle backStyle() const override;
    OrvMarkerType markerType() const override;
    unsigned short markerScale() const override;
    OrvTexture* texture() const override;
    OrvVectorialFont* vfont() const override;

    // Takes every attribute of `values`, holding no counts (the director's scratch object).
    void assign(const OrvMakeUpValues& values);
};

// The director's table of shared make-ups, hashed on their attributes.
class OrvMakeUpHashTable {
public:
    OrvMakeUpHashTable(const OrvMakeUpHashTable&) = delete;
    OrvMakeUpHashTable& operator=(const OrvMakeUpHashTable&) = delete;
    unsigned long size;
    unsigned long count;
    OrvList** buckets;

    explicit OrvMakeUpHashTable(unsigned long bucketCount);
    ~OrvMakeUpHashTable();
    static unsigned makeKey(const OrvMakeUpValues& values);
    static unsigned makeKey(const OrvMakeUp* makeUp);
    static int match(const OrvMakeUp* makeUp, const OrvMakeUpValues& values);
    OrvMakeUp* get(const OrvMakeUpValues& values) const;
    void put(OrvMakeUp* makeUp);
    int remove(OrvMakeUp* makeUp);
    void empty();
};

void OrvUpdateDisplayListOnMakeUpChanged(unsigned long flag);
unsigned long OrvUpdateDisplayListOnMakeUpChanged();

#endif
