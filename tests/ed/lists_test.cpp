// Objects as lists: reading, changing, making them, tables, dictionaries, walking over the drawing.
#include "host.h"

namespace {

using edtest::HostTest;
using host::ResbufBuilder;
using host::ResbufList;

constexpr double pi = 3.14159265358979323846;

std::string textOf(const resbuf& value) {
    switch (host::resbufKind(value.restype)) {
    case host::ResbufKind::string:
    case host::ResbufKind::handle:
        return host::toUtf8(value.resval.rstring);
    case host::ResbufKind::real:
        return host::toUtf8(host::formatted(L"%.10g", value.resval.rreal));
    case host::ResbufKind::point:
        return host::toUtf8(host::formatted(L"%g,%g,%g", value.resval.rpoint[0], value.resval.rpoint[1],
                                            value.resval.rpoint[2]));
    case host::ResbufKind::int16:
        return std::to_string(value.resval.rint);
    case host::ResbufKind::int32:
        return std::to_string(value.resval.rlong);
    case host::ResbufKind::name:
        return "#";
    default:
        return "";
    }
}

/// "code=value" for each group; names of objects as #, handles left out.
std::string shown(const resbuf* list) {
    std::string text;
    for (; list != nullptr; list = list->rbnext) {
        if (list->restype != 5) {
            text += std::to_string(list->restype) + "=" + textOf(*list) + " ";
        }
    }
    return text;
}

std::string value(const resbuf* list, int code) {
    for (; list != nullptr; list = list->rbnext) {
        if (list->restype == code) {
            return textOf(*list);
        }
    }
    return "-";
}

class Lists : public HostTest {
protected:
    static ResbufList listOf(AcDbObjectId id) {
        ads_name name;
        acdbGetAdsName(name, id);
        return ResbufList(acdbEntGet(name));
    }
    static AcDbObjectId last() {
        ads_name name;
        AcDbObjectId id;
        return acdbEntLast(name) == RTNORM && acdbGetObjectId(id, name) == Acad::eOk ? id : AcDbObjectId();
    }
    /// The DXF names of all that acdbEntNext gives.
    static std::string walk() {
        std::string names;
        ads_name name = {0, 0};
        while (acdbEntNext(name, name) == RTNORM) {
            names += value(ResbufList(acdbEntGet(name)).get(), 0) + " ";
        }
        return names;
    }
    static int make(ResbufBuilder& builder) { return acdbEntMake(builder.release().get()); }
};

ResbufBuilder begin(const wchar_t* name) {
    ResbufBuilder builder;
    builder.string(0, name);
    return builder;
}

TEST_F(Lists, AnEntityAsList) {
    const AcDbObjectId id = addLine(1, 2, 3, 4);
    const ResbufList list = listOf(id);
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(shown(list.get()).substr(0, 40), "-1=# 0=LINE 330=# 100=AcDbEntity 67=0 41");
    EXPECT_EQ(value(list.get(), 5), host::toUtf8(id.handle().toString()));
    EXPECT_EQ(value(list.get(), 8), "0");
    EXPECT_EQ(value(list.get(), 10), "1,2,0");
    EXPECT_EQ(value(list.get(), 11), "3,4,0");
    host::Opened<AcDbEntity>(id, AcDb::kForWrite)->erase();
    EXPECT_EQ(listOf(id), nullptr);
}

TEST_F(Lists, AnglesAreRadians) {
    const AcDbObjectId id = add(new AcDbArc(AcGePoint3d(), 5, 0.5, 2.0));
    EXPECT_EQ(value(listOf(id).get(), 50), "0.5");
    EXPECT_EQ(value(listOf(id).get(), 51), "2");
    ResbufBuilder builder = begin(L"ARC");
    builder.point(10, 1, 1).real(40, 2).real(50, pi / 2).real(51, pi);
    ASSERT_EQ(make(builder), RTNORM);
    const host::Opened<AcDbArc> arc(last(), AcDb::kForRead);
    EXPECT_NEAR(arc->startAngle(), pi / 2, 1e-12);
    EXPECT_NEAR(arc->endAngle(), pi, 1e-12);
}

TEST_F(Lists, ChangingWholeAndPartly) {
    addLayer(L"墙");
    const AcDbObjectId id = addLine(0, 0, 1, 0);
    ResbufList list = listOf(id);
    for (resbuf* at = list.get(); at != nullptr; at = at->rbnext) {
        if (at->restype == 11) {
            at->resval.rpoint[0] = 7;
        }
    }
    EXPECT_EQ(acdbEntMod(list.get()), RTNORM);
    EXPECT_EQ(value(listOf(id).get(), 11), "7,0,0");

    ads_name name;
    acdbGetAdsName(name, id);
    ResbufBuilder partly;
    partly.name(-1, name).string(8, L"墙").integer(62, 3).point(10, -1, 0);
    EXPECT_EQ(acdbEntMod(partly.release().get()), RTNORM);
    list = listOf(id);
    EXPECT_EQ(value(list.get(), 8), "墙");
    EXPECT_EQ(value(list.get(), 62), "3");
    EXPECT_EQ(value(list.get(), 10), "-1,0,0");
    EXPECT_EQ(value(list.get(), 11), "7,0,0");
    const std::string before = shown(list.get());

    // Reading and writing back changes nothing, however often.
    EXPECT_EQ(acdbEntMod(list.get()), RTNORM);
    EXPECT_EQ(acdbEntMod(listOf(id).get()), RTNORM);
    EXPECT_EQ(shown(listOf(id).get()), before);

    ResbufBuilder wrong;
    wrong.name(-1, name).string(8, L"不存在的图层");
    acdbEntMod(wrong.release().get());
    EXPECT_EQ(acdbEntMod(nullptr), RTERROR);
    ResbufBuilder nameless;
    nameless.string(8, L"0");
    EXPECT_EQ(acdbEntMod(nameless.release().get()), RTERROR);
}

TEST_F(Lists, DimensionsAndObjectsWithReactors) {
    ResbufBuilder builder = begin(L"DIMENSION");
    builder.string(100, L"AcDbEntity").string(100, L"AcDbDimension").point(10, 100, 20).integer(70, 1);
    builder.string(100, L"AcDbAlignedDimension").point(13, 0, 0).point(14, 100, 0);
    ASSERT_EQ(make(builder), RTNORM);
    const AcDbObjectId id = last();
    EXPECT_EQ(value(listOf(id).get(), 42), "100");
    host::Opened<AcDbEntity>(id, AcDb::kForWrite)->addPersistentReactor(addLine(0, 0, 1, 1));
    ResbufList list = listOf(id);
    for (resbuf* at = list.get(); at != nullptr; at = at->rbnext) {
        if (at->restype == 14) {
            at->resval.rpoint[0] = 40;
        }
    }
    EXPECT_EQ(acdbEntMod(list.get()), RTNORM);
    EXPECT_EQ(value(listOf(id).get(), 13), "0,0,0");
    EXPECT_EQ(value(listOf(id).get(), 14), "40,0,0");
    EXPECT_EQ(value(listOf(id).get(), 42), "40"); // made anew
    const std::string before = shown(listOf(id).get());
    EXPECT_EQ(acdbEntMod(listOf(id).get()), RTNORM);
    EXPECT_EQ(acdbEntMod(listOf(id).get()), RTNORM);
    EXPECT_EQ(shown(listOf(id).get()).size(), before.size());
}

TEST_F(Lists, ExtendedDataByApplication) {
    acdbRegApp(L"QDV_A");
    acdbRegApp(L"QDV_B");
    const AcDbObjectId id = addLine(0, 0, 1, 0);
    ads_name name;
    acdbGetAdsName(name, id);
    ResbufBuilder change;
    change.name(-1, name)
        .mark(-3)
        .string(1001, L"QDV_A")
        .integer(1071, 42)
        .string(1001, L"QDV_B")
        .real(1040, 0.5);
    ASSERT_EQ(acdbEntMod(change.release().get()), RTNORM);
    EXPECT_EQ(value(listOf(id).get(), 1071), "-");
    const ResbufList wanted(acutBuildList(RTSTR, L"QDV_A", RTNONE));
    const ResbufList list(acdbEntGetX(name, wanted.get()));
    EXPECT_EQ(value(list.get(), 1071), "42");
    EXPECT_EQ(value(list.get(), 1040), "-");
    EXPECT_NE(shown(list.get()).find("-3= 1001=QDV_A 1071=42"), std::string::npos);
    // A change without extended data keeps it.
    EXPECT_EQ(acdbEntMod(listOf(id).get()), RTNORM);
    EXPECT_EQ(value(ResbufList(acdbEntGetX(name, wanted.get())).get(), 1071), "42");
}

TEST_F(Lists, MadeEntitiesTakeTheCurrentProperties) {
    const AcDbObjectId layer = addLayer(L"当前");
    database().setClayer(layer);
    host::setSystemVariable(L"CECOLOR", L"RED");
    ResbufBuilder circle = begin(L"CIRCLE");
    circle.point(10, 1, 2).real(40, 3);
    ASSERT_EQ(make(circle), RTNORM);
    EXPECT_EQ(value(listOf(last()).get(), 8), "当前");
    EXPECT_EQ(value(listOf(last()).get(), 62), "1");
    ResbufBuilder line = begin(L"LINE");
    line.string(8, L"0").integer(62, 256).point(10, 0, 0).point(11, 1, 0);
    ASSERT_EQ(make(line), RTNORM);
    EXPECT_EQ(value(listOf(last()).get(), 8), "0");
    ResbufBuilder text = begin(L"TEXT");
    text.point(10, 0, 0).real(40, 2.5).string(1, L"图签");
    ASSERT_EQ(make(text), RTNORM);
    EXPECT_EQ(value(listOf(last()).get(), 1), "图签");
    ResbufBuilder light = begin(L"LWPOLYLINE");
    light.string(100, L"AcDbEntity").string(100, L"AcDbPolyline").integer(90, 2);
    light.integer(70, 1).point(10, 0, 0).real(42, 1).point(10, 5, 0);
    ASSERT_EQ(make(light), RTNORM);
    EXPECT_EQ(host::Opened<AcDbPolyline>(last(), AcDb::kForRead)->numVerts(), 2u);
    ResbufBuilder nothing = begin(L"NOSUCHTHING");
    EXPECT_EQ(make(nothing), RTERROR);
}

TEST_F(Lists, PolylinesOfVertices) {
    ResbufBuilder polyline = begin(L"POLYLINE");
    polyline.integer(66, 1).integer(70, 1);
    ASSERT_EQ(make(polyline), RTNORM);
    for (const double x : {0.0, 10.0, 20.0}) {
        ResbufBuilder vertex = begin(L"VERTEX");
        vertex.point(10, x, x / 2);
        ASSERT_EQ(make(vertex), RTNORM);
    }
    EXPECT_TRUE(last().isNull());
    ResbufBuilder end = begin(L"SEQEND");
    ASSERT_EQ(make(end), RTNORM);
    addLine(0, 0, 1, 1);
    EXPECT_EQ(walk(), "POLYLINE VERTEX VERTEX VERTEX SEQEND LINE ");

    // A part that does not belong there ends the whole thing.
    ResbufBuilder again = begin(L"POLYLINE");
    make(again);
    ResbufBuilder line = begin(L"LINE");
    line.point(10, 0, 0).point(11, 1, 0);
    EXPECT_EQ(make(line), RTERROR);
    EXPECT_EQ(walk(), "POLYLINE VERTEX VERTEX VERTEX SEQEND LINE ");
}

TEST_F(Lists, BlocksAndReferencesWithAttributes) {
    ResbufBuilder block = begin(L"BLOCK");
    block.string(2, L"杆塔").integer(70, 0).point(10, 1, 1);
    ASSERT_EQ(make(block), RTNORM);
    ResbufBuilder line = begin(L"LINE");
    line.point(10, 0, 0).point(11, 1, 1);
    ASSERT_EQ(make(line), RTNORM);
    ResbufBuilder endBlock = begin(L"ENDBLK");
    ASSERT_EQ(make(endBlock), RTKWORD);
    ACHAR name[64];
    acedGetInput(name);
    EXPECT_STREQ(name, L"杆塔");
    EXPECT_EQ(walk(), "");
    const ResbufList found(acdbTblSearch(L"BLOCK", L"杆塔", 0));
    EXPECT_EQ(shown(found.get()), "0=BLOCK 2=杆塔 70=0 10=1,1,0 -2=# ");

    ResbufBuilder insert = begin(L"INSERT");
    insert.integer(66, 1).string(2, L"杆塔").point(10, 5, 5);
    ASSERT_EQ(make(insert), RTNORM);
    ResbufBuilder attribute = begin(L"ATTRIB");
    attribute.point(10, 5, 5).real(40, 2).string(1, L"N12").string(2, L"编号").integer(70, 0);
    ASSERT_EQ(make(attribute), RTNORM);
    ResbufBuilder end = begin(L"SEQEND");
    ASSERT_EQ(make(end), RTNORM);
    EXPECT_EQ(walk(), "INSERT ATTRIB SEQEND ");
    ResbufBuilder unknown = begin(L"INSERT");
    unknown.string(2, L"没有").point(10, 0, 0);
    EXPECT_EQ(make(unknown), RTERROR);
}

TEST_F(Lists, TablesAndDictionaries) {
    ResbufBuilder layer = begin(L"LAYER");
    layer.string(100, L"AcDbSymbolTableRecord").string(100, L"AcDbLayerTableRecord");
    layer.string(2, L"河流").integer(70, 0).integer(62, 4).string(6, L"Continuous");
    const ResbufList list = layer.release();
    EXPECT_EQ(acdbEntMake(list.get()), RTNORM);
    EXPECT_EQ(acdbEntMake(list.get()), RTERROR);
    EXPECT_EQ(shown(ResbufList(acdbTblSearch(L"layer", L"河流", 0)).get()),
              "0=LAYER 2=河流 70=0 62=4 6=Continuous ");
    EXPECT_EQ(acdbTblSearch(L"LAYER", L"没有", 0), nullptr);
    EXPECT_EQ(acdbTblSearch(L"NOTABLE", L"0", 0), nullptr);
    std::string names;
    for (ResbufList next(acdbTblNext(L"LAYER", 1)); next != nullptr; next.reset(acdbTblNext(L"LAYER", 0))) {
        names += value(next.get(), 2) + " ";
    }
    EXPECT_EQ(names, "0 河流 ");
    ads_name object;
    EXPECT_EQ(acdbTblObjName(L"LAYER", L"河流", object), RTNORM);
    EXPECT_EQ(value(ResbufList(acdbEntGet(object)).get(), 0), "LAYER");

    ads_name dictionary;
    ASSERT_EQ(acdbNamedObjDict(dictionary), RTNORM);
    ResbufBuilder record = begin(L"XRECORD");
    record.string(100, L"AcDbXrecord").real(50, 45.0).string(1, L"内容");
    ads_name made;
    ASSERT_EQ(acdbEntMakeX(record.release().get(), made), RTNORM);
    EXPECT_EQ(acdbDictAdd(dictionary, L"QDV_数据", made), RTNORM);
    EXPECT_EQ(acdbDictAdd(dictionary, L"QDV_数据", made), RTERROR);
    const ResbufList kept(acdbDictSearch(dictionary, L"qdv_数据", 0));
    EXPECT_EQ(value(kept.get(), 50), "45");
    EXPECT_EQ(acdbDictRename(dictionary, L"QDV_数据", L"QDV_新"), RTNORM);
    EXPECT_EQ(acdbDictRemove(dictionary, L"QDV_新"), RTNORM);
    EXPECT_EQ(acdbDictSearch(dictionary, L"QDV_新", 0), nullptr);
}

TEST_F(Lists, EraseAndBack) {
    const AcDbObjectId id = addLine(0, 0, 1, 1);
    addLine(2, 2, 3, 3);
    ads_name name;
    acdbGetAdsName(name, id);
    EXPECT_EQ(acdbEntDel(name), RTNORM);
    EXPECT_EQ(walk(), "LINE ");
    EXPECT_EQ(acdbEntDel(name), RTNORM);
    EXPECT_EQ(walk(), "LINE LINE ");
    ads_name found;
    EXPECT_EQ(acdbHandEnt(id.handle().toString().c_str(), found), RTNORM);
    EXPECT_TRUE(ads_name_equal(found, name));
    EXPECT_EQ(acdbHandEnt(L"FFFFFF", found), RTERROR);
    EXPECT_EQ(acdbHandEnt(L"zz", found), RTERROR);
}

TEST_F(Lists, NamesOfSymbols) {
    EXPECT_EQ(acdbSNValid(L"$围墙 1", 0), RTNORM);
    for (const wchar_t* bad : {L"", L"a*b", L"a|b", L" a", L"a\nb", L"a/b"}) {
        EXPECT_EQ(acdbSNValid(bad, 0), RTERROR) << bad;
    }
    EXPECT_EQ(acdbSNValid(L"a|b", 1), RTNORM);
}

} // namespace
