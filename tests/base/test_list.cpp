#include "orv/base.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

int v[10];
void* P(int i) {
    return &v[i];
}

// Values of a list from head to tail, checking that the tail pointer is the
// last node reached.
std::vector<void*> values(const OrvList& list) {
    std::vector<void*> out;
    OrvLink* previous = nullptr;
    for (OrvLink* l = list.first; l; l = l->next) {
        out.push_back(l->value);
        previous = l;
    }
    EXPECT_EQ(previous, list.last);
    return out;
}

std::vector<void*> V(std::initializer_list<int> indices) {
    std::vector<void*> out;
    for (int i : indices) out.push_back(P(i));
    return out;
}

OrvList* makeList(std::initializer_list<int> indices) {
    OrvList* list = new OrvList;
    for (int i : indices) list->append(P(i));
    return list;
}

}  // namespace

TEST(OrvLink, IndexingLengthFindAndLast) {
    OrvLink* head = new OrvLink(P(0), new OrvLink(P(1), new OrvLink(P(2))));
    EXPECT_EQ(head->length(), 3u);
    EXPECT_EQ((*head)[0], P(0));
    EXPECT_EQ((*head)[2], P(2));
    EXPECT_EQ((*head)[3], nullptr);
    EXPECT_EQ((*head)[1000], nullptr);
    EXPECT_EQ(head->last()->value, P(2));
    EXPECT_EQ(head->find(P(1)), head->next);
    EXPECT_EQ(head->find(P(7)), nullptr);
    head->setValue(1, P(5));
    EXPECT_EQ((*head)[1], P(5));
    head->setValue(9, P(6));  // past the end: nothing changes
    EXPECT_EQ(head->length(), 3u);
    EXPECT_EQ(head->find(P(6)), nullptr);
    delete head;
}

TEST(OrvLink, RemoveReturnsNewHead) {
    OrvLink* head = new OrvLink(P(0), new OrvLink(P(1), new OrvLink(P(2), new OrvLink(P(1)))));
    OrvLink* second = head->next;
    // Removing the head hands back its successor.
    head = head->remove(P(0));
    EXPECT_EQ(head, second);
    EXPECT_EQ(head->length(), 3u);
    // Only the first of two equal values goes.
    head = head->remove(P(1));
    EXPECT_EQ(head->length(), 2u);
    EXPECT_EQ((*head)[0], P(2));
    EXPECT_EQ((*head)[1], P(1));
    // Absent value: unchanged.
    OrvLink* same = head->remove(P(9));
    EXPECT_EQ(same, head);
    EXPECT_EQ(head->length(), 2u);
    head = head->remove(P(1));
    EXPECT_EQ(head->length(), 1u);
    head = head->remove(P(2));
    EXPECT_EQ(head, nullptr);
}

TEST(OrvList, InsertAppendAndTail) {
    OrvList list;
    EXPECT_EQ(list.first, nullptr);
    EXPECT_EQ(list.last, nullptr);
    OrvLink* a = list.insert(P(1));
    EXPECT_EQ(list.first, a);
    EXPECT_EQ(list.last, a);  // first node in an empty list is also the tail
    list.append(P(2));
    list.insert(P(0));
    EXPECT_EQ(values(list), V({0, 1, 2}));
    EXPECT_EQ(list.length(), 3u);

    OrvLink* own = new OrvLink(P(3));
    EXPECT_EQ(list.append(own), own);
    EXPECT_EQ(list.last, own);
    OrvLink* front = new OrvLink(P(4));
    list.insert(front);
    EXPECT_EQ(values(list), V({4, 0, 1, 2, 3}));

    OrvList empty;
    OrvLink* only = new OrvLink(P(5));
    empty.append(only);
    EXPECT_EQ(empty.first, only);
    EXPECT_EQ(empty.last, only);
}

TEST(OrvList, RemoveKeepsTailRight) {
    OrvList* list = makeList({0, 1, 2});
    EXPECT_EQ(list->remove(P(2)), 1);
    EXPECT_EQ(list->last->value, P(1));  // tail moved to the predecessor
    EXPECT_EQ(values(*list), V({0, 1}));
    EXPECT_EQ(list->remove(P(7)), 0);
    EXPECT_EQ(values(*list), V({0, 1}));
    EXPECT_EQ(list->remove(P(0)), 1);
    EXPECT_EQ(list->first, list->last);
    EXPECT_EQ(list->remove(P(1)), 1);  // the only element: both ends empty
    EXPECT_EQ(list->first, nullptr);
    EXPECT_EQ(list->last, nullptr);
    EXPECT_EQ(list->remove(P(1)), 0);
    list->append(P(3));  // still usable after being emptied
    EXPECT_EQ(values(*list), V({3}));
    delete list;
}

TEST(OrvList, RemoveLinkDetachesUndeleted) {
    OrvList* list = makeList({0, 1, 2, 1});
    OrvLink* l = list->removeLink(P(1));
    ASSERT_NE(l, nullptr);
    EXPECT_EQ(l->value, P(1));
    EXPECT_EQ(l->next, nullptr);
    EXPECT_EQ(values(*list), V({0, 2, 1}));
    OrvLink* tail = list->removeLink(P(1));
    EXPECT_EQ(tail->next, nullptr);
    EXPECT_EQ(list->last->value, P(2));
    EXPECT_EQ(list->removeLink(P(9)), nullptr);
    // A detached node can go back into a list.
    list->append(l);
    list->insert(tail);
    EXPECT_EQ(values(*list), V({1, 0, 2, 1}));
    delete list;
}

