// The table of map symbols, and what follows the drawing of their line.
#include "frame/mapsymbols.h"

#include "frame/symbolline.h"
#include "frame/symbolsession.h"
#include "restools/curves.h"
#include "restools/drawing.h"
#include "restools/hostcommand.h"
#include "restools/sysvar.h"

#include <optional>
#include <span>
#include <string>

namespace {

constexpr const ACHAR* enter = L"";
constexpr int entityTypeGroup = 0;

/// Blocks along a line; the block's name begins with the letter of the side.
struct SlopeMark {
    const ACHAR* base;
    double spacing;
};
constexpr SlopeMark xpwMarks[] = {{L"XPW", 3.0}, {L"DPW", 1.5}};
constexpr SlopeMark xpjMarks[] = {{L"XPJ", 1.5}, {L"XPW", 3.0}};
constexpr SlopeMark dpwMarks[] = {{L"DPW", 1.5}};
constexpr SlopeMark dpjMarks[] = {{L"DPJ", 3.0}};

enum class Railway { none, single, overlaid };

struct Symbol {
    const ACHAR* linetype; ///< while drawing; null: by layer
    double width;
    std::span<const SlopeMark> marks;
    Railway railway = Railway::none;
};

Symbol symbolOf(LineSymbol symbol) {
    switch (symbol) {
    case LineSymbol::jqx:
        return {nullptr, 0.3, {}};
    case LineSymbol::dgx:
        return {nullptr, 0.0, {}};
    case LineSymbol::hdx:
        return {L"dot", 0.0, {}};
    case LineSymbol::hxx:
        return {L"dashed", 0.0, {}};
    case LineSymbol::xpw:
        return {nullptr, 0.0, xpwMarks};
    case LineSymbol::xpj:
        return {nullptr, 0.0, xpjMarks};
    case LineSymbol::dpw:
        return {nullptr, 0.0, dpwMarks};
    case LineSymbol::dpj:
        return {nullptr, 0.0, dpjMarks};
    case LineSymbol::substation:
        return {L"DASHED", 0.0, {}};
    case LineSymbol::county:
        return {L"DASHED", 0.21, {}};
    case LineSymbol::country:
        return {L"CENTER2", 0.6, {}};
    case LineSymbol::province:
        // The value that drawings hold, a hair below 0.45.
        return {L"CENTER2", 0.44999999999999996, {}};
    case LineSymbol::city:
        return {L"ACITY", 0.3, {}};
    case LineSymbol::eline:
        return {L"E_line", 0.0, {}};
    case LineSymbol::railroad:
        return {L"HIDDEN", 0.3, {}, Railway::single};
    case LineSymbol::drailroad:
        return {L"HIDDEN", 0.3, {}, Railway::overlaid};
    }
    return {};
}

/// The current linetype while it lives; by layer afterwards.
class CurrentLinetype {
public:
    explicit CurrentLinetype(const ACHAR* linetype) : mIsSet(linetype != nullptr) {
        if (mIsSet) {
            RunHostCommand({L".celtype", linetype});
        }
    }
    ~CurrentLinetype() {
        if (mIsSet) {
            RunHostCommand({L".celtype", L"bylayer"});
        }
    }
    CurrentLinetype(const CurrentLinetype&) = delete;
    CurrentLinetype& operator=(const CurrentLinetype&) = delete;

private:
    bool mIsSet;
};

std::optional<bool> askIsRightOf(const CEntity& line) {
    ads_point side;
    acedInitGet(RSG_NONULL, nullptr);
    if (acedGetPoint(nullptr, L"\n在画坡线的侧点一点:", side) != RTNORM) {
        return std::nullopt;
    }
    const CArxObjTemplate<AcDbCurve> curve(line.ObjectId(), false);
    return curve && IsRightOfCurve(*curve, asPnt3d(side));
}

void drawSlopeMarks(const CEntity& line, std::span<const SlopeMark> marks) {
    const std::optional<bool> isRight = askIsRightOf(line);
    if (!isRight) {
        acdbEntDel(line.Name());
        return;
    }
    for (const SlopeMark& mark : marks) {
        const std::wstring block = std::wstring(*isRight ? L"R" : L"L") + mark.base;
        RunHostCommand({L"_.measure", line, L"_b", block.c_str(), enter, mark.spacing});
    }
}

/// From the line's first vertex towards the next one that stands elsewhere; none when there is no such
/// vertex.
struct Direction {
    AcGePoint3d start;
    AcGeVector3d along;
};
std::optional<Direction> startDirection(const CEntity& line) {
    Direction direction;
    ads_name vertex;
    ads_name_set(line.Name(), vertex);
    bool isFirst = true;
    while (acdbEntNext(vertex, vertex) == RTNORM) {
        AcGePoint3d point;
        if (AcString kind; !CEntity(vertex).GetText(entityTypeGroup, kind) || kind != L"VERTEX" ||
                           !CEntity(vertex).GetPoint(10, point)) {
            break;
        }
        if (isFirst) {
            direction.start = point;
            isFirst = false;
        } else if (!point.isEqualTo(direction.start)) {
            direction.along = (point - direction.start).normal();
            return direction;
        }
    }
    return std::nullopt;
}

void makeThinContinuous(const CEntity& line) {
    RunHostCommand({L"_.CHPROP", line, enter, L"_LT", L"CONTINUOUS", enter});
    RunHostCommand({L"_.PEDIT", line, L"_W", 0.0, L"_S", enter});
}

/// Thin lines on both sides of the railway.
void drawSideLines(const CEntity& railway) {
    constexpr double sideDistance = 0.15;
    constexpr double sidePointDistance = 0.1;
    const std::optional<Direction> direction = startDirection(railway);
    if (!direction) {
        return;
    }
    const AcGeVector3d out = sidePointDistance * direction->along.perpVector();
    for (const AcGePoint3d& side : {direction->start + out, direction->start - out}) {
        const AcDbObjectId before = CEntity::Last().ObjectId();
        RunHostCommand({L"_.OFFSET", sideDistance, railway, side, enter});
        if (const CEntity line = CEntity::Last(); line.ObjectId() != before) {
            makeThinContinuous(line);
        }
    }
}

/// A thin continuous copy on the line itself.
void overlayCopy(const CEntity& line) {
    const AcDbObjectId before = CEntity::Last().ObjectId();
    const CSysVar oneCopy(L"COPYMODE", 1); // else the command goes on asking
    RunHostCommand({L"_.COPY", line, enter, L"_NONE", L"0.0,0.0", L"_NONE", L"0.0,0.0"});
    if (const CEntity copy = CEntity::Last(); copy.ObjectId() != before) {
        makeThinContinuous(copy);
    }
}

const ACHAR* blockOf(BridgeMark mark) {
    switch (mark) {
    case BridgeMark::hoverb:
        return L"bridge2";
    case BridgeMark::voverb:
        return L"bridge1";
    case BridgeMark::hnoverb:
        return L"bridge3";
    case BridgeMark::hnoverb1:
        return L"bridge4";
    }
    return L"";
}

void placeMark(const ACHAR* block, const AcGePoint3d& position) {
    RunHostCommand({L"_.UNDO", L"_Begin"});
    RunHostCommand({L"_.INSERT", block, position, 1.0, 1.0, 0.0});
    RunHostCommand({L"_.UNDO", L"_End"});
}

} // namespace

