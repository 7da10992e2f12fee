#include "orv_fixtures.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>

ORV_DEFINE_CLASS_INIT(TestBox, "OrvActor", TestBox::read)

bool PrivateXServer::start() {
    int fds[2];
    if (pipe(fds) != 0) return false;
    pid = fork();
    if (pid < 0) return false;
    if (pid == 0) {
        close(fds[0]);
        int devnull = open("/dev/null", O_RDWR);
        dup2(devnull, 1);
        dup2(devnull, 2);
        char fd[16];
        snprintf(fd, sizeof fd, "%d", fds[1]);
        execlp("Xvfb", "Xvfb", "-displayfd", fd, "-screen", "0", "1280x1024x24", "-nolisten", "tcp",
               "-noreset", "-fp",
               "/usr/share/fonts/X11/misc,/usr/share/fonts/X11/75dpi/:unscaled,"
               "/usr/share/fonts/X11/100dpi/:unscaled,built-ins",
               (char*)nullptr);
        _exit(127);
    }
    close(fds[1]);
    // The server writes its display number once it accepts clients.
    std::string number;
    struct pollfd p = {fds[0], POLLIN, 0};
    char c;
    while (poll(&p, 1, 10000) > 0 && read(fds[0], &c, 1) == 1 && c != '\n') number += c;
    close(fds[0]);
    if (number.empty()) {
        stop();
        return false;
    }
    name = ":" + number;
    return true;
}

void PrivateXServer::stop() {
    if (pid > 0) {
        kill(pid, SIGTERM);
        waitpid(pid, nullptr, 0);
    }
    pid = -1;
}

// ---------------------------------------------------------------------------

void ViewLog::listen(OrvView* view) {
    view->onInput([](OrvView*, const OrvEvent& e, void* l) { ((ViewLog*)l)->input.push_back(e); },
                  this);
    view->onExpose(
        [](OrvView*, const Orv2dRegion* r, void* l) {
            std::vector<Orv2dRect> rects;
            for (unsigned short i = 0; r && i < r->count; i++) rects.push_back(r->rectangle(i));
            ((ViewLog*)l)->exposes.push_back(rects);
        },
        this);
    view->onResize(
        [](OrvView*, const Orv2dRect& o, const Orv2dRect& n, void* l) {
            ((ViewLog*)l)->resizes.push_back({o, n});
        },
        this);
    view->onQuit([](OrvView*, void* l) { ((ViewLog*)l)->quits++; }, this);
    view->onDestroy([](OrvView*, void* l) { ((ViewLog*)l)->destroys++; }, this);
}
