// first: a director, a stage with three actors, saved to a file and read back into a second
// stage. Exits 0 when the second stage saves to the same text as the first.
//
//   first [FILE.orv]    (default first.orv in the current directory)
#include <orv/orvis.h>

#include <cstdio>
#include <sstream>
#include <string>

// The stage in the text format, less the first line, which carries the time of saving.
static std::string saved(OrvStage* stage) {
    std::ostringstream text;
    stage->save(text);
    return text.str().substr(text.str().find('\n'));
}

int main(int argc, char** argv) {
    const char* file = argc > 1 ? argv[1] : "first.orv";
    OrvDirector* director = new OrvDirector("first", nullptr, argc, argv);
    Orv2dRect box(40, 40, 320, 200);
    OrvStage* stage = new OrvStage(director, box, "First", 0, 1);
    OrvMakeUp* red = director->makeUpForeground(director->defaultMakeUp, director->color("red"));
    stage->append(new OrvFilledRectangle(director, Orv2dRect(20, 20, 120, 80), red));
    stage->append(new OrvEllipse(director, Orv2dRect(170, 30, 120, 90)));
    stage->append(new OrvLabel(director, "Hello, Orvis", Orv2dPoint(20, 160)));
    stage->save(file);

    OrvStage* copy = new OrvStage(director, box, "First, read back", 0, 0);
    Orv2dRect size;
    bool same = copy->read(file, size, -1) && copy->cardinal() == 3 && saved(copy) == saved(stage);
    printf("first: %u actors saved to %s and read back %s\n", stage->cardinal(), file,
           same ? "the same" : "DIFFERENT");
    delete copy;
    delete stage;
    delete director;
    return same ? 0 : 1;
}
