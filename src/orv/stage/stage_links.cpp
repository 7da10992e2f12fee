// The stage's tables of links: for every actor, the links that start there
// (under the stage's key "P_from") and those that end there ("P_to"), each an
// OrvLink chain with the newest link at the head.
#include "orv/layer.h"
#include "orv/link.h"
#include "orv/stage.h"
#include "link_chains.h"

OrvLink* OrvLinkChain(OrvActor* actor, OrvKey* key) {
    return actor ? (OrvLink*)actor->getUserProperty(key) : nullptr;
}

// Stores the chain's new head; an empty chain leaves no property behind.
static void storeChain(OrvActor* actor, OrvKey* key, OrvLink* head) {
    if (head)
        actor->setUserProperty(key, head);
    else
        actor->removeUserProperty(key);
}

void OrvLinkChainPush(OrvActor* actor, OrvKey* key, OrvActor* link) {
    if (actor) storeChain(actor, key, new OrvLink(link, OrvLinkChain(actor, key)));
}

void OrvLinkChainTake(OrvActor* actor, OrvKey* key, OrvActor* link) {
    if (!actor) return;
    OrvLink* head = OrvLinkChain(actor, key);
    for (OrvLink **at = &head, *l = head; l; at = &l->next, l = l->next) {
        if (l->value != link) continue;
        *at = l->next;
        l->next = nullptr;
        delete l;
        break;
    }
    storeChain(actor, key, head);
}

void OrvLinkChainFree(OrvLink* l) {
    while (l) {
        OrvLink* next = l->next;
        l->next = nullptr;
        delete l;
        l = next;
    }
}

void OrvStage::addLink(OrvLinkImage* link) {
    if (!link) return;
    OrvLinkChainPush(link->from, fromKey, link);
    OrvLinkChainPush(link->to, toKey, link);
}

void OrvStage::removeLink(OrvLinkImage* link) {
    if (!link) return;
    OrvLinkChainTake(link->from, fromKey, link);
    OrvLinkChainTake(link->to, toKey, link);
}

void OrvStage::removeLinks(OrvActor* actor, unsigned long deleteThem) {
    if (!actor) return;
    OrvLink* starting = OrvLinkChain(actor, fromKey);
    OrvLink* ending = OrvLinkChain(actor, toKey);
    actor->removeUserProperty(fromKey);
    actor->removeUserProperty(toKey);
    if (!starting && !ending) return;
    beginDrawing();
    for (int pass = 0; pass < 2; pass++) {
        for (OrvLink* l = pass ? ending : starting; l; l = l->next) {
            OrvLinkImage* link = (OrvLinkImage*)l->value;
            // A link from the actor to itself stands in both chains: once is enough.
            // Asked of the chain, not of the link, which pass 0 may have deleted.
            if (pass == 1 && starting && starting->find(link)) continue;
            removeLink(link);
            // The links that end on this link go with it, so none is left
            // pointing at a link that has left the stage.
            removeLinks(link, deleteThem);
            clean(link, deleteThem);
        }
    }
    OrvLinkChainFree(starting);
    OrvLinkChainFree(ending);
    flushDrawing(1);
}

unsigned int OrvStage::fromLinksCardinal(OrvActor* actor) const {
    OrvLink* l = OrvLinkChain(actor, fromKey);
    return l ? l->length() : 0;
}

unsigned int OrvStage::toLinksCardinal(OrvActor* actor) const {
    OrvLink* l = OrvLinkChain(actor, toKey);
    return l ? l->length() : 0;
}

OrvLinkImage* OrvStage::linkFrom(OrvActor* actor, unsigned int n) const {
    for (OrvLink* l = OrvLinkChain(actor, fromKey); l; l = l->next, n--)
        if (n == 0) return (OrvLinkImage*)l->value;
    return nullptr;
}

OrvLinkImage* OrvStage::linkTo(OrvActor* actor, unsigned int n) const {
    for (OrvLink* l = OrvLinkChain(actor, toKey); l; l = l->next, n--)
        if (n == 0) return (OrvLinkImage*)l->value;
    return nullptr;
}

void OrvStage::deleteLinks() {
    unsigned n = 0;
    for (OrvLink* l = layers.first; l; l = l->next) {
        OrvStageLayer* layer = (OrvStageLayer*)l->value;
        for (unsigned i = 0; i < layer->count; i++) n += isLink(layer->actors[i]) ? 1 : 0;
    }
    if (!n) return;
    OrvActor** links = new OrvActor*[n];
    n = 0;
    for (OrvLink* l = layers.first; l; l = l->next) {
        OrvStageLayer* layer = (OrvStageLayer*)l->value;
        for (unsigned i = 0; i < layer->count; i++)
            if (isLink(layer->actors[i])) links[n++] = layer->actors[i];
    }
    // Every link leaves the tables before any is deleted, since an end may be
    // another link of the same walk.
    for (unsigned i = 0; i < n; i++) removeLink((OrvLinkImage*)links[i]);
    for (unsigned i = 0; i < n; i++) clean(links[i], 1);
    delete[] links;
}
