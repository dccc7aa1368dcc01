// The double-line wall: its questions, and the lines it leaves.
#include "drawing/doublelineenclose.h"

#include "restools/drawing.h"
#include "restools/profilesection.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double smallestRememberedWidth = 0.5;

bool askWidth(CDoubleLineEnclose& wall) {
    CString prompt;
    prompt.Format(L"\n宽度 <%.2lf>:", wall.Width());
    double width = wall.Width();
    acedInitGet(RSG_NOZERO | RSG_NONEG, nullptr);
    switch (acedGetDist(nullptr, prompt, &width)) {
    case RTNORM:
        wall.SetWidth(width);
        return true;
    case RTNONE:
        return true;
    default:
        return false;
    }
}

bool askJustification(CDoubleLineEnclose& wall) {
    CString prompt;
    prompt.Format(L"\n选择对齐方式 [中心(C)/左边(L)/右边(R)]<%s>:",
                  CAcDbMlineJig::JustificationName(wall.Justification()));
    AcString keyword;
    acedInitGet(0, L"Left Center Right");
    switch (acedGetKword(prompt, keyword)) {
    case RTNORM:
        wall.SetJustification(keyword == L"Left" ? 0 : keyword == L"Right" ? 2 : 1);
        return true;
    case RTNONE:
        return true;
    default:
        return false;
    }
}

enum class Next { start, again, end };

Next answerKeyword(CDoubleLineEnclose& wall, AcGePoint3d& start) {
    AcString keyword;
    if (acedGetInput(keyword) != RTNORM) {
        return Next::end;
    }
    if (keyword == L"Align") {
        return askJustification(wall) ? Next::again : Next::end;
    }
    if (keyword == L"Width") {
        return askWidth(wall) ? Next::again : Next::end;
    }
    return keyword == L"Relative" && GetRelativePoint(start) ? Next::start : Next::end;
}

bool askStart(CDoubleLineEnclose& wall, AcGePoint3d& start) {
    for (Next next = Next::again; next == Next::again;) {
        acutPrintf(L"\n   绘制对齐方式: %s ,绘制宽度: %.2lf",
                   CAcDbMlineJig::JustificationName(wall.Justification()), wall.Width());
        ads_point picked;
        acedInitGet(0, L"Align Width Relative");
        switch (acedGetPoint(nullptr, L"\n双线围墙绘制起点 [对齐(A)/参考点(R)/宽度(W)]<退出>:", picked)) {
        case RTNORM:
            start = asPnt3d(picked);
            return true;
        case RTKWORD:
            next = answerKeyword(wall, start);
            break;
        default:
            return false;
        }
        if (next == Next::start) {
            return true;
        }
    }
    return false;
}

/// Puts the pieces of the multiline into the drawing. False when it has none.
bool appendPieces(const AcDbEntity& multiline, const ACHAR* layer) {
    AcDbVoidPtrArray exploded;
    const Acad::ErrorStatus status = multiline.explode(exploded);
    std::vector<std::unique_ptr<AcDbEntity>> pieces = TakeEntities(exploded);
    if (status != Acad::eOk || pieces.empty()) {
        return false;
    }
    for (std::unique_ptr<AcDbEntity>& piece : pieces) {
        piece->setLayer(layer);
        AppendEnt(piece.release());
    }
    return true;
}

void leaveLines(CDoubleLineEnclose& wall) {
    CArxObject multiline(wall.Multiline().Release());
    auto* drawn = multiline.As<AcDbEntity>();
    if (appendPieces(*drawn, wall.LayerName())) {
        return;
    }
    // Some hosts explode a multiline only when the drawing has it.
    if (AppendEnt(multiline) == Acad::eOk && appendPieces(*drawn, wall.LayerName())) {
        drawn->erase();
    }
}

/// Remembers the wall's settings when the command ends, however it does.
class SettingsKeeper {
public:
    explicit SettingsKeeper(const CDoubleLineEnclose& wall) : mWall(wall) {}
    ~SettingsKeeper() { mWall.SaveSettings(); }
    SettingsKeeper(const SettingsKeeper&) = delete;
    SettingsKeeper& operator=(const SettingsKeeper&) = delete;

private:
    const CDoubleLineEnclose& mWall;
};

} // namespace

CDoubleLineEnclose::CDoubleLineEnclose() : CAcDbMlineJig(L"DoubleLineEnclose\\") {
    const CProfileSection settings(Section());
    SetJustification(settings.GetInt(L"Center", 1));
    SetWidth(std::max(std::abs(settings.GetReal(L"Width", L"4")), smallestRememberedWidth));
}

void CDoubleLineEnclose::SaveSettings() const {
    const CProfileSection settings(Section());
    settings.SetInt(L"Center", Justification());
    settings.SetReal(L"Width", Width(), 2);
}

void DrawDoubleLineEnclose() {
    CDoubleLineEnclose wall;
    const SettingsKeeper keeper(wall);
    AcGePoint3d start;
    if (askStart(wall, start) && wall.Draw(start)) {
        leaveLines(wall);
    }
}
