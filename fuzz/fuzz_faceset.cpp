// libFuzzer target: any bytes given to the face-set reader must neither crash
// nor leak, must leave nothing of theirs in the list of shares once the
// reader is gone, and a set that was read must write and read back to the
// same text. Seed corpus: fuzz/corpus/faceset, written by the scene tests.
#include "orv/stream.h"
#include "orv/vertex.h"

#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

static unsigned listed() {
    return OrvShare::sharedData ? OrvShare::sharedData->length() : 0;
}

// The text of the set read from the text, or "" when it does not read.
static std::string again(const std::string& text, bool& read) {
    std::istringstream in(text);
    OrvIStream reader(nullptr, in);
    OrvFaceSet* set = OrvFaceSet::read(reader);
    read = set != nullptr;
    if (!set) return "";
    std::ostringstream out;
    OrvOStream writer(out);
    set->write(writer);
    delete set;
    return out.str();
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    unsigned before = listed();
    bool read = false;
    std::string first = again(std::string((const char*)data, size), read);
    if (read) {
        bool readAgain = false;
        std::string second = again(first, readAgain);
        if (!readAgain || second != first) abort();
    }
    if (listed() != before) abort();
    return 0;
}
