// The polyline with widths: its vertices and questions, and its settings in the user's profile.
#include "drawing/widthpolyline.h"
#include "restools/profilesection.h"
#include "tests/module/sessionfixture.h"

namespace {

class WidthPolylineTest : public SessionTest {};

} // namespace

TEST_F(WidthPolylineTest, EachSegmentHasTheWidthsItWasPickedWith) {
    WidthPolylineCourse course;
    course.Add({0, 0, 5});
    course.AddSegment({10, 0, 0}, 1, 2);
    course.AddSegment({10, 10, 0}, 3, 4);
    course.AddSegment({0, 10, 0}, 5, 6);
    course.RemoveLast();
    AcDbPolyline polyline;
    course.AddVertices(polyline);
    ASSERT_EQ(polyline.numVerts(), 3U);
    const double expected[][2] = {{1, 2}, {3, 4}, {0, 0}};
    for (unsigned i = 0; i < 3; ++i) {
        double start = -1;
        double end = -1;
        EXPECT_EQ(polyline.getWidthsAt(i, start, end), Acad::eOk);
        EXPECT_EQ(start, expected[i][0]);
        EXPECT_EQ(end, expected[i][1]);
    }
    course.RemoveLast();
    course.RemoveLast();
    course.RemoveLast();
    EXPECT_TRUE(course.points.isEmpty());
    EXPECT_TRUE(course.widths.isEmpty());
}

TEST_F(WidthPolylineTest, SettingsAreKeptAsTexts) {
    const CProfileSection section(L"CPline\\");
    section.SetText(L"StartWidth", L"-5");
    section.SetText(L"EndWidth", L"wide");
    section.SetText(L"XInc", L"12.5 m");
    section.SetInt(L"UseSnap", 0);
    LoadWidthPolylineSettings();
    const WidthPolylineSettings& settings = GetWidthPolylineSettings();
    EXPECT_EQ(settings.startWidth, 5.0);
    EXPECT_EQ(settings.endWidth, 0.0);
    EXPECT_EQ(settings.xIncrement, 12.5);
    EXPECT_EQ(settings.yIncrement, 10.0);
    EXPECT_EQ(settings.useSnap, 0);
    SaveWidthPolylineSettings();
    EXPECT_STREQ(section.GetText(L"StartWidth", L""), L"5.000000");
    EXPECT_STREQ(section.GetText(L"YInc", L""), L"10.000000");
    EXPECT_FALSE(section.GetText(L"Author", L"").IsEmpty());
    EXPECT_EQ(section.GetInt(L"UseSnap", 7), 0);
    for (const wchar_t* value : {L"StartWidth", L"EndWidth", L"XInc", L"YInc"}) {
        section.SetText(value, value[0] == L'X' || value[0] == L'Y' ? L"10.0" : L"0.0");
    }
    section.SetInt(L"UseSnap", 1);
}
