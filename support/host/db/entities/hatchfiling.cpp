// Hatches in files.
#include "host/db/entities/hatch.h"
#include "host/db/entities/transforms.h"

namespace host {
namespace {

template <class Walk, class Spline>
void walkSpline(Walk& walk, Spline& spline) {
    walk(spline.degree, spline.rational, spline.periodic);
    walkValues(walk, spline.knots);
    walkValues(walk, spline.controlPoints);
    walkValues(walk, spline.weights);
    walkValues(walk, spline.fitPoints);
    walk(spline.startTangent.x, spline.startTangent.y, spline.endTangent.x, spline.endTangent.y);
}

template <class Walk, class Edge>
void walkEdge(Walk& walk, Edge& edge) {
    auto kind = static_cast<Adesk::UInt8>(edge.kind);
    walk(kind);
    if constexpr (Walk::reads) {
        if (kind < 1 || kind > 4) {
            walk.filer().setFilerStatus(Acad::eInvalidInput);
            return;
        }
        edge.kind = static_cast<HatchEdge::Kind>(kind);
        edge.spline = edge.kind == HatchEdge::Kind::spline ? std::make_unique<HatchSpline>() : nullptr;
    }
    if (edge.spline != nullptr) {
        walkSpline(walk, *edge.spline);
        return;
    }
    walk(edge.start, edge.end, edge.major.x, edge.major.y, edge.ratio, edge.startAngle, edge.endAngle,
         edge.counterclockwise);
}

template <class Walk, class Loop>
void walkLoop(Walk& walk, Loop& loop) {
    walk(loop.type, loop.path.closed, loop.hasBulges);
    walkList(walk, loop.path.vertices, [&](auto& vertex) { walk(vertex.point, vertex.bulge); });
    walkList(walk, loop.edges, [&](auto& edge) { walkEdge(walk, edge); });
    walkList(walk, loop.sources, [&](auto& id) { walk.softPointer(id); });
}

} // namespace

template <class Self, class Walk>
void HatchData::fields(Self& data, Walk& walk) {
    walk(data.elevation, data.normal, data.patternName, data.solid, data.associative, data.style,
         data.patternType, data.patternAngle, data.patternScale, data.patternDouble, data.pixelSize);
    walkList(walk, data.loops, [&](auto& loop) { walkLoop(walk, loop); });
    walkList(walk, data.pattern, [&](auto& line) {
        walk(line.angle, line.base, line.offset.x, line.offset.y);
        walkValues(walk, line.dashes);
    });
    walkValues(walk, data.seeds);
}

} // namespace host

Acad::ErrorStatus AcDbHatch::dwgOutFields(AcDbDwgFiler* filer) const {
    const Acad::ErrorStatus status = AcDbEntity::dwgOutFields(filer);
    return status == Acad::eOk ? host::writeFields(filer, m) : status;
}

Acad::ErrorStatus AcDbHatch::dwgInFields(AcDbDwgFiler* filer) {
    Acad::ErrorStatus status = AcDbEntity::dwgInFields(filer);
    if (status == Acad::eOk) {
        status = host::readFields(filer, m);
    }
    // Copies into other drawings may leave objects behind that the boundary was made from.
    const bool leftBehind = std::ranges::any_of(m.loops, [](const host::HatchLoop& loop) {
        return std::ranges::any_of(loop.sources, [](const AcDbObjectId& id) { return id.isNull(); });
    });
    if (leftBehind && filer->filerType() == AcDb::kWblockCloneFiler) {
        m.associative = false;
        for (host::HatchLoop& loop : m.loops) {
            loop.sources.clear();
        }
    }
    changed();
    return status;
}

namespace host {
namespace {

/// Reads the loops of a boundary. What a group means follows from the loop and edge it stands in; the group
/// after a spline that may count its fit points or the loop's objects (97) needs no meaning that way.
class LoopReader {
public:
    LoopReader(AcDbDxfFiler& filer, std::vector<HatchLoop>& loops) : mFiler(filer), mLoops(loops) {}

