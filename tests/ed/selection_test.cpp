// What points, windows and filters select, and the dialogue in which it is done.
#include "host.h"

namespace {

using edtest::HostTest;

constexpr double pi = 3.14159265358979323846;

struct FreeSet {
    ads_name name = {0, 0};
    ~FreeSet() { acedSSFree(name); }
};

class Selection : public HostTest {
protected:
    /// Indices of `all` in what acedSSGet gave, as digits; "-" when it failed.
    std::string got(int code, const ads_name set) const {
        if (code != RTNORM) {
            return "-";
        }
        Adesk::Int32 length = 0;
        acedSSLength(set, &length);
        std::string text;
        for (int i = 0; i < length; ++i) {
            ads_name name;
            acedSSName(set, i, name);
            AcDbObjectId id;
            acdbGetObjectId(id, name);
            const auto found = std::find(all.begin(), all.end(), id);
            text += found == all.end() ? '?' : static_cast<char>('0' + (found - all.begin()));
        }
        return text;
    }
    std::string select(const wchar_t* options, const void* a = nullptr, const void* b = nullptr,
                       const resbuf* filter = nullptr) const {
        FreeSet set;
        const int code = acedSSGet(options, a, b, filter, set.name);
        return got(code, set.name);
    }
    /// What passes a filter, the oldest first.
    std::string filtered(resbuf* filter) const {
        std::string result = select(L"X", nullptr, nullptr, filter);
        std::reverse(result.begin(), result.end());
        acutRelRb(filter);
        return result;
    }
    std::string inBox(const wchar_t* way, double x1, double y1, double x2, double y2) const {
        const ads_point a = {x1, y1, 0};
        const ads_point b = {x2, y2, 0};
        return select(way, a, b);
    }

