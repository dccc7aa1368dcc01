// Picking of one entity of a kind.
#pragma once

#include "restools/entity.h"

/// What qdv_acedEntSel gives when the pick found nothing, or nothing that passes the filter.
constexpr int unusablePick = -2000;

/// Lets the user pick one entity whose DXF name is that of the filter (null: any). RTNORM, `unusablePick`, or
/// the host's code when there was no pick.
QDV_EXPORT int qdv_acedEntSel(CEntity& entity, const resbuf* filter, const ACHAR* prompt);
