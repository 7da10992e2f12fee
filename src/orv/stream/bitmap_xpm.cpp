// XPM2 files: read into a bitmap of the canvas's depth with colours from its
// director, and a bitmap written back with one character a pixel.
#include "orv/bitmapfile.h"
#include "orv/canvas.h"
#include "orv/director.h"
#include "orv/resource.h"

#include "bitmap_build.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <strings.h>
#include <sys/stat.h>

namespace {

// The file as lines, comments left out: "!" to the end of a line, or "/*" to "*/", each
// at the start of a line.
class XpmLines {
public:
    XpmLines(char* text, unsigned long size, int cStyle)
        : at(text), end(text + size), cComments(cStyle) {}
    // The next line that is not a comment nor empty, cut at its newline; null at the end.
    char* next() {
        for (;;) {
            if (at >= end) return nullptr;
            char* line = at;
            char* nl = (char*)memchr(at, '\n', end - at);
            char* stop = nl ? nl : end;
            at = nl ? nl + 1 : end;
            *stop = 0;
            if (stop > line && stop[-1] == '\r') stop[-1] = 0;
            // Blanks are pixel characters too: only a line that starts with the comment
            // marker is a comment, and only a line with nothing at all is empty.
            char* p = line;
            if (cComments && p[0] == '/' && p[1] == '*') {
                // A comment may run over several lines.
                char* close = strstr(p + 2, "*/");
                while (!close && at < end) {
                    char* more = at;
                    char* n = (char*)memchr(at, '\n', end - at);
                    at = n ? n + 1 : end;
                    if (n) *n = 0;
                    close = strstr(more, "*/");
                }
                if (close && *(close + 2 + strspn(close + 2, " \t\r"))) return close + 2;
                continue;
            }
            if (!cComments && *p == '!') continue;
            if (!*p) continue;
            return line;
        }
    }

private:
    char* at;
    char* end;
    int cComments;
};

const char* const colorKeys[] = {"c", "m", "g4", "g", "s"};

int isColorKey(const char* word) {
    for (const char* k : colorKeys)
        if (!strcmp(word, k)) return 1;
    return 0;
}

// The colour of a colour line for a screen of that depth: the value under "c" (or "m"
// on one-bit screens) first, then the other visual keys. Null for a line with no key or
// an unknown one.
const char* colorValue(char* described, unsigned short depth, int& bad) {
    static const char* const order[2][4] = {{"c", "g", "g4", "m"}, {"m", "g4", "g", "c"}};
    const char* values[5] = {nullptr, nullptr, nullptr, nullptr, nullptr};
    bad = 0;
    char* save = nullptr;
    char* word = strtok_r(described, " \t", &save);
    if (!word) {
        bad = 1;
        return nullptr;
    }
    while (word) {
        if (!isColorKey(word)) {
            bad = 1;
            return nullptr;
        }
        int key = 0;
        while (strcmp(colorKeys[key], word)) key++;
        // The value runs to the next key word, blanks included ("light grey").
        char* value = strtok_r(nullptr, " \t", &save);
        if (!value) {
            bad = 1;
            return nullptr;
        }
        char* last = value + strlen(value);
        word = strtok_r(nullptr, " \t", &save);
        while (word && !isColorKey(word)) {
            memmove(last + 1, word, strlen(word) + 1);
            *last = ' ';
            last += 1 + strlen(last + 1);
            word = strtok_r(nullptr, " \t", &save);
        }
        values[key] = value;
    }
    for (const char* k : order[depth == 1 ? 1 : 0]) {
        int key = 0;
        while (strcmp(colorKeys[key], k)) key++;
        if (values[key]) return values[key];
    }
    bad = 1;
    return nullptr;
}

struct Key {
    const char* chars;
    unsigned cpp;
    unsigned short index;
};

unsigned keyLength = 1;

int compareKeys(const void* a, const void* b) {
    return memcmp(((const Key*)a)->chars, ((const Key*)b)->chars, keyLength);
}

OrvBitmap* xpmFailure(const char* format, const char* what, char* text, OrvColor** colors,
                      unsigned long count, void* other) {
    if (colors) {
        for (unsigned long i = 0; i < count; i++) OrvRelease(colors[i]);
        free(colors);
    }
    free(other);
    free(text);
    OrvPrint(format, what);
    return nullptr;
}

}  // namespace

