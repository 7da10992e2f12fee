// The class registry: records made at static initialisation, parents,
// isSubtypeOf and its messages.
#include "orv_fixtures.h"

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
    Orv2dPoint pts[2] = {Orv2dPoint(0, 0), Orv2dPoint(5, 5)};
    Orv2dPolygon polygon(nullptr, 2, pts);
    OrvArc arc(nullptr, Orv2dRect(0, 0, 10, 10), 0, 90);
    OrvActor plain(nullptr);
    // A parent name under 3 characters ends the climb at the class itself.
    ShortParentActor shortParent;
    const struct {
        OrvActor* actor;
        const char* type;
        unsigned long is;
    } cases[] = {{&filled, "OrvFilledRectangle", 1},
                 {&filled, "OrvRectangle", 1},
                 {&filled, "OrvActor", 1},
                 {&filled, "OrvLine", 0},
                 {&filled, "OrvIndexedSet", 0},
                 {&polygon, "Orv2dPolyline", 1},
                 {&arc, "OrvEllipse", 1},
                 {&arc, "OrvFilledEllipse", 0},
                 {&plain, "OrvActor", 1},
                 {&plain, "OrvRectangle", 0},
                 {&shortParent, "ShortParentActor", 1},
                 {&shortParent, "OrvActor", 0}};
    for (const auto& c : cases)
        EXPECT_EQ(c.actor->isSubtypeOf(c.type), c.is) << c.actor->className() << " " << c.type;
    EXPECT_STREQ(filled.className(), "OrvFilledRectangle");
    EXPECT_STREQ(plain.className(), "OrvActor");
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
