// CEntPicks: an owned selection set.
#pragma once

#include "host/arx.h"

/// Frees its set in the end. Moves, but does not copy.
class QDV_EXPORT CEntPicks {
public:
    CEntPicks() = default;
    CEntPicks(const CEntPicks&) = delete;
    CEntPicks& operator=(const CEntPicks&) = delete;
    CEntPicks(CEntPicks&& other) noexcept;
    CEntPicks& operator=(CEntPicks&& other) noexcept;
    ~CEntPicks() { Release(); }

    /// Lets the user select what passes the filter (null: anything). False when nothing was selected.
    bool GetSelection(const ACHAR* prompt, const resbuf* filter = nullptr);
    /// Lets the user select at one go, without being asked for more. False when nothing was selected.
    bool GetSingleSelection(const ACHAR* prompt, const resbuf* filter = nullptr);
    /// Every entity of the drawing that passes the filter.
    bool SelectAll(const resbuf* filter = nullptr);
    /// An empty set to add to.
    bool CreateNullEntPicks();
    /// False when the set has the entity already, or when it is none.
    bool Add(AcDbObjectId id);
    void Release();

    int GetLength() const;
    /// In the order of selection; null outside of the set.
    AcDbObjectId operator[](int index) const;
    void IntoArray(AcDbObjectIdArray& ids) const;
    /// The host's name of the set, for calls of the interface.
    const ads_name& Name() const { return mName; }
    operator const ads_name&() const { return mName; }

private:
    bool Replace(int result, const ads_name set);

    ads_name mName = {0, 0};
};
