// Character-level reading straight from a stream's buffer. Each function
// gives what the standard formatted extraction gives on this format's text
// (C-locale blanks, decimal numbers) and sets the same state bits, without
// the per-call sentry and locale look-ups that dominate reading otherwise.
#ifndef ORV_STREAM_SCAN_H
#define ORV_STREAM_SCAN_H

#include <cstddef>
#include <istream>
#include <memory>

// The reading itself. A plain scanner goes through the stream's buffer a
// character at a time. One made to read ahead, for long runs of values such
// as vertex arrays, copies what the buffer of a file or string stream holds
// in pieces that grow as the reading goes on, and walks them in place; what
// it has not used it gives back to the buffer when it goes, so that the
// stream then stands where the reading stopped, as with the plain one.
// While it reads, the stream is read through it only.
class OrvScanner {
public:
    explicit OrvScanner(std::istream& in, bool ahead = false);
    ~OrvScanner();
    OrvScanner(const OrvScanner&) = delete;
    OrvScanner& operator=(const OrvScanner&) = delete;

    std::istream& stream;

    // As istream::peek and istream::get().
    int peek();
    int get();
    // Skips blanks as a formatted extraction does; false (with failbit) at
    // the end.
    bool skip();
    // Skips blanks, tabs, newlines and "%" comments before the next item.
    void nextItem();
    // As `in >> c` for a char.
    bool take(char& c);
    // As `in >> std::setw(size) >> buffer`; the buffer is "" on failure.
    bool word(char* buffer, size_t size);
    // As `in >> value`; the value is left alone on failure.
    bool number(unsigned short& value);
    bool number(short& value);
    bool number(unsigned int& value);
    bool number(int& value);
    bool number(unsigned long& value);
    bool number(long& value);
    bool number(float& value);
    bool number(double& value);
    // The usual element of a vertex list at once: plain numbers (digits, for
    // floats a sign, a point and more digits), blanks, and the separator,
    // all within what the scanner has read ahead. False, with nothing read,
    // for anything else, which then takes the way above.
    bool quick(unsigned& value, char separator);
    bool quick(float* values, unsigned count, char separator);

    // What the readings are built on: whether the scanner reads ahead, the
    // sentry's test (a stream that is not good fails the extraction), and
    // the cursor.
    bool readsAhead() const { return text != nullptr; }
    bool ready() {
        if (state.good()) return true;
        state.setstate(std::ios::failbit);
        return false;
    }
    // The character under the cursor, as the buffer's sgetc gives it.
    int current() { return at < end ? (unsigned char)*at : fill(); }
    // Moves past it, as sbumpc; advance also gives the next, as snextc.
    void bump() {
        if (at < end)
            at++;
        else
            buffer->sbumpc();
    }
    int advance() {
        bump();
        return current();
    }

    // What is left of the piece read ahead; empty when reading through the
    // buffer. The readers of numbers and words walk it with cursors of their
    // own, which the compiler keeps in registers.
    const char* at;
    const char* end;

private:
    // The next piece read ahead, and its first character.
    int fill();

    std::ios& state;  // the stream's, found once
    std::streambuf* buffer;
    std::unique_ptr<char[]> text;  // the piece read ahead
    size_t piece;                  // the size of the next piece
};

// The same on a stream, each call alone.
int OrvScanPeek(std::istream&);
int OrvScanGet(std::istream&);
bool OrvScanSkip(std::istream&);
bool OrvScanChar(std::istream&, char& c);
bool OrvScanWord(std::istream&, char* buffer, size_t size);
void OrvScanNextItem(std::istream&);
bool OrvScanNumber(std::istream&, unsigned short& value);
bool OrvScanNumber(std::istream&, short& value);
bool OrvScanNumber(std::istream&, unsigned int& value);
bool OrvScanNumber(std::istream&, int& value);
bool OrvScanNumber(std::istream&, unsigned long& value);
bool OrvScanNumber(std::istream&, long& value);
bool OrvScanNumber(std::istream&, float& value);
bool OrvScanNumber(std::istream&, double& value);

// A whole word that is a float as strtof reads it; false when strtof would
// not take all of it.
bool OrvParseFloat(const char* word, float& value);

#endif
