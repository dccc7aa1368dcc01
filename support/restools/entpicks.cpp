// Selection sets by the host's selection functions.
#include "restools/entpicks.h"

CEntPicks::CEntPicks(CEntPicks&& other) noexcept {
    ads_name_set(other.mName, mName);
    ads_name_clear(other.mName);
}

CEntPicks& CEntPicks::operator=(CEntPicks&& other) noexcept {
    if (this != &other) {
        Release();
        ads_name_set(other.mName, mName);
        ads_name_clear(other.mName);
    }
    return *this;
}

bool CEntPicks::Replace(int result, const ads_name set) {
    Release();
    if (result != RTNORM) {
        return false;
    }
    ads_name_set(set, mName);
    return GetLength() > 0;
}

bool CEntPicks::GetSelection(const ACHAR* prompt, const resbuf* filter) {
    const ACHAR* prompts[2] = {prompt, L"\n删除对象: "};
    ads_name set = {0, 0};
    const int result = acedSSGet(L":$", prompts, nullptr, filter, set);
    return Replace(result, set);
}

bool CEntPicks::GetSingleSelection(const ACHAR* prompt, const resbuf* filter) {
    const ACHAR* prompts[2] = {prompt, prompt};
    ads_name set = {0, 0};
    const int result = acedSSGet(L":S:$", prompts, nullptr, filter, set);
    return Replace(result, set);
}

bool CEntPicks::SelectAll(const resbuf* filter) {
    ads_name set = {0, 0};
    const int result = acedSSGet(L"X", nullptr, nullptr, filter, set);
    return Replace(result, set);
}

bool CEntPicks::CreateNullEntPicks() {
    ads_name set = {0, 0};
    const int result = acedSSAdd(nullptr, nullptr, set);
    Replace(result, set);
    return result == RTNORM;
}

bool CEntPicks::Add(AcDbObjectId id) {
    ads_name entity = {0, 0};
    if (ads_name_nil(mName) || acdbGetAdsName(entity, id) != Acad::eOk ||
        acedSSMemb(entity, mName) == RTNORM) {
        return false;
    }
    ads_name result = {0, 0};
    return acedSSAdd(entity, mName, result) == RTNORM;
}

void CEntPicks::Release() {
    if (!ads_name_nil(mName)) {
        acedSSFree(mName);
        ads_name_clear(mName);
    }
}

int CEntPicks::GetLength() const {
    Adesk::Int32 length = 0;
    return !ads_name_nil(mName) && acedSSLength(mName, &length) == RTNORM ? length : 0;
}

AcDbObjectId CEntPicks::operator[](int index) const {
    ads_name entity = {0, 0};
    AcDbObjectId id;
    if (ads_name_nil(mName) || acedSSName(mName, index, entity) != RTNORM ||
        acdbGetObjectId(id, entity) != Acad::eOk) {
        return AcDbObjectId::kNull;
    }
    return id;
}

void CEntPicks::IntoArray(AcDbObjectIdArray& ids) const {
    const int length = GetLength();
    for (int i = 0; i < length; ++i) {
        if (const AcDbObjectId id = (*this)[i]; !id.isNull()) {
            ids.append(id);
        }
    }
}
