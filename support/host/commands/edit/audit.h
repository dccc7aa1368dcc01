// Finds what is wrong in a drawing, and puts it right when asked.
#pragma once

#include "host/db/db.h"

#include <string>
#include <vector>

namespace host {

struct AuditFinding {
    std::wstring object; ///< kind and handle
    std::wstring fault;
    std::wstring remedy; ///< what is done about it
    bool fixed = false;
};

struct AuditResult {
    std::size_t objects = 0; ///< looked at
    std::vector<AuditFinding> findings;
    std::size_t fixedCount() const;
};

/// One pass over all objects. Without `fixes` nothing is changed.
AuditResult auditDrawing(AcDbDatabase& database, bool fixes);

} // namespace host
