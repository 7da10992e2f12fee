// The message database: texts shown to the user, looked up by a message name
// and a language, so that one application speaks several languages. Each
// director loads one at start-up (see OrvDirector::initDatabase and
// OrvGetMessage in director.h); the file is "orv.dbm" unless ORVDB says
// otherwise, and the language "english" unless ORVLANG does.
#ifndef ORV_MESSAGE_H
#define ORV_MESSAGE_H

#include "orv/base.h"

#include <istream>
#include <ostream>

// One message: its name and its text in each language it has.
class OrvMessage {
public:
    OrvMessage(const OrvMessage&) = delete;
    OrvMessage& operator=(const OrvMessage&) = delete;
    char* name;       // owned (malloc)
    OrvAList values;  // key: the language's OrvKey*; value: the owned (malloc) text

    explicit OrvMessage(const char* name);
    ~OrvMessage();

    // Sets the text of a language. With copy the text is duplicated; without,
    // the message takes it over (it must come from malloc). A text already
    // there is replaced and freed; a new language goes in at the head.
    void putMessage(OrvKey* language, const char* text, unsigned long copy);
    // The text of that language, or null.
    const char* getValue(OrvKey* language);
    // Takes that language out; 1 when it was there.
    int remove(OrvKey* language);
    // A new message of the same name and texts.
    OrvMessage* copy() const;
    // The entries after the name: their count, then each language and text as
    // quoted strings. 0 when the stream fails; what was read stays.
    int read(std::istream& in);
    // The name, a blank and the count on one line, then a line per entry.
    int write(std::ostream& out) const;
};

// Message name to OrvMessage*; the messages are owned and entered under their
// own names.
class OrvMessageDatabase : public OrvStringHashTable {
public:
    explicit OrvMessageDatabase(unsigned bucketCount = 11);
    ~OrvMessageDatabase();

    OrvMessage* find(const char* name);
    // A new, empty message of that name; one that was there goes first.
    OrvMessage* makeMessage(const char* name);
    // Deletes the message of that name; 1 when there was one.
    int removeMessage(const char* name);
    // Sets a text, making the message when it is missing.
    void putMessage(const char* name, OrvKey* language, const char* text, unsigned long copy);
    // The text of a message in a language, or null.
    const char* getMessage(const char* name, OrvKey* language);
    // Takes a language out of every message.
    void remove(OrvKey* language);
    // Merges another database: its languages are added, its texts replace ours.
    void add(OrvMessageDatabase* other);
    // Deletes every message.
    void clean();
    // Reads a database file on top of what is held. 0 with a report on a bad
    // file; the messages read until then stay.
    int read(const char* file);
    int read(std::istream& in);
    int write(const char* file);
    int write(std::ostream& out);
};

#endif
