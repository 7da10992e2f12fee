#include "orv/base.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace {

int v[10];
void* P(int i) {
    return &v[i];
}
void* K(uintptr_t k) {
    return (void*)k;
}

}  // namespace

TEST(OrvHashTable, PutAccumulatesRemoveTakesOneAtATime) {
    OrvHashTable table(5);
    EXPECT_EQ(table.put(K(10), P(0)) + table.put(K(10), P(1)) + table.put(K(15), P(2)), 3);
    // The first value stored; buckets are made on demand.
    EXPECT_EQ(std::make_tuple(table.cardinal, table.get(K(10)), table.buckets[0]->length(),
                              table.buckets[1]),
              std::make_tuple(3u, P(0), 3u, (OrvAList*)nullptr));
    // No bucket; a bucket, the key absent.
    EXPECT_EQ(std::vector<int>({table.remove(K(11)), table.remove(K(20)), (int)table.cardinal}),
              std::vector<int>({0, 1, 3}));
    EXPECT_EQ(table.remove(K(10)), 1);
    EXPECT_EQ(std::make_pair(table.cardinal, table.get(K(10))), std::make_pair(2u, P(1)));
    OrvAList* bucket = table.buckets[0];
    table.remove(K(10));
    table.remove(K(15));
    EXPECT_EQ(table.buckets[0], bucket);  // removal never frees a bucket
    table.put(K(10), P(0));
    table.empty();
    EXPECT_EQ(std::make_pair(table.cardinal, table.get(K(10))), std::make_pair(0u, (void*)nullptr));
}

TEST(OrvStringHashTable, KeysAreByteSumsAndEqualStringsOverwrite) {
    EXPECT_EQ(
        std::vector<unsigned>({0, 97, 195, 195, 256}),
        std::vector<unsigned>({OrvStringHashTable::makeKey(""), OrvStringHashTable::makeKey("a"),
                               OrvStringHashTable::makeKey("ab"), OrvStringHashTable::makeKey("ba"),
                               OrvStringHashTable::makeKey("\xff\x01")}))
        << "bytes count as unsigned";
    OrvStringHashTable table(100);
    char first[] = "name", second[] = "name";
    EXPECT_EQ(table.put(first, P(0)) + table.put(second, P(1)), 2);
    EXPECT_EQ(std::make_pair(table.cardinal, table.get("name")), std::make_pair(1u, P(1)));
    unsigned index = OrvStringHashTable::makeKey("name") % 100;
    EXPECT_EQ(table.buckets[index]->first->key, (void*)first);  // the first pointer stays
    // Anagrams collide but stay apart.
    table.put("mane", P(2));
    EXPECT_EQ(table.cardinal, 2u);
    EXPECT_EQ(std::vector<void*>({P(2), P(1), nullptr}),
              std::vector<void*>({table.get("mane"), table.get("name"), table.get("amen")}));
    // The table does not copy keys: it sees the caller's buffer change.
    first[0] = 'l';
    EXPECT_EQ(table.get("name"), nullptr);
}

TEST(OrvStringHashTable, RemoveKeyValueRebuildsTheBucketAndKeepsItsAccounting) {
    OrvStringHashTable table(10);
    EXPECT_EQ(table.remove("ab", P(0)), 0);  // no bucket
    // A bucket holding only the pair: 1, and the pair is still there.
    table.put("ab", P(0));
    EXPECT_EQ(table.remove("ab", P(0)), 1);
    EXPECT_EQ(table.get("ab"), P(0));
    // Nothing matches both key and value: all are kept, and the cardinal still drops by the number
    // kept.
    table.put("ba", P(1));  // 195 % 10, the same bucket
    unsigned index = OrvStringHashTable::makeKey("ab") % 10;
    EXPECT_EQ(table.remove("ab", P(1)), 1);
    EXPECT_EQ(std::make_pair(table.cardinal, table.buckets[index]->length()),
              std::make_pair(0u, 2u));
    // A match goes; the others are kept in order, and the cardinal drops by their number.
    OrvStringHashTable t(10);
    t.put("ab", P(0));
    t.put("ba", P(1));
    t.put("\x61\x61\x01", P(2));  // 97+97+1 = 195, the same bucket
    EXPECT_EQ(t.remove("ab", P(0)), 1);
    EXPECT_EQ(std::vector<void*>({nullptr, P(1), P(2)}),
              std::vector<void*>({t.get("ab"), t.get("ba"), t.get("\x61\x61\x01")}));
    EXPECT_EQ(std::make_pair(t.cardinal, std::string((const char*)t.buckets[index]->first->key)),
              std::make_pair(1u, std::string("ba")));
}

TEST(OrvKey, InternedByName) {
    EXPECT_EQ(OrvGetKey(nullptr, 1), nullptr);
    char name[] = "orv-test-key";
    OrvKey* key = OrvGetKey(name, 1);
    ASSERT_NE(key, nullptr);
    EXPECT_NE(key->name, name);  // the key holds its own copy
    EXPECT_EQ(OrvGetKey(std::string("orv-test-key").c_str(), 1), key);
    name[0] = 'x';  // the caller's buffer does not matter any more
    EXPECT_EQ(OrvGetKey("orv-test-key", 0), key);
    EXPECT_EQ(OrvGetKey("orv-test-kye", 0), nullptr);  // an anagram: same bucket, other key
    OrvKey* anagram = OrvGetKey("orv-test-kye", 1);
    delete key;  // forgets its name
    EXPECT_EQ(OrvGetKey("orv-test-key", 0), nullptr);
    EXPECT_EQ(OrvGetKey("orv-test-kye", 0), anagram);
    delete anagram;
}

TEST(OrvHashTable, ZeroBucketsTrap) {
    // A programming error, not a reported failure: the modulo by zero traps.
    EXPECT_DEATH(OrvHashTable(0).put(P(0), P(1)), "");
    EXPECT_DEATH(OrvStringHashTable(0).get("x"), "");
}
