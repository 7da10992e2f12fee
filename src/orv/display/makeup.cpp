// Make-ups: attribute bundles, their graphic contexts, and the table that shares equal ones.
#include <cstdint>

#include "orv/canvas.h"
#include "orv/director.h"
#include "orv/makeup.h"
#include "orv/resource.h"

// Xlib after the library headers: its macros (Above, Below, None) would break them.
#include <X11/Xlib.h>

static unsigned long updateDisplayListOnMakeUpChanged = 1;

void OrvUpdateDisplayListOnMakeUpChanged(unsigned long flag) {
    updateDisplayListOnMakeUpChanged = flag;
}
unsigned long OrvUpdateDisplayListOnMakeUpChanged() {
    return updateDisplayListOnMakeUpChanged;
}

// Vectorial fonts and textures are resources too, with OrvResource as their only base.
static OrvResource* asResource(void* r) {
    return (OrvResource*)r;
}

// Each block of attributes is taken, counted and released in one place, whichever class
// carries it: the 2D block lives in Orv2dMakeUp and OrvTotalMakeUp, the 3D block in
// Orv3dMakeUp and OrvTotalMakeUp. A copy holds no counts until countResources.

static void countBase(OrvMakeUp* m) {
    OrvCount(m->background_);
    OrvCount(m->foreground_);
    OrvCount(m->lineStyle_);
    OrvCount(m->pattern_);
}

template <class M>
static void take2d(M* m, const OrvMakeUpValues& v) {
    m->font_ = v.font;
    m->colorPattern_ = v.colorPattern;
    m->fillStyle_ = v.fillStyle;
    m->arcMode_ = v.arcMode;
    m->fillRule_ = v.fillRule;
}

template <class M>
static void count2d(M* m) {
    OrvCount(m->font_);
    if (m->colorPattern_) m->colorPattern_->lock();
}

template <class M>
static void release2d(M* m) {
    if (m->holdsCounts) {
        OrvRelease(m->font_);
        if (m->colorPattern_) m->colorPattern_->unLock();
    }
    m->font_ = nullptr;
    m->colorPattern_ = nullptr;
}

template <class M>
static void take3d(M* m, const OrvMakeUpValues& v) {
    m->smooth_ = v.smooth;
    m->distinguish_ = v.distinguish;
    m->cull_ = v.cull;
    m->frontStyle_ = v.frontStyle;
    m->backStyle_ = v.backStyle;
    m->vfont_ = v.vfont;
    m->markerType_ = v.markerType;
    m->markerScale_ = v.markerScale;
    m->texture_ = v.texture;
}

template <class M>
static void count3d(M* m) {
    OrvCount(asResource(m->vfont_));
    OrvCount(asResource(m->texture_));
}

template <class M>
static void release3d(M* m) {
    if (m->holdsCounts) {
        OrvRelease(asResource(m->vfont_));
        OrvRelease(asResource(m->texture_));
    }
    m->vfont_ = nullptr;
    m->texture_ = nullptr;
}

// The attributes of any make-up, as the copy constructors take them.
static OrvMakeUpValues valuesOf(const OrvMakeUp* base) {
    OrvMakeUpValues v;
    base->values(v);
    return v;
}

// ---------------------------------------------------------------- OrvMakeUp

OrvMakeUp::OrvMakeUp(OrvDirector* d, OrvColor* bg, OrvColor* fg, OrvLineStyle* ls,
                     unsigned short lw, OrvPattern* p)
    : OrvResource(d), background_(bg), foreground_(fg), lineStyle_(ls), lineWidth_(lw), pattern_(p),
      mode(OrvCopyMode), overwrite(0), clipValid(0), planeMask(0xFFFFFFFF), holdsCounts(1) {
    countBase(this);
}

OrvMakeUp::OrvMakeUp(const OrvMakeUp* base)
    : OrvResource(base->director), background_(base->background()), foreground_(base->foreground()),
      lineStyle_(base->lineStyle()), lineWidth_(base->lineWidth()), pattern_(base->pattern()),
      mode(base->mode), overwrite(base->overwrite), clipValid(0), planeMask(base->planeMask),
      holdsCounts(0) {}

void OrvMakeUp::releaseResources() {
    OrvColor* bg = background_;
    OrvColor* fg = foreground_;
    OrvLineStyle* ls = lineStyle_;
    OrvPattern* p = pattern_;
    background_ = foreground_ = nullptr;
    lineStyle_ = nullptr;
    pattern_ = nullptr;
    if (!holdsCounts) return;
    OrvRelease(bg);
    OrvRelease(fg);
    OrvRelease(ls);
    OrvRelease(p);
}