    std::vector<AcDbObjectId> all;
};

/// A line, a circle, an L of two segments, an arc, and a text.
class Shapes : public Selection {
protected:
    Shapes() {
        addLayer(L"墙");
        all.push_back(addLine(0, 0, 10, 0));
        all.push_back(add(new AcDbCircle(AcGePoint3d(20, 0, 0), AcGeVector3d::kZAxis, 5), L"墙"));
        auto* corner = new AcDbPolyline(3);
        corner->addVertexAt(0, AcGePoint2d(0, 20));
        corner->addVertexAt(1, AcGePoint2d(20, 20));
        corner->addVertexAt(2, AcGePoint2d(20, 40));
        all.push_back(add(corner));
        all.push_back(add(new AcDbArc(AcGePoint3d(40, 0, 0), 10, 0, pi / 2)));
    }
};

TEST_F(Shapes, WindowsHoldWholeEntitiesAndCrossingsTouchThem) {
    EXPECT_EQ(inBox(L"W", -1, -10, 26, 10), "01");
    EXPECT_EQ(inBox(L"_W", 26, 10, -1, -10), "01");
    EXPECT_EQ(inBox(L"W", 0, 0, 10, 0), "0");
    EXPECT_EQ(inBox(L"W", 1, -1, 9, 1), "-");
    EXPECT_EQ(inBox(L"C", 1, -1, 9, 1), "0");
    // Inside a circle, and in the open side of an L and of an arc, nothing is touched.
    EXPECT_EQ(inBox(L"C", 19, -1, 21, 1), "-");
    EXPECT_EQ(inBox(L"C", 1, 25, 15, 35), "-");
    EXPECT_EQ(inBox(L"C", 1, 25, 20.5, 35), "2");
    EXPECT_EQ(inBox(L"C", 41, 1, 44, 4), "-");
    EXPECT_EQ(inBox(L"C", 46, 6, 48, 8), "3");
    EXPECT_EQ(inBox(L"C", -1, -1, 60, 60), "0123");
}

TEST_F(Shapes, PolygonsAndFences) {
    const auto points = [](std::initializer_list<std::pair<double, double>> list) {
        host::ResbufBuilder builder;
        for (const auto& [x, y] : list) {
            builder.point(RT3DPOINT, x, y);
        }
        return builder.release();
    };
    // A notch between the ends of the line: both ends are inside, its middle is not.
    EXPECT_EQ(select(L"WP", points({{-1, -1}, {4, -1}, {5, 5}, {6, -1}, {11, -1}, {11, 9}, {-1, 9}}).get()),
              "-");
    EXPECT_EQ(select(L"CP", points({{-1, -1}, {4, -1}, {5, 5}, {6, -1}, {11, -1}, {11, 9}, {-1, 9}}).get()),
              "0");
    EXPECT_EQ(select(L"WP", points({{-1, -1}, {12, -1}, {12, 1}, {-1, 1}}).get()), "0");
    EXPECT_EQ(select(L"F", points({{5, -5}, {5, 30}, {30, 30}}).get()), "02");
    EXPECT_EQ(select(L"F", points({{20, -1}, {20, 1}}).get()), "-");
    EXPECT_EQ(select(L"WP", points({{0, 0}}).get()), "-");
}

TEST_F(Shapes, PicksTakeTheNearestAndTheTopmost) {
    const auto at = [&](double x, double y) {
        const ads_point point = {x, y, 0};
        return select(nullptr, point);
    };
    EXPECT_EQ(at(5, 0), "0");
    EXPECT_EQ(at(25, 0), "1");
    EXPECT_EQ(at(20, 30), "2");
    EXPECT_EQ(at(40 + 10 * std::cos(1.0), 10 * std::sin(1.0)), "3");
    EXPECT_EQ(at(40, 5), "-");
    all.push_back(addLine(5, -5, 5, 5));
    EXPECT_EQ(at(5, 0), "4");
    EXPECT_EQ(at(5.3, 0), "0");
}

TEST_F(Shapes, BoxesEverythingAtAPointAndThePreviousSet) {
    // From left to right a box is a window, else a crossing; two points without a way are a box.
    EXPECT_EQ(inBox(L"BOX", 1, -1, 22, 6), "-");
    EXPECT_EQ(inBox(L"_B", 22, 6, 1, -1), "01");
    EXPECT_EQ(inBox(nullptr, -1, -10, 26, 10), "01");
    EXPECT_EQ(select(L"P"), "01");
    all.push_back(addLine(5, -5, 5, 5));
    const ads_point crossing = {5, 0, 0};
    EXPECT_EQ(select(L":E", crossing), "40");
    EXPECT_EQ(select(L"_:E", crossing, nullptr, host::ResbufList(acutBuildList(62, 256, RTNONE)).get()),
              "40");
    EXPECT_EQ(select(L"P"), "40");
}

TEST_F(Shapes, SetsTellHowTheyWereMade) {
    const auto told = [](const wchar_t* options, const void* a, const void* b, int index) {
        FreeSet set;
        resbuf* list = nullptr;
        if (acedSSGet(options, a, b, nullptr, set.name) != RTNORM ||
            acedSSNameX(&list, set.name, index) != RTNORM) {
            return std::string("-");
        }
        std::string text;
        for (const resbuf* at = list; at != nullptr; at = at->rbnext) {
            switch (at->restype) {
            case RTLB:
                text += '(';
                break;
            case RTLE:
                text += ')';
                break;
            case RTSHORT:
                text += std::to_string(at->resval.rint) + ' ';
                break;
            case RTENAME:
                text += "e ";
                break;
            default:
                text += host::toUtf8(host::formatted(L"[%g %g]", at->resval.rpoint[0], at->resval.rpoint[1]));
            }
        }
        acutRelRb(list);
        return text;
    };
    const ads_point a = {-1, -10, 0};
    const ads_point b = {26, 10, 0};
    const ads_point on = {5, 0, 0};
    EXPECT_EQ(told(nullptr, on, nullptr, 0), "(1 e 0 (0 [5 0]))");
    EXPECT_EQ(told(L"W", a, b, -1),
              "(2 e 0 -1 )(2 e 0 -1 )(-1 (0 [-1 -10])(0 [26 -10])(0 [26 10])(0 [-1 10]))");
    EXPECT_EQ(told(L"C", a, b, 1), "(3 e 0 -1 )(-1 (0 [-1 -10])(0 [26 -10])(0 [26 10])(0 [-1 10]))");
    host::ResbufBuilder fence;
    fence.point(RT3DPOINT, 5, -5).point(RT3DPOINT, 5, 5);
    EXPECT_EQ(told(L"F", fence.release().get(), nullptr, 0), "(4 e 0 (0 [5 -5])(0 [5 5]))");
    EXPECT_EQ(told(L"X", nullptr, nullptr, 3), "(0 e 0 )");
    EXPECT_EQ(told(L"X", nullptr, nullptr, 4), "-");
}

TEST_F(Shapes, ErasedHiddenAndFrozenEntitiesAreNotThere) {
    host::Opened<AcDbEntity>(all[0], AcDb::kForWrite)->erase();
    EXPECT_EQ(inBox(L"C", -100, -100, 100, 100), "123");
    host::Opened<AcDbEntity>(all[2], AcDb::kForWrite)->setVisibility(AcDb::kInvisible);
    EXPECT_EQ(inBox(L"C", -100, -100, 100, 100), "13");
    {
        AcDbLayerTable* table = nullptr;
        database().getSymbolTable(table);
        AcDbLayerTableRecord* layer = nullptr;
        table->getAt(L"墙", layer, AcDb::kForWrite);
        layer->setIsFrozen(true);
        layer->close();
        table->close();
    }
    EXPECT_EQ(inBox(L"C", -100, -100, 100, 100), "3");
    EXPECT_EQ(select(L"X"), "321") << "the newest first";
    EXPECT_EQ(select(L"_A"), "23");
    EXPECT_EQ(select(L"L"), "3");
}

resbuf* filterOf(std::initializer_list<std::pair<int, const wchar_t*>> texts) {
    host::ResbufBuilder builder;
    for (const auto& [code, text] : texts) {
        builder.string(code, text);
    }
    return builder.release().release();
}

TEST_F(Shapes, FiltersByTextAndOperators) {
    EXPECT_EQ(filtered(filterOf({{0, L"line"}})), "0");
    EXPECT_EQ(filtered(acutBuildList(RTDXF0, L"LINE,CIR*", RTNONE)), "01");
    EXPECT_EQ(filtered(filterOf({{0, L"LINE,CIR*"}})), "01");
    EXPECT_EQ(filtered(filterOf({{0, L"~LINE"}, {8, L"0"}})), "23");
    EXPECT_EQ(filtered(filterOf({{-4, L"<OR"}, {0, L"ARC"}, {8, L"墙"}, {-4, L"OR>"}})), "13");
    EXPECT_EQ(filtered(filterOf({{-4, L"<NOT"}, {8, L"墙"}, {-4, L"NOT>"}})), "023");
    EXPECT_EQ(filtered(filterOf({{-4, L"<AND"},
                                 {-4, L"<OR"},
                                 {0, L"ARC"},
                                 {0, L"CIRCLE"},
                                 {-4, L"OR>"},
                                 {8, L"墙"},
                                 {-4, L"AND>"}})),
              "1");
    EXPECT_EQ(filtered(filterOf({{-4, L"<XOR"}, {0, L"CIRCLE"}, {8, L"墙"}, {-4, L"XOR>"}})), "-");
    EXPECT_EQ(filtered(filterOf({{-4, L"<OR"}, {0, L"LINE"}})), "-");
    EXPECT_EQ(filtered(filterOf({{0, L"LINE"}, {-4, L"OR>"}})), "-");
    EXPECT_EQ(filtered(filterOf({{410, L"Model"}})), "0123");
}

TEST_F(Shapes, FiltersByNumberAndPoint) {
    const auto number = [](const wchar_t* relation, int code, double value) {
        host::ResbufBuilder builder;
        if (relation != nullptr) {
            builder.string(-4, relation);
        }
        host::resbufKind(code) == host::ResbufKind::real ? builder.real(code, value)
                                                         : builder.integer(code, static_cast<int>(value));
        return builder.release().release();
    };
    EXPECT_EQ(filtered(number(nullptr, 40, 5)), "1");
    EXPECT_EQ(filtered(number(L">=", 40, 5)), "13");
    EXPECT_EQ(filtered(number(L">", 40, 5)), "3");
    EXPECT_EQ(filtered(number(L"!=", 40, 5)), "23");
    EXPECT_EQ(filtered(number(nullptr, 62, 256)), "0123");
    host::Opened<AcDbEntity>(all[2], AcDb::kForWrite)->setColorIndex(1);
    EXPECT_EQ(filtered(number(nullptr, 62, 1)), "2");
    EXPECT_EQ(filtered(number(L"<>", 62, 1)), "013");
    EXPECT_EQ(filtered(number(L"&", 70, 1)), "-");
    host::ResbufBuilder builder;
    builder.string(-4, L">,*").point(10, 15, 0);
    EXPECT_EQ(filtered(builder.release().release()), "123");
}

TEST_F(Shapes, FiltersByExtendedData) {
    EXPECT_EQ(acdbRegApp(L"QDV_TEST"), RTNORM);
    EXPECT_EQ(acdbRegApp(L"QDV_TEST"), RTERROR);
    resbuf* data = acutBuildList(1001, L"QDV_TEST", 1071, 5, RTNONE);
    host::Opened<AcDbEntity>(all[1], AcDb::kForWrite)->setXData(data);
    acutRelRb(data);
    host::ResbufBuilder builder;
    builder.mark(-3).string(1001, L"QDV_*");
    EXPECT_EQ(filtered(builder.release().release()), "1");
}

TEST_F(Shapes, SetsAreLists) {
    ads_name set = {0, 0};
    ads_name line;
    ads_name circle;
    acdbGetAdsName(line, all[0]);
    acdbGetAdsName(circle, all[1]);
    EXPECT_EQ(acedSSAdd(nullptr, nullptr, set), RTNORM);
    EXPECT_EQ(acedSSAdd(line, set, set), RTNORM);
    EXPECT_EQ(acedSSAdd(line, set, set), RTNORM);
    EXPECT_EQ(acedSSAdd(circle, set, set), RTNORM);
    EXPECT_EQ(got(RTNORM, set), "01");
    EXPECT_EQ(acedSSMemb(line, set), RTNORM);
    EXPECT_EQ(acedSSDel(line, set), RTNORM);
    EXPECT_EQ(acedSSDel(line, set), RTERROR);
    EXPECT_EQ(acedSSMemb(line, set), RTERROR);
    EXPECT_EQ(got(RTNORM, set), "1");
    ads_name none;
    EXPECT_EQ(acedSSName(set, 1, none), RTERROR);
    EXPECT_EQ(acedSSFree(set), RTNORM);
    EXPECT_EQ(acedSSFree(set), RTERROR);
    EXPECT_EQ(acedSSMemb(circle, set), RTERROR);
    EXPECT_EQ(acedSSFree(line), RTERROR);
}

// The dialogue.

std::string selected;
class Dialogue : public Shapes {
protected:
    Dialogue() {
        selected.clear();
        current = this;
        acedRegCmds->addCommand(L"EDTEST", L"T_SELECT", L"T_SELECT", ACRX_CMD_USEPICKSET,
                                [] { selected += current->select(nullptr); });
        acedRegCmds->addCommand(L"EDTEST", L"T_ONE", L"T_ONE", 0,
                                [] { selected += current->select(L"_:S"); });
        acedRegCmds->addCommand(L"EDTEST", L"T_UNLOCKED", L"T_UNLOCKED", 0,
                                [] { selected += current->select(L"_:L"); });
        acedRegCmds->addCommand(L"EDTEST", L"T_PROMPTS", L"T_PROMPTS", 0, [] {
            const ACHAR* prompts[] = {L"\n加:", L"\n减:"};
            selected += current->select(L":$", prompts);
        });
    }
    ~Dialogue() override { acedRegCmds->removeGroup(L"EDTEST"); }
    static Dialogue* current;

