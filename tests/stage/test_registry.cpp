// The class registry: records made at static initialisation, parents,
// isSubtypeOf and its messages.
#include <gtest/gtest.h>

#include <string>

#include "orv/actor.h"
#include "orv/layer.h"
#include "orv/shapes.h"

namespace {

// A class registered by hand, with a parent name too short to count.
class ShortParentActor : public OrvActor {
public:
    ShortParentActor() : OrvActor(nullptr) {}
    OrvClassInfo* classInfo() const override { return _classInfo; }
    static OrvClassInfo* _classInfo;
};
OrvClassInfo* ShortParentActor::_classInfo =
    OrvInsertNewType("ShortParentActor", new OrvClassInfo("ShortParentActor", "Or", nullptr));

// A class with no record at all.
class UnregisteredActor : public OrvActor {
public:
    UnregisteredActor() : OrvActor(nullptr) {}
    OrvClassInfo* classInfo() const override { return nullptr; }
};

}  // namespace

TEST(Registry, RecordsExistBeforeMainWithTheirParents) {
    ASSERT_NE(OrvGetHashTypes(), nullptr);
    EXPECT_EQ(OrvGetHashTypes()->size, 1000u);
    struct {
        const char* name;
        const char* parent;
    } expected[] = {{"OrvActor", "Root"},          {"OrvIndexedSet", "OrvActor"},
                    {"OrvRectangle", "OrvActor"},  {"OrvFilledRectangle", "OrvRectangle"},
                    {"OrvLine", "OrvActor"},       {"OrvArrowLine", "OrvLine"},
                    {"Orv2dPolyline", "OrvActor"}, {"Orv2dPolygon", "Orv2dPolyline"},
                    {"OrvEllipse", "OrvActor"},    {"OrvFilledEllipse", "OrvEllipse"},
                    {"OrvArc", "OrvEllipse"},      {"OrvLabel", "OrvActor"},
                    {"OrvIcon", "OrvActor"}};
    for (auto& e : expected) {
        OrvClassInfo* info = OrvGetClassInfo(e.name);
        ASSERT_NE(info, nullptr) << e.name;
        EXPECT_STREQ(info->name, e.name);
        ASSERT_NE(info->parentName, nullptr) << e.name;
        EXPECT_STREQ(info->parentName, e.parent);
    }
    // One record per class: the guards of every file that includes a header
    // made only the first.
    EXPECT_EQ(OrvGetClassInfo("OrvRectangle"), OrvRectangle::_classInfo);
    EXPECT_EQ(OrvGetClassInfo("OrvActor"), OrvActor::_classInfo);
    EXPECT_EQ(OrvGetClassInfo("Root"), nullptr);
    EXPECT_EQ(OrvGetClassInfo("NoSuchClass"), nullptr);
    EXPECT_EQ(OrvGetClassInfo(nullptr), nullptr);
    // The base class is registered before any of its users.
    EXPECT_LT(OrvActor::_classInfo->index, OrvRectangle::_classInfo->index);
}

TEST(Registry, RecordCopiesNamesAndNumbersInOrder) {
    char name[] = "TmpClass";
    char parent[] = "OrvActor";
    unsigned before = OrvClassInfo::_counter;
    OrvClassInfo a(name, parent, nullptr);
    OrvClassInfo b(name, "", nullptr);
    OrvClassInfo c(name, nullptr, nullptr);
    name[0] = 'X';
    parent[0] = 'X';
    EXPECT_STREQ(a.name, "TmpClass");
    EXPECT_STREQ(a.parentName, "OrvActor");
    EXPECT_EQ(b.parentName, nullptr);
    EXPECT_EQ(c.parentName, nullptr);
    EXPECT_EQ(a.index, before);
    EXPECT_EQ(b.index, before + 1);
    EXPECT_EQ(c.index, before + 2);
    EXPECT_EQ(OrvClassInfo::_counter, before + 3);
}

TEST(Registry, IsSubtypeOfClimbsByRecords) {
    OrvFilledRectangle filled(nullptr, Orv2dRect(0, 0, 10, 10));
    EXPECT_STREQ(filled.className(), "OrvFilledRectangle");
    EXPECT_EQ(filled.isSubtypeOf("OrvFilledRectangle"), 1u);
    EXPECT_EQ(filled.isSubtypeOf("OrvRectangle"), 1u);
    EXPECT_EQ(filled.isSubtypeOf("OrvActor"), 1u);
    EXPECT_EQ(filled.isSubtypeOf("OrvLine"), 0u);
    EXPECT_EQ(filled.isSubtypeOf("OrvIndexedSet"), 0u);

    Orv2dPoint pts[2] = {Orv2dPoint(0, 0), Orv2dPoint(5, 5)};
    Orv2dPolygon polygon(nullptr, 2, pts);
    EXPECT_EQ(polygon.isSubtypeOf("Orv2dPolyline"), 1u);
    OrvArc arc(nullptr, Orv2dRect(0, 0, 10, 10), 0, 90);
    EXPECT_EQ(arc.isSubtypeOf("OrvEllipse"), 1u);
    EXPECT_EQ(arc.isSubtypeOf("OrvFilledEllipse"), 0u);

    OrvActor plain(nullptr);
    EXPECT_STREQ(plain.className(), "OrvActor");
    EXPECT_EQ(plain.isSubtypeOf("OrvActor"), 1u);
    EXPECT_EQ(plain.isSubtypeOf("OrvRectangle"), 0u);

    // A parent name under 3 characters ends the climb at the class itself.
    ShortParentActor shortParent;
    EXPECT_EQ(shortParent.isSubtypeOf("ShortParentActor"), 1u);
    EXPECT_EQ(shortParent.isSubtypeOf("OrvActor"), 0u);
}

TEST(Registry, IsSubtypeOfReportsUnknownNames) {
    OrvRectangle rect(nullptr, Orv2dRect(0, 0, 10, 10));
    testing::internal::CaptureStdout();
    EXPECT_EQ(rect.isSubtypeOf("NoSuchClass"), 0u);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Unknown requested type NoSuchClass in isSubtypeOf");

    UnregisteredActor stranger;
    EXPECT_EQ(stranger.className(), nullptr);
    testing::internal::CaptureStdout();
    EXPECT_EQ(stranger.isSubtypeOf("OrvActor"), 0u);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Unknown proposed type (null) in isSubtypeOf");
}
