// Outlines that hatches are made in: from objects and from traced boundaries, in a plane through the origin;
// and how a hatch remembers the objects its outlines were made from and takes their new shape.
#pragma once

#include "host/commands/edit/boundarytrace.h"

namespace host {

/// A closed outline in the plane: a path of lines and arcs of circles or, with arcs of ellipses, pieces.
struct HatchOutline {
    BulgePath path;
    std::vector<CurvePiece> edges; ///< instead of the path
    std::vector<AcDbObjectId> sources;
    Adesk::Int32 type = 0; ///< AcDbHatch::HatchLoopType, without kPolyline
};

/// Those around and within a traced place: the outer one first.
std::vector<HatchOutline> outlinesOf(const TracedBoundary& boundary);
/// Those that objects make, each for itself or together; what is part of none goes to `refused`.
std::vector<HatchOutline> outlinesOf(const std::vector<AcDbObjectId>& objects, const AcGeVector3d& normal,
                                     std::vector<AcDbObjectId>& refused);
Acad::ErrorStatus appendOutline(AcDbHatch& hatch, const HatchOutline& outline);
/// A loop of a hatch as a path; arcs of ellipses and splines become chords.
BulgePath pathOf(const HatchLoop& loop);

/// The hatch, which is closed, follows the sources from now on: one list for each of its last loops.
void associate(AcDbObjectId hatch, const std::vector<HatchOutline>& outlines);
/// The source, which is closed, tells the hatch of its changes no more.
void forgetFollower(AcDbObjectId source, AcDbObjectId hatch);
/// The hatch, which is closed, follows nothing any more.
void dissociate(AcDbObjectId hatch);
/// The outlines that the sources of the hatch make now, a loop each, empty for loops without sources; nothing
/// when one of the loops is open or its objects are gone.
std::optional<std::vector<HatchOutline>> remadeOutlines(const AcDbHatch& hatch);
/// Gives the hatch, which is closed, the outlines its sources make now; false when there are none.
bool remakeLoops(AcDbObjectId hatch);

} // namespace host
