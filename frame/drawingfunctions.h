// LISP functions about points, curves, texts and selections; docs/lisp-functions.md says what each takes and
// gives. Arguments that do not fit are told in one line, and the call has no value (RTERROR).
#pragma once

int FindByHandle();     ///< _fid
int MidPoint();         ///< _midp
int CurveStartPoint();  ///< _getsp
int CurveLastPoint();   ///< _glpoint
int CentrePoint();      ///< gcpoint
int ReplaceText();      ///< _strchg
int SetTextStyle();     ///< _setsh
int SelectWithPrompt(); ///< ssgetex
int DragSelection();    ///< dodrag
int EditPolylines();    ///< c:mpedit
int MakeGroup();        ///< mkngroup
int MakeHatch();        ///< dhatch
