// Helpers of the picture-file tests: a private temporary directory, files
// written and read whole, the real conversion tools (netpbm, ImageMagick) run
// as oracles, and plain portable maps parsed back into numbers.
#ifndef ORV_TEST_IMAGE_SUPPORT_H
#define ORV_TEST_IMAGE_SUPPORT_H

#include "orv_fixtures.h"

#include <fstream>
#include <unistd.h>

// A directory of its own under /tmp, removed with what it holds.
class TempDir {
public:
    std::string path;
    TempDir() {
        char t[] = "/tmp/orv-images-XXXXXX";
        if (mkdtemp(t)) path = t;
    }
    ~TempDir() {
        if (!path.empty()) (void)!system(("rm -rf '" + path + "'").c_str());
    }
    std::string operator/(const std::string& name) const { return path + "/" + name; }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
};

inline void writeFile(const std::string& path, const std::string& bytes) {
    std::ofstream f(path, std::ios::binary);
    f.write(bytes.data(), (std::streamsize)bytes.size());
}

inline std::string readFile(const std::string& path) {
    std::ifstream f(path, std::ios::binary);
    std::ostringstream s;
    s << f.rdbuf();
    return s.str();
}

// Runs a shell command; true when it exits with 0. Its diagnostics go to a log that a
// failing test shows.
inline bool run(const std::string& command) {
    if (system(("(" + command + ") 2>/tmp/orv-images-tool.log").c_str()) == 0) return true;
    ADD_FAILURE() << "command failed: " << command << "\n" << readFile("/tmp/orv-images-tool.log");
    return false;
}

// A portable map in numbers: each sample of each pixel, rows top first.
struct PlainMap {
    int kind = 0;  // 1 bitmap, 2 grey, 3 RGB
    unsigned width = 0, height = 0, maximum = 1;
    std::vector<unsigned> samples;
    unsigned at(unsigned x, unsigned y, unsigned c = 0) const {
        unsigned per = kind == 3 ? 3 : 1;
        return samples[(y * width + x) * per + c];
    }
};

// Any portable map, read back through netpbm's own plain writer, which writes no comments.
inline PlainMap parsePlain(const std::string& file) {
    PlainMap m;
    if (!run("pnmtoplainpnm '" + file + "' > '" + file + ".plain'")) return m;
    std::istringstream in(readFile(file + ".plain"));
    unlink((file + ".plain").c_str());
    std::string magic;
    in >> magic >> m.width >> m.height;
    m.kind = magic[1] - '0';
    if (m.kind != 1) in >> m.maximum;
    size_t n = (size_t)m.width * m.height * (m.kind == 3 ? 3 : 1);
    // Plain bitmaps may run their digits together.
    for (char c; m.kind == 1 && m.samples.size() < n && in >> c;) m.samples.push_back(c - '0');
    for (unsigned v; m.kind != 1 && m.samples.size() < n && in >> v;) m.samples.push_back(v);
    return m;
}

// Bytes of a literal, zeros included.
template <size_t N>
std::string bytesOf(const char (&literal)[N]) {
    return std::string(literal, N - 1);
}

#endif
