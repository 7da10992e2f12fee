// Pieces of the text form shared by the vertex classes: bracketed lists of
// values, yes-or-no items and the stream's list of each polygon.
#ifndef ORV_SCENE_VERTEX_IO_H
#define ORV_SCENE_VERTEX_IO_H

#include "orv/stream.h"
#include "orv/vertex.h"

#include <vector>

class _OrvLine_;
class OrvScanner;

// The three faults of a bracketed list; each may hold one %s for the name.
struct _OrvListMessages_ {
    const char* begin;
    const char* comma;
    const char* end;
    const char* name;
};

// "[", count values separated by commas, "]"; with upTo, as many as come
// before "]", at most count. Memory grows with what is read, never with
// what count claims. False after the message.
bool _OrvReadValues_(OrvIStream& in, unsigned count, bool upTo, std::vector<unsigned>& values,
                     const _OrvListMessages_& messages);
// Values ten a line at one more level, a comma after each but the last.
void _OrvWriteValues_(OrvOStream& out, const unsigned* values, unsigned count);
// A number word: digits only.
bool _OrvNumber_(const char* word, unsigned& number);
// The word after the key, "yes" or "no"; the key's mismatch and a bad word
// are reported with the messages given (each with %s %s for key and word,
// or none).
bool _OrvReadYesNo_(OrvIStream& in, const char* key, unsigned long& value, const char* badKey,
                    const char* badWord);
// The next item's first word, compared with the key.
bool _OrvReadKey_(OrvIStream& in, const char* key, const char* badKey);

// "rational", the five cardinal lines and the arrays, points first, then
// colours, normals, textures, edges (the order of the file), each share or
// null. False after the message.
void _OrvWriteArrays_(OrvOStream& out, const OrvVertexData& data);
bool _OrvReadArrays_(OrvIStream& in, OrvShare* shares[5], const char* noPoints);
// A bracketed list of vectors, one a line, as long as it is.
bool _OrvReadVectors_(OrvIStream& in, std::vector<Orv3dVector>& values,
                      const _OrvListMessages_& messages);
void _OrvWriteVectors_(OrvOStream& out, const Orv3dVector* values, unsigned count);
// A face's "faceColor" and "faceNormal" items, each "None" or a value.
void _OrvWriteFaceItems_(OrvOStream& out, const OrvFace& face);
// The same items from values; null writes "None".
void _OrvWriteFaceItems_(OrvOStream& out, const OrvRGB* color, const Orv3dVector* normal);
// The same into a line being built, at the indentation given: the faces of a
// set write theirs into one.
void _OrvWriteFaceItems_(_OrvLine_& line, const char* indent, const OrvRGB* color,
                         const Orv3dVector* normal);
// Read through the scanner given; in takes the messages.
bool _OrvReadFaceItems_(OrvIStream& in, OrvScanner& scanner, OrvFace& face);

// A closing brace, after what separates items.
bool _OrvReadClosing_(OrvIStream& in);

// A new object read from the stream, or null when anything was reported
// during its reading or it came out without vertices.
template <class T>
T* _OrvReadOrNull_(OrvIStream& in) {
    unsigned long before = in.faults;
    T* made = new T(in);
    if (in.faults != before || !made->vertex) {
        delete made;
        return nullptr;
    }
    return made;
}

#endif