OrvMakeUp::~OrvMakeUp() {
    Display* dpy = director ? (Display*)director->display : nullptr;
    for (OrvAListItem* i = internals.first; i; i = i->next)
        if (dpy && i->value) XFreeGC(dpy, (GC)i->value);
    releaseResources();
    if (director) director->remove(this);
}

void OrvMakeUp::countResources() {
    if (holdsCounts) return;
    holdsCounts = 1;
    countBase(this);
}

void Orv2dMakeUp::countResources() {
    if (holdsCounts) return;
    OrvMakeUp::countResources();
    count2d(this);
}

void Orv3dMakeUp::countResources() {
    if (holdsCounts) return;
    OrvMakeUp::countResources();
    count3d(this);
}

void OrvTotalMakeUp::countResources() {
    if (holdsCounts) return;
    OrvMakeUp::countResources();
    count2d(this);
    count3d(this);
}

unsigned long OrvMakeUp::internal(const OrvCanvas* canvas) const {
    const OrvCanvas* key = internalKey(canvas);
    if (!key) return 0;
    if (!hasInternal(key)) const_cast<OrvCanvas*>(key)->makeMakeUp(this, 0);
    return internalValue(key);
}

void OrvMakeUp::remove(const OrvCanvas* canvas) {
    if (!internals.find(canvas)) return;
    GC gc = (GC)internals.get(canvas);
    if (gc && director && director->display) XFreeGC((Display*)director->display, gc);
    internals.remove(canvas);
}

OrvColor* OrvMakeUp::background() const {
    return background_;
}
OrvColor* OrvMakeUp::foreground() const {
    return foreground_;
}
OrvLineStyle* OrvMakeUp::lineStyle() const {
    return lineStyle_;
}
unsigned short OrvMakeUp::lineWidth() const {
    return lineWidth_;
}
OrvPattern* OrvMakeUp::pattern() const {
    return pattern_;
}
// The defaults of the other family, so that any make-up answers every question.
OrvRasterFont* OrvMakeUp::font() const {
    return director ? director->defaultFont : nullptr;
}
OrvBitmap* OrvMakeUp::colorPattern() const {
    return nullptr;
}
OrvFillStyle OrvMakeUp::fillStyle() const {
    return OrvFillSolid;
}
OrvArcMode OrvMakeUp::arcMode() const {
    return OrvArcPieSlice;
}
OrvFillRule OrvMakeUp::fillRule() const {
    return OrvEvenOddRule;
}
unsigned long OrvMakeUp::smooth() const {
    return 1;
}
unsigned long OrvMakeUp::distinguish() const {
    return 0;
}
OrvCullingMode OrvMakeUp::cull() const {
    return OrvCullBack;
}
OrvFaceStyle OrvMakeUp::frontStyle() const {
    return OrvFaceFilled;
}
OrvFaceStyle OrvMakeUp::backStyle() const {
    return OrvFaceFilled;
}
OrvMarkerType OrvMakeUp::markerType() const {
    return 1;
}
unsigned short OrvMakeUp::markerScale() const {
    return 2;
}
OrvTexture* OrvMakeUp::texture() const {
    return nullptr;
}
OrvVectorialFont* OrvMakeUp::vfont() const {
    return director ? director->defaultVectorialFont : nullptr;
}

void OrvMakeUp::values(OrvMakeUpValues& v) const {
    v.background = background();
    v.foreground = foreground();
    v.pattern = pattern();
    v.colorPattern = colorPattern();
    v.font = font();
    v.lineStyle = lineStyle();
    v.lineWidth = lineWidth();
    v.fillStyle = fillStyle();
    v.arcMode = arcMode();
    v.fillRule = fillRule();
    v.vfont = vfont();
    v.distinguish = distinguish();
    v.smooth = smooth();
    v.cull = cull();
    v.frontStyle = frontStyle();
    v.backStyle = backStyle();
    v.markerType = markerType();
    v.markerScale = markerScale();
    v.texture = texture();
}

void OrvMakeUp::setMode(OrvDrawMode m) {
    mode = m;
    Display* dpy = director ? (Display*)director->display : nullptr;
    if (!dpy) return;
    for (OrvAListItem* i = internals.first; i; i = i->next) {
        const OrvCanvas* canvas = (const OrvCanvas*)i->key;
        XGCValues v;
        v.foreground = foreground_ ? foreground_->index(canvas) : 0;
        if (m == OrvXorMode || m == OrvEquivMode)
            v.foreground ^= background_ ? background_->index(canvas) : 0;
        v.function = OrvDrawModeFunction(m);
        XChangeGC(dpy, (GC)i->value, GCFunction | GCForeground, &v);
    }
}

void OrvMakeUp::setOverwrite(unsigned long flag) {
    overwrite = flag;
    Display* dpy = director ? (Display*)director->display : nullptr;
    if (!dpy) return;
    for (OrvAListItem* i = internals.first; i; i = i->next)
        XSetSubwindowMode(dpy, (GC)i->value, flag ? IncludeInferiors : ClipByChildren);
}

