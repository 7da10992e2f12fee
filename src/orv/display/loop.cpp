// The wait step: X events of every director, work procedures, select over
// the table of descriptors, due timers. Also timers, the input table, and
// the X error handlers.
#include "orv/director.h"

#include <X11/Xlib.h>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <sys/select.h>
#include <sys/time.h>

namespace {

const int kInputSlots = 20;

struct InputEntry {
    int fd;
    void (*onInput)(int, void*);
    void* data;
    void (*onClose)(int, void*);
};

InputEntry* inputTable = nullptr;
fd_set inputSet;
OrvList* runningTimers = nullptr;  // of OrvTimerRecord*

void ensureTables() {
    if (!inputTable) {
        inputTable = new InputEntry[kInputSlots];
        memset(inputTable, 0, sizeof(InputEntry) * kInputSlots);
        for (int i = 0; i < kInputSlots; i++) inputTable[i].fd = -1;
        FD_ZERO(&inputSet);
    }
    if (!runningTimers) runningTimers = new OrvList;
}

int countRunning() {
    int n = 0;
    for (OrvLink* l = runningTimers->first; l; l = l->next) n++;
    return n;
}

void fireDueTimers() {
    struct timeval now;
    gettimeofday(&now, nullptr);
    for (OrvLink* l = runningTimers->first; l;) {
        OrvLink* next = l->next;
        OrvTimerRecord* r = (OrvTimerRecord*)l->value;
        if (r->expirySeconds < now.tv_sec ||
            (r->expirySeconds == now.tv_sec && r->expiryMicroseconds <= now.tv_usec)) {
            OrvTimer* t = r->timer;
            t->suspend();
            t->activate();
            if (!t->oneShot) t->run(0, 0);
        }
        l = next;
    }
}

void waitStep(int wait) {
    ensureTables();
    OrvList* directors = OrvGetAllDirectors();
    if (!directors || !directors->first) {
        OrvPrint("WaitForEvents: No opened display...");
        return;
    }
    int busy = 0;
    for (OrvLink* l = directors->first; l;) {
        OrvLink* next = l->next;
        OrvDirector* d = (OrvDirector*)l->value;
        if (wait && XPending((Display*)d->display)) d->readAndDispatchEvents();
        for (OrvLink* w = d->workProcedures ? d->workProcedures->first : nullptr; w;) {
            OrvLink* wnext = w->next;
            OrvWorkProcedure* proc = (OrvWorkProcedure*)w->value;
            if (proc->enabled && proc->doWork(d)) busy = 1;
            w = wnext;
        }
        l = next;
    }
    fd_set set = inputSet;
    int running = countRunning();
    int n = 0;
    if (wait) {
        struct timeval tv = {0, 0};
        struct timeval* timeout = nullptr;
        if (busy)
            timeout = &tv;
        else if (running) {
            tv.tv_usec = 1000;
            timeout = &tv;
        }
        n = select(kInputSlots, &set, nullptr, nullptr, timeout);
    }
    int selectErrno = errno;
    if (running) fireDueTimers();
    if (!wait || n == 0) return;
    if (n > 0) {
        int handled = 0;
        for (int fd = 0; fd < kInputSlots && handled < n; fd++) {
            if (!FD_ISSET(fd, &set)) continue;
            handled++;
            if (inputTable[fd].onInput) inputTable[fd].onInput(fd, inputTable[fd].data);
        }
        return;
    }
    if (selectErrno != EBADF) return;
    for (int fd = 0; fd < kInputSlots; fd++) {
        if (!FD_ISSET(fd, &inputSet)) continue;
        fd_set one;
        FD_ZERO(&one);
        FD_SET(fd, &one);
        struct timeval zero = {0, 0};
        if (select(kInputSlots, &one, nullptr, nullptr, &zero) == -1 && errno == EBADF) {
            if (inputTable[fd].onClose) inputTable[fd].onClose(fd, inputTable[fd].data);
            OrvUnRegisterInput(fd);
        }
    }
}

}  // namespace

void OrvPlay() {
    for (;;) waitStep(1);
}

void OrvDirector::waitAndDispatchEvents() const {
    waitStep(1);
}

int OrvDispatchToTimers() {
    waitStep(0);
    return 1;
}

int OrvDispatchToDirector() {
    return OrvDispatchToTimers();
}

