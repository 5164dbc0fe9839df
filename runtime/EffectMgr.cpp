// The effect timeline.
#include "runtime/EffectMgr.h"

#include "runtime/Effect.h"

#include <malloc.h>

EffectMgr::EffectMgr() : timer(), pendingCount(0), pending(nullptr), runningCount(0), running(nullptr) {}

EffectMgr::~EffectMgr()
{
    if (pending || running)
        shutdown();
}

void EffectMgr::initiate()
{
    timer.set(0.0f, 0.0f);
}

void EffectMgr::shutdown()
{
    deleteAll(pending);
    deleteAll(running);
    pendingCount = 0;
    runningCount = 0;
}

void EffectMgr::deleteAll(node_t*& head)
{
    while (head) {
        node_t* node = head;
        head = node->next;
        delete node->effect;
        delete node;
    }
}

bool EffectMgr::addEffect(Effect* effect)
{
    if (!effect)
        return false;
    bool wasEmpty = pending == nullptr;
    pending = new node_t{effect, pending, true};
    ++pendingCount;

    // Gathers the latest start and the earliest end; the first effect's times are not
    // looked at. initiate() discards the result, so the scene clock begins at 0 anyway.
    float start = timer.start;
    float end = timer.end;
    if (!wasEmpty) {
        const EffectTimer& span = effect->getTimer();
        if (span.start > start)
            start = span.start;
        if (span.end < end)
            end = span.end;
    }
    timer.set(start, end);
    return true;
}

EffectMgr::node_t* EffectMgr::unlink(node_t*& head, Effect* effect)
{
    for (node_t** link = &head; *link; link = &(*link)->next) {
        node_t* node = *link;
        if (node->effect == effect) {
            *link = node->next;
            node->next = nullptr;
            return node;
        }
    }
    return nullptr;
}

bool EffectMgr::removeEffect(Effect* effect)
{
    if (!effect)
        return false;
    node_t* node = unlink(pending, effect);
    if (node) {
        delete node;
        --pendingCount;
        return true;
    }
    node = unlink(running, effect);
    if (!node)
        return false;
    effect->shutdown();
    delete node;
    --runningCount;
    return true;
}

bool EffectMgr::updateEffectFromData(Effect* effect)
{
    if (!effect || !running)
        return false;
    node_t* node = unlink(running, effect);
    if (!node)
        return false;
    addToRunningList(node, true);
    return true;
}

void EffectMgr::update(float seconds)
{
    timer.update(seconds);
    preloadNext();
    checkPendingList();
    for (node_t* node = running; node; node = node->next)
        node->effect->update(seconds);
    checkRunningList();
}

void EffectMgr::display()
{
    for (node_t* node = running; node; node = node->next)
        node->effect->display();
}

void EffectMgr::preloadNext()
{
    const float now = timer.current;
    node_t* soonest = nullptr;
    for (node_t* node = pending; node; node = node->next) {
        const float start = node->effect->getTimer().start;
        // Effects due now start this update and load in initiate.
        if (!node->preloading || !(now < start) || start - now > node->effect->getPreloadLead())
            continue;
        if (!soonest || start < soonest->effect->getTimer().start)
            soonest = node;
    }
    if (soonest)
        soonest->preloading = soonest->effect->preload();
}

void EffectMgr::checkPendingList()
{
    float now = timer.current;
    node_t** link = &pending;
    while (*link) {
        node_t* node = *link;
        const EffectTimer& span = node->effect->getTimer();
        // Both bounds inclusive; a NaN anywhere makes the effect never due.
        bool due = span.start <= now && now <= span.end;
        if (!due) {
            link = &node->next;
            continue;
        }
        *link = node->next;
        node->next = nullptr;
        --pendingCount;
        addToRunningList(node, false);
    }
}

void EffectMgr::checkRunningList()
{
    bool retired = false;
    node_t** link = &running;
    while (*link) {
        node_t* node = *link;
        if (!node->effect->isFinished()) {
            link = &node->next;
            continue;
        }
        *link = node->next;
        node->effect->shutdown();
        delete node->effect;
        delete node;
        --runningCount;
        retired = true;
    }
    // What an ended scene freed between blocks still in use stays in the heap, counted as resident, until it is
    // handed back to the system page by page.
    if (retired)
        malloc_trim(0);
}

void EffectMgr::addToRunningList(node_t* node, bool skipInitiate)
{
    if (!node || !node->effect)
        return;
    // Goes in front of running effects of its own layer: the newest of equals draws first.
    short layer = node->effect->getLayer();
    node_t** link = &running;
    while (*link && layer > (*link)->effect->getLayer())
        link = &(*link)->next;
    node->next = *link;
    *link = node;
    if (skipInitiate)
        return;
    node->effect->initiate();
    ++runningCount;
}
