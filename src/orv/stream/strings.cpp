// Quoted strings of the text format and the plain forms of the value types.
#include "orv/stream.h"

#include <cstdlib>
#include <cstring>

#include "scan.h"

void OrvWriteString(std::ostream& out, const char* text, unsigned length, unsigned long terminate) {
    if (!text) text = "";
    if (length == 0) length = (unsigned)strlen(text);
    std::streambuf* sink = out.rdbuf();
    sink->sputc('"');
    // Plain runs go out whole; only the escaped characters are spelt out.
    unsigned run = 0;
    for (unsigned i = 0; i < length; i++) {
        const char* escape = nullptr;
        switch (text[i]) {
            case '\\':
                escape = "\\\\";
                break;
            case '"':
                escape = "\\\"";
                break;
            case '\n':
                escape = "\\n";
                break;
            case '\r':
                escape = "\\r";
                break;
            case 23:
                escape = "\\027";
                break;
            default:
                continue;
        }
        sink->sputn(text + run, i - run);
        sink->sputn(escape, (std::streamsize)strlen(escape));
        run = i + 1;
    }
    sink->sputn(text + run, length - run);
    sink->sputc('"');
    if (terminate) sink->sputc('\0');
}

// One buffer for the process, doubled as needed; a result lives until the
// next call.
static char* stringBuffer = nullptr;
static unsigned stringCapacity = 0;

static void storeChar(unsigned& at, char c) {
    if (at + 1 >= stringCapacity) {
        unsigned capacity = stringCapacity ? stringCapacity * 2 : 2048;
        char* grown = (char*)realloc(stringBuffer, capacity);
        if (!grown) return;
        stringBuffer = grown;
        stringCapacity = capacity;
    }
    stringBuffer[at++] = c;
}

char* OrvReadString(std::istream& in) {
    unsigned at = 0;
    storeChar(at, 0);
    at = 0;
    for (int c = OrvScanPeek(in); c == ' ' || c == '\n'; c = OrvScanPeek(in)) OrvScanGet(in);
    char quote;
    OrvScanChar(in, quote);  // the opening quote, taken as it is
    // A stream that ends inside the string leaves it failed: the caller sees
    // the stream's state and the object is not kept.
    std::streambuf* source = in.rdbuf();
    const int eof = std::char_traits<char>::eof();
    while (in) {
        int c = source->sbumpc();
        if (c == eof) {
            in.setstate(std::ios::eofbit | std::ios::failbit);
            break;
        }
        if (c == '"') break;
        if (c == '\\') {
            int n = source->sgetc();
            if (n == '\\' || n == '"') {
                source->sbumpc();
                c = n;
            } else if (n == 'n') {
                source->sbumpc();
                c = '\n';
            } else if (n == 'r') {
                source->sbumpc();
                c = '\r';
            } else if (n == '0') {
                source->sbumpc();
                if (source->sgetc() == '2') {
                    source->sbumpc();
                    if (source->sgetc() == '7') {
                        source->sbumpc();
                        c = 23;
                    }
                }
            }
        }
        storeChar(at, (char)c);
    }
    stringBuffer[at] = 0;
    return stringBuffer;
}

std::ostream& operator<<(std::ostream& out, const Orv2dRect& r) {
    return out << r.x << ' ' << r.y << ' ' << r.w << ' ' << r.h;
}
std::ostream& operator<<(std::ostream& out, const Orv2dPoint& p) {
    return out << p.x << ' ' << p.y;
}
std::ostream& operator<<(std::ostream& out, const Orv3dRect& r) {
    return out << r.x << ' ' << r.y << ' ' << r.w << ' ' << r.h;
}
std::ostream& operator<<(std::ostream& out, const Orv3dPoint& p) {
    return out << p.x << ' ' << p.y << ' ' << p.z;
}
std::ostream& operator<<(std::ostream& out, const Orv3dVector& v) {
    return out << v.x << ' ' << v.y << ' ' << v.z;
}
std::ostream& operator<<(std::ostream& out, const Orv4dPoint& p) {
    return out << p.x << ' ' << p.y << ' ' << p.z << ' ' << p.w;
}
std::ostream& operator<<(std::ostream& out, const Orv3dVolume& v) {
    return out << v.x << ' ' << v.y << ' ' << v.z << ' ' << v.w << ' ' << v.h << ' ' << v.d;
}

std::istream& operator>>(std::istream& in, Orv2dRect& r) {
    return in >> r.x >> r.y >> r.w >> r.h;
}
std::istream& operator>>(std::istream& in, Orv2dPoint& p) {
    return in >> p.x >> p.y;
}
std::istream& operator>>(std::istream& in, Orv3dRect& r) {
    return in >> r.x >> r.y >> r.w >> r.h;
}
std::istream& operator>>(std::istream& in, Orv3dPoint& p) {
    return in >> p.x >> p.y >> p.z;
}
std::istream& operator>>(std::istream& in, Orv3dVector& v) {
    return in >> v.x >> v.y >> v.z;
}
std::istream& operator>>(std::istream& in, Orv4dPoint& p) {
    return in >> p.x >> p.y >> p.z >> p.w;
}
std::istream& operator>>(std::istream& in, Orv3dVolume& v) {
    return in >> v.x >> v.y >> v.z >> v.w >> v.h >> v.d;
}
