// The questions of a river, and the way from the multiline to its banks.
#include "drawing/riverdialog.h"

#include "restools/binaryresource.h"
#include "restools/drawing.h"
#include "restools/hostcommand.h"
#include "restools/ownmodule.h"
#include "restools/profilesection.h"
#include "restools/sysvar.h"

#include <algorithm>
#include <optional>

namespace {

using Pieces = std::vector<std::unique_ptr<AcDbEntity>>;

/// What the multiline comes to; nothing when it can't be exploded.
std::optional<Pieces> explode(const CArxObject& multiline) {
    AcDbVoidPtrArray exploded;
    const Acad::ErrorStatus status = multiline.As<AcDbEntity>()->explode(exploded);
    Pieces pieces = TakeEntities(exploded);
    return status == Acad::eOk ? std::optional(std::move(pieces)) : std::nullopt;
}

/// Entities behind a given one, as copies; they themselves are erased.
Pieces takeEntitiesAfter(const ads_name last) {
    std::vector<AcDbObjectId> ids;
    ads_name previous = {last[0], last[1]};
    for (ads_name next; acdbEntNext(previous, next) == RTNORM; ads_name_set(next, previous)) {
        acdbGetObjectId(ids.emplace_back(), next);
    }
    Pieces pieces;
    for (const AcDbObjectId id : ids) {
        if (const CArxEntity entity(id, true); entity) {
            pieces.emplace_back(AcDbEntity::cast(entity->clone()));
            entity->erase();
        }
    }
    return pieces;
}

/// The lines of a multiline. Some hosts explode it only when the drawing has it, or only by their command.
std::optional<Pieces> piecesOf(CArxObject multiline) {
    std::optional<Pieces> pieces = explode(multiline);
    if (!pieces || !pieces->empty()) {
        return pieces;
    }
    if (AppendEnt(multiline) != Acad::eOk) {
        return std::nullopt;
    }
    pieces = explode(multiline);
    if (!pieces || !pieces->empty()) {
        multiline->erase();
        return pieces;
    }
    multiline.Close();
    ads_name last;
    if (acdbEntLast(last) != RTNORM) {
        return std::nullopt;
    }
    RunHostCommand({L"_.EXPLODE", L"_L", L""});
    return takeEntitiesAfter(last);
}

} // namespace

CDrawRiverDlg::CDrawRiverDlg(CWnd* parent)
    : CResizeDialog(IDD_DRAW_RIVER, parent), CAcDbMlineJig(L"CDrawRiverDlg\\"), mStyles(170, 115, 175, 145) {}

void CDrawRiverDlg::DoDataExchange(CDataExchange* exchange) {
    CResizeDialog::DoDataExchange(exchange);
    DDX_Control(exchange, IDC_RIVER_ALIGNMENT, mAlignment);
    DDX_Control(exchange, IDC_RIVER_STYLES, mStyles);
}

BOOL CDrawRiverDlg::OnInitDialog() {
    CResizeDialog::OnInitDialog();
    Anchor(IDC_RIVER_STYLES, left | top | right | bottom);
    for (const int control : {IDC_RIVER_ALIGNMENT_LABEL, IDC_RIVER_ALIGNMENT}) {
        Anchor(control, left | bottom);
    }
    for (const int control : {IDOK, IDCANCEL}) {
        Anchor(control, right | bottom);
    }
    constexpr UINT pictures[] = {IDR_RIVER_STYLE_1, IDR_RIVER_STYLE_2, IDR_RIVER_STYLE_3, IDR_RIVER_STYLE_4};
    for (int item = 0; item < static_cast<int>(std::size(pictures)); ++item) {
        CString label;
        label.Format(L"方式%d", item + 1);
        mStyles.AddSlide(label,
                         GetBinaryResourceToMem(GetOwnModule().instance, L"RESOURCE_FILE", pictures[item]));
    }
    for (int justification = 0; justification < 3; ++justification) {
        mAlignment.AddString(JustificationName(justification));
    }
    const CProfileSection settings(Section());
    if (mAlignment.SetCurSel(settings.GetInt(L"DrawType", 0)) == CB_ERR) {
        mAlignment.SetCurSel(0);
    }
    mStyles.SelectItem(settings.GetInt(L"Index", 0));
    mStyles.SetFocus();
    return FALSE;
}

void CDrawRiverDlg::OnOK() {
    mStyle = std::max(mStyles.GetSelectedItem(), 0);
    SetJustification(mAlignment.GetCurSel());
    const CProfileSection settings(Section());
    settings.SetInt(L"Index", mStyle);
    settings.SetInt(L"DrawType", Justification());
    CResizeDialog::OnOK();
}

void CDrawRiverDlg::DrawCourse() {
    double width = 0.0;
    acedInitGet(RSG_NOZERO | RSG_NONEG, nullptr);
    if (acedGetDist(nullptr, L"\n确定河流宽度 <退出>:", &width) != RTNORM) {
        return;
    }
    SetWidth(width);
    ads_point start;
    if (acedGetPoint(nullptr, L"\n河流绘制起点 <退出>:", start) != RTNORM || !Draw(asPnt3d(start))) {
        return;
    }
    const std::optional<Pieces> pieces = piecesOf(CArxObject(Multiline().Release()));
    if (!pieces) {
        acutPrintf(L"\n   ***取得数据出错!");
        return;
    }
    const river::Banks banks = river::LeaveBanks(river::JoinLines(river::LinesOf(*pieces)));
    river::Decorate(banks, static_cast<river::Style>(mStyle), width);
}

void DrawRiver() {
    SetVar(L"CMDECHO", 0);
    const CAcModuleResourceOverride resources(GetOwnModule().instance);
    CDrawRiverDlg dialog;
    if (dialog.DoModal() == IDOK) {
        dialog.DrawCourse();
    }
}