    std::string answer(const std::string& script) {
        selected.clear();
        run(script);
        return selected;
    }
};
Dialogue* Dialogue::current = nullptr;

TEST_F(Dialogue, EveryWay) {
    EXPECT_EQ(answer("T_SELECT\n5,0\n25,0\n\n"), "01");
    EXPECT_EQ(answer("T_SELECT\nW\n-1,-10\n26,10\n\n"), "01");
    EXPECT_EQ(answer("T_SELECT\n_c 46,6 48,8\n\n"), "3");
    EXPECT_EQ(answer("T_SELECT\n-1,-10\n26,10\n\n"), "01");
    EXPECT_EQ(answer("T_SELECT\n9,5\n1,-5\n\n"), "0");
    EXPECT_EQ(answer("T_SELECT\nALL\nR\n5,0\n\n"), "123");
    EXPECT_EQ(answer("T_SELECT\nALL\nR\n5,0\nA\nL\nU\n5,0\n\n"), "1230");
    EXPECT_EQ(answer("T_SELECT\nF 5,-5 5,30 30,30\n\n\n"), "02");
    EXPECT_EQ(answer("T_SELECT\nWP -1,-1 12,-1 50,50 U 12,1 -1,1\n\n\n"), "0");
    EXPECT_EQ(answer("T_SELECT\nP\n\n"), "0");
    EXPECT_EQ(answer("T_SELECT\nL\n\n"), "3");
    EXPECT_EQ(answer("T_SELECT\nSI\n5,0\n"), "0");
    EXPECT_EQ(answer("T_SELECT\n\n"), "-");
    EXPECT_EQ(answer("T_SELECT\n5,0\n^C\n"), "-");
    EXPECT_EQ(answer("T_ONE\n5,0\n"), "0");
    EXPECT_EQ(answer("T_ONE\n-1,-10\n26,10\n"), "01");
    EXPECT_EQ(answer("T_SELECT\nrubbish\n5,0\n\n"), "0");
}

TEST_F(Dialogue, CountsAreTold) {
    answer("T_SELECT\n5,0\n25,0\n5,0\nR\n25,0\n\n");
    EXPECT_EQ(transcript.shown, L"命令: T_SELECT\n"
                                L"选择对象: 5,0\n"
                                L"找到 1 个\n"
                                L"选择对象: 25,0\n"
                                L"找到 1 个，总计 2 个\n"
                                L"选择对象: 5,0\n"
                                L"找到 1 个 (1 个重复)，总计 2 个\n"
                                L"选择对象: R\n"
                                L"删除对象: 25,0\n"
                                L"找到 1 个，删除 1 个，总计 1 个\n"
                                L"删除对象: \n"
                                L"命令: \n");
    answer("T_PROMPTS\n5,0\nR\n5,0\n\n");
    EXPECT_NE(transcript.shown.find(L"\n加:5,0\n"), std::wstring::npos);
    EXPECT_NE(transcript.shown.find(L"\n减:5,0\n"), std::wstring::npos);
}

TEST_F(Dialogue, PickFirstSetsAnswerCommandsThatUseThem) {
    FreeSet set;
    ads_name line;
    acdbGetAdsName(line, all[0]);
    acedSSAdd(line, nullptr, set.name);
    acedSSSetFirst(nullptr, set.name);
    EXPECT_EQ(answer("T_SELECT\n"), "0");
    EXPECT_EQ(answer("T_SELECT\n25,0\n\n"), "1");
    acedSSSetFirst(nullptr, set.name);
    EXPECT_EQ(answer("T_ONE\n25,0\nT_SELECT\n25,0\n\n"), "11");
    acedSSSetFirst(nullptr, set.name);
    EXPECT_EQ(select(L"_I"), "0");
    EXPECT_EQ(select(L"_I"), "-");
}

TEST_F(Dialogue, ProgramsAnswerWithNamesAndSets) {
    FreeSet set;
    ads_name line;
    ads_name circle;
    acdbGetAdsName(line, all[0]);
    acdbGetAdsName(circle, all[1]);
    acedSSAdd(circle, nullptr, set.name);
    EXPECT_EQ(acedCommandS(RTSTR, L"T_SELECT", RTENAME, line, RTPICKS, set.name, RTSTR, L"", RTNONE), RTNORM);
    EXPECT_EQ(selected, "01");
}

TEST_F(Dialogue, LockedLayersAreLeftOut) {
    {
        AcDbLayerTableRecord* layer = nullptr;
        AcDbLayerTable* table = nullptr;
        database().getSymbolTable(table);
        table->getAt(L"墙", layer, AcDb::kForWrite);
        layer->setIsLocked(true);
        layer->close();
        table->close();
    }
    EXPECT_EQ(answer("T_UNLOCKED\n-1,-10\n26,10\n\n"), "0");
    EXPECT_NE(transcript.shown.find(L"1 个在锁定的图层上。"), std::wstring::npos);
    EXPECT_EQ(answer("T_SELECT\n-1,-10\n26,10\n\n"), "01");
}

struct NoCircles : AcEdSSGetFilter {
    void ssgetAddFilter(int, AcEdSelectionSetService& service, const AcDbObjectIdArray&,
                        const AcDbObjectIdArray& added) override {
        for (int i = 0; i < added.length(); ++i) {
            if (host::peek<AcDbCircle>(added[i]) != nullptr) {
                service.remove(i);
            }
        }
    }
};

TEST_F(Dialogue, GroupsAreSelectedAsAWhole) {
    AcDbObjectId id;
    {
        const host::Opened<AcDbDictionary> groups(database().groupDictionaryId(), AcDb::kForWrite);
        auto* group = new AcDbGroup(L"两个");
        ASSERT_EQ(groups->setAt(L"组", group, id), Acad::eOk);
        AcDbObjectIdArray members;
        members.append(all[0]);
        members.append(all[3]);
        EXPECT_EQ(group->append(members), Acad::eOk);
        EXPECT_EQ(group->append(all[3]), Acad::eDuplicateKey);
        group->close();
    }
    EXPECT_TRUE(host::peek<AcDbEntity>(all[0])->hasPersistentReactor(id));
    EXPECT_EQ(answer("T_SELECT\n5,0\n\n"), "03");
    EXPECT_EQ(answer("T_SELECT\n26,10\n-1,-10\n\n"), "013");
    EXPECT_EQ(answer("T_SELECT\nALL\nR\n5,0\n\n"), "12");
    EXPECT_EQ(answer("T_SELECT\n_G\n组\n\n"), "03");
    EXPECT_EQ(answer("T_SELECT\nG\n没有\n25,0\n\n"), "1");
    EXPECT_NE(transcript.shown.find(L"无效的编组名。"), std::wstring::npos);
    EXPECT_EQ(select(L"G", L"组"), "03");
    host::setSystemVariable(L"PICKSTYLE", 0);
    EXPECT_EQ(answer("T_SELECT\n5,0\n\n"), "0");
    host::setSystemVariable(L"PICKSTYLE", 1);
    // A member that is gone is none; what a file holds comes back.
    host::Opened<AcDbEntity>(all[3], AcDb::kForWrite)->erase();
    EXPECT_EQ(answer("T_SELECT\n5,0\n\n"), "0");
    host::Opened<AcDbEntity>(all[3], AcDb::kForWrite, true)->erase(false);
    const std::filesystem::path file = folder() / "group.dxf";
    ASSERT_EQ(database().saveAs(host::toWindowsPath(file).c_str()), Acad::eOk);
    ASSERT_NE(session->openDrawing(file), nullptr);
    EXPECT_EQ(host::groupMembers(L"组")->size(), 2U);
    host::Opened<AcDbGroup>(host::peek<AcDbDictionary>(database().groupDictionaryId())->entries()[0].id,
                            AcDb::kForWrite)
        ->setSelectable(false);
    const ads_point point = {5, 0, 0};
    FreeSet set;
    EXPECT_EQ(acedSSGet(nullptr, point, nullptr, nullptr, set.name), RTNORM);
}

TEST_F(Dialogue, FiltersOfModulesTakeEntitiesOut) {
    NoCircles filter;
    addSSgetFilterInputContextReactor(curDoc(), &filter);
    EXPECT_EQ(answer("T_SELECT\nALL\n\n"), "023");
    EXPECT_EQ(removeSSgetFilterInputContextReactor(curDoc(), &filter), Acad::eOk);
    EXPECT_EQ(removeSSgetFilterInputContextReactor(curDoc(), &filter), Acad::eKeyNotFound);
    EXPECT_EQ(answer("T_SELECT\nALL\n\n"), "0123");
}

TEST_F(Selection, NestedEntitiesAreFoundThroughTheirReferences) {
    auto* block = new AcDbBlockTableRecord;
    block->setName(L"符号");
    AcDbBlockTable* table = nullptr;
    database().getSymbolTable(table, AcDb::kForWrite);
    AcDbObjectId blockId;
    table->add(blockId, block);
    AcDbObjectId lineId;
    auto* line = new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(0, 1, 0));
    block->appendAcDbEntity(lineId, line);
    line->close();
    block->close();
    table->close();
    auto* reference = new AcDbBlockReference(AcGePoint3d(100, 100, 0), blockId);
    reference->setScaleFactors(AcGeScale3d(10, 10, 10));
    reference->setRotation(pi / 2);
    const AcDbObjectId referenceId = add(reference);
    ads_name name;
    ads_point point = {95, 100, 0};
    ads_matrix matrix;
    resbuf* containers = nullptr;
    ASSERT_EQ(acedNEntSelP(nullptr, name, point, 0, matrix, &containers), RTNORM);
    AcDbObjectId picked;
    acdbGetObjectId(picked, name);
    EXPECT_EQ(picked, lineId);
    ASSERT_NE(containers, nullptr);
    acdbGetObjectId(picked, containers->resval.rlname);
    EXPECT_EQ(picked, referenceId);
    EXPECT_EQ(containers->rbnext, nullptr);
    EXPECT_NEAR(matrix[0][3], 100, 1e-9);
    EXPECT_NEAR(matrix[0][1], -10, 1e-9);
    acutRelRb(containers);
    point[0] = 105;
    EXPECT_EQ(acedNEntSelP(nullptr, name, point, 0, matrix, nullptr), RTERROR);
}

