// The standard arrow blocks. An arrow block is one unit long, its tip at the origin, pointing along X.
#include "host/db/entities/arrowheads.h"

#include "host/db/dbdatabase.h"
#include "host/db/entities/blockreference.h"
#include "host/db/entities/circle.h"
#include "host/db/entities/line.h"
#include "host/db/entities/polyline.h"
#include "host/db/entities/solid.h"

#include <algorithm>

namespace host {
namespace {

using Parts = std::vector<std::unique_ptr<AcDbEntity>>;
using P = AcGePoint3d;

/// Half the width of the filled arrow, as a part of its length.
constexpr double slimness = 1.0 / 6.0;

void add(Parts& parts, AcDbEntity* entity) {
    parts.emplace_back(entity);
}
void line(Parts& parts, const P& from, const P& to) {
    add(parts, new AcDbLine(from, to));
}
void path(Parts& parts, std::initializer_list<AcGePoint2d> points, bool closed) {
    auto* polyline = new AcDbPolyline;
    for (const AcGePoint2d& point : points) {
        polyline->addVertexAt(polyline->numVerts(), point);
    }
    polyline->setClosed(closed);
    add(parts, polyline);
}
void circle(Parts& parts, const P& center, double radius) {
    add(parts, new AcDbCircle(center, AcGeVector3d::kZAxis, radius));
}
/// A filled disc: two half circles as wide as the radius.
void disc(Parts& parts, double radius) {
    auto* polyline = new AcDbPolyline;
    polyline->addVertexAt(0, {-0.5 * radius, 0.0}, 1.0, radius, radius);
    polyline->addVertexAt(1, {0.5 * radius, 0.0}, 1.0, radius, radius);
    polyline->setClosed(true);
    add(parts, polyline);
}
void open(Parts& parts, double halfWidth) {
    line(parts, {-1.0, halfWidth, 0.0}, P::kOrigin);
    line(parts, P::kOrigin, {-1.0, -halfWidth, 0.0});
    line(parts, P::kOrigin, {-1.0, 0.0, 0.0});
}
void closed(Parts& parts) {
    path(parts, {{-1.0, slimness}, {0.0, 0.0}, {-1.0, -slimness}}, true);
}

struct StandardArrow {
    const wchar_t* name;
    bool keepsLine;
    void (*draw)(Parts&);
};

constexpr StandardArrow arrows[] = {
    {L"_Dot", false,
     [](Parts& p) {
         disc(p, 0.5);
         line(p, {-0.5, 0, 0}, {-1, 0, 0});
     }},
    {L"_DotSmall", true, [](Parts& p) { disc(p, 0.125); }},
    {L"_DotBlank", false,
     [](Parts& p) {
         circle(p, P::kOrigin, 0.5);
         line(p, {-0.5, 0, 0}, {-1, 0, 0});
     }},
    {L"_Small", true, [](Parts& p) { circle(p, P::kOrigin, 0.125); }},
    {L"_Origin", true,
     [](Parts& p) {
         circle(p, P::kOrigin, 0.5);
         line(p, P::kOrigin, {-1, 0, 0});
     }},
    {L"_Origin2", false,
     [](Parts& p) {
         circle(p, P::kOrigin, 0.25);
         circle(p, P::kOrigin, 0.5);
         line(p, {-0.5, 0, 0}, {-1, 0, 0});
     }},
    {L"_Open", true, [](Parts& p) { open(p, slimness); }},
    {L"_Open90", true,
     [](Parts& p) {
         line(p, {-0.5, 0.5, 0}, P::kOrigin);
         line(p, P::kOrigin, {-0.5, -0.5, 0});
         line(p, P::kOrigin, {-1, 0, 0});
     }},
    {L"_Open30", true, [](Parts& p) { open(p, 0.26794919243112270); }},
    {L"_Closed", true,
     [](Parts& p) {
         closed(p);
         line(p, P::kOrigin, {-1, 0, 0});
     }},
    {L"_ClosedBlank", false, [](Parts& p) { closed(p); }},
    {L"_None", true, [](Parts&) {}},
    {L"_Oblique", true,
     [](Parts& p) {
         line(p, {-0.5, -0.5, 0}, {0.5, 0.5, 0});
     }},
    {L"_ArchTick", true,
     [](Parts& p) {
         auto* polyline = new AcDbPolyline;
         polyline->addVertexAt(0, {-0.5, -0.5}, 0.0, 0.15, 0.15);
         polyline->addVertexAt(1, {0.5, 0.5}, 0.0, 0.15, 0.15);
         add(p, polyline);
     }},
    {L"_BoxFilled", false,
     [](Parts& p) {
         add(p, new AcDbSolid({-0.5, 0.5, 0}, {0.5, 0.5, 0}, {-0.5, -0.5, 0}, {0.5, -0.5, 0}));
         line(p, {-0.5, 0, 0}, {-1, 0, 0});
     }},
    {L"_BoxBlank", false,
     [](Parts& p) {
         path(p, {{-0.5, -0.5}, {0.5, -0.5}, {0.5, 0.5}, {-0.5, 0.5}}, true);
         line(p, {-0.5, 0, 0}, {-1, 0, 0});
     }},
    {L"_DatumFilled", false,
     [](Parts& p) {
         add(p, new AcDbSolid({0, 0.57735027, 0}, {-1, 0, 0}, {0, -0.57735027, 0}));
     }},
    {L"_DatumBlank", false,
     [](Parts& p) {
         path(p, {{0, 0.57735027}, {-1, 0}, {0, -0.57735027}}, true);
     }},
    {L"_Integral", true,
     [](Parts& p) {
         add(p, new AcDbArc({0.44488802, -0.09133463, 0}, 0.45416667, 1.78023583, 2.93215314));
         add(p, new AcDbArc({-0.44488802, 0.09133463, 0}, 0.45416667, 1.78023583 + pi, 2.93215314 + pi));
     }},
};

const StandardArrow* findArrow(std::wstring_view name) {
    const auto* const found =
        std::find_if(std::begin(arrows), std::end(arrows), [&](const StandardArrow& one) {
            return equalNoCase(name, std::wstring_view(one.name)) ||
                   equalNoCase(name, std::wstring_view(one.name).substr(1));
        });
    return found != std::end(arrows) ? found : nullptr;
}

const StandardArrow* standardArrow(AcDbObjectId block) {
    const auto* record = peek<AcDbBlockTableRecord>(block, true);
    return record != nullptr ? findArrow(record->name().view()) : nullptr;
}

} // namespace

AcDbObjectId arrowBlock(AcDbDatabase& database, std::wstring_view name) {
    if (name.empty() || name == L"." || equalNoCase(name, std::wstring_view(L"_ClosedFilled")) ||
        equalNoCase(name, std::wstring_view(L"ClosedFilled"))) {
        return {};
    }
    auto* table = peek<AcDbBlockTable>(database.blockTableId());
    const StandardArrow* arrow = findArrow(name);
    const std::wstring wanted = arrow != nullptr ? arrow->name : std::wstring(name);
    AcDbObjectId id;
    if (table->AcDbSymbolTable::getAt(wanted.c_str(), id) == Acad::eOk || arrow == nullptr) {
        return id;
    }
    auto record = std::make_unique<AcDbBlockTableRecord>();
    record->setName(arrow->name);
    Parts parts;
    arrow->draw(parts);
    for (std::unique_ptr<AcDbEntity>& part : parts) {
        part->setLayer(database.layerZero());
        part->setLinetype(database.byBlockLinetype());
        part->setColorIndex(0);
        part->setLineWeight(AcDb::kLnWtByBlock);
        record->appendAcDbEntity(part.release());
    }
    const bool wasOpen = std::exchange(table->objectId().stub()->openForWrite, true);
    if (table->add(id, record.get()) == Acad::eOk) {
        record.release()->close();
    }
    table->objectId().stub()->openForWrite = wasOpen;
    return id;
}

bool arrowKeepsLine(AcDbObjectId block) {
    const StandardArrow* arrow = standardArrow(block);
    return arrow != nullptr && arrow->keepsLine;
}

bool isNoArrow(AcDbObjectId block) {
    return standardArrowName(block) == L"_None";
}

std::wstring_view standardArrowName(AcDbObjectId block) {
    const StandardArrow* arrow = standardArrow(block);
    return arrow != nullptr ? arrow->name : std::wstring_view();
}

std::unique_ptr<AcDbEntity> makeArrow(AcDbObjectId block, const AcGePoint3d& tip, double angle, double size) {
    const AcGeVector3d along = to3d(direction(angle)) * size;
    if (peek<AcDbBlockTableRecord>(block) != nullptr) {
        auto reference = std::make_unique<AcDbBlockReference>(tip, block);
        reference->setScaleFactors({size, size, size});
        reference->setRotation(angle);
        return reference;
    }
    const AcGeVector3d across = AcGeVector3d(-along.y, along.x, 0.0) * slimness;
    const AcGePoint3d base = tip - along;
    return std::make_unique<AcDbSolid>(base + across, base - across, tip);
}

} // namespace host
