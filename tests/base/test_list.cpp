#include "orv/base.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

int v[10];
void* P(int i) {
    return &v[i];
}

// The indices of a list's values from head to tail; -1 marks a tail pointer that is not the last
// node reached.
std::vector<int> values(const OrvList& list) {
    std::vector<int> out;
    OrvLink* previous = nullptr;
    for (OrvLink* l = list.first; l; l = l->next) {
        out.push_back((int)((int*)l->value - v));
        previous = l;
    }
    if (previous != list.last) out.push_back(-1);
    return out;
}

OrvList* makeList(std::initializer_list<int> indices) {
    OrvList* list = new OrvList;
    for (int i : indices) list->append(P(i));
    return list;
}

}  // namespace

TEST(OrvLink, IndexingFindAndRemoveFromAChain) {
    OrvLink* head = new OrvLink(P(0), new OrvLink(P(1), new OrvLink(P(2), new OrvLink(P(1)))));
    EXPECT_EQ(std::vector<void*>({P(2), nullptr}), std::vector<void*>({(*head)[2], (*head)[4]}));
    EXPECT_EQ(head->find(P(1)), head->next);
    // Removing the head hands back its successor; only the first of two equal values goes.
    OrvLink* second = head->next;
    EXPECT_EQ(head = head->remove(P(0)), second);
    head = head->remove(P(1));
    EXPECT_EQ(std::vector<void*>({P(2), P(1)}), std::vector<void*>({(*head)[0], (*head)[1]}));
    EXPECT_EQ(head->remove(P(9)), head);
    delete head;
}

TEST(OrvList, InsertAppendRemoveKeepTheTailRight) {
    OrvList list;
    EXPECT_EQ(list.last, list.insert(P(1)));  // the first node in an empty list is also the tail
    list.append(P(2));
    list.insert(P(0));
    list.append(new OrvLink(P(3)));
    list.insert(new OrvLink(P(4)));
    EXPECT_EQ(values(list), std::vector<int>({4, 0, 1, 2, 3}));
    EXPECT_EQ(std::make_pair(list.length(), OrvList().length()), std::make_pair(5u, 0u));
    OrvList* l = makeList({0, 1, 2});
    EXPECT_EQ(l->remove(P(2)) + l->remove(P(7)), 1);  // the tail moves to the predecessor
    EXPECT_EQ(values(*l), std::vector<int>({0, 1}));
    EXPECT_EQ(l->remove(P(0)) + l->remove(P(1)), 2);  // the only element: both ends empty
    EXPECT_EQ(std::vector<OrvLink*>({nullptr, nullptr}),
              std::vector<OrvLink*>({l->first, l->last}));
    l->append(P(3));  // still usable after being emptied
    EXPECT_EQ(values(*l), std::vector<int>({3}));
    delete l;
    // removeLink detaches the first match undeleted; it can go back into a list.
    OrvList* m = makeList({0, 1, 2, 1});
    OrvLink* one = m->removeLink(P(1));
    OrvLink* tail = m->removeLink(P(1));
    EXPECT_EQ(std::vector<OrvLink*>({nullptr, nullptr}),
              std::vector<OrvLink*>({one->next, tail->next}));
    EXPECT_EQ(values(*m), std::vector<int>({0, 2}));
    m->append(one);
    m->insert(tail);
    EXPECT_EQ(values(*m), std::vector<int>({1, 0, 2, 1}));
    delete m;
}

TEST(OrvList, SwapPushAndPop) {
    OrvList* list = makeList({0, 1, 2, 3});
    OrvLink* n0 = list->first;
    list->swap(P(0), P(3));
    list->swap(P(1), P(9));  // either absent: nothing
    EXPECT_EQ(values(*list), std::vector<int>({3, 1, 2, 0}));
    EXPECT_EQ(list->first, n0);  // values move, nodes stay
    delete list;
    // push and pop move by one place; at the end, or absent, nothing; the tail moves too.
    list = makeList({0, 1, 2, 3});
    const struct {
        bool push;
        int value;
        std::vector<int> after;
    } steps[] = {{true, 2, {0, 2, 1, 3}},  {true, 2, {2, 0, 1, 3}},  {true, 2, {2, 0, 1, 3}},
                 {true, 9, {2, 0, 1, 3}},  {true, 3, {2, 0, 3, 1}},  {false, 2, {0, 2, 3, 1}},
                 {false, 1, {0, 2, 3, 1}}, {false, 3, {0, 2, 1, 3}}, {false, 9, {0, 2, 1, 3}}};
    for (const auto& s : steps) {
        if (s.push)
            list->push(P(s.value));
        else
            list->pop(P(s.value));
        EXPECT_EQ(values(*list), s.after) << (s.push ? "push " : "pop ") << s.value;
    }
    delete list;
}

TEST(OrvList, LongListsAreFreedWithoutRecursionAndNodesComeFromThePool) {
    // A million nodes would overflow the stack if each destructor called the next one's; a run
    // under the sanitizers also checks nothing leaks.
    OrvList* list = new OrvList;
    OrvAList* alist = new OrvAList;
    for (int i = 0; i < 1000000; i++) {
        list->append(P(i % 10));
        alist->insert(P(i % 10), P(i % 10));
    }
    delete list;
    delete alist;
    // A freed node is the next block of its class in the global pool: 16 bytes class 1, 24
    // class 2.
    OrvMemoryManager* pool = OrvGetMemoryManager();
    OrvLink* l = new OrvLink(P(0));
    delete l;
    OrvAListItem* item = new OrvAListItem(P(0), P(1));
    delete item;
    EXPECT_EQ(std::make_pair(pool->freeList[1], pool->freeList[2]),
              std::make_pair((void*)l, (void*)item));
}

TEST(OrvAList, FindGetReplaceAndRemoveTheFirstMatch) {
    OrvAList list;
    list.append(P(1), P(5));
    list.insert(P(0), P(4));
    list.append(P(1), P(6));  // duplicate keys allowed
    list.append(P(2), nullptr);
    // The first match; a null value and an absent key look alike through get, not through find.
    EXPECT_EQ(std::make_tuple(list.first->key, list.get(P(1)), list.get(P(2))),
              std::make_tuple(P(0), P(5), (void*)nullptr));
    EXPECT_EQ(std::vector<int>({1, 0}), std::vector<int>({list.find(P(2)), list.find(P(3))}));
    EXPECT_EQ(list.replace(P(1), P(7)) + list.replace(P(9), P(7)), 1);
    EXPECT_EQ(std::vector<void*>({P(7), P(6)}),
              std::vector<void*>({list.first->next->value, list.first->next->next->value}));
    EXPECT_EQ(list.remove(P(1)), 1);
    EXPECT_EQ(list.get(P(1)), P(6));
    EXPECT_EQ(list.remove(P(0)) + list.remove(P(9)), 1);  // the head, then nothing
    EXPECT_EQ(list.first->key, P(1));
}
