// The timeline: starts pending effects when the scene clock reaches them, keeps the
// running ones ordered by layer, and retires those whose own clock has left their span.
#pragma once

#include "runtime/EffectTimer.h"

class Effect;

class EffectMgr {
public:
    EffectMgr();
    ~EffectMgr();

    // Rewinds the scene clock to 0; call after every effect has been added.
    void initiate();
    // Deletes every effect still held, without calling their shutdown().
    void shutdown();

    // Takes ownership.
    bool addEffect(Effect* effect);
    // Hands the effect back to the caller (a running one gets shutdown()).
    bool removeEffect(Effect* effect);
    // Re-sorts a running effect whose layer has changed.
    bool updateEffectFromData(Effect* effect);

    // Advances the scene clock, gives the effect starting soonest within its preload lead a preload step,
    // starts the effects due, updates the running ones and retires the finished.
    void update(float seconds);
    void display();

    const EffectTimer& getTimer() const { return timer; }
    unsigned getPendingCount() const { return pendingCount; }
    unsigned getRunningCount() const { return runningCount; }

    // Visits every effect not started yet, the most recently added first. Before the first
    // update that is the whole schedule: tools read it to find the entries' spans.
    template <typename Visitor>
    void forEachPending(Visitor visit) const
    {
        for (const node_t* node = pending; node; node = node->next)
            visit(*node->effect);
    }

    // Visits the running effects in drawing order (ascending layer).
    template <typename Visitor>
    void forEachRunning(Visitor visit) const
    {
        for (const node_t* node = running; node; node = node->next)
            visit(*node->effect);
    }

private:
    struct node_t {
        Effect* effect;
        node_t* next;
        // Until the effect's preload says that nothing is left.
        bool preloading;
    };

    EffectMgr(const EffectMgr&) = delete;
    EffectMgr& operator=(const EffectMgr&) = delete;

    // One preload step for the pending effect starting soonest within its lead, not yet due.
    void preloadNext();
    void checkPendingList();
    void checkRunningList();
    void addToRunningList(node_t* node, bool skipInitiate);
    static node_t* unlink(node_t*& head, Effect* effect);
    static void deleteAll(node_t*& head);

    EffectTimer timer;
    unsigned pendingCount;
    node_t* pending;
    unsigned runningCount;
    node_t* running;
};
