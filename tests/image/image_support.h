// Helpers of the picture-file tests: a private temporary directory, files
// written and read whole, the real conversion tools (netpbm, ImageMagick) run
// as oracles, and plain portable maps parsed back into numbers.
#ifndef ORV_TEST_IMAGE_SUPPORT_H
#define ORV_TEST_IMAGE_SUPPORT_H

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <vector>
#include <dirent.h>
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
        if (path.empty()) return;
        DIR* d = opendir(path.c_str());
        if (d) {
            while (dirent* e = readdir(d)) {
                if (!strcmp(e->d_name, ".") || !strcmp(e->d_name, "..")) continue;
                unlink((path + "/" + e->d_name).c_str());
            }
            closedir(d);
        }
        rmdir(path.c_str());
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
    std::string full = "(" + command + ") 2>/tmp/orv-images-tool.log";
    int status = system(full.c_str());
    if (status != 0) {
        ADD_FAILURE() << "command failed: " << command << "\n"
                      << readFile("/tmp/orv-images-tool.log");
        return false;
    }
    return true;
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

// Any portable map, read back through netpbm's own plain writer.
inline PlainMap parsePlain(const std::string& file) {
    PlainMap m;
    std::string plain = file + ".plain";
    if (!run("pnmtoplainpnm '" + file + "' > '" + plain + "'")) return m;
    std::istringstream in(readFile(plain));
    unlink(plain.c_str());
    std::string magic;
    in >> magic;
    m.kind = magic == "P1" ? 1 : magic == "P2" ? 2 : 3;
    auto next = [&in]() {
        std::string t;
        while (in >> t) {
            if (t[0] == '#') {
                std::getline(in, t);
                continue;
            }
            return (unsigned)strtoul(t.c_str(), nullptr, 10);
        }
        return 0u;
    };
    m.width = next();
    m.height = next();
    if (m.kind != 1) m.maximum = next();
    size_t n = (size_t)m.width * m.height * (m.kind == 3 ? 3 : 1);
    if (m.kind == 1) {
        // Plain bitmaps may run their digits together.
        char c;
        while (m.samples.size() < n && in.get(c))
            if (c == '0' || c == '1') m.samples.push_back(c - '0');
    } else {
        for (size_t i = 0; i < n; i++) m.samples.push_back(next());
    }
    return m;
}

// The standard output of f.
inline std::string captured(const std::function<void()>& f) {
    testing::internal::CaptureStdout();
    f();
    return testing::internal::GetCapturedStdout();
}

#endif
