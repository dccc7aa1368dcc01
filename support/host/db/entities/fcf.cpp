// Geometric tolerances.
#include "host/db/entities/fcf.h"

#include "host/db/dbents.h"
#include "host/db/entities/curvepiece.h"
#include "host/db/entities/fields.h"
#include "host/db/entities/recordlookup.h"
#include "host/db/entities/transforms.h"
#include "host/gi/gi.h"

ACRX_DXF_DEFINE_MEMBERS(AcDbFcf, AcDbEntity, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0, TOLERANCE,
                        ObjectDBX Classes)

namespace {

/// Letters of the symbol font and the characters that other fonts have for them.
constexpr std::pair<wchar_t, wchar_t> symbols[] = {
    {L'a', L'\x2220'}, {L'b', L'\x22A5'}, {L'c', L'\x23E5'}, {L'd', L'\x2313'}, {L'e', L'\x25CB'},
    {L'f', L'\x2225'}, {L'g', L'\x232D'}, {L'h', L'\x2197'}, {L'i', L'\x232F'}, {L'j', L'\x2316'},
    {L'k', L'\x2312'}, {L'l', L'\x24C1'}, {L'm', L'\x24C2'}, {L'n', L'\x2205'}, {L'p', L'\x24C5'},
    {L'r', L'\x25CE'}, {L's', L'\x24C8'}, {L't', L'\x2330'}, {L'u', L'\x23E4'},
};

/// The contents with the symbols as characters where the symbol font is not there.
std::wstring withCharacters(std::wstring text) {
    host::FontSpec font;
    font.file = L"gdt";
    if (host::FontEngine::instance().isAvailable(font)) {
        return text;
    }
    constexpr std::wstring_view start = L"{\\Fgdt;";
    for (std::size_t at = 0; (at = text.find(start, at)) != std::wstring::npos;) {
        const std::size_t end = std::min(text.find(L'}', at), text.size());
        std::wstring shown;
        for (const wchar_t letter : text.substr(at + start.size(), end - at - start.size())) {
            const auto* const found =
                std::find_if(std::begin(symbols), std::end(symbols),
                             [&](const auto& symbol) { return symbol.first == letter; });
            shown += found != std::end(symbols) ? found->second : letter;
        }
        text.replace(at, std::min(end + 1, text.size()) - at, shown);
        at += shown.size();
    }
    return text;
}

/// Rows of cells; empty cells at a row's end are none.
std::vector<std::vector<std::wstring>> cellsOf(std::wstring_view text) {
    std::vector<std::vector<std::wstring>> rows;
    while (!text.empty()) {
        std::size_t end = 0;
        while (end < text.size() && text[end] != L'\n' && !text.substr(end).starts_with(L"\\P")) {
            ++end;
        }
        std::wstring_view row = text.substr(0, end);
        text.remove_prefix(end == text.size() ? end : end + (text[end] == L'\n' ? 1 : 2));
        std::vector<std::wstring> cells;
        while (!row.empty()) {
            const std::size_t mark = row.find(L"%%v");
            cells.emplace_back(row.substr(0, mark));
            row.remove_prefix(mark == std::wstring_view::npos ? row.size() : mark + 3);
        }
        std::erase_if(cells, [](const std::wstring& cell) { return cell.empty(); });
        if (!cells.empty()) {
            rows.push_back(std::move(cells));
        }
    }
    return rows;
}

} // namespace

AcDbFcf::AcDbFcf(const ACHAR* text, const AcGePoint3d& location, const AcGeVector3d& normal,
                 const AcGeVector3d& direction) {
    m.text = text;
    m.location = location;
    setOrientation(normal, direction);
}

ACHAR* AcDbFcf::text() const {
    assertReadEnabled();
    ACHAR* copy = nullptr;
    acutNewString(m.text.kwszPtr(), copy);
    return copy;
}
Acad::ErrorStatus AcDbFcf::text(AcString& text) const {
    assertReadEnabled();
    text = m.text;
    return Acad::eOk;
}
void AcDbFcf::setText(const ACHAR* text) {
    assertWriteEnabled();
    m.text = text;
}
AcGePoint3d AcDbFcf::location() const {
    assertReadEnabled();
    return m.location;
}
void AcDbFcf::setLocation(const AcGePoint3d& point) {
    assertWriteEnabled();
    m.location = point;
}
AcGeVector3d AcDbFcf::normal() const {
    assertReadEnabled();
    return m.normal;
}
AcGeVector3d AcDbFcf::direction() const {
    assertReadEnabled();
    return m.direction;
}
void AcDbFcf::setOrientation(const AcGeVector3d& normal, const AcGeVector3d& direction) {
    assertWriteEnabled();
    m.normal = host::unitNormal(normal);
    const AcGeVector3d across = direction - m.normal * direction.dotProduct(m.normal);
    m.direction =
        across.isZeroLength() ? host::toWorld(m.normal, AcGeVector3d::kXAxis) : host::unitNormal(across);
}
AcDbObjectId AcDbFcf::dimensionStyle() const {
    assertReadEnabled();
    return m.style;
}
void AcDbFcf::setDimensionStyle(AcDbObjectId style) {
    assertWriteEnabled();
    if (host::peek<AcDbDimStyleTableRecord>(style) != nullptr) {
        m.style = style;
    }
}

