// Lists, association lists, hash tables and interned keys, with what each
// step did printed on the standard output.
#include <orv/orvis.h>

#include <cstdio>

static const char* names[] = {"background", "grid", "actors", "handles", "ghost"};

static void printList(const char* title, const OrvList& list) {
    printf("%-28s", title);
    for (OrvLink* l = list.first; l; l = l->next) printf(" %s", (const char*)l->value);
    printf("   (%u, tail %s)\n", list.length(), list.last ? (const char*)list.last->value : "-");
}

int main() {
    // Stacking order of layers: push and pop move one place at a time.
    OrvList layers;
    for (const char* name : names) layers.append((void*)name);
    printList("layers:", layers);
    layers.push((void*)names[2]);
    printList("push actors:", layers);
    layers.pop((void*)names[0]);
    printList("pop background:", layers);
    layers.swap((void*)names[0], (void*)names[4]);
    printList("swap background, ghost:", layers);
    layers.remove((void*)names[0]);
    printList("remove background (tail):", layers);

    // Properties keyed by interned keys: equal names give the same key.
    OrvKey* colour = OrvGetKey("colour", 1);
    OrvKey* width = OrvGetKey("width", 1);
    char name[] = "colour";
    printf("OrvGetKey(\"colour\") twice is %s\n",
           OrvGetKey(name, 0) == colour ? "the same key" : "two keys");
    printf("OrvGetKey(\"depth\", 0) is %s\n", OrvGetKey("depth", 0) ? "known" : "null");

    OrvAList properties;
    properties.append(colour, (void*)"red");
    properties.append(width, (void*)"2");
    properties.replace(colour, (void*)"blue");
    printf("properties: colour=%s width=%s (%u items)\n", (const char*)properties.get(colour),
           (const char*)properties.get(width), properties.length());

    // A table of named things: equal strings overwrite, anagrams share a bucket.
    OrvStringHashTable table(1000);
    table.put("stage", (void*)"the window");
    table.put("gates", (void*)"an anagram");
    table.put("stage", (void*)"the main window");
    printf("table: stage=%s gates=%s cardinal=%u bucket of \"stage\"=%u\n",
           (const char*)table.get("stage"), (const char*)table.get("gates"), table.cardinal,
           OrvStringHashTable::makeKey("stage") % 1000);

    // Pointer keys accumulate.
    OrvHashTable owners(101);
    owners.put(colour, (void*)"actor 1");
    owners.put(colour, (void*)"actor 2");
    printf("owners of colour: first=%s cardinal=%u\n", (const char*)owners.get(colour),
           owners.cardinal);

    OrvMemoryManager* pool = OrvGetMemoryManager();
    printf("pool: chunk of %u bytes, %ld left\n", pool->chunkSize,
           (long)(pool->end - pool->location));
    printf("date: %s\n", OrvDate());

    delete colour;
    delete width;
    printf("after deleting it, OrvGetKey(\"colour\", 0) is %s\n",
           OrvGetKey("colour", 0) ? "known" : "null");
    return 0;
}
