// Walks the tables of all families.
#include "host/commands/registry.h"

#include "host/commands/commands.h"
#include "host/commands/edit/hatchfollower.h"

namespace host {

void initializeCommands() {
    stepFollowerMaker() = followHatches;
    const std::span<const CommandRow> families[] = {
        fileCommands(),          drawCommands(),           polylineCommands(),
        textCommands(),          insertCommands(),         modifyCommands(),
        undoCommands(),          layerCommands(),          linetypeCommands(),
        viewCommands(),          gripCommands(),           variableCommands(),
        ucsCommands(),           transformCommands(),      arrayCommands(),
        markCommands(),          offsetCommands(),         peditCommands(),
        propertyCommands(),      purgeCommands(),          auditCommands(),
        blockCommands(),         inquiryCommands(),        settingsCommands(),
        renameCommands(),        trimCommands(),           breakCommands(),
        filletCommands(),        stretchCommands(),        shapeCommands(),
        joinCommands(),          findCommands(),           arrangeCommands(),
        curveDrawCommands(),     dimensionCommands(),      dimensionChainCommands(),
        hatchCommands(),         hatchEditCommands(),      leaderCommands(),
        dimensionEditCommands(), dimensionStyleCommands(), areaCommands(),
        revcloudCommands(),      splineEditCommands(),     mlineCommands(),
        mtextCommands(),         slideCommands(),          attributeCommands(),
        textEditCommands(),      draftingCommands()};
    for (const std::span<const CommandRow> family : families) {
        for (const CommandRow& row : family) {
            acedCommandStack()->addCommand(ACED_HOST_GROUP, row.globalName, row.localName, row.flags,
                                           row.handler);
        }
    }
}

} // namespace host
