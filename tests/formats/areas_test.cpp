// Records of hatches, multilines, viewports, layouts and drawing order in DXF files, and blocks that hold
// themselves.
#include "drawings.h"

#include <algorithm>

using namespace formats_test;

namespace {

const std::string hatchRecord = groups({{0, "HATCH"},
                                        {5, "80"},
                                        {100, "AcDbEntity"},
                                        {8, "0"},
                                        {100, "AcDbHatch"},
                                        {10, "0.0"},
                                        {20, "0.0"},
                                        {30, "2.5"},
                                        {210, "0.0"},
                                        {220, "0.0"},
                                        {230, "1.0"},
                                        {2, "MIXED"},
                                        {70, "0"},
                                        {71, "1"},
                                        {91, "3"}});
const std::string polylineLoop = groups({{92, "7"},
                                         {72, "1"},
                                         {73, "1"},
                                         {93, "2"},
                                         {10, "0.0"},
                                         {20, "0.0"},
                                         {42, "1.0"},
                                         {10, "10.0"},
                                         {20, "0.0"},
                                         {42, "1.0"},
                                         {97, "1"},
                                         {330, "90"}});
const std::string edgeLoop = groups({{92, "16"},
                                     {93, "2"},
                                     {72, "2"},
                                     {10, "5.0"},
                                     {20, "0.0"},
                                     {40, "2.0"},
                                     {50, "0.0"},
                                     {51, "180.0"},
                                     {73, "1"},
                                     {72, "1"},
                                     {10, "3.0"},
                                     {20, "0.0"},
                                     {11, "7.0"},
                                     {21, "0.0"},
                                     {97, "0"}});
const std::string splineLoop =
    groups({{92, "0"},   {93, "2"},    {72, "4"},   {94, "2"},    {73, "0"},   {74, "0"},   {95, "6"},
            {96, "3"},   {40, "0.0"},  {40, "0.0"}, {40, "0.0"},  {40, "1.0"}, {40, "1.0"}, {40, "1.0"},
            {10, "1.0"}, {20, "-3.0"}, {10, "2.0"}, {20, "-1.0"}, {10, "3.0"}, {20, "-3.0"}});
const std::string splineEnd = groups({{72, "3"},
                                      {10, "2.0"},
                                      {20, "-3.0"},
                                      {11, "1.0"},
                                      {21, "0.0"},
                                      {40, "0.5"},
                                      {50, "180.0"},
                                      {51, "360.0"},
                                      {73, "0"},
                                      {97, "0"}});
const std::string hatchEnd =
    groups({{75, "1"},    {76, "2"},    {52, "30.0"}, {41, "2.0"},  {77, "0"},   {78, "1"},
            {53, "30.0"}, {43, "1.0"},  {44, "2.0"},  {45, "-0.5"}, {46, "0.8"}, {79, "2"},
            {49, "1.0"},  {49, "-0.5"}, {47, "0.25"}, {98, "1"},    {10, "4.0"}, {20, "5.0"},
            {450, "0"},   {451, "0"},   {460, "0.0"}, {470, ""}});
const std::string source = groups({{0, "CIRCLE"},
                                   {5, "90"},
                                   {100, "AcDbEntity"},
                                   {8, "0"},
                                   {100, "AcDbCircle"},
                                   {10, "5.0"},
                                   {20, "0.0"},
                                   {30, "0.0"},
                                   {40, "5.0"}});

/// With plain line ends.
std::string plain(std::string text) {
    std::erase(text, '\r');
    return text;
}

std::string file(const std::string& records) {
    return header("AC1032") + entities(source + records) + eof;
}

} // namespace

TEST(HatchRecord, everyKindOfBoundaryComesBackEqual) {
    // With and without the count of fit points behind a spline, as files before 2010 have it.
    for (const std::string& fit : {groups({{97, "0"}}), std::string()}) {
        const Drawing drawing(
            file(hatchRecord + polylineLoop + edgeLoop + splineLoop + fit + splineEnd + hatchEnd));
        const auto* hatch = AcDbHatch::cast(drawing.at(0x80));
        ASSERT_NE(hatch, nullptr) << drawing.report();
        const host::HatchData& data = hatch->data();
        ASSERT_EQ(data.loops.size(), 3U);
        EXPECT_EQ(data.elevation, 2.5);
        ASSERT_EQ(data.loops[0].sources.size(), 1U);
        EXPECT_EQ(data.loops[0].sources[0].stub()->handle, 0x90U);
        EXPECT_TRUE(data.loops[1].sources.empty());
        EXPECT_TRUE(data.loops[2].sources.empty());
        EXPECT_EQ(data.loops[2].edges[0].spline->controlPoints.size(), 3U);
        EXPECT_FALSE(data.loops[2].edges[1].counterclockwise);
        EXPECT_EQ(data.seeds.size(), 1U);
        EXPECT_EQ(data.pixelSize, 0.25);
        const std::string once = drawing.written();
        for (const char* group : {"\n450\n0\n", "\n470\n\n", " 47\n0.25\n"}) {
            EXPECT_NE(plain(once).find(group), std::string::npos) << group;
        }
        const Drawing again(once);
        EXPECT_EQ(difference(again.written(), once), "");
    }
}

