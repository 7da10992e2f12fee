// Balloons: the small label window that appears when the pointer has rested on
// an actor with balloon data, and goes at the next event. The director runs
// them (runBalloonTimer, mapBalloon, showBalloon, suspendBalloonTimer).
#ifndef ORV_BALLOON_H
#define ORV_BALLOON_H

#include "orv/event.h"
#include "orv/relief.h"
#include "orv/stage.h"

class OrvTheater;
class OrvScene;

// The director's one-shot timer: waiting, it looks for the actor under the
// last point seen and shows its balloon; shown, it hides the balloon.
class OrvBalloonTimer : public OrvTimer {
public:
    OrvStage* stage;      // where the last event was; null when there is none
    OrvTheater* theater;  // or the theater and the scene of that event
    OrvScene* scene;
    OrvEvent event;       // that event, whole
    unsigned long shown;  // 0 waiting, 1 a balloon is up

    explicit OrvBalloonTimer(OrvDirector* director);
    ~OrvBalloonTimer() override;
    // Shows the balloon of the actor under the point, or hides the one shown.
    void activate() override;
    // Forgets the stage (or theater and scene), the event and the state.
    void clear();
};

// The balloon's window: an undecorated stage of one relief label.
class OrvBalloonStage : public OrvStage {
public:
    OrvReliefLabel* label;  // in this stage
    OrvStage* owner;        // the stage of the actor shown; it gets the balloon's events

    explicit OrvBalloonStage(OrvDirector* director);
    ~OrvBalloonStage() override;

    // Sets the label and sizes the window to it, 4 pixels larger each way.
    virtual void setBalloon(const char* text, OrvBitmap* picture, OrvPosition position,
                            unsigned short space);
    // Like a menu, it stands above the windows.
    int isAMenu() const override { return 1; }
    // Hands the events to the owner's stage, and goes on a press.
    void handleInput(const OrvEvent& event) override;
    // The label's size: what the window is asked to be.
    Orv2dRect balloonSize() const;
};

#endif