    bool read(Adesk::Int32 count) {
        while (const DxfGroup* group = mFiler.nextGroup()) {
            const bool another = group->code == 92 && std::ssize(mLoops) < count;
            if (!another && (mLoops.empty() || !take(*group))) {
                mFiler.pushBackItem();
                break;
            }
            if (another) {
                checkCounts();
                mLoops.emplace_back().type = group->int32();
                mCount = -1;
            }
        }
        checkCounts();
        return mIsGood && std::ssize(mLoops) == count;
    }

private:
    bool take(const DxfGroup& group) {
        HatchLoop& loop = mLoops.back();
        switch (group.code) {
        case 93:
            mCount = group.int32();
            return true;
        case 97:
            return true;
        case 330:
            loop.sources.emplace_back(group.id);
            return true;
        default:
            return loop.isPolyline() ? takeVertex(loop, group) : takeEdge(loop, group);
        }
    }

    bool takeVertex(HatchLoop& loop, const DxfGroup& group) {
        switch (group.code) {
        case 72:
            loop.hasBulges = group.boolean();
            return true;
        case 73:
            loop.path.closed = group.boolean();
            return true;
        case 10:
            loop.path.add(group.point2d());
            return true;
        case 42:
            if (!loop.path.vertices.empty()) {
                loop.path.vertices.back().bulge = group.real;
            }
            return true;
        default:
            return false;
        }
    }

    bool takeEdge(HatchLoop& loop, const DxfGroup& group) {
        if (group.code == 72) {
            HatchEdge& edge = loop.edges.emplace_back();
            mIsGood = mIsGood && group.integer >= 1 && group.integer <= 4;
            edge.kind = static_cast<HatchEdge::Kind>(mIsGood ? group.integer : 1);
            if (edge.kind == HatchEdge::Kind::spline) {
                edge.spline = std::make_unique<HatchSpline>();
            }
            return true;
        }
        if (loop.edges.empty()) {
            return false;
        }
        HatchEdge& edge = loop.edges.back();
        if (edge.spline != nullptr) {
            return takeSpline(*edge.spline, group);
        }
        switch (group.code) {
        case 10:
            edge.start = group.point2d();
            return true;
        case 11:
            edge.end = group.point2d();
            edge.major = group.point2d().asVector();
            return true;
        case 40:
            edge.ratio = group.real;
            return true;
        case 50:
            edge.startAngle = radiansOf(group.real);
            return true;
        case 51:
            edge.endAngle = radiansOf(group.real);
            return true;
        case 73:
            edge.counterclockwise = group.boolean();
            return true;
        default:
            return false;
        }
    }

    static bool takeSpline(HatchSpline& spline, const DxfGroup& group) {
        switch (group.code) {
        case 94:
            spline.degree = group.int32();
            return true;
        case 73:
            spline.rational = group.boolean();
            return true;
        case 74:
            spline.periodic = group.boolean();
            return true;
        case 95:
        case 96:
            return true; // counts
        case 40:
            spline.knots.push_back(group.real);
            return true;
        case 10:
            spline.controlPoints.push_back(group.point2d());
            return true;
        case 42:
            spline.weights.push_back(group.real);
            return true;
        case 11:
            spline.fitPoints.push_back(group.point2d());
            return true;
        case 12:
            spline.startTangent = group.point2d().asVector();
            return true;
        case 13:
            spline.endTangent = group.point2d().asVector();
            return true;
        default:
            return false;
        }
    }

    /// A loop that is finished: its number of parts is right, and its groups make sense.
    void checkCounts() {
        if (mLoops.empty()) {
            return;
        }
        HatchLoop& loop = mLoops.back();
        const std::ptrdiff_t parts = loop.isPolyline() ? loop.path.vertexCount() : std::ssize(loop.edges);
        mIsGood = mIsGood && parts == mCount;
        for (HatchEdge& edge : loop.edges) {
            if (edge.kind == HatchEdge::Kind::arc) {
                edge.major.set(edge.ratio, 0.0); // group 40 is the radius
                edge.ratio = 1.0;
                edge.end = {};
            } else if (edge.kind == HatchEdge::Kind::ellipse) {
                edge.end = {};
            } else {
                edge.major = AcGeVector2d::kXAxis;
            }
        }
    }

