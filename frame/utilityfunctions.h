// Small LISP functions: an entity's list, conversion of angles, undo groups, restoring after an error.
#pragma once

/// c:mxd: the association list of a picked object, or nil. RTNORM after a pick, else RTNONE.
int GetEntityList();

/// rad2ang, ang2rad: of a real or short integer argument; no value for any other.
int RadiansToDegrees();
int DegreesToRadians();

/// _ubegin, _uend: an undo group in which polylines are made in the old style.
int BeginUndoGroup();
int EndUndoGroup();

/// *error*, _errdo: gives the drawing's settings their usual values and ends the undo group.
int RestoreAfterError();