int DrawLineSymbol(LineSymbol name) {
    const Symbol symbol = symbolOf(name);
    const SymbolSession session;
    const CurrentLinetype linetype(symbol.linetype);
    const CEntity line = DrawSymbolLine(symbol.width);
    if (line.IsNull()) {
        return RTNORM;
    }
    if (!symbol.marks.empty()) {
        drawSlopeMarks(line, symbol.marks);
    }
    if (symbol.railway != Railway::none) {
        drawSideLines(line);
    }
    if (symbol.railway == Railway::overlaid) {
        overlayCopy(line);
    }
    return RTNORM;
}

int PlaceBridgeMarks(BridgeMark mark) {
    SetVar(L"WIPEOUTFRAME", 0);
    const SymbolSession session;
    for (int count = 0;;) {
        ads_point picked;
        acedInitGet(0, count > 0 ? L"Undo" : nullptr);
        switch (
            acedGetPoint(nullptr, count > 0 ? L"\n绘制点 [回退(U)]<退出>:" : L"\n绘制点 <退出>:", picked)) {
        case RTNORM:
            placeMark(blockOf(mark), asPnt3d(picked));
            ++count;
            break;
        case RTKWORD:
            RunHostCommand({L"_.UNDO", L"1"});
            --count;
            break;
        default:
            return RTNORM;
        }
    }
}
