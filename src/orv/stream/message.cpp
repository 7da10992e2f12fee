// The message database: messages by name, each with a text per language, read
// from and written to the "orv.dbm" text format, and the director's lookup.
#include "orv/message.h"
#include "orv/director.h"
#include "orv/stream.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>

static char* duplicate(const char* s) {
    if (!s) s = "";
    size_t n = strlen(s) + 1;
    char* c = (char*)malloc(n);
    if (c) memcpy(c, s, n);
    return c;
}

// ---------------------------------------------------------------- OrvMessage

OrvMessage::OrvMessage(const char* messageName) : name(duplicate(messageName)) {}

OrvMessage::~OrvMessage() {
    for (OrvAListItem* i = values.first; i; i = i->next) free(i->value);
    free(name);
}

void OrvMessage::putMessage(OrvKey* language, const char* text, unsigned long copy) {
    char* value = copy ? duplicate(text) : (char*)text;
    for (OrvAListItem* i = values.first; i; i = i->next)
        if (i->key == language) {
            if (i->value != value) free(i->value);
            i->value = value;
            return;
        }
    values.insert(language, value);
}

const char* OrvMessage::getValue(OrvKey* language) {
    return (const char*)values.get(language);
}

int OrvMessage::remove(OrvKey* language) {
    for (OrvAListItem* i = values.first; i; i = i->next)
        if (i->key == language) {
            free(i->value);
            return values.remove(language);
        }
    return 0;
}

OrvMessage* OrvMessage::copy() const {
    OrvMessage* m = new OrvMessage(name);
    // Appended, so that the copy keeps the order of the original.
    for (OrvAListItem* i = values.first; i; i = i->next)
        m->values.append(i->key, duplicate((const char*)i->value));
    return m;
}

int OrvMessage::read(std::istream& in) {
    unsigned long count = 0;
    if (!(in >> count)) return 0;
    for (unsigned long n = 0; n < count; n++) {
        const char* text = OrvReadString(in);
        if (!in) return 0;
        OrvKey* language = OrvGetKey(text, 1);
        text = OrvReadString(in);
        if (!in) return 0;
        putMessage(language, text, 1);
    }
    return 1;
}

int OrvMessage::write(std::ostream& out) const {
    OrvWriteString(out, name);
    out << ' ' << values.length() << '\n';
    for (OrvAListItem* i = values.first; i; i = i->next) {
        OrvWriteString(out, ((OrvKey*)i->key)->name);
        out << ' ';
        OrvWriteString(out, (const char*)i->value);
        out << '\n';
    }
    return out ? 1 : 0;
}

// ---------------------------------------------------------------- OrvMessageDatabase

OrvMessageDatabase::OrvMessageDatabase(unsigned bucketCount) : OrvStringHashTable(bucketCount) {}

OrvMessageDatabase::~OrvMessageDatabase() {
    clean();
}

OrvMessage* OrvMessageDatabase::find(const char* messageName) {
    return messageName ? (OrvMessage*)get(messageName) : nullptr;
}

OrvMessage* OrvMessageDatabase::makeMessage(const char* messageName) {
    if (!messageName) return nullptr;
    removeMessage(messageName);
    OrvMessage* m = new OrvMessage(messageName);
    put(m->name, m);
    return m;
}

int OrvMessageDatabase::removeMessage(const char* messageName) {
    OrvMessage* m = find(messageName);
    if (!m) return 0;
    // The table keeps the message's own name as key: out of the table first.
    OrvStringHashTable::remove(m->name);
    delete m;
    return 1;
}

void OrvMessageDatabase::putMessage(const char* messageName, OrvKey* language, const char* text,
                                    unsigned long copy) {
    OrvMessage* m = find(messageName);
    if (!m) m = makeMessage(messageName);
    if (m) m->putMessage(language, text, copy);
}

const char* OrvMessageDatabase::getMessage(const char* messageName, OrvKey* language) {
    OrvMessage* m = find(messageName);
    return m ? m->getValue(language) : nullptr;
}

void OrvMessageDatabase::remove(OrvKey* language) {
    for (unsigned b = 0; b < size; b++)
        for (OrvAListItem* i = buckets[b] ? buckets[b]->first : nullptr; i; i = i->next)
            ((OrvMessage*)i->value)->remove(language);
}

void OrvMessageDatabase::add(OrvMessageDatabase* other) {
    if (!other || other == this) return;
    for (unsigned b = 0; b < other->size; b++)
        for (OrvAListItem* i = other->buckets[b] ? other->buckets[b]->first : nullptr; i;
             i = i->next) {
            OrvMessage* from = (OrvMessage*)i->value;
            OrvMessage* to = find(from->name);
            if (!to) to = makeMessage(from->name);
            for (OrvAListItem* v = from->values.first; v; v = v->next)
                to->putMessage((OrvKey*)v->key, (const char*)v->value, 1);
        }
}

void OrvMessageDatabase::clean() {
    for (unsigned b = 0; b < size; b++)
        for (OrvAListItem* i = buckets[b] ? buckets[b]->first : nullptr; i; i = i->next)
            delete (OrvMessage*)i->value;
    empty();
}

static int notADatabase() {
    return OrvError("## Not a valid Orvis message database file.\n");
}

int OrvMessageDatabase::read(std::istream& in) {
    char word[1024];
    double version = 0;
    in.width(sizeof word);
    if (!(in >> word) || strcmp(word, "//")) return notADatabase();
    in.width(sizeof word);
    if (!(in >> word) || strcmp(word, "OrvMessageDatabase")) return notADatabase();
    if (!(in >> version) || version > 1.0) return notADatabase();
    in.ignore(1 << 30, '\n');
    unsigned long count = 0;
    in.width(sizeof word);
    if (!(in >> word) || !(in >> count)) return notADatabase();
    for (unsigned long n = 0; n < count; n++) {
        const char* messageName = OrvReadString(in);
        if (!in) return notADatabase();
        OrvMessage* m = find(messageName);
        if (!m) m = makeMessage(messageName);
        if (!m->read(in)) return notADatabase();
    }
    return 1;
}

int OrvMessageDatabase::read(const char* file) {
    std::ifstream in(file ? file : "");
    if (!in)
        return OrvError("OrvMessageDatabase::read : Couldn't open file %s.\n", file ? file : "");
    return read(in);
}

int OrvMessageDatabase::write(std::ostream& out) {
    out << "// OrvMessageDatabase " << 1 << ' ' << OrvDate() << '\n';
    out << "Total " << cardinal << '\n';
    for (unsigned b = 0; b < size; b++)
        for (OrvAListItem* i = buckets[b] ? buckets[b]->first : nullptr; i; i = i->next)
            ((OrvMessage*)i->value)->write(out);
    out.flush();
    return out ? 1 : 0;
}

int OrvMessageDatabase::write(const char* file) {
    std::ofstream out(file ? file : "");
    if (!out)
        return OrvError("OrvMessageDatabase::write : Couldn't open file %s.\n", file ? file : "");
    return write(out);
}

// ---------------------------------------------------------------- the director's database

void OrvDirector::initDatabase() {
    const char* lang = getenv("ORVLANG");
    language = OrvGetKey(lang ? lang : "english", 1);
    const char* file = getenv("ORVDB");
    if (!file) file = "orv.dbm";
    database = new OrvMessageDatabase(11);
    // A missing file is no error: every message then shows as its name.
    const char* found = findInPath(file);
    if (found) database->read(found);
}

const char* OrvGetMessage(OrvDirector* director, const char* name) {
    if (!director || !director->database || !name) return name;
    const char* text = director->database->getMessage(name, director->language);
    return text ? text : name;
}
