// Objects of loaded modules in files: they travel as proxies with their data and picture, stay whole where
// the module is not loaded, and come alive where it is.
#include "drawings.h"

#include "host/db/entities/line.h"

using namespace formats_test;

namespace {

/// What a module's entity files: a version, a text, a reference of each kind and some bytes.
class TestEntity : public AcDbEntity {
public:
    static AcRxClass* descriptor;
    AcRxClass* isA() const override { return descriptor; }

    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override {
        if (const Acad::ErrorStatus status = AcDbEntity::dwgOutFields(filer); status != Acad::eOk) {
            return status;
        }
        filer->writeInt16(2);
        filer->writeString(text);
        filer->writeHardPointerId(AcDbHardPointerId(target));
        filer->writeSoftPointerId(AcDbSoftPointerId(target));
        filer->writePoint3d(point);
        return filer->filerStatus();
    }
    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override {
        if (const Acad::ErrorStatus status = AcDbEntity::dwgInFields(filer); status != Acad::eOk) {
            return status;
        }
        Adesk::Int16 version = 0;
        filer->readInt16(&version);
        if (version != 2) {
            return Acad::eMakeMeProxy;
        }
        filer->readString(text);
        AcDbHardPointerId hard;
        AcDbSoftPointerId soft;
        filer->readHardPointerId(&hard);
        filer->readSoftPointerId(&soft);
        target = hard;
        filer->readPoint3d(&point);
        return filer->filerStatus();
    }

    AcString text;
    AcDbObjectId target;
    AcGePoint3d point;

protected:
    bool subWorldDraw(AcGiWorldDraw* draw) override {
        const AcGePoint3d line[2] = {point, point + AcGeVector3d(1, 1, 0)};
        draw->geometry().polyline(2, line);
        return true;
    }
};
AcRxClass* TestEntity::descriptor = nullptr;

void registerClass() {
    TestEntity::descriptor = newAcRxClass(
        L"TestEntity", L"AcDbEntity", 29, 0, 1, []() -> AcRxObject* { return new TestEntity; }, L"测试实体",
        L"测试模块");
    TestEntity::descriptor->setCustom(true);
    acrxBuildClassHierarchy();
}

void removeClass() {
    deleteAcRxClass(TestEntity::descriptor);
    TestEntity::descriptor = nullptr;
}

std::size_t countOf(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != text.npos; at = text.find(part, at + 1)) {
        ++count;
    }
    return count;
}

} // namespace

TEST(CustomEntities, travelAsProxiesAndComeAlive) {
    initialize();
    registerClass();
    std::string written;
    Adesk::UInt64 handle = 0;
    {
        AcDbDatabase database(true, true);
        auto* entity = new TestEntity;
        entity->text = L"围墙^\n";
        entity->target = database.layerZero();
        entity->point.set(1.5, 2.5, 0);
        const host::Opened<AcDbBlockTableRecord> space(database.modelSpaceId(), AcDb::kForWrite);
        ASSERT_EQ(space->appendAcDbEntity(entity), Acad::eOk);
        entity->setColorIndex(3);
        const host::ResbufList data =
            host::ResbufBuilder().string(1001, L"ACAD").string(1000, L"x").release();
        ASSERT_EQ(entity->setXData(data.get()), Acad::eOk);
        entity->close();
        handle = entity->handle();
        written = host::writeDxfText(database);
    }
    EXPECT_EQ(countOf(written, "ACAD_PROXY_ENTITY\r\n"), 1U);
    EXPECT_NE(written.find("CLASS\r\n  1\r\n测试实体\r\n  2\r\nTestEntity\r\n  3\r\n测试模块\r\n 90\r\n1\r\n "
                           "91\r\n1\r\n280\r\n1\r\n281\r\n1\r\n"),
              std::string::npos);
    EXPECT_EQ(written.find(" 92\r\n0\r\n"), std::string::npos) << "there is a picture";

    const Drawing alive(written);
    const auto* entity = dynamic_cast<TestEntity*>(alive.at(handle));
    ASSERT_NE(entity, nullptr);
    EXPECT_EQ(entity->text, L"围墙^\n");
    EXPECT_EQ(entity->target, alive.database->layerZero());
    EXPECT_EQ(entity->point, AcGePoint3d(1.5, 2.5, 0));
    {
        const host::ReadAccess access(*entity);
        EXPECT_EQ(entity->colorIndex(), 3);
        EXPECT_FALSE(entity->xdataGroups().empty());
    }
    EXPECT_EQ(difference(alive.written(), written), "");

    removeClass();
    const Drawing absent(written);
    ASSERT_NE(AcDbProxyEntity::cast(absent.at(handle)), nullptr);
    const std::string kept = absent.written();
    EXPECT_EQ(difference(kept, written), "") << "without the module nothing changes";

    registerClass();
    const Drawing again(kept);
    EXPECT_NE(dynamic_cast<TestEntity*>(again.at(handle)), nullptr);
    EXPECT_NE(dynamic_cast<TestEntity*>(absent.at(handle)), nullptr) << "open drawings come alive too";
    removeClass();
}

TEST(CustomEntities, dataOfOtherProgramsStayProxies) {
    initialize();
    registerClass();
    const Drawing drawing(header("AC1032") +
                          section("CLASSES", groups({{0, "CLASS"},
                                                     {1, "测试实体"},
                                                     {2, "TestEntity"},
                                                     {3, "x"},
                                                     {90, "0"},
                                                     {91, "1"},
                                                     {280, "0"},
                                                     {281, "1"}})) +
                          entities(groups({{0, "ACAD_PROXY_ENTITY"},
                                           {5, "50"},
                                           {8, "0"},
                                           {100, "AcDbProxyEntity"},
                                           {90, "498"},
                                           {91, "500"},
                                           {93, "64"},
                                           {310, "0200000000000000"},
                                           {94, "0"},
                                           {95, "33"},
                                           {70, "0"}})) +
                          eof);
    EXPECT_NE(AcDbProxyEntity::cast(drawing.at(0x50)), nullptr);
    EXPECT_NE(drawing.written().find("310\r\n0200000000000000\r\n 94\r\n0\r\n 95\r\n33\r\n 70\r\n0\r\n"),
              std::string::npos);
    removeClass();
}
