// Picking of one entity of a kind.
#include "restools/entitypick.h"

#include "restools/sysvar.h"

namespace {

/// ERRNO after a pick where nothing is.
constexpr int missedPick = 7;
/// In a list that is there; RTDXF0 stands for it only in the arguments of acutBuildList.
constexpr int entityTypeGroup = 0;

bool passes(const CEntity& entity, const resbuf* filter) {
    AcString kind;
    return filter == nullptr || filter->restype != entityTypeGroup ||
           (entity.GetText(entityTypeGroup, kind) && kind == filter->resval.rstring);
}

} // namespace

int qdv_acedEntSel(CEntity& entity, const resbuf* filter, const ACHAR* prompt) {
    ads_name name;
    ads_point picked;
    SetVar(L"ERRNO", 0);
    const int result = acedEntSel(prompt, name, picked);
    if (result != RTNORM) {
        int error = 0;
        return result == RTERROR && GetVar(L"ERRNO", error) && error == missedPick ? unusablePick : result;
    }
    entity = CEntity(name);
    return passes(entity, filter) ? RTNORM : unusablePick;
}