void OrvDispatchToWorkProcs() {
    OrvList* directors = OrvGetAllDirectors();
    for (OrvLink* l = directors ? directors->first : nullptr; l;) {
        OrvLink* next = l->next;
        OrvDirector* d = (OrvDirector*)l->value;
        for (OrvLink* w = d->workProcedures ? d->workProcedures->first : nullptr; w;) {
            OrvLink* wnext = w->next;
            OrvWorkProcedure* proc = (OrvWorkProcedure*)w->value;
            if (proc->enabled) proc->doWork(d);
            w = wnext;
        }
        l = next;
    }
}

void OrvRegisterInput(int fd, void (*onInput)(int, void*), void* data,
                      void (*onClose)(int, void*)) {
    ensureTables();
    if (fd < 0 || fd >= kInputSlots) return;
    inputTable[fd].fd = fd;
    inputTable[fd].onInput = onInput;
    inputTable[fd].data = data;
    inputTable[fd].onClose = onClose;
    FD_SET(fd, &inputSet);
}

void OrvUnRegisterInput(int fd) {
    ensureTables();
    if (fd < 0 || fd >= kInputSlots) return;
    memset(&inputTable[fd], 0, sizeof(InputEntry));
    inputTable[fd].fd = -1;
    FD_CLR(fd, &inputSet);
}

void OrvUSleep(unsigned long microseconds) {
    fd_set set;
    FD_ZERO(&set);
    FD_SET(0, &set);
    struct timeval tv;
    tv.tv_sec = microseconds / 1000000;
    tv.tv_usec = microseconds % 1000000;
    select(1, &set, nullptr, nullptr, &tv);
}

unsigned int OrvGetTime() {
    struct timeval tv;
    gettimeofday(&tv, nullptr);
    unsigned int us = (unsigned int)tv.tv_sec * 1000000u + (unsigned int)tv.tv_usec;
    return us / 1000;
}

// ----- timers -------------------------------------------------------------

OrvTimer::OrvTimer(OrvDirector* d, int seconds, int milliseconds)
    : director(d), record(nullptr), period((unsigned long)(seconds * 1000 + milliseconds)),
      oneShot(1) {
    if (director) director->add(this);
}

OrvTimer::~OrvTimer() {
    suspend();
    delete record;
    record = nullptr;
    if (director) director->remove(this);
}

void OrvTimer::setDirector(OrvDirector* d) {
    if (d == director) return;
    if (director) director->remove(this);
    director = d;
    if (director) director->add(this);
}

void OrvTimer::run(int seconds, int milliseconds) {
    if (seconds || milliseconds) period = (unsigned long)(seconds * 1000 + milliseconds);
    if (period == 0) {
        suspend();
        return;
    }
    struct timeval now;
    gettimeofday(&now, nullptr);
    ensureTables();
    if (!record) {
        record = new OrvTimerRecord;
        record->timer = this;
        record->active = 0;
    }
    OrvLink* l = runningTimers->first;
    while (l && l->value != record) l = l->next;
    if (!l) runningTimers->insert(record);
    record->expirySeconds = now.tv_sec + (long)(period / 1000);
    record->expiryMicroseconds = now.tv_usec + (long)(period % 1000) * 1000;
    while (record->expiryMicroseconds > 1000000) {
        record->expiryMicroseconds -= 1000000;
        record->expirySeconds++;
    }
    record->active = 1;
}

void OrvTimer::suspend() {
    if (!record) return;
    if (runningTimers) runningTimers->remove(record);
    record->active = 0;
}

// ----- X errors -----------------------------------------------------------

static int xErrorCount = 0;

int OrvXError(void* display, void* errorEvent) {
    Display* dpy = (Display*)display;
    XErrorEvent* e = (XErrorEvent*)errorEvent;
    char text[256], number[32], request[256], first[600], second[64];
    XGetErrorText(dpy, e->error_code, text, sizeof text);
    snprintf(number, sizeof number, "%d", e->request_code);
    XGetErrorDatabaseText(dpy, "XRequest", number, number, request, sizeof request);
    xErrorCount++;
    snprintf(first, sizeof first, "[%d] %s (%d) %s", xErrorCount, request, e->minor_code, text);
    snprintf(second, sizeof second, "(%d . %d)", (int)((e->resourceid >> 16) & 0xFFFF),
             (int)(e->resourceid & 0xFFFF));
    printf("X error %s %s\n", first, second);
    return 0;
}

int OrvXIOError(void* display) {
    char buffer[512];
    printf("## IO Error on X display %x\n", (unsigned)(unsigned long)display);
    XGetErrorText((Display*)display, errno, buffer, sizeof buffer);
    printf("## Error: %s\n", buffer);
    fflush(stdout);
    return 0;
}
