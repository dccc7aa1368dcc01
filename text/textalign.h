// Lining up of texts: commands V7_THAlign and V7_TVAlign.
#pragma once

#include "restools/textmeasure.h"

/// Moves the selected texts along their base lines until their left ends, right ends or centres stand on one
/// line through a point.
void AlignTextsHorizontally();
/// Stacks the selected texts below the topmost one with a gap between them; none moves in X.
void AlignTextsVertically();

namespace textalign {

enum class Mode { left, right, center };

/// The place of a text's position at which its end of the mode is next to the alignment point; on its own
/// base line. `width` is the text's.
AcGePoint3d AlignedPosition(const AcGePoint3d& position, const AcGeVector3d& direction, double width,
                            Mode mode, const AcGePoint3d& alignment);

} // namespace textalign
