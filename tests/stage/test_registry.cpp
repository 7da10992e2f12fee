// The class registry: records made at static initialisation, parents,
// isSubtypeOf and its messages.
#include "orv_fixtures.h"

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

TEST(Registry, RecordsBeforeMainAndIsSubtypeOfClimbingThemOrReportingUnknownNames) {
    // Records exist before main; their parents are climbed by the isSubtypeOf table below.
    EXPECT_STREQ(OrvGetClassInfo("OrvActor")->parentName, "Root");
    // One record per class: the guards of every file that includes a header made only the first.
    EXPECT_EQ(OrvGetClassInfo("OrvRectangle"), OrvRectangle::_classInfo);
    for (const char* none : {"Root", "NoSuchClass", (const char*)nullptr})
        EXPECT_EQ(OrvGetClassInfo(none), nullptr);
    // The base class is registered before any of its users.
    EXPECT_LT(OrvActor::_classInfo->index, OrvRectangle::_classInfo->index);
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
    EXPECT_EQ("Unknown requested type NoSuchClass in isSubtypeOf",
              OrvTestOutput([&] { EXPECT_EQ(filled.isSubtypeOf("NoSuchClass"), 0u); }));

    UnregisteredActor stranger;
    EXPECT_EQ(stranger.className(), nullptr);
    EXPECT_EQ("Unknown proposed type (null) in isSubtypeOf",
              OrvTestOutput([&] { EXPECT_EQ(stranger.isSubtypeOf("OrvActor"), 0u); }));
}