host::DimVariables AcDbFcf::dimVariables() const {
    assertReadEnabled();
    return host::annotationVariables(*this, m.style);
}
Acad::ErrorStatus AcDbFcf::setDimVariable(const host::DimVariables& values, std::size_t index) {
    assertWriteEnabled();
    setXdataGroups(host::withDimOverride(xdataGroups(), values, index));
    return Acad::eOk;
}

void AcDbFcf::subBecameResident() {
    if (m.style.isNull()) {
        m.style = database()->dimstyle();
    }
}
void AcDbFcf::subSetDatabaseDefaults(AcDbDatabase* database) {
    m.style = database->dimstyle();
}
Acad::ErrorStatus AcDbFcf::getPlane(AcGePlane& plane, AcDb::Planarity& planarity) const {
    assertReadEnabled();
    planarity = AcDb::kPlanar;
    plane.set(m.location, m.normal);
    return Acad::eOk;
}

std::vector<std::unique_ptr<AcDbEntity>> AcDbFcf::parts() const {
    assertReadEnabled();
    const host::DimVariables variables = dimVariables();
    const double scale = variables.scale > 0.0 ? variables.scale : 1.0;
    const double height = variables.txt * scale;
    const double gap = std::fabs(variables.gap) * scale;
    const double rowHeight = height + 2.0 * std::max(gap, 0.5 * height);
    AcGeMatrix3d toWorld;
    toWorld.setCoordSystem(m.location, m.direction, m.normal.crossProduct(m.direction), m.normal);
    std::vector<std::unique_ptr<AcDbEntity>> made;
    const auto line = [&](double x0, double y0, double x1, double y1) {
        auto entity = host::newLike<AcDbLine>(*this);
        entity->setStartPoint(toWorld * AcGePoint3d(x0, y0, 0.0));
        entity->setEndPoint(toWorld * AcGePoint3d(x1, y1, 0.0));
        entity->setNormal(m.normal);
        if (variables.clrd != 0) {
            entity->setColorIndex(static_cast<Adesk::UInt16>(variables.clrd));
        }
        made.push_back(std::move(entity));
    };
    double top = 0.5 * rowHeight;
    for (const std::vector<std::wstring>& row : cellsOf(m.text.view())) {
        double left = 0.0;
        const double bottom = top - rowHeight;
        line(left, bottom, left, top);
        for (const std::wstring& cell : row) {
            auto text = host::newLike<AcDbMText>(*this);
            if (host::peek<AcDbTextStyleTableRecord>(variables.txsty) != nullptr) {
                text->setTextStyle(variables.txsty);
            }
            text->setTextHeight(height > 0.0 ? height : 1.0);
            text->setContents(withCharacters(cell).c_str());
            text->setAttachment(AcDbMText::kMiddleCenter);
            text->setNormal(m.normal);
            text->setDirection(m.direction);
            if (variables.clrt != 0) {
                text->setColorIndex(static_cast<Adesk::UInt16>(variables.clrt));
            }
            const double width = std::max(text->actualWidth() + 2.0 * gap, rowHeight);
            text->setLocation(toWorld * AcGePoint3d(left + 0.5 * width, 0.5 * (top + bottom), 0.0));
            made.push_back(std::move(text));
            left += width;
            line(left, bottom, left, top);
        }
        line(0.0, top, left, top);
        line(0.0, bottom, left, bottom);
        top = bottom;
    }
    return made;
}

void AcDbFcf::getBoundingPoints(AcGePoint3dArray& corners) const {
    AcGeMatrix3d toWorld;
    toWorld.setCoordSystem(m.location, m.direction, m.normal.crossProduct(m.direction), m.normal);
    const AcGeMatrix3d toFrame = toWorld.inverse();
    AcDbExtents box;
    for (const std::unique_ptr<AcDbEntity>& part : parts()) {
        if (const auto* line = AcDbLine::cast(part.get())) {
            box.addPoint(toFrame * line->startPoint());
            box.addPoint(toFrame * line->endPoint());
        }
    }
    if (box.isEmpty()) {
        box.addPoint(AcGePoint3d::kOrigin);
    }
    const AcGePoint3d low = box.minPoint();
    const AcGePoint3d high = box.maxPoint();
    corners.append(toWorld * AcGePoint3d(low.x, high.y, 0.0));
    corners.append(toWorld * AcGePoint3d(high.x, high.y, 0.0));
    corners.append(toWorld * AcGePoint3d(high.x, low.y, 0.0));
    corners.append(toWorld * AcGePoint3d(low.x, low.y, 0.0));
}

