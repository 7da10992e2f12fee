#include "orv/base.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

int v[10];
void* P(int i) {
    return &v[i];
}

unsigned bucketLength(OrvAList** buckets, unsigned index) {
    return buckets[index] ? buckets[index]->length() : 0;
}

}  // namespace

TEST(OrvHashTable, PutAccumulatesEqualKeys) {
    OrvHashTable table(7);
    EXPECT_EQ(table.size, 7u);
    EXPECT_EQ(table.cardinal, 0u);
    for (unsigned i = 0; i < 7; i++)
        EXPECT_EQ(table.buckets[i], nullptr);  // buckets are made on demand
    void* key = (void*)(uintptr_t)15;          // bucket 15 % 7 = 1
    EXPECT_EQ(table.put(key, P(0)), 1);
    EXPECT_EQ(table.put(key, P(1)), 1);
    EXPECT_EQ(table.cardinal, 2u);
    EXPECT_EQ(table.get(key), P(0));  // the first value stored
    EXPECT_EQ(bucketLength(table.buckets, 1), 2u);
    EXPECT_EQ(table.buckets[0], nullptr);
    EXPECT_EQ(table.get((void*)(uintptr_t)8), nullptr);  // same bucket, other key
    EXPECT_EQ(table.get((void*)(uintptr_t)9), nullptr);  // bucket never made
}

TEST(OrvHashTable, RemoveAndEmpty) {
    OrvHashTable table(5);
    void* a = (void*)(uintptr_t)10;  // bucket 0
    void* b = (void*)(uintptr_t)15;  // bucket 0
    table.put(a, P(0));
    table.put(a, P(1));
    table.put(b, P(2));
    EXPECT_EQ(table.remove((void*)(uintptr_t)11), 0);  // bucket 1 does not exist
    EXPECT_EQ(table.remove((void*)(uintptr_t)20), 1);  // bucket exists, key absent
    EXPECT_EQ(table.cardinal, 3u);
    EXPECT_EQ(table.remove(a), 1);  // one entry at a time
    EXPECT_EQ(table.cardinal, 2u);
    EXPECT_EQ(table.get(a), P(1));
    OrvAList* bucket = table.buckets[0];
    EXPECT_EQ(table.remove(a), 1);
    EXPECT_EQ(table.remove(b), 1);
    EXPECT_EQ(table.cardinal, 0u);
    EXPECT_EQ(table.buckets[0], bucket);  // removal never frees a bucket

    table.put(a, P(0));
    table.put((void*)(uintptr_t)3, P(3));
    table.empty();
    EXPECT_EQ(table.cardinal, 0u);
    EXPECT_EQ(table.buckets[0], bucket);
    ASSERT_NE(table.buckets[3], nullptr);
    EXPECT_EQ(table.buckets[3]->first, nullptr);
    EXPECT_EQ(table.get(a), nullptr);
    table.put(a, P(4));
    EXPECT_EQ(table.get(a), P(4));
}

TEST(OrvStringHashTable, MakeKeyIsByteSum) {
    EXPECT_EQ(OrvStringHashTable::makeKey(""), 0u);
    EXPECT_EQ(OrvStringHashTable::makeKey("a"), 97u);
    EXPECT_EQ(OrvStringHashTable::makeKey("ab"), 97u + 98u);
    EXPECT_EQ(OrvStringHashTable::makeKey("ba"), OrvStringHashTable::makeKey("ab"));
    // Bytes count as unsigned.
    EXPECT_EQ(OrvStringHashTable::makeKey("\xff\x01"), 256u);
}

TEST(OrvStringHashTable, PutOverwritesEqualStrings) {
    OrvStringHashTable table(100);
    char first[] = "name";
    char second[] = "name";
    EXPECT_EQ(table.put(first, P(0)), 1);
    EXPECT_EQ(table.put(second, P(1)), 1);
    EXPECT_EQ(table.cardinal, 1u);
    EXPECT_EQ(table.get("name"), P(1));
    unsigned index = OrvStringHashTable::makeKey("name") % 100;
    ASSERT_NE(table.buckets[index], nullptr);
    EXPECT_EQ(table.buckets[index]->first->key, (void*)first);  // the first pointer stays
    EXPECT_EQ(table.buckets[index]->length(), 1u);

    // Anagrams collide but stay apart.
    EXPECT_EQ(table.put("mane", P(2)), 1);
    EXPECT_EQ(table.cardinal, 2u);
    EXPECT_EQ(table.buckets[index]->length(), 2u);
    EXPECT_EQ(table.get("mane"), P(2));
    EXPECT_EQ(table.get("name"), P(1));
    EXPECT_EQ(table.get("amen"), nullptr);
    EXPECT_EQ(table.get("other"), nullptr);

    // The table does not copy keys: it sees the caller's buffer change.
    first[0] = 'l';
    EXPECT_EQ(table.get("name"), nullptr);
    EXPECT_EQ(table.get("lame"), nullptr);  // other bucket
}