    AcDbDxfFiler& mFiler;
    std::vector<HatchLoop>& mLoops;
    Adesk::Int32 mCount = -1;
    bool mIsGood = true;
};

void writeSpline(AcDbDxfFiler* filer, const HatchSpline& spline) {
    filer->writeInt32(94, spline.degree);
    filer->writeInt16(73, spline.rational ? 1 : 0);
    filer->writeInt16(74, spline.periodic ? 1 : 0);
    filer->writeInt32(95, static_cast<Adesk::Int32>(spline.knots.size()));
    filer->writeInt32(96, static_cast<Adesk::Int32>(spline.controlPoints.size()));
    for (const double knot : spline.knots) {
        filer->writeReal(40, knot);
    }
    for (std::size_t index = 0; index < spline.controlPoints.size(); ++index) {
        filer->writePoint2d(10, spline.controlPoints[index]);
        if (index < spline.weights.size()) {
            filer->writeReal(42, spline.weights[index]);
        }
    }
    filer->writeInt32(97, static_cast<Adesk::Int32>(spline.fitPoints.size()));
    for (const AcGePoint2d& point : spline.fitPoints) {
        filer->writePoint2d(11, point);
    }
    if (!spline.fitPoints.empty()) {
        filer->writeVector2d(12, spline.startTangent);
        filer->writeVector2d(13, spline.endTangent);
    }
}

void writeEdge(AcDbDxfFiler* filer, const HatchEdge& edge) {
    filer->writeInt16(72, static_cast<Adesk::Int16>(edge.kind));
    if (edge.spline != nullptr) {
        writeSpline(filer, *edge.spline);
        return;
    }
    filer->writePoint2d(10, edge.start);
    if (edge.kind == HatchEdge::Kind::line) {
        filer->writePoint2d(11, edge.end);
        return;
    }
    if (edge.kind == HatchEdge::Kind::ellipse) {
        filer->writeVector2d(11, edge.major);
        filer->writeReal(40, edge.ratio);
    } else {
        filer->writeReal(40, edge.major.x);
    }
    filer->writeAngle(50, edge.startAngle);
    filer->writeAngle(51, edge.endAngle);
    filer->writeInt16(73, edge.counterclockwise ? 1 : 0);
}

void writeLoop(AcDbDxfFiler* filer, const HatchLoop& loop) {
    filer->writeInt32(92, loop.type);
    if (loop.isPolyline()) {
        filer->writeInt16(72, loop.hasBulges ? 1 : 0);
        filer->writeInt16(73, loop.path.closed ? 1 : 0);
        filer->writeInt32(93, loop.path.vertexCount());
        for (const BulgeVertex& vertex : loop.path.vertices) {
            filer->writePoint2d(10, vertex.point);
            if (loop.hasBulges) {
                filer->writeReal(42, vertex.bulge);
            }
        }
    } else {
        filer->writeInt32(93, static_cast<Adesk::Int32>(loop.edges.size()));
        for (const HatchEdge& edge : loop.edges) {
            writeEdge(filer, edge);
        }
    }
    filer->writeInt32(97, static_cast<Adesk::Int32>(loop.sources.size()));
    for (const AcDbObjectId& id : loop.sources) {
        filer->writeObjectId(330, id);
    }
}

} // namespace
} // namespace host

Acad::ErrorStatus AcDbHatch::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    m = {};
    mHasBoundary = false;
    changed();
    const Acad::ErrorStatus status = AcDbEntity::dxfInFields(filer);
    return status == Acad::eOk ? readDxfGroups(filer) : status;
}

std::string_view AcDbHatch::dxfSubclass(std::string_view marker) const {
    return marker.empty() || marker == "AcDbHatch" ? "AcDbHatch" : std::string_view();
}

void AcDbHatch::readPattern(AcDbDxfFiler* filer, Adesk::Int32 count) {
    while (const host::DxfGroup* group = filer->nextGroup()) {
        if (group->code == 53 && std::ssize(m.pattern) < count) {
            m.pattern.emplace_back().angle = host::radiansOf(group->real);
            continue;
        }
        host::HatchPatternLine* line = m.pattern.empty() ? nullptr : &m.pattern.back();
        if (line != nullptr && group->code == 43) {
            line->base.x = group->real;
        } else if (line != nullptr && group->code == 44) {
            line->base.y = group->real;
        } else if (line != nullptr && group->code == 45) {
            line->offset.x = group->real;
        } else if (line != nullptr && group->code == 46) {
            line->offset.y = group->real;
        } else if (line != nullptr && group->code == 49) {
            line->dashes.push_back(group->real);
        } else if (line == nullptr || group->code != 79) {
            filer->pushBackItem();
            return;
        }
    }
}

