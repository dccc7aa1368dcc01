// What can be purged from a drawing: definitions that nothing uses, and what they alone used.
#pragma once

#include "host/db/db.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace host {

/// Something that may be purged when nothing uses it.
struct PurgeCandidate {
    AcDbObjectId id;
    std::wstring name;
    const wchar_t* kind; ///< shown name of its kind
};

/// Shown name of a kind by its keyword ("LAyers"); null for other words.
const wchar_t* purgeKindName(std::wstring_view keyword);
/// Records and dictionary entries of a kind ("All": of every kind) whose names match; used ones among them.
std::vector<PurgeCandidate> purgeCandidates(AcDbDatabase& database, std::wstring_view keyword,
                                            const std::wstring& pattern);
/// Erases candidates that nothing uses, and then those that only they used. `agrees` is asked for each: true
/// purges it, false keeps it, nothing ends it all. Gives how many went.
int purgeUnused(AcDbDatabase& database, std::vector<PurgeCandidate> candidates,
                const std::function<std::optional<bool>(const PurgeCandidate&)>& agrees);

} // namespace host
