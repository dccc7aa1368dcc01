// Vertical texts, and attributes of several lines: what they show, and what files hold of them.
#include "entitysamples.h"

#include "host/gi/gi.h"

#include <algorithm>
#include <cmath>

using namespace testing_entities;

namespace {

class TextTest : public testing::Test {
protected:
    static void SetUpTestSuite() { initialize(); }
    Drawing drawing;

    AcDbObjectId verticalStyle() {
        auto* style = new AcDbTextStyleTableRecord;
        style->setName(L"竖排");
        style->setFileName(L"txt.shx");
        style->setIsVertical(true);
        const host::Opened<AcDbTextStyleTable> styles(drawing.database.textStyleTableId(), AcDb::kForWrite);
        AcDbObjectId id;
        styles->add(id, style);
        style->close();
        return id;
    }
};

TEST_F(TextTest, VerticalOnesAreAlignedAlongTheirLine) {
    const AcDbObjectId style = verticalStyle();
    const struct {
        AcDb::TextHorzMode horizontal;
        double share; ///< of the length, above the alignment point
    } table[] = {{AcDb::kTextCenter, 0.5}, {AcDb::kTextRight, 1.0}, {AcDb::kTextMid, 0.5}};
    for (const auto& row : table) {
        AcDbText text({1, 2, 0}, L"线HI", style, 2.0);
        const double length = -text.textBox().bottom;
        EXPECT_GT(length, 3 * 2.0);
        EXPECT_NEAR(text.textBox().top, 0.0, 0.02);
        text.setHorizontalMode(row.horizontal);
        text.setAlignmentPoint({10, 20, 0});
        EXPECT_TRUE(
            text.position().isEqualTo({10, 20 + row.share * length, 0}, AcGeTol().setEqualPoint(1e-9)));
    }
    // By a corner of what is drawn.
    AcDbText corner({0, 0, 0}, L"HI", style, 2.0);
    corner.setHorizontalMode(AcDb::kTextRight);
    corner.setVerticalMode(AcDb::kTextTop);
    corner.setAlignmentPoint({10, 20, 0});
    AcDbExtents box;
    corner.getGeomExtents(box);
    EXPECT_NEAR(box.maxPoint().x, 10, 1e-9);
    EXPECT_NEAR(box.maxPoint().y, 20, 1e-9);
}

TEST_F(TextTest, VerticalOnesRunBetweenTheirPoints) {
    AcDbText text({0, 0, 0}, L"线路图", verticalStyle(), 2.0);
    text.setHorizontalMode(AcDb::kTextAlign);
    text.setAlignmentPoint({0, -60, 0});
    EXPECT_NEAR(text.rotation(), 0.0, 1e-9);
    EXPECT_NEAR(text.textBox().bottom, -60, 1e-6);
    text.setAlignmentPoint({60, 0, 0});
    EXPECT_NEAR(text.rotation(), host::pi / 2, 1e-9);
    text.setHorizontalMode(AcDb::kTextFit);
    const double height = text.height();
    text.setAlignmentPoint({30, 0, 0});
    EXPECT_EQ(text.height(), height);
    EXPECT_EQ(text.widthFactor(), 1.0);
}

class LinesTest : public TextTest {
protected:
    /// As files have it, with or without the direction and what follows.
    void read(AcDbAttribute& attribute) {
        host::ResbufBuilder builder;
        builder.string(100, L"AcDbEntity").string(8, L"0").string(100, L"AcDbText").point(10, 1, 2);
        builder.real(40, 2.5).string(1, L"one").string(100, L"AcDbAttribute").integer(280, 0);
        builder.string(2, L"TAG").integer(70, 0).integer(280, 1).integer(71, 2);
        builder.string(101, L"Embedded Object").point(10, 1, 2).real(40, 2.5).real(41, 0.0);
        builder.integer(71, 1).integer(72, 5).string(1, L"one\\Ptwo\\P三");
        const host::ResbufList list = builder.release();
        host::ResbufDxfReader reader(&drawing.database, list.get());
        ASSERT_EQ(attribute.dxfIn(&reader), Acad::eOk);
    }
    static std::vector<std::string> embedded(const AcDbObject& object) {
        std::vector<std::string> groups = groupsOf(object);
        groups.erase(groups.begin(), std::find(groups.begin(), groups.end(), "101=Embedded Object"));
        return groups;
    }
};

TEST_F(LinesTest, AreShownBelowEachOther) {
    AcDbAttribute attribute;
    read(attribute);
    ASSERT_TRUE(attribute.isMTextAttribute());
    const std::unique_ptr<AcDbMText> text(attribute.getMTextAttribute());
    EXPECT_EQ(text->layout().lineCount, 3);
    AcDbExtents shown, lines;
    attribute.getGeomExtents(shown);
    text->getGeomExtents(lines);
    EXPECT_TRUE(shown.minPoint().isEqualTo(lines.minPoint()));
    EXPECT_TRUE(shown.maxPoint().isEqualTo(lines.maxPoint()));
    EXPECT_GT(shown.maxPoint().y - shown.minPoint().y, 3 * 2.5);
    AcDbAttribute plain({1, 2, 0}, L"one", L"TAG", drawing.style);
    EXPECT_FALSE(plain.isMTextAttribute());
    EXPECT_EQ(plain.getMTextAttribute(), nullptr);
}

TEST_F(LinesTest, FollowTheAttribute) {
    AcDbAttribute attribute;
    read(attribute);
    attribute.transformBy(AcGeMatrix3d::translation({5, 0, 0}));
    EXPECT_EQ(embedded(attribute),
              (std::vector<std::string>{"101=Embedded Object", "10=6,0,0", "20=2", "30=0", "40=2.5", "41=0",
                                        "71=1", "72=5", "1=one\\Ptwo\\P三"}));
    attribute.transformBy(AcGeMatrix3d::rotation(host::pi / 2, AcGeVector3d::kZAxis, AcGePoint3d::kOrigin));
    attribute.setPosition(attribute.position() + AcGeVector3d(2, 0, 0));
    attribute.setHeight(4);
    attribute.setTextString(L"four\\P五");
    const std::unique_ptr<AcDbMText> text(attribute.getMTextAttribute());
    EXPECT_TRUE(text->location().isEqualTo({0, 6, 0}, AcGeTol().setEqualPoint(1e-9)));
    EXPECT_NEAR(text->rotation(), host::pi / 2, 1e-9);
    EXPECT_EQ(text->textHeight(), 4);
    EXPECT_EQ(text->layout().lineCount, 2);
    const AcString long300(std::wstring(300, L'长').c_str());
    attribute.setTextString(long300);
    AcString contents;
    std::unique_ptr<AcDbMText>(attribute.getMTextAttribute())->contents(contents);
    EXPECT_EQ(contents, long300);
}

TEST_F(LinesTest, ComeFromTheDefinition) {
    AcDbAttributeDefinition definition({0, 0, 0}, L"one", L"TAG", L"?", drawing.style);
    {
        AcDbAttribute source;
        read(source);
        definition.replaceKeptGroups("", *source.keptGroups(""));
    }
    AcDbAttribute attribute;
    ASSERT_EQ(attribute.setAttributeFromBlock(&definition, AcGeMatrix3d::translation({10, 0, 0})), Acad::eOk);
    attribute.setTextString(L"one"); // what it says already
    const std::unique_ptr<AcDbMText> text(attribute.getMTextAttribute());
    ASSERT_NE(text, nullptr);
    EXPECT_TRUE(text->location().isEqualTo({11, 2, 0}));
    EXPECT_EQ(text->layout().lineCount, 3);
    EXPECT_EQ(bytesOf(*std::unique_ptr<AcDbAttribute>(AcDbAttribute::cast(attribute.clone()))),
              bytesOf(attribute));
}

} // namespace
