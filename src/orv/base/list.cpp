// Singly linked lists of untyped pointers and association lists.
#include "orv/base.h"

// ---------------------------------------------------------------------------
// OrvLink

OrvLink::~OrvLink() {
    // Detach each follower before deleting it, so that a long list is freed
    // in a loop rather than by one nested destructor call per node.
    OrvLink* l = next;
    next = nullptr;
    while (l) {
        OrvLink* following = l->next;
        l->next = nullptr;
        delete l;
        l = following;
    }
}

OrvLink* OrvLink::last() {
    OrvLink* l = this;
    while (l->next) l = l->next;
    return l;
}

void* OrvLink::operator[](unsigned index) {
    OrvLink* l = this;
    while (l && index--) l = l->next;
    return l ? l->value : nullptr;
}

void OrvLink::setValue(unsigned index, void* v) {
    OrvLink* l = this;
    while (l && index--) l = l->next;
    if (l) l->value = v;
}

unsigned OrvLink::length() const {
    unsigned n = 0;
    for (const OrvLink* l = this; l; l = l->next) n++;
    return n;
}

OrvLink* OrvLink::find(const void* v) {
    for (OrvLink* l = this; l; l = l->next)
        if (l->value == v) return l;
    return nullptr;
}

OrvLink* OrvLink::remove(void* v) {
    if (value == v) {
        OrvLink* head = next;
        next = nullptr;
        delete this;
        return head;
    }
    for (OrvLink* previous = this; previous->next; previous = previous->next) {
        OrvLink* l = previous->next;
        if (l->value == v) {
            previous->next = l->next;
            l->next = nullptr;
            delete l;
            break;
        }
    }
    return this;
}

// ---------------------------------------------------------------------------
// OrvList

OrvList::~OrvList() {
    delete first;
}

OrvLink* OrvList::insert(OrvLink* link) {
    link->next = first;
    first = link;
    if (!last) last = link;
    return link;
}

OrvLink* OrvList::append(OrvLink* link) {
    link->next = nullptr;
    if (last)
        last->next = link;
    else
        first = link;
    last = link;
    return link;
}

// A node is null only when the pool cannot get memory; the list stays as it was.
OrvLink* OrvList::insert(void* value) {
    OrvLink* link = new OrvLink(value);
    return link ? insert(link) : nullptr;
}

OrvLink* OrvList::append(void* value) {
    OrvLink* link = new OrvLink(value);
    return link ? append(link) : nullptr;
}

OrvLink* OrvList::removeLink(void* value) {
    OrvLink* previous = nullptr;
    for (OrvLink* l = first; l; previous = l, l = l->next) {
        if (l->value != value) continue;
        if (previous)
            previous->next = l->next;
        else
            first = l->next;
        if (last == l) last = previous;
        l->next = nullptr;
        return l;
    }
    return nullptr;
}

int OrvList::remove(void* value) {
    OrvLink* l = removeLink(value);
    if (!l) return 0;
    delete l;
    return 1;
}

void OrvList::swap(void* a, void* b) {
    OrvLink* la = find(a);
    OrvLink* lb = find(b);
    if (!la || !lb) return;
    la->value = b;
    lb->value = a;
}

void OrvList::push(void* value) {
    if (!first || first == last) return;
    OrvLink* previous = first;
    for (OrvLink* l = first->next; l; previous = l, l = l->next) {
        if (l->value == value) {
            l->value = previous->value;
            previous->value = value;
            return;
        }
    }
}

void OrvList::pop(void* value) {
    OrvLink* l = find(value);
    if (!l || !l->next) return;
    l->value = l->next->value;
    l->next->value = value;
}

// ---------------------------------------------------------------------------
// OrvAListItem and OrvAList

OrvAListItem::~OrvAListItem() {
    OrvAListItem* item = next;
    next = nullptr;
    while (item) {
        OrvAListItem* following = item->next;
        item->next = nullptr;
        delete item;
        item = following;
    }
}

OrvAListItem* OrvAListItem::find(const void* k) {
    for (OrvAListItem* item = this; item; item = item->next)
        if (item->key == k) return item;
    return nullptr;
}

OrvAList::~OrvAList() {
    delete first;
}

void OrvAList::insert(const void* key, void* value) {
    OrvAListItem* item = new OrvAListItem(key, value, first);
    if (item) first = item;
}

void OrvAList::append(const void* key, void* value) {
    OrvAListItem* item = new OrvAListItem(key, value);
    if (!item) return;
    if (!first) {
        first = item;
        return;
    }
    OrvAListItem* tail = first;
    while (tail->next) tail = tail->next;
    tail->next = item;
}

int OrvAList::replace(const void* key, void* value) {
    OrvAListItem* item = first ? first->find(key) : nullptr;
    if (!item) return 0;
    item->value = value;
    return 1;
}

int OrvAList::remove(const void* key) {
    OrvAListItem* previous = nullptr;
    for (OrvAListItem* item = first; item; previous = item, item = item->next) {
        if (item->key != key) continue;
        if (previous)
            previous->next = item->next;
        else
            first = item->next;
        item->next = nullptr;
        delete item;
        return 1;
    }
    return 0;
}

void* OrvAList::get(const void* key) {
    OrvAListItem* item = first ? first->find(key) : nullptr;
    return item ? item->value : nullptr;
}

int OrvAList::find(const void* key) {
    return first && first->find(key) ? 1 : 0;
}

unsigned OrvAList::length() const {
    unsigned n = 0;
    for (const OrvAListItem* item = first; item; item = item->next) n++;
    return n;
}