TEST(OrvStringHashTable, RemoveEveryEqualEntry) {
    OrvStringHashTable table(10);
    EXPECT_EQ(table.remove("abc"), 0);  // bucket does not exist
    table.put("abc", P(0));
    table.put("cab", P(1));
    table.put("bca", P(2));
    unsigned index = OrvStringHashTable::makeKey("abc") % 10;
    EXPECT_EQ(table.remove("bac"), 1);  // bucket exists, key absent
    EXPECT_EQ(table.cardinal, 3u);
    std::string copy = "cab";  // another pointer to an equal string
    EXPECT_EQ(table.remove(copy.c_str()), 1);
    EXPECT_EQ(table.cardinal, 2u);
    EXPECT_EQ(table.get("cab"), nullptr);
    EXPECT_EQ(table.get("abc"), P(0));
    EXPECT_EQ(table.get("bca"), P(2));
    EXPECT_EQ(table.buckets[index]->length(), 2u);

    table.empty();
    EXPECT_EQ(table.cardinal, 0u);
    EXPECT_EQ(table.get("abc"), nullptr);
    EXPECT_NE(table.buckets[index], nullptr);
}

TEST(OrvStringHashTable, RemoveKeyValueKeepsItsAccounting) {
    OrvStringHashTable table(10);
    EXPECT_EQ(table.remove("ab", P(0)), 0);  // no bucket

    // A bucket holding only the pair: 1, and the pair is still there.
    table.put("ab", P(0));
    EXPECT_EQ(table.remove("ab", P(0)), 1);
    EXPECT_EQ(table.get("ab"), P(0));
    EXPECT_EQ(table.cardinal, 1u);

    // Nothing matches both key and value: all are kept, and the cardinal
    // still drops by the number kept.
    table.put("ba", P(1));  // 195 % 10, the same bucket
    unsigned index = OrvStringHashTable::makeKey("ab") % 10;
    ASSERT_EQ(table.buckets[index]->length(), 2u);
    EXPECT_EQ(table.cardinal, 2u);
    EXPECT_EQ(table.remove("ab", P(1)), 1);
    EXPECT_EQ(table.cardinal, 0u);
    EXPECT_EQ(table.get("ab"), P(0));
    EXPECT_EQ(table.get("ba"), P(1));
    EXPECT_EQ(table.buckets[index]->length(), 2u);
}

TEST(OrvStringHashTable, RemoveKeyValueRebuildsTheBucket) {
    OrvStringHashTable table(10);
    char ab[] = "ab";
    table.put(ab, P(0));
    table.put("ba", P(1));
    table.put("\x61\x61\x01", P(2));  // 97+97+1 = 195, same bucket as "ab"
    unsigned index = OrvStringHashTable::makeKey("ab") % 10;
    ASSERT_EQ(table.buckets[index]->length(), 3u);
    EXPECT_EQ(table.remove("ab", P(0)), 1);
    EXPECT_EQ(table.get("ab"), nullptr);
    EXPECT_EQ(table.get("ba"), P(1));
    EXPECT_EQ(table.get("\x61\x61\x01"), P(2));
    // Two kept, so the cardinal (3) drops by 2.
    EXPECT_EQ(table.cardinal, 1u);
    OrvAListItem* first = table.buckets[index]->first;
    EXPECT_STREQ((const char*)first->key, "ba");  // order kept
    EXPECT_EQ(table.buckets[index]->length(), 2u);
}

TEST(OrvKey, InternedByName) {
    EXPECT_EQ(OrvGetKey("orv-test-unknown", 0), nullptr);
    char name[] = "orv-test-key";
    OrvKey* key = OrvGetKey(name, 1);
    ASSERT_NE(key, nullptr);
    EXPECT_STREQ(key->name, "orv-test-key");
    EXPECT_NE(key->name, name);  // the key holds its own copy
    std::string equal = "orv-test-key";
    EXPECT_EQ(OrvGetKey(equal.c_str(), 1), key);
    EXPECT_EQ(OrvGetKey(equal.c_str(), 0), key);
    name[0] = 'x';  // the caller's buffer does not matter any more
    EXPECT_EQ(OrvGetKey("orv-test-key", 0), key);
    EXPECT_EQ(OrvGetKey("orv-test-kye", 0), nullptr);  // anagram: same bucket, other key

    OrvKey* anagram = OrvGetKey("orv-test-kye", 1);
    EXPECT_NE(anagram, key);
    delete key;  // forgets its name
    EXPECT_EQ(OrvGetKey("orv-test-key", 0), nullptr);
    EXPECT_EQ(OrvGetKey("orv-test-kye", 0), anagram);
    OrvKey* again = OrvGetKey("orv-test-key", 1);
    ASSERT_NE(again, nullptr);
    EXPECT_STREQ(again->name, "orv-test-key");
    delete again;
    delete anagram;
    EXPECT_EQ(OrvGetKey("orv-test-kye", 0), nullptr);
    EXPECT_EQ(OrvGetKey(nullptr, 1), nullptr);
}

TEST(OrvHashTable, ZeroBucketsTrap) {
    // A programming error, not a reported failure: the modulo by zero traps.
    EXPECT_DEATH(
        {
            OrvHashTable table(0);
            table.put(P(0), P(1));
        },
        "");
    EXPECT_DEATH(
        {
            OrvStringHashTable table(0);
            table.get("x");
        },
        "");
}
