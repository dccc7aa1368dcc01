// Registration of the entity classes.
#pragma once

namespace host {

/// Registers the runtime classes of all entities. Once, after AcDbEntity and AcDbCurve.
void initializeEntityClasses();

} // namespace host