TEST(OrvList, SwapExchangesValuesInPlace) {
    OrvList* list = makeList({0, 1, 2, 3});
    OrvLink* n0 = list->first;
    list->swap(P(0), P(3));
    EXPECT_EQ(values(*list), V({3, 1, 2, 0}));
    EXPECT_EQ(list->first, n0);  // values move, nodes stay
    list->swap(P(1), P(9));      // either absent: nothing
    list->swap(P(9), P(1));
    EXPECT_EQ(values(*list), V({3, 1, 2, 0}));
    delete list;
}

TEST(OrvList, PushAndPopMoveByOnePlace) {
    OrvList* list = makeList({0, 1, 2, 3});
    list->push(P(2));
    EXPECT_EQ(values(*list), V({0, 2, 1, 3}));
    list->push(P(2));
    EXPECT_EQ(values(*list), V({2, 0, 1, 3}));
    list->push(P(2));  // at the head: stays
    EXPECT_EQ(values(*list), V({2, 0, 1, 3}));
    list->push(P(9));  // absent: nothing
    EXPECT_EQ(values(*list), V({2, 0, 1, 3}));
    list->push(P(3));  // the tail moves too
    EXPECT_EQ(values(*list), V({2, 0, 3, 1}));

    list->pop(P(2));
    EXPECT_EQ(values(*list), V({0, 2, 3, 1}));
    list->pop(P(1));  // at the tail: stays
    EXPECT_EQ(values(*list), V({0, 2, 3, 1}));
    list->pop(P(3));
    EXPECT_EQ(values(*list), V({0, 2, 1, 3}));
    list->pop(P(9));
    EXPECT_EQ(values(*list), V({0, 2, 1, 3}));
    delete list;

    OrvList single;
    single.append(P(4));
    single.push(P(4));
    single.pop(P(4));
    EXPECT_EQ(values(single), V({4}));
    OrvList none;
    none.push(P(0));
    none.pop(P(0));
    EXPECT_EQ(none.first, nullptr);
}

TEST(OrvList, LongListsAreFreedWithoutRecursion) {
    // A million nodes would overflow the stack if each destructor called the
    // next one's; a run under the sanitizers also checks nothing leaks.
    const int n = 1000000;
    OrvList* list = new OrvList;
    for (int i = 0; i < n; i++) list->append(P(i % 10));
    EXPECT_EQ(list->length(), (unsigned)n);
    delete list;

    OrvAList* alist = new OrvAList;
    for (int i = 0; i < n; i++) alist->insert(P(i % 10), P(i % 10));
    EXPECT_EQ(alist->length(), (unsigned)n);
    delete alist;
}

TEST(OrvList, NodesComeFromTheGlobalPool) {
    OrvMemoryManager* pool = OrvGetMemoryManager();
    OrvLink* l = new OrvLink(P(0));
    delete l;
    // The node went onto the 16-byte free list and is the next block of its class.
    EXPECT_EQ(pool->freeList[1], (void*)l);
    void* again = pool->alloc(sizeof(OrvLink));
    EXPECT_EQ(again, (void*)l);
    pool->release(again, sizeof(OrvLink));

    OrvAListItem* item = new OrvAListItem(P(0), P(1));
    delete item;
    EXPECT_EQ(pool->freeList[2], (void*)item);  // 24 bytes: class 2
    OrvList* list = new OrvList;
    delete list;
    EXPECT_EQ(pool->freeList[1], (void*)list);
    OrvAList* alist = new OrvAList;
    delete alist;
    EXPECT_EQ(pool->freeList[0], (void*)alist);
}

TEST(OrvAList, InsertAppendGetFind) {
    OrvAList list;
    EXPECT_EQ(list.get(P(0)), nullptr);
    EXPECT_EQ(list.find(P(0)), 0);
    EXPECT_EQ(list.length(), 0u);
    list.append(P(1), P(5));
    list.insert(P(0), P(4));
    list.append(P(1), P(6));  // duplicate keys allowed
    list.append(P(2), nullptr);
    EXPECT_EQ(list.length(), 4u);
    EXPECT_EQ(list.first->key, P(0));
    EXPECT_EQ(list.get(P(1)), P(5));  // first match
    // A null value and an absent key look alike through get, not through find.
    EXPECT_EQ(list.get(P(2)), nullptr);
    EXPECT_EQ(list.find(P(2)), 1);
    EXPECT_EQ(list.find(P(3)), 0);
    EXPECT_EQ(list.first->find(P(1)), list.first->next);
    EXPECT_EQ(list.first->next->next->find(P(1)), list.first->next->next);
    EXPECT_EQ(list.first->next->next->find(P(0)), nullptr);
}

TEST(OrvAList, ReplaceAndRemoveFirstMatch) {
    OrvAList list;
    list.append(P(0), P(4));
    list.append(P(1), P(5));
    list.append(P(1), P(6));
    EXPECT_EQ(list.replace(P(1), P(7)), 1);
    EXPECT_EQ(list.first->next->value, P(7));
    EXPECT_EQ(list.first->next->next->value, P(6));
    EXPECT_EQ(list.replace(P(9), P(7)), 0);
    EXPECT_EQ(list.remove(P(1)), 1);
    EXPECT_EQ(list.length(), 2u);
    EXPECT_EQ(list.get(P(1)), P(6));
    EXPECT_EQ(list.remove(P(0)), 1);  // the head
    EXPECT_EQ(list.first->key, P(1));
    EXPECT_EQ(list.remove(P(9)), 0);
    EXPECT_EQ(list.remove(P(1)), 1);
    EXPECT_EQ(list.first, nullptr);
    EXPECT_EQ(list.remove(P(1)), 0);
}