OrvBitmap* OrvReadXPM2Bitmap(OrvCanvas* canvas, const char* file) {
    if (!canvas || !file) return nullptr;
    const char* found = canvas->director->findInPath(file);
    FILE* f = found ? fopen(found, "rb") : nullptr;
    if (!f) {
        OrvPrint("XPM: couldn't open %s.\n", file);
        return nullptr;
    }
    struct stat st;
    unsigned long size = fstat(fileno(f), &st) == 0 ? (unsigned long)st.st_size : 0;
    char* text = (char*)malloc(size + 1);
    if (!text || fread(text, 1, size, f) != size) {
        fclose(f);
        return xpmFailure("XPM: couldn't open %s.\n", file, text, nullptr, 0, nullptr);
    }
    fclose(f);
    text[size] = 0;
    // The first line names the format inside a comment, which sets the comment style.
    char* nl = (char*)memchr(text, '\n', size);
    unsigned long firstLength = nl ? (unsigned long)(nl - text) : size;
    char first[256];
    snprintf(first, sizeof first, "%.*s", (int)(firstLength < 255 ? firstLength : 255), text);
    const char* lead = first + strspn(first, " \t");
    int cStyle = lead[0] == '/' && lead[1] == '*';
    if (!((lead[0] == '!' || cStyle) && strstr(lead, "XPM")))
        return xpmFailure("XPM: Not a XPM format (%s).\n", file, text, nullptr, 0, nullptr);
    unsigned long skip = nl ? firstLength + 1 : size;
    XpmLines lines(text + skip, size - skip, cStyle);

    char* header = lines.next();
    long w = 0, h = 0, ncolors = 0, cpp = 0;
    char extra;
    if (!header || sscanf(header, "%ld %ld %ld %ld %c", &w, &h, &ncolors, &cpp, &extra) < 4 ||
        w < 1 || h < 1 || ncolors < 1 || cpp < 1 || ncolors > 65535 || cpp > 8 ||
        (unsigned long)w > OrvBitmapMaxSide || (unsigned long)h > OrvBitmapMaxSide ||
        (unsigned long)ncolors * (cpp + 1) > size)
        return xpmFailure("XPM: Bad image description header.\n", nullptr, text, nullptr, 0,
                          nullptr);
    // Every pixel takes cpp characters: a header that claims more than the file holds is
    // refused before anything is made.
    if ((unsigned long)w * (unsigned long)h > size / (unsigned long)cpp)
        return xpmFailure("XPM: Bad image pixels (%s).\n", file, text, nullptr, 0, nullptr);

    OrvDirector* d = canvas->director;
    OrvColor** colors = (OrvColor**)calloc(ncolors, sizeof(OrvColor*));
    Key* keys = (Key*)calloc(ncolors, sizeof(Key));
    if (!colors || !keys) {
        free(keys);
        return xpmFailure("## Orvis : Out of memory.\n%s", "", text, colors, 0, nullptr);
    }
    long transparent = -1;
    for (long i = 0; i < ncolors; i++) {
        char* line = lines.next();
        if (!line || (long)strlen(line) < cpp) {
            free(keys);
            return xpmFailure("XPM: Bad image colors description. (%s)\n", line ? line : "", text,
                              colors, ncolors, nullptr);
        }
        keys[i].chars = line;
        keys[i].cpp = (unsigned)cpp;
        keys[i].index = (unsigned short)i;
        int bad = 0;
        char described[1024];
        snprintf(described, sizeof described, "%s", line + cpp);
        const char* value = colorValue(described, canvas->depth, bad);
        if (bad || !value) {
            // The line itself, without its pixel characters, says what was wrong.
            snprintf(described, sizeof described, "%s", line + cpp);
            free(keys);
            return xpmFailure("XPM: Bad image colors description. (%s)\n", described, text, colors,
                              ncolors, nullptr);
        }
        if (!strcasecmp(value, "None")) {
            // Several "None" entries share one transparent index.
            if (transparent < 0) transparent = i;
            keys[i].index = (unsigned short)transparent;
            continue;
        }
        colors[i] = d->color(value);
        OrvCount(colors[i]);
    }
    keyLength = (unsigned)cpp;
    qsort(keys, ncolors, sizeof(Key), compareKeys);
    unsigned short* indices = (unsigned short*)malloc((size_t)w * h * sizeof(unsigned short));
    if (!indices) {
        free(keys);
        return xpmFailure("## Orvis : Out of memory.\n%s", "", text, colors, ncolors, nullptr);
    }
    for (long y = 0; y < h; y++) {
        char* row = lines.next();
        if (!row || (long)strlen(row) < w * cpp) {
            free(keys);
            return xpmFailure("XPM: Bad image pixels (%s).\n", file, text, colors, ncolors,
                              indices);
        }
        for (long x = 0; x < w; x++) {
            Key probe = {row + x * cpp, (unsigned)cpp, 0};
            Key* hit = (Key*)bsearch(&probe, keys, ncolors, sizeof(Key), compareKeys);
            if (!hit) {
                free(keys);
                return xpmFailure("XPM: Bad image pixels (%s).\n", file, text, colors, ncolors,
                                  indices);
            }
            indices[y * w + x] = hit->index;
        }
    }
    free(keys);
    OrvIndexedPicture picture = {(unsigned long)w, (unsigned long)h, nullptr,
                                 indices,          colors,           transparent};
    OrvBitmap* bitmap = OrvBuildIndexedBitmap(canvas, picture, file);
    // The bitmap counts the colours it uses; the reader lets go of its own counts.
    for (long i = 0; i < ncolors; i++) OrvRelease(colors[i]);
    free(colors);
    free(indices);
    free(text);
    return bitmap;
}