void OrvMakeUp::setPlaneMask(unsigned m) {
    planeMask = m;
    Display* dpy = director ? (Display*)director->display : nullptr;
    if (!dpy) return;
    for (OrvAListItem* i = internals.first; i; i = i->next) XSetPlaneMask(dpy, (GC)i->value, m);
}

Orv2dRect OrvMakeUp::markerSize() const {
    unsigned short scale = markerScale();
    if (scale == 0) scale = 1;
    if (scale > 7) {
        OrvPrint("OrvMakeUp::markerSize : Marker scale unknown.\n");
        return Orv2dRect();
    }
    unsigned s = 2 + 2u * scale;
    return Orv2dRect(0, 0, s, s);
}

// ---------------------------------------------------------------- Orv2dMakeUp

Orv2dMakeUp::Orv2dMakeUp(OrvDirector* d, const OrvMakeUpValues& v)
    : OrvMakeUp(d, v.background, v.foreground, v.lineStyle, v.lineWidth, v.pattern) {
    take2d(this, v);
    count2d(this);
}

Orv2dMakeUp::Orv2dMakeUp(const OrvMakeUp* base) : OrvMakeUp(base) {
    take2d(this, valuesOf(base));
}

Orv2dMakeUp::~Orv2dMakeUp() {
    release2d(this);
}

OrvRasterFont* Orv2dMakeUp::font() const {
    return font_;
}
OrvBitmap* Orv2dMakeUp::colorPattern() const {
    return colorPattern_;
}
OrvFillStyle Orv2dMakeUp::fillStyle() const {
    return fillStyle_;
}
OrvArcMode Orv2dMakeUp::arcMode() const {
    return arcMode_;
}
OrvFillRule Orv2dMakeUp::fillRule() const {
    return fillRule_;
}

// ---------------------------------------------------------------- Orv3dMakeUp

Orv3dMakeUp::Orv3dMakeUp(OrvDirector* d, const OrvMakeUpValues& v)
    : OrvMakeUp(d, v.background, v.foreground, v.lineStyle, v.lineWidth, v.pattern) {
    take3d(this, v);
    count3d(this);
}

Orv3dMakeUp::Orv3dMakeUp(const OrvMakeUp* base) : OrvMakeUp(base) {
    take3d(this, valuesOf(base));
}

Orv3dMakeUp::~Orv3dMakeUp() {
    release3d(this);
}

unsigned long Orv3dMakeUp::smooth() const {
    return smooth_;
}
unsigned long Orv3dMakeUp::distinguish() const {
    return distinguish_;
}
OrvCullingMode Orv3dMakeUp::cull() const {
    return cull_;
}
OrvFaceStyle Orv3dMakeUp::frontStyle() const {
    return frontStyle_;
}
OrvFaceStyle Orv3dMakeUp::backStyle() const {
    return backStyle_;
}
OrvMarkerType Orv3dMakeUp::markerType() const {
    return markerType_;
}
unsigned short Orv3dMakeUp::markerScale() const {
    return markerScale_;
}
OrvTexture* Orv3dMakeUp::texture() const {
    return texture_;
}
OrvVectorialFont* Orv3dMakeUp::vfont() const {
    return vfont_;
}

// ---------------------------------------------------------------- OrvTotalMakeUp

OrvTotalMakeUp::OrvTotalMakeUp(OrvDirector* d, const OrvMakeUpValues& v)
    : OrvMakeUp(d, v.background, v.foreground, v.lineStyle, v.lineWidth, v.pattern) {
    take2d(this, v);
    take3d(this, v);
    count2d(this);
    count3d(this);
}

OrvTotalMakeUp::OrvTotalMakeUp(const OrvMakeUp* base) : OrvMakeUp(base) {
    OrvMakeUpValues v = valuesOf(base);
    take2d(this, v);
    take3d(this, v);
}

OrvTotalMakeUp::~OrvTotalMakeUp() {
    release2d(this);
    release3d(this);
}

void OrvTotalMakeUp::assign(const OrvMakeUpValues& v) {
    background_ = v.background;
    foreground_ = v.foreground;
    lineStyle_ = v.lineStyle;
    lineWidth_ = v.lineWidth;
    pattern_ = v.pattern;
    take2d(this, v);
    take3d(this, v);
}