bool AcDbFcf::subWorldDraw(AcGiWorldDraw* draw) {
    for (const std::unique_ptr<AcDbEntity>& part : parts()) {
        draw->geometry().draw(part.get());
    }
    return true;
}

bool AcDbFcf::subCurvePieces(std::vector<host::CurvePiece>& pieces) const {
    const std::size_t before = pieces.size();
    for (const std::unique_ptr<AcDbEntity>& part : parts()) {
        if (AcDbLine::cast(part.get()) != nullptr) {
            part->curvePieces(pieces);
        }
    }
    if (pieces.size() == before) {
        pieces.push_back(host::CurvePiece::line(m.location, m.location));
    }
    return true;
}

Acad::ErrorStatus AcDbFcf::subExplode(AcDbVoidPtrArray& made) const {
    for (std::unique_ptr<AcDbEntity>& part : parts()) {
        made.append(part.release());
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbFcf::subTransformBy(const AcGeMatrix3d& transform) {
    const AcGeVector3d x = transform * m.direction;
    const AcGeVector3d y = transform * m.normal.crossProduct(m.direction);
    const AcGeVector3d normal = x.crossProduct(y);
    if (!(normal.length() > 0.0) || !host::isFinite(normal)) {
        return Acad::eDegenerateGeometry;
    }
    assertWriteEnabled();
    m.location = transform * m.location;
    if (!(x == m.direction) || !(normal == m.normal)) {
        m.direction = host::unitNormal(x);
        m.normal = host::unitNormal(normal);
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbFcf::subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray&, AcDbIntArray&) const {
    points.append(location());
    return Acad::eOk;
}
Acad::ErrorStatus AcDbFcf::subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) {
    assertWriteEnabled();
    return host::forGrips(indices, 1, [&](int) { m.location += offset; });
}
Acad::ErrorStatus AcDbFcf::subGetOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker, const AcGePoint3d&,
                                             const AcGePoint3d&, const AcGeMatrix3d&,
                                             AcGePoint3dArray& points, AcDbIntArray&) const {
    if (mode == AcDb::kOsModeIns || mode == AcDb::kOsModeNode) {
        points.append(location());
    }
    if (mode == AcDb::kOsModeEnd) {
        getBoundingPoints(points);
    }
    return Acad::eOk;
}

// Files.

Acad::ErrorStatus AcDbFcf::dwgOutFields(AcDbDwgFiler* filer) const {
    const Acad::ErrorStatus status = AcDbEntity::dwgOutFields(filer);
    return status == Acad::eOk ? host::writeFields(filer, m) : status;
}
Acad::ErrorStatus AcDbFcf::dwgInFields(AcDbDwgFiler* filer) {
    const Acad::ErrorStatus status = AcDbEntity::dwgInFields(filer);
    return status == Acad::eOk ? host::readFields(filer, m) : status;
}
Acad::ErrorStatus AcDbFcf::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    m = {};
    const Acad::ErrorStatus status = AcDbEntity::dxfInFields(filer);
    return status == Acad::eOk ? readDxfGroups(filer) : status;
}
std::string_view AcDbFcf::dxfSubclass(std::string_view marker) const {
    return marker.empty() || marker == "AcDbFcf" ? "AcDbFcf" : std::string_view();
}

bool AcDbFcf::takeDxfGroup(AcDbDxfFiler* filer, const host::DxfGroup& group, std::string_view) {
    switch (group.code) {
    case 1:
        m.text = group.string();
        return true;
    case 3:
        m.style = AcDbObjectId(
            host::namedRecord<AcDbDimStyleTable>(group, filer->database(), &AcDbDatabase::dimStyleTableId));
        return true;
    case 10:
        m.location = group.point();
        return true;
    case 11:
        m.direction = host::unitNormal(group.vector());
        return true;
    case 210:
        m.normal = host::unitNormal(group.vector());
        return true;
    default:
        return false;
    }
}

Acad::ErrorStatus AcDbFcf::dxfGroupsRead(AcDbDxfFiler* filer) {
    if (!host::isFinite(m.location)) {
        return Acad::eInvalidInput;
    }
    if (m.style.isNull() && filer->database() != nullptr) {
        m.style = filer->database()->dimstyle();
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbFcf::dxfOutFields(AcDbDxfFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbEntity::dxfOutFields(filer); status != Acad::eOk) {
        return status;
    }
    filer->writeText(100, "AcDbFcf");
    if (const AcString style = host::recordName(m.style); !style.isEmpty()) {
        filer->writeString(3, style);
    }
    filer->writePoint3d(10, m.location);
    filer->writeString(1, m.text);
    host::writeNormal(filer, m.normal);
    if (!(m.direction == AcGeVector3d::kXAxis) || filer->includesDefaultValues()) {
        filer->writeVector3d(11, m.direction);
    }
    writeKeptGroups(filer, "AcDbFcf");
    return filer->filerStatus();
}
