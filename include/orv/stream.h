// The .orv text format: a positional, line-oriented writer and reader of
// actors, with an object table that puts referenced objects first.
#ifndef ORV_STREAM_H
#define ORV_STREAM_H

#include "orv/base.h"
#include "orv/geometry.h"
#include "orv/classinfo.h"

#include <istream>
#include <ostream>

class OrvActor;
class OrvDirector;
class OrvMakeUp;
class OrvColor;
class OrvTexture;
class OrvBitmap;
class OrvStage;

// Writes actors in the text format over a standard output stream.
class OrvOStream {
public:
    std::ostream& stream;
    OrvHashTable* makeUpTable;  // OrvMakeUp* -> number, made by write()
    unsigned int makeUpCounter;
    OrvHashTable* textureTable;  // OrvTexture* -> number
    unsigned int textureCounter;
    short indentation;      // current level of tabs
    Orv2dRect defaultSize;  // set by the caller before write()

    explicit OrvOStream(std::ostream&);

    virtual void header(unsigned long is2d);
    virtual void write(const OrvActor*);
    virtual void write(unsigned n, const OrvActor* const* actors, unsigned long is2d);
    virtual void eof();
    virtual ~OrvOStream();
    virtual const char* className() const;

    // The tabs of the current level, at most ten.
    const char* indent() const;
    // Indentation, key and the record separator (two tabs below eight
    // characters, one otherwise); the caller writes the value.
    std::ostream& key(const char* name);
    void writeComments(const char* text, unsigned long line);
    // A reference to another object: blank, its number, blank.
    void writeIndex(const OrvActor*);
    // Non-zero when the record already has a number; otherwise gives it the next.
    unsigned long find(unsigned& number, const OrvMakeUp*);
    unsigned long find(unsigned& number, const OrvTexture*);
    void clean();

    // Typed items: indentation, key, a tab, the value, a newline.
    OrvOStream& operator<<(const Orv2dRect&);
    OrvOStream& operator<<(const Orv2dPoint&);
    OrvOStream& operator<<(unsigned short);
    OrvOStream& operator<<(short);
    OrvOStream& operator<<(unsigned int);
    OrvOStream& operator<<(int);
    OrvOStream& operator<<(unsigned long);
    OrvOStream& operator<<(long);
    OrvOStream& operator<<(float);
    OrvOStream& operator<<(double);
    OrvOStream& operator<<(const char* label);
    OrvOStream& operator<<(const OrvBitmap*);
    OrvOStream& operator<<(const Orv3dRect&);
    OrvOStream& operator<<(const Orv3dMatrix&);
    OrvOStream& operator<<(const Orv3dPoint&);
    OrvOStream& operator<<(const Orv3dVector&);
    OrvOStream& operator<<(const Orv4dPoint&);
    OrvOStream& operator<<(const Orv3dVolume&);
    // Shared records.
    OrvOStream& operator<<(const OrvMakeUp*);
    OrvOStream& operator<<(const OrvColor*);
    // The "position" item; a function of its own since a position is a number.
    void writePosition(unsigned long position);
};

// Reads the text format from a standard input stream.
class OrvIStream {
public:
    OrvDirector* director;
    std::istream& stream;
    OrvAList makeUps;   // number -> OrvMakeUp*
    OrvAList textures;  // number -> OrvTexture*
    // Objects read so far, by position; valid only during read(count, is2d).
    OrvActor** objects;
    unsigned int objectCount;
    Orv2dRect defaultSize;
    // Faults reported since the reading began; an object during whose reading
    // this grows is dropped, so no half-read object leaves the reader.
    unsigned long faults;

    OrvIStream(OrvDirector*, std::istream&);

    virtual OrvActor* read();
    // A new array, free with delete[], or null. Reading stops at the
    // first bad object, whose entry is null: walk the array up to count or to
    // the first null, whichever comes first.
    virtual OrvActor** read(unsigned& count, unsigned long is2d);
    virtual unsigned long header(unsigned long is2d);
    virtual ~OrvIStream();

    void clean();
    // Skips blanks, tabs, newlines and "%" comments before the next item.
    void nextItem();
    // A word of at most 1023 characters into buffer (1024 bytes); "" at the end.
    void word(char* buffer);
    // The object of an earlier number; null when the number is not one of the
    // objects read so far.
    OrvActor* readIndex();
    // Reports through OrvError, counts the fault and returns 0.
    int fault(const char* format, ...);

    OrvIStream& operator>>(Orv2dRect&);
    OrvIStream& operator>>(Orv2dPoint&);
    OrvIStream& operator>>(unsigned short&);
    OrvIStream& operator>>(short&);
    OrvIStream& operator>>(unsigned int&);
    OrvIStream& operator>>(int&);
    OrvIStream& operator>>(unsigned long&);
    OrvIStream& operator>>(long&);
    OrvIStream& operator>>(float&);
    OrvIStream& operator>>(double&);
    // A label: a new copy (free with delete[]) replaces the pointer.
    OrvIStream& operator>>(char*& label);
    OrvIStream& operator>>(OrvBitmap*&);
    OrvIStream& operator>>(Orv3dRect&);
    OrvIStream& operator>>(Orv3dMatrix&);
    OrvIStream& operator>>(Orv3dPoint&);
    OrvIStream& operator>>(Orv3dVector&);
    OrvIStream& operator>>(Orv4dPoint&);
    OrvIStream& operator>>(Orv3dVolume&);
    OrvIStream& operator>>(OrvMakeUp*&);
    OrvIStream& operator>>(OrvColor*&);
    void readPosition(unsigned long& position);

private:
    unsigned int objectCapacity;
    void keep(OrvActor*);
};

// Quoted strings with the escapes of the format.
void OrvWriteString(std::ostream&, const char* text, unsigned length = 0,
                    unsigned long terminate = 0);
// A static buffer, valid until the next call.
char* OrvReadString(std::istream&);

// Key and value readers; each returns 0 after reporting a different key. The names, bracketed
// like file-local ones, are kept as they are for behaviour compatibility.
int _OrvReadItem_(OrvIStream&, char* buffer, const char* key);
int _OrvReadItem_(OrvIStream&, char* buffer, const char* key, char* value);
int _OrvReadItem_(OrvIStream&, char* buffer, const char* key, unsigned long& value);
int _OrvReadItem_(OrvIStream&, char* buffer, const char* key, long& value);
int _OrvReadItemBoolean_(OrvIStream&, char* buffer, const char* key, unsigned long& value);

// The plain forms: members separated by single blanks, no key.
std::ostream& operator<<(std::ostream&, const Orv2dRect&);
std::ostream& operator<<(std::ostream&, const Orv2dPoint&);
std::ostream& operator<<(std::ostream&, const Orv3dRect&);
std::ostream& operator<<(std::ostream&, const Orv3dPoint&);
std::ostream& operator<<(std::ostream&, const Orv3dVector&);
std::ostream& operator<<(std::ostream&, const Orv4dPoint&);
std::ostream& operator<<(std::ostream&, const Orv3dVolume&);
std::istream& operator>>(std::istream&, Orv2dRect&);
std::istream& operator>>(std::istream&, Orv2dPoint&);
std::istream& operator>>(std::istream&, Orv3dRect&);
std::istream& operator>>(std::istream&, Orv3dPoint&);
std::istream& operator>>(std::istream&, Orv3dVector&);
std::istream& operator>>(std::istream&, Orv4dPoint&);
std::istream& operator>>(std::istream&, Orv3dVolume&);

#endif