int OrvSaveXPM2Bitmap(OrvBitmap* bitmap, const char* file) {
    if (!bitmap || !file) return OrvError("XPM: couldn't open %s.\n", file ? file : "");
    unsigned long w = bitmap->width, h = bitmap->height;
    unsigned long* pixels = OrvGetPixels(bitmap, Orv2dRect(0, 0, w, h));
    if (!pixels) return OrvError("## Orvis : Out of memory.\n");
    // The colours in use, at most 256, each with its 16-bit channels.
    unsigned long values[256];
    unsigned rgb[256][3];
    unsigned n = 0;
    int overflow = 0;
    for (unsigned long i = 0; i < w * h; i++) {
        unsigned k = 0;
        while (k < n && values[k] != pixels[i]) k++;
        if (k < n) continue;
        if (n == 256) {
            overflow = 1;
            continue;
        }
        values[n++] = pixels[i];
    }
    for (unsigned k = 0; k < n; k++) {
        if (bitmap->depth == 1) {
            // A one-bit bitmap draws its ones in the foreground: black on white.
            unsigned v = values[k] ? 0 : 0xFFFF;
            rgb[k][0] = rgb[k][1] = rgb[k][2] = v;
            continue;
        }
        float r, g, b;
        bitmap->director->indexToRGB((unsigned)values[k], r, g, b);
        rgb[k][0] = (unsigned)lround(r * 65535.0);
        rgb[k][1] = (unsigned)lround(g * 65535.0);
        rgb[k][2] = (unsigned)lround(b * 65535.0);
    }
    // One printable character a pixel, none that could open a comment or be taken for a
    // blank: "#" to "~".
    const unsigned printable = '~' - '#' + 1;
    if (n > printable || overflow) {
        OrvPrint("XPM: Too many colors for ascii format\n##   Truncating to %d different colors.\n",
                 printable);
        if (n > printable) n = printable;
    }
    FILE* f = fopen(file, "w");
    if (!f) {
        delete[] pixels;
        return OrvError("XPM: couldn't open %s.\n", file);
    }
    fprintf(f, "! XPM2  \n%lu %lu %u 1\n", w, h, n);
    for (unsigned k = 0; k < n; k++)
        fprintf(f, "%c c #%04X%04X%04X\n", (char)('#' + k), rgb[k][0], rgb[k][1], rgb[k][2]);
    char* line = (char*)malloc(w + 2);
    for (unsigned long y = 0; line && y < h; y++) {
        for (unsigned long x = 0; x < w; x++) {
            unsigned long p = pixels[y * w + x];
            unsigned k = 0;
            while (k < n && values[k] != p) k++;
            if (k == n) {
                // A colour past the table takes the nearest one kept.
                unsigned long best = ~0UL;
                float r, g, b;
                bitmap->director->indexToRGB((unsigned)p, r, g, b);
                double c[3] = {r * 65535.0, g * 65535.0, b * 65535.0};
                for (unsigned j = 0; j < n; j++) {
                    double dist = 0;
                    for (int q = 0; q < 3; q++) dist += (c[q] - rgb[j][q]) * (c[q] - rgb[j][q]);
                    if ((unsigned long)(dist / 65536.0) < best) {
                        best = (unsigned long)(dist / 65536.0);
                        k = j;
                    }
                }
            }
            line[x] = (char)('#' + k);
        }
        line[w] = '\n';
        fwrite(line, 1, w + 1, f);
    }
    free(line);
    delete[] pixels;
    int ok = !ferror(f);
    if (fclose(f) != 0) ok = 0;
    return ok ? 1 : OrvError("XPM: couldn't write %s.\n", file);
}
