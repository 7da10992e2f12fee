// libFuzzer target: any bytes given to the stage-file reader must neither
// crash nor leak nor leave a half-read object behind.
#include "orv/actor.h"
#include "orv/director.h"
#include "orv/stream.h"

#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

static OrvDirector* fuzzDirector() {
    // Make-ups resolve their names through a director, which needs a display;
    // without one the reader still runs, with make-ups left at their default.
    static OrvDirector* director =
        getenv("DISPLAY") ? new OrvDirector("orvfuzz", nullptr, 0, nullptr) : nullptr;
    return director;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    OrvDirector* director = fuzzDirector();
    std::istringstream in(std::string((const char*)data, size));
    OrvIStream reader(director, in);
    unsigned count = 0;
    OrvActor** actors = reader.read(count, 1);
    if (actors) {
        for (unsigned i = 0; i < count && actors[i]; i++) delete actors[i];
        delete[] actors;
    }
    return 0;
}
