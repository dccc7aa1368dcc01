// Walks the tables of all families.
#include "host/commands/registry.h"

#include "host/commands/commands.h"

namespace host {

void initializeCommands() {
    const std::span<const CommandRow> families[] = {
        fileCommands(),           drawCommands(),      polylineCommands(),  textCommands(),
        insertCommands(),         modifyCommands(),    undoCommands(),      layerCommands(),
        layerToolCommands(),      linetypeCommands(),  viewCommands(),      gripCommands(),
        variableCommands(),       ucsCommands(),       transformCommands(), arrayCommands(),
        markCommands(),           offsetCommands(),    peditCommands(),     propertyCommands(),
        purgeCommands(),          auditCommands(),     blockCommands(),     inquiryCommands(),
        settingsCommands(),       renameCommands(),    trimCommands(),      breakCommands(),
        filletCommands(),         stretchCommands(),   shapeCommands(),     joinCommands(),
        findCommands(),           arrangeCommands(),   curveDrawCommands(), dimensionCommands(),
        dimensionChainCommands(), hatchCommands(),     mlineCommands(),     mtextCommands(),
        slideCommands(),          attributeCommands(), textEditCommands(),  draftingCommands(),
        clipboardCommands(),      selectingCommands(), overkillCommands(),  namedViewCommands(),
        viewportCommands(),       scriptCommands(),    statusCommands()};
    for (const std::span<const CommandRow> family : families) {
        for (const CommandRow& row : family) {
            acedCommandStack()->addCommand(ACED_HOST_GROUP, row.globalName, row.localName, row.flags,
                                           row.handler);
        }
    }
}

} // namespace host
