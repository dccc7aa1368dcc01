// Mirroring with texts that stay readable.
#pragma once

#include "host/db/db.h"

namespace host {

/// The motion that puts a text where its mirror image would stand, but reading the usual way: the middle of
/// its box goes where the image's middle is, its direction along the image's base line.
AcGeMatrix3d readableMirroring(const AcDbText& text, const AcGeMatrix3d& mirror);

/// Mirrors an entity that is open for writing. Without `mirrorsText` texts, attributes among them, are moved
/// so that they stay readable.
Acad::ErrorStatus mirrorEntity(AcDbEntity& entity, const AcGeMatrix3d& mirror, bool mirrorsText);

} // namespace host
