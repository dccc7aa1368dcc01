// The entity classes, in the order in which their parents ask for.
#include "host/db/entities/classes.h"

#include "host/db/dbents.h"

void host::initializeEntityClasses() {
    static constexpr void (*registrations[])() = {
        AcDbObjectIterator::rxInit,
        AcDbSequenceEnd::rxInit,
        AcDbLine::rxInit,
        AcDbPoint::rxInit,
        AcDbCircle::rxInit,
        AcDbArc::rxInit,
        AcDbPolyline::rxInit,
        AcDbVertex::rxInit,
        AcDb2dVertex::rxInit,
        AcDb2dPolyline::rxInit,
        AcDbText::rxInit,
        AcDbAttributeDefinition::rxInit,
        AcDbAttribute::rxInit,
        AcDbBlockReference::rxInit,
        AcDbTrace::rxInit,
        AcDbSolid::rxInit,
        AcDbEllipse::rxInit,
        AcDbSpline::rxInit,
        AcDbRay::rxInit,
        AcDbXline::rxInit,
        AcDb3dPolylineVertex::rxInit,
        AcDb3dPolyline::rxInit,
        AcDbFace::rxInit,
    };
    for (void (*registration)() : registrations) {
        registration();
    }
}
