// Diagnostics, the date and file tests used throughout the library.
#include "orv/base.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <unistd.h>

void OrvPrint(const char* format, ...) {
    va_list args;
    va_start(args, format);
    vprintf(format, args);
    va_end(args);
}

int OrvError(const char* format, ...) {
    va_list args;
    va_start(args, format);
    vprintf(format, args);
    va_end(args);
    return 0;
}

const char* OrvDate() {
    static char date[25];
    time_t now = time(nullptr);
    const char* text = ctime(&now);
    if (!text) {
        date[0] = 0;
        return date;
    }
    memcpy(date, text, 24);
    date[24] = 0;
    return date;
}

int OrvFileExists(const char* path) {
    return path && access(path, R_OK) == 0;
}

int OrvIsFileWritable(const char* path, unsigned long report) {
    FILE* file = fopen(path, "a");
    if (!file) {
        if (report) OrvError("## Cannot open %s for writing", path);
        return 0;
    }
    fclose(file);
    return 1;
}
