// The keyed lines of the camera, light and environment records: a key, the
// record separator and a value. A wrong key is "OrvIStream : Bad data.", as
// for the typed items; a missing value leaves the stream failed, which drops
// the object being read.
#ifndef ORV_SCENE_RECORD_IO_H
#define ORV_SCENE_RECORD_IO_H

#include <cstring>

#include "orv/stream.h"
#include "orv/vertex.h"
#include "vertex_io.h"

// Key, then a value by the standard extraction.
template <class T>
bool _OrvReadRecordValue_(OrvIStream& in, const char* key, T& value) {
    if (!_OrvReadKey_(in, key, "OrvIStream : Bad data.\n")) return false;
    in.stream >> value;
    return !in.stream.fail();
}

// Key, then three floats.
inline bool _OrvReadRecordRGB_(OrvIStream& in, const char* key, OrvRGB& color) {
    if (!_OrvReadKey_(in, key, "OrvIStream : Bad data.\n")) return false;
    in.stream >> color.red >> color.green >> color.blue;
    return !in.stream.fail();
}

// Key, then "yes" or "no".
inline bool _OrvReadRecordFlag_(OrvIStream& in, const char* key, unsigned long& value) {
    return _OrvReadYesNo_(in, key, value, "OrvIStream : Bad data.\n",
                          "## OrvIStream: Definition error (bool).\n");
}

// The "{" that opens a record after its key; false after the message.
inline bool _OrvReadRecordBegin_(OrvIStream& in, const char* message) {
    char word[1024];
    in.nextItem();
    in.word(word);
    if (strcmp(word, "{")) return in.fault("%s", message);
    return true;
}

// The "}" that closes it.
inline bool _OrvReadRecordEnd_(OrvIStream& in, const char* message) {
    if (!_OrvReadClosing_(in)) return in.fault("%s", message);
    return true;
}

// A key line whose value is a colour's three values.
inline void _OrvWriteRecordRGB_(OrvOStream& out, const char* key, const OrvRGB& color) {
    out.key(key) << color.red << ' ' << color.green << ' ' << color.blue << '\n';
}

#endif