TEST(HatchRecord, whatDoesNotFitIsKeptAsItCame) {
    const std::string wrongCount = groups(
        {{92, "0"}, {93, "3"}, {72, "1"}, {10, "0.0"}, {20, "0.0"}, {11, "1.0"}, {21, "0.0"}, {97, "0"}});
    for (const std::string& records : {hatchRecord + polylineLoop + edgeLoop + wrongCount + hatchEnd,
                                       hatchRecord + polylineLoop + hatchEnd}) {
        const Drawing drawing(file(records));
        ASSERT_NE(drawing.at(0x80), nullptr);
        EXPECT_EQ(AcDbHatch::cast(drawing.at(0x80)), nullptr);
        EXPECT_NE(drawing.written().find("AcDbHatch"), std::string::npos);
        EXPECT_FALSE(drawing.report().empty());
    }
}

TEST(BlockCycles, areBrokenWithALine) {
    const auto blockRecord = [](const std::string& name, const std::string& handle) {
        return groups({{0, "BLOCK_RECORD"},
                       {5, handle},
                       {100, "AcDbSymbolTableRecord"},
                       {100, "AcDbBlockTableRecord"},
                       {2, name}});
    };
    const auto block = [](const std::string& name, const std::string& shown, const std::string& handle) {
        return groups({{0, "BLOCK"}, {8, "0"}, {2, name}, {70, "0"}, {10, "0.0"}, {20, "0.0"}, {30, "0.0"}}) +
               groups({{0, "INSERT"},
                       {5, handle},
                       {100, "AcDbEntity"},
                       {8, "0"},
                       {100, "AcDbBlockReference"},
                       {2, shown},
                       {10, "0.0"},
                       {20, "0.0"},
                       {30, "0.0"}}) +
               groups({{0, "ENDBLK"}, {8, "0"}});
    };
    const Drawing drawing(
        header("AC1032") +
        section("TABLES", groups({{0, "TABLE"}, {2, "BLOCK_RECORD"}, {5, "1"}}) + blockRecord("A", "20") +
                              blockRecord("B", "21") + blockRecord("C", "22") + groups({{0, "ENDTAB"}})) +
        section("BLOCKS", block("A", "B", "31") + block("B", "C", "32") + block("C", "A", "33")) + eof);
    EXPECT_NE(drawing.report().find("使块包含自身"), std::string::npos) << drawing.report();
    int left = 0;
    for (const Adesk::UInt64 handle : {0x31, 0x32, 0x33}) {
        left += drawing.at(handle) != nullptr && !drawing.at(handle)->isErased() ? 1 : 0;
    }
    EXPECT_EQ(left, 2);
    EXPECT_EQ(difference(Drawing(drawing.written()).written(), drawing.written()), "");
}

TEST(SortentsRecord, ordersTheDrawingAndComesBackEqual) {
    const auto line = [](const std::string& handle) {
        return groups({{0, "LINE"},
                       {5, handle},
                       {100, "AcDbEntity"},
                       {8, "0"},
                       {100, "AcDbLine"},
                       {10, "0.0"},
                       {20, "0.0"},
                       {30, "0.0"},
                       {11, "1.0"},
                       {21, "0.0"},
                       {31, "0.0"}});
    };
    Drawing drawing(header("AC1032") + entities(line("80") + line("81") + line("82")) + eof);
    const AcDbObjectId space = drawing.database->modelSpaceId();
    AcDbSortentsTable* table = nullptr;
    {
        const host::Opened<AcDbBlockTableRecord> block(space, AcDb::kForWrite);
        ASSERT_EQ(block->getSortentsTable(table, AcDb::kForWrite, true), Acad::eOk);
    }
    ASSERT_EQ(table->swapOrder(AcDbObjectId(drawing.at(0x80)->objectId()),
                               AcDbObjectId(drawing.at(0x82)->objectId())),
              Acad::eOk);
    table->close();
    const std::string once = drawing.written();
    EXPECT_NE(plain(once).find("331\n80\n"), std::string::npos);
    const Drawing again(once);
    std::vector<Adesk::UInt64> order;
    for (const AcDbStub* stub :
         host::drawOrder(*host::peek<AcDbBlockTableRecord>(again.database->modelSpaceId()))) {
        order.push_back(stub->handle);
    }
    EXPECT_EQ(order, (std::vector<Adesk::UInt64>{0x82, 0x81, 0x80}));
    EXPECT_EQ(again.model().size(), 3U);
    EXPECT_EQ(difference(again.written(), once), "");
    // Other programs leave entries for nobody.
    std::string nobody = once;
    nobody.insert(nobody.find("331\r\n80\r\n"), "331\r\n0\r\n  5\r\nAB\r\n");
    EXPECT_EQ(difference(Drawing(nobody).written(), nobody), "");
}

