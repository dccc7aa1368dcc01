// The tables that the families of commands register themselves with.
#pragma once

#include "host/ed/ed.h"

#include <span>

namespace host {

struct CommandRow {
    const wchar_t* globalName;
    const wchar_t* localName;
    Adesk::Int32 flags;
    void (*handler)();
};

std::span<const CommandRow> fileCommands();
std::span<const CommandRow> drawCommands();
std::span<const CommandRow> polylineCommands();
std::span<const CommandRow> textCommands();
std::span<const CommandRow> attributeCommands();
std::span<const CommandRow> textEditCommands();
std::span<const CommandRow> draftingCommands();
std::span<const CommandRow> insertCommands();
std::span<const CommandRow> modifyCommands();
std::span<const CommandRow> undoCommands();
std::span<const CommandRow> layerCommands();
std::span<const CommandRow> linetypeCommands();
std::span<const CommandRow> viewCommands();
std::span<const CommandRow> gripCommands();
std::span<const CommandRow> variableCommands();
std::span<const CommandRow> ucsCommands();
std::span<const CommandRow> joinCommands();
std::span<const CommandRow> findCommands();
std::span<const CommandRow> arrangeCommands();
std::span<const CommandRow> curveDrawCommands();
std::span<const CommandRow> dimensionCommands();
std::span<const CommandRow> dimensionChainCommands();
std::span<const CommandRow> dimensionEditCommands();
std::span<const CommandRow> dimensionStyleCommands();
std::span<const CommandRow> hatchCommands();
std::span<const CommandRow> hatchEditCommands();
std::span<const CommandRow> leaderCommands();
std::span<const CommandRow> areaCommands();
std::span<const CommandRow> revcloudCommands();
std::span<const CommandRow> splineEditCommands();
std::span<const CommandRow> mlineCommands();
std::span<const CommandRow> mtextCommands();
std::span<const CommandRow> stretchCommands();
std::span<const CommandRow> shapeCommands();
std::span<const CommandRow> trimCommands();
std::span<const CommandRow> breakCommands();
std::span<const CommandRow> filletCommands();
std::span<const CommandRow> purgeCommands();
std::span<const CommandRow> auditCommands();
std::span<const CommandRow> blockCommands();
std::span<const CommandRow> inquiryCommands();
std::span<const CommandRow> settingsCommands();
std::span<const CommandRow> renameCommands();
std::span<const CommandRow> transformCommands();
std::span<const CommandRow> arrayCommands();
std::span<const CommandRow> markCommands();
std::span<const CommandRow> offsetCommands();
std::span<const CommandRow> peditCommands();
std::span<const CommandRow> propertyCommands();
std::span<const CommandRow> slideCommands();

} // namespace host
