// Decoded input events, the wait step, timers, work procedures and other
// file descriptors. One thread runs all of it; X and POSIX handles appear
// here as void* or plain integers so that this header stays free of Xlib.
#ifndef ORV_EVENT_H
#define ORV_EVENT_H

class OrvDirector;
class OrvView;
class Orv2dRegion;

enum OrvEventType {
    OrvKeyUp = 1,
    OrvKeyDown = 2,
    OrvButtonDown = 3,
    OrvButtonUp = 4,
    OrvEnterWindow = 5,
    OrvLeaveWindow = 6,
    OrvPointerMoved = 7,
    OrvButtonDragged = 8,
    OrvExpose = 9,
    OrvConfigure = 10,
    OrvFocusIn = 11,
    OrvFocusOut = 12,
    OrvDestroyed = 13,
    OrvClientMessage = 14,
    OrvDoubleClick = 15,
    OrvEnterActor = 16,
    OrvLeaveActor = 17,
    OrvMapped = 18,
    OrvUnmapped = 19,
    OrvVisibility = 20,
    OrvQuit = 21,
    OrvIgnored = 22
};

// Bits of OrvEvent::modifiers (and of OrvDirector::queryPointer).
enum {
    OrvButton1Modifier = 0x0001,
    OrvButton2Modifier = 0x0002,
    OrvButton3Modifier = 0x0004,
    OrvButton4Modifier = 0x0008,
    OrvShiftModifier = 0x0100,
    OrvControlModifier = 0x0200,
    OrvMod4Modifier = 0x0400,
    OrvMod1Modifier = 0x0800,
    OrvMod3Modifier = 0x1000,
    OrvLockModifier = 0x2000,
    OrvMod2Modifier = 0x4000
};

// Codes of the non-printing keys in OrvEvent::key.
enum {
    OrvKeyF0 = 512,
    OrvKeyUpArrow = 550,
    OrvKeyLeftArrow = 551,
    OrvKeyDownArrow = 552,
    OrvKeyRightArrow = 553,
    OrvKeyHome = 554,
    OrvKeyPrior = 556,
    OrvKeyNext = 557,
    OrvKeyInsert = 558,
    OrvKeyDelete = 127
};

struct OrvEvent {
    long globalX;
    long globalY;
    long x;
    long y;
    long width;
    long height;
    OrvEventType type;
    unsigned short modifiers;
    unsigned short count;
    union {
        unsigned short button;  // 1, 2, 4 or 8
        unsigned short key;
        char data[20];  // a client message, zero-ended
    };
    unsigned long time;
    unsigned long window;
};

// Maps an X state mask to the modifiers bits above.
unsigned short OrvMapModifiers(unsigned int xstate);

// ----- timers -------------------------------------------------------------

struct OrvTimerRecord {
    long expirySeconds;
    long expiryMicroseconds;
    class OrvTimer* timer;
    int active;
};

class OrvTimer {
public:
    OrvDirector* director;
    OrvTimerRecord* record;
    unsigned long period;  // milliseconds
    int oneShot;

    OrvTimer(OrvDirector* director, int seconds, int milliseconds);
    virtual ~OrvTimer();
    virtual void run(int seconds = 0, int milliseconds = 0);
    virtual void suspend();
    virtual void activate() = 0;
    // Moves the timer's registration to another director (or to none).
    void setDirector(OrvDirector* director);

    int isRunning() const { return record && record->active; }
};

// ----- work procedures ----------------------------------------------------

class OrvWorkProcedure {
public:
    int count;
    int enabled;

    OrvWorkProcedure() : count(0), enabled(1) {}
    virtual ~OrvWorkProcedure() {}
    // Non-zero when it did some work; the wait step then polls instead of blocking.
    virtual int doWork(OrvDirector* director) = 0;
};

// ----- the loop -----------------------------------------------------------

[[noreturn]] void OrvPlay();
int OrvDispatchEvent(void* xevent);
int OrvInstanceDispatchEvent(const OrvDirector* director, void* xevent);
void OrvInstanceDecodeEvent(const OrvDirector* director, void* xevent, OrvEvent& event);
void OrvViewManageEvent(OrvView* view, void* xevent);
void OrvCompressExposures(OrvView* view, Orv2dRegion& region, const OrvEvent& event, void* xevent);
int OrvDispatchToTimers();
int OrvDispatchToDirector();
void OrvDispatchToWorkProcs();

void OrvRegisterInput(int fd, void (*onInput)(int, void*), void* data, void (*onClose)(int, void*));
void OrvUnRegisterInput(int fd);

void OrvUSleep(unsigned long microseconds);
unsigned int OrvGetTime();

unsigned long OrvFastSkipMotionEvents();
void OrvFastSkipMotionEvents(unsigned long on);
int OrvFastSkipMotionEvents(OrvView* view, OrvEvent& event);
int OrvSkipMotionEvents(OrvView* view, OrvEvent& event, void* xevent);
// Compresses drags when set (1 at start); the name is kept as it is for behaviour compatibility.
extern int orv_compress_drag_events;

// X error handlers (Display*, XErrorEvent*), installed by every director.
int OrvXError(void* display, void* errorEvent);
int OrvXIOError(void* display);

#endif