TEST_F(Selection, PropertiesThatNobodyGaveAreTheCurrentOnes) {
    const AcDbObjectId walls = addLayer(L"墙");
    host::setSystemVariable(L"CECOLOR", std::wstring_view(L"3"));
    host::setSystemVariable(L"CELTSCALE", 2.5);
    host::setSystemVariable(L"CELWEIGHT", 50);
    host::setSystemVariable(L"CLAYER", std::wstring_view(L"墙"));
    const auto append = [&](AcDbEntity* entity) {
        const host::Opened<AcDbBlockTableRecord> space(database().modelSpaceId(), AcDb::kForWrite);
        EXPECT_EQ(space->appendAcDbEntity(entity), Acad::eOk);
        entity->close();
        return entity;
    };
    const auto* plain = append(new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0)));
    const host::ReadAccess plainAccess(*plain);
    EXPECT_EQ(plain->layerId(), walls);
    EXPECT_EQ(plain->entityColor().colorIndex(), 3);
    EXPECT_EQ(plain->linetypeScale(), 2.5);
    EXPECT_EQ(plain->lineWeight(), AcDb::kLnWt050);
    auto* given = new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0));
    given->setLayer(database().layerZero());
    given->setColorIndex(256);
    append(given);
    const host::ReadAccess givenAccess(*given);
    EXPECT_EQ(given->layerId(), database().layerZero());
    EXPECT_TRUE(given->entityColor().isByLayer());
    EXPECT_EQ(given->linetypeScale(), 2.5);
    EXPECT_EQ(given->lineWeight(), AcDb::kLnWt050);
    // A copy has what its original has.
    host::setSystemVariable(L"CECOLOR", std::wstring_view(L"5"));
    host::setSystemVariable(L"CELTSCALE", 1.0);
    std::unique_ptr<AcDbEntity> copy(AcDbEntity::cast(given->clone()));
    const auto* appended = append(copy.release());
    EXPECT_TRUE(appended->entityColor().isByLayer());
    EXPECT_EQ(appended->linetypeScale(), 2.5);
}

TEST_F(Selection, SnapPoints) {
    addLine(0, 0, 10, 0);
    addLine(5, -5, 5, 5);
    ads_point result;
    const ads_point nearEnd = {8, 0, 0};
    ASSERT_EQ(acedOsnap(nearEnd, L"_end", result), RTNORM);
    EXPECT_EQ(asPnt3d(result), AcGePoint3d(10, 0, 0));
    const ads_point crossing = {5.3, 0, 0};
    ASSERT_EQ(acedOsnap(crossing, L"int", result), RTNORM);
    EXPECT_EQ(asPnt3d(result), AcGePoint3d(5, 0, 0));
    const ads_point nowhere = {50, 50, 0};
    EXPECT_EQ(acedOsnap(nowhere, L"end,mid", result), RTERROR);
    EXPECT_EQ(acedOsnap(nearEnd, L"nonsense", result), RTERROR);
}

} // namespace
