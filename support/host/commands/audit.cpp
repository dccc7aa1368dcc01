// AUDIT: tells what is wrong in the drawing, and puts it right when asked.
#include "host/commands/edit/audit.h"

#include "host/commands/ask.h"
#include "host/commands/registry.h"

namespace host {
namespace {

void runAudit() {
    const std::optional<bool> fixes = askYesNo(L"\n是否更正检测到的任何错误?", false);
    if (!fixes) {
        return;
    }
    const AuditResult result = auditDrawing(currentDatabase(), *fixes);
    for (const AuditFinding& finding : result.findings) {
        acutPrintf(L"\n%s  %s  %s%s", finding.object.c_str(), finding.fault.c_str(),
                   !*fixes || finding.fixed ? L"" : L"无法", finding.remedy.c_str());
    }
    acutPrintf(L"\n已核查 %d 个对象\n共发现 %d 个错误，已更正 %d 个。", static_cast<int>(result.objects),
               static_cast<int>(result.findings.size()), static_cast<int>(result.fixedCount()));
}

constexpr CommandRow rows[] = {{L"AUDIT", L"核查", ACRX_CMD_MODAL, runAudit}};

} // namespace

std::span<const CommandRow> auditCommands() {
    return rows;
}

} // namespace host