void AcDbHatch::readSeeds(AcDbDxfFiler* filer, Adesk::Int32 count) {
    while (const host::DxfGroup* group = filer->nextGroup()) {
        if (group->code != 10 || std::ssize(m.seeds) >= count) {
            filer->pushBackItem();
            return;
        }
        m.seeds.push_back(group->point2d());
    }
}

bool AcDbHatch::takeDxfGroup(AcDbDxfFiler* filer, const host::DxfGroup& group, std::string_view) {
    switch (group.code) {
    case 10:
        m.elevation = group.z;
        return true;
    case 210:
        m.normal = host::unitNormal(group.vector());
        return true;
    case 2:
        m.patternName = group.string();
        return true;
    case 70:
        m.solid = group.boolean();
        return true;
    case 71:
        m.associative = group.boolean();
        return true;
    case 91:
        mHasBoundary = true;
        if (!host::LoopReader(*filer, m.loops).read(group.int32())) {
            filer->setFilerStatus(Acad::eInvalidInput);
        }
        return true;
    case 75:
        m.style = group.int16();
        return true;
    case 76:
        m.patternType = group.int16();
        return true;
    case 52:
        m.patternAngle = host::radiansOf(group.real);
        return true;
    case 41:
        m.patternScale = group.real;
        return true;
    case 77:
        m.patternDouble = group.boolean();
        return true;
    case 78:
        readPattern(filer, group.int32());
        return true;
    case 47:
        m.pixelSize = group.real;
        return true;
    case 98:
        readSeeds(filer, group.int32());
        return true;
    default:
        return false; // a gradient's groups among them
    }
}

Acad::ErrorStatus AcDbHatch::dxfGroupsRead(AcDbDxfFiler*) {
    if (!mHasBoundary) {
        return Acad::eInvalidInput;
    }
    // Whatever number there is has to be one; the filing knows where they are.
    host::MemoryDwgFiler filer(AcDb::kFileFiler);
    host::writeFields(&filer, m);
    filer.rewind();
    host::HatchData checked;
    return host::readFields(&filer, checked);
}

Acad::ErrorStatus AcDbHatch::dxfOutFields(AcDbDxfFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbEntity::dxfOutFields(filer); status != Acad::eOk) {
        return status;
    }
    filer->writeText(100, "AcDbHatch");
    filer->writePoint3d(10, {0.0, 0.0, m.elevation});
    filer->writeVector3d(210, m.normal);
    filer->writeString(2, m.patternName);
    filer->writeInt16(70, m.solid ? 1 : 0);
    filer->writeInt16(71, m.associative ? 1 : 0);
    filer->writeInt32(91, static_cast<Adesk::Int32>(m.loops.size()));
    for (const host::HatchLoop& loop : m.loops) {
        host::writeLoop(filer, loop);
    }
    filer->writeInt16(75, m.style);
    filer->writeInt16(76, m.patternType);
    if (!m.solid) {
        filer->writeAngle(52, m.patternAngle);
        filer->writeReal(41, m.patternScale);
        filer->writeInt16(77, m.patternDouble ? 1 : 0);
        filer->writeInt16(78, static_cast<Adesk::Int16>(m.pattern.size()));
        for (const host::HatchPatternLine& line : m.pattern) {
            filer->writeAngle(53, line.angle);
            filer->writeReal(43, line.base.x);
            filer->writeReal(44, line.base.y);
            filer->writeReal(45, line.offset.x);
            filer->writeReal(46, line.offset.y);
            filer->writeInt16(79, static_cast<Adesk::Int16>(line.dashes.size()));
            for (const double dash : line.dashes) {
                filer->writeReal(49, dash);
            }
        }
    }
    if (m.pixelSize != 0.0) {
        filer->writeReal(47, m.pixelSize);
    }
    filer->writeInt32(98, static_cast<Adesk::Int32>(m.seeds.size()));
    for (const AcGePoint2d& seed : m.seeds) {
        filer->writePoint2d(10, seed);
    }
    writeKeptGroups(filer, "AcDbHatch");
    return filer->filerStatus();
}