TEST(LayoutRecords, theCurrentSheetIsTheOneOfTheEntitiesSection) {
    Drawing drawing(header("AC1032") + eof);
    AcDbLayoutManager& layouts = *acdbHostApplicationServices()->layoutManager();
    AcDbObjectId layout, block;
    ASSERT_EQ(layouts.createLayout(L"A3", layout, block, drawing.database.get()), Acad::eOk);
    {
        const host::Opened<AcDbBlockTableRecord> space(block, AcDb::kForWrite);
        auto* viewport = new AcDbViewport;
        viewport->setWidth(100);
        viewport->setHeight(50);
        space->appendAcDbEntity(viewport);
        viewport->close();
    }
    ASSERT_EQ(layouts.setCurrentLayout(L"A3", drawing.database.get()), Acad::eOk);
    const std::string once = drawing.written();
    EXPECT_GT(plain(once).find("\nAcDbViewport\n"), plain(once).find("ENTITIES"));
    const Drawing again(once);
    EXPECT_EQ(again.report(), "");
    ASSERT_EQ(again.paper().size(), 1U);
    EXPECT_TRUE(again.paper()[0]->isKindOf(AcDbViewport::desc()));
    EXPECT_EQ(host::toUtf8(layouts.findActiveLayout(true, again.database.get()).view()), "A3");
    EXPECT_EQ(layouts.countLayouts(again.database.get()), 3);
    EXPECT_EQ(difference(again.written(), once), "");
}

TEST(MlineRecord, comesBackEqualWithItsCuts) {
    const std::string style = section("OBJECTS", groups({{0, "DICTIONARY"},
                                                         {5, "C"},
                                                         {330, "0"},
                                                         {100, "AcDbDictionary"},
                                                         {281, "1"},
                                                         {3, "ACAD_MLINESTYLE"},
                                                         {350, "17"},
                                                         {0, "DICTIONARY"},
                                                         {5, "17"},
                                                         {330, "C"},
                                                         {100, "AcDbDictionary"},
                                                         {281, "1"},
                                                         {3, "ROAD"},
                                                         {350, "18"},
                                                         {0, "MLINESTYLE"},
                                                         {5, "18"},
                                                         {330, "17"},
                                                         {100, "AcDbMlineStyle"},
                                                         {2, "ROAD"},
                                                         {70, "18"},
                                                         {3, "two lines"},
                                                         {62, "3"},
                                                         {51, "90.0"},
                                                         {52, "45.0"},
                                                         {71, "2"},
                                                         {49, "1.0"},
                                                         {62, "1"},
                                                         {420, "16711680"},
                                                         {6, "BYLAYER"},
                                                         {49, "-1.0"},
                                                         {62, "256"},
                                                         {6, "BYLAYER"}}));
    const std::string line = groups(
        {{0, "MLINE"}, {5, "80"},    {100, "AcDbEntity"}, {8, "0"},     {100, "AcDbMline"}, {2, "ROAD"},
         {340, "18"},  {40, "2.0"},  {70, "1"},           {71, "1"},    {72, "2"},          {73, "2"},
         {10, "0.0"},  {20, "0.0"},  {30, "0.0"},         {210, "0.0"}, {220, "0.0"},       {230, "1.0"},
         {11, "0.0"},  {21, "0.0"},  {31, "0.0"},         {12, "1.0"},  {22, "0.0"},        {32, "0.0"},
         {13, "0.0"},  {23, "1.0"},  {33, "0.0"},         {74, "4"},    {41, "2.0"},        {41, "0.0"},
         {41, "3.0"},  {41, "5.0"},  {75, "0"},           {74, "2"},    {41, "-2.0"},       {41, "0.0"},
         {75, "0"},    {11, "10.0"}, {21, "0.0"},         {31, "0.0"},  {12, "1.0"},        {22, "0.0"},
         {32, "0.0"},  {13, "0.0"},  {23, "1.0"},         {33, "0.0"},  {74, "2"},          {41, "2.0"},
         {41, "0.0"},  {75, "0"},    {74, "2"},           {41, "-2.0"}, {41, "0.0"},        {75, "0"}});
    const Drawing drawing(header("AC1032") + entities(line) + style + eof);
    const auto* made = AcDbMline::cast(drawing.at(0x80));
    ASSERT_NE(made, nullptr) << drawing.report();
    const host::ReadAccess access(*made);
    std::vector<host::CurvePiece> pieces;
    made->curvePieces(pieces);
    ASSERT_EQ(pieces.size(), 4U) << "a line in two parts, the other one, and the start's cap";
    EXPECT_TRUE(pieces[1].start().isEqualTo({5, 2, 0}));
    const auto* road = host::peek<AcDbMlineStyle>(made->style());
    ASSERT_NE(road, nullptr);
    EXPECT_TRUE(road->data().elements[0].color.isByColor());
    const std::string once = drawing.written();
    EXPECT_EQ(difference(Drawing(once).written(), once), "");
}
