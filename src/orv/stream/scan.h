// Character-level reading straight from a stream's buffer. Each function
// gives what the standard formatted extraction gives on this format's text
// (C-locale blanks, decimal numbers) and sets the same state bits, without
// the per-call sentry and locale look-ups that dominate reading otherwise.
#ifndef ORV_STREAM_SCAN_H
#define ORV_STREAM_SCAN_H

#include <cstddef>
#include <istream>

// As istream::peek and istream::get().
int OrvScanPeek(std::istream&);
int OrvScanGet(std::istream&);
// Skips blanks as a formatted extraction does; false (with failbit) at the end.
bool OrvScanSkip(std::istream&);
// As `in >> c` for a char.
bool OrvScanChar(std::istream&, char& c);
// As `in >> std::setw(size) >> buffer`; the buffer is "" on failure.
bool OrvScanWord(std::istream&, char* buffer, size_t size);
// As `in >> value`; the value is left alone on failure.
bool OrvScanNumber(std::istream&, unsigned short& value);
bool OrvScanNumber(std::istream&, short& value);
bool OrvScanNumber(std::istream&, unsigned int& value);
bool OrvScanNumber(std::istream&, int& value);
bool OrvScanNumber(std::istream&, unsigned long& value);
bool OrvScanNumber(std::istream&, long& value);
bool OrvScanNumber(std::istream&, float& value);
bool OrvScanNumber(std::istream&, double& value);

#endif
