// libFuzzer target: any bytes given to the GIF decoder must neither crash nor leak,
// and a decoded image must hold exactly its width times height indices.
#include "orv/bitmapfile.h"

#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::istringstream in(std::string((const char*)data, size));
    OrvGifFile gif(in);
    if (!gif.failed) {
        // Reading every index proves the buffer holds the whole image.
        unsigned long sum = 0, count = (unsigned long)gif.width * gif.height;
        for (unsigned long i = 0; i < count; i++) sum += gif.data[i];
        if (gif.width == 0 || gif.height == 0 || (sum && !count)) abort();
    }
    return 0;
}