OrvRasterFont* OrvTotalMakeUp::font() const {
    return font_;
}
OrvBitmap* OrvTotalMakeUp::colorPattern() const {
    return colorPattern_;
}
OrvFillStyle OrvTotalMakeUp::fillStyle() const {
    return fillStyle_;
}
OrvArcMode OrvTotalMakeUp::arcMode() const {
    return arcMode_;
}
OrvFillRule OrvTotalMakeUp::fillRule() const {
    return fillRule_;
}
unsigned long OrvTotalMakeUp::smooth() const {
    return smooth_;
}
unsigned long OrvTotalMakeUp::distinguish() const {
    return distinguish_;
}
OrvCullingMode OrvTotalMakeUp::cull() const {
    return cull_;
}
OrvFaceStyle OrvTotalMakeUp::frontStyle() const {
    return frontStyle_;
}
OrvFaceStyle OrvTotalMakeUp::backStyle() const {
    return backStyle_;
}
OrvMarkerType OrvTotalMakeUp::markerType() const {
    return markerType_;
}
unsigned short OrvTotalMakeUp::markerScale() const {
    return markerScale_;
}
OrvTexture* OrvTotalMakeUp::texture() const {
    return texture_;
}
OrvVectorialFont* OrvTotalMakeUp::vfont() const {
    return vfont_;
}

// ---------------------------------------------------------------- OrvMakeUpHashTable

OrvMakeUpHashTable::OrvMakeUpHashTable(unsigned long bucketCount)
    : size(bucketCount ? bucketCount : 1), count(0), buckets(nullptr) {
    buckets = new OrvList*[size];
    for (unsigned long i = 0; i < size; i++) buckets[i] = nullptr;
}

OrvMakeUpHashTable::~OrvMakeUpHashTable() {
    for (unsigned long i = 0; i < size; i++) delete buckets[i];
    delete[] buckets;
}

static inline unsigned bit(unsigned long n) {
    return 1u << (n % 32);
}
static inline unsigned word(const void* p) {
    return (unsigned)(uintptr_t)p;
}

unsigned OrvMakeUpHashTable::makeKey(const OrvMakeUpValues& v) {
    unsigned bits = bit(v.distinguish) | bit(v.smooth + 1) | bit(v.cull + 2) | bit(v.fillRule) |
                    bit((unsigned long)v.arcMode + 1) | bit(v.fillStyle + 2) |
                    bit(v.frontStyle + v.backStyle) | bit(v.markerType + 1);
    unsigned key =
        (bits + v.lineWidth + v.markerScale) ^ word(v.vfont) ^ word(v.lineStyle) ^ word(v.font);
    if (v.colorPattern) key ^= word(v.colorPattern);
    if (v.pattern) key ^= word(v.pattern);
    if (v.texture) key ^= word(v.texture);
    key ^= word(v.background);
    key ^= word(v.foreground);
    return key;
}

unsigned OrvMakeUpHashTable::makeKey(const OrvMakeUp* makeUp) {
    OrvMakeUpValues v;
    makeUp->values(v);
    return makeKey(v);
}

int OrvMakeUpHashTable::match(const OrvMakeUp* m, const OrvMakeUpValues& v) {
    return m->background() == v.background && m->foreground() == v.foreground &&
           m->pattern() == v.pattern && m->colorPattern() == v.colorPattern &&
           m->font() == v.font && m->lineStyle() == v.lineStyle && m->lineWidth() == v.lineWidth &&
           m->fillStyle() == v.fillStyle && m->arcMode() == v.arcMode &&
           m->fillRule() == v.fillRule && m->vfont() == v.vfont &&
           m->distinguish() == v.distinguish && m->smooth() == v.smooth && m->cull() == v.cull &&
           m->frontStyle() == v.frontStyle && m->backStyle() == v.backStyle &&
           m->markerType() == v.markerType && m->markerScale() == v.markerScale &&
           m->texture() == v.texture;
}

OrvMakeUp* OrvMakeUpHashTable::get(const OrvMakeUpValues& v) const {
    OrvList* bucket = buckets[makeKey(v) % size];
    if (!bucket) return nullptr;
    for (OrvLink* l = bucket->first; l; l = l->next)
        if (match((OrvMakeUp*)l->value, v)) return (OrvMakeUp*)l->value;
    return nullptr;
}

void OrvMakeUpHashTable::put(OrvMakeUp* m) {
    unsigned long b = makeKey(m) % size;
    if (!buckets[b]) buckets[b] = new OrvList;
    if (buckets[b]->find(m)) return;
    buckets[b]->append(m);
    count++;
}

int OrvMakeUpHashTable::remove(OrvMakeUp* m) {
    // The attributes may have been re-pointed since the make-up went in: search every bucket.
    for (unsigned long i = 0; i < size; i++) {
        if (buckets[i] && buckets[i]->remove(m)) {
            count--;
            return 1;
        }
    }
    return 0;
}

void OrvMakeUpHashTable::empty() {
    for (unsigned long i = 0; i < size; i++) {
        delete buckets[i];
        buckets[i] = nullptr;
    }
    count = 0;
}
