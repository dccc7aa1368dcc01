// Points as PDMODE and PDSIZE say.
#include "host/db/db.h"
#include "host/db/dbents.h"
#include "host/db/drawingsource.h"
#include "host/gi/flatten.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace host {
namespace {

class CountingSink final : public PrimitiveSink {
public:
    std::size_t dots = 0, lines = 0;
    double left = 15, right = 15;

    void polyline(std::span<const AcGePoint3d> points, const Pen&) override {
        ++lines;
        for (const AcGePoint3d& point : points) {
            left = std::min(left, point.x);
            right = std::max(right, point.x);
        }
    }
    void area(const Area&, const Pen&) override { FAIL(); }
    void dot(const AcGePoint3d&, const Pen&) override { ++dots; }
};

TEST(PointMarks, AreAsTheDrawingSays) {
    initializeRuntime();
    initializeDatabaseClasses();
    AcDbDatabase database;
    AcDbObjectId id;
    {
        const Opened<AcDbBlockTableRecord> space(database.modelSpaceId(), AcDb::kForWrite);
        auto* const point = new AcDbPoint(AcGePoint3d(15, 20, 0));
        space->appendAcDbEntity(id, point);
        point->close();
    }
    const struct {
        Adesk::Int16 mode;
        double size;
        std::size_t dots, lines;
        double width; // of all that is drawn
    } cases[] = {
        {0, 4, 1, 0, 0},  {1, 4, 0, 0, 0},  {2, 4, 0, 2, 8},  {3, 4, 0, 2, 8},  {4, 4, 0, 1, 0},
        {33, 4, 0, 1, 4}, {66, 4, 0, 3, 8}, {96, 4, 1, 2, 4}, {2, 0, 0, 2, 10}, {2, -10, 0, 2, 20},
    };
    for (const auto& row : cases) {
        database.setVariable(*findHeaderVariable("PDMODE"), row.mode);
        database.setVariable(*findHeaderVariable("PDSIZE"), row.size);
        const auto source = drawingSource(database);
        FlattenOptions options;
        options.view = {{0, 0, 0}, {50, 100, 0}};
        for (const bool hasView : {true, false}) {
            if (!hasView)
                options.view.reset();
            CountingSink sink;
            Flattener flattener(*source, sink, options);
            auto* const point = peek<AcDbPoint>(id);
            const ReadAccess access(*point);
            flattener.draw(*point);
            const bool isShown = hasView || row.size > 0;
            EXPECT_EQ(sink.dots, isShown ? row.dots : 1) << row.mode;
            EXPECT_EQ(sink.lines, isShown ? row.lines : 0) << row.mode;
            EXPECT_NEAR(sink.right - sink.left, isShown ? row.width : 0, 0.02) << row.mode;
            EXPECT_NEAR(sink.right + sink.left, 30, 1e-6) << row.mode;
        }
    }
}

} // namespace
} // namespace host
