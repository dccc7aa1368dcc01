// The C-style functions of the interface over editor and database. Points and angles are in the current UCS,
// angles in radians. Functions return RTNORM, RTERROR, RTCAN, RTNONE or RTKWORD unless told otherwise.
#pragma once

#include "host/db/db.h"

#include <cstdarg>
#include <cstdint>

class AcApDocument;

namespace Acad {
enum PromptStatus {
    eNone = RTNONE,
    eModeless = RTMODELESS,
    eNormal = RTNORM,
    eError = RTERROR,
    eCancel = RTCAN,
    eReject = RTREJ,
    eFailure = RTFAIL,
    eKeyword = RTKWORD,
    eDirect = -5999
};
}

// What acedInitGet forbids and allows.
inline constexpr int RSG_NONULL = 0x01;
inline constexpr int RSG_NOZERO = 0x02;
inline constexpr int RSG_NONEG = 0x04;
inline constexpr int RSG_NOLIM = 0x08;
inline constexpr int RSG_GETZ = 0x10;
inline constexpr int RSG_DASH = 0x20;
inline constexpr int RSG_2D = 0x40;
inline constexpr int RSG_OTHER = 0x80;
inline constexpr int RSG_DDISTFIRST = 0x100;
inline constexpr int RSG_TRACKUCS = 0x200;
inline constexpr int RSG_NOORTHOZ = 0x400;

/// As a text argument of acedCommandS: this answer comes from the user.
inline constexpr const ACHAR* PAUSE = L"\\";

// Questions.

int acedInitGet(int flags, const ACHAR* keywords);
int acedGetPoint(const ads_point base, const ACHAR* prompt, ads_point result);
int acedGetCorner(const ads_point base, const ACHAR* prompt, ads_point result);
int acedGetDist(const ads_point base, const ACHAR* prompt, ads_real* result);
/// Against ANGBASE, growing counterclockwise.
int acedGetAngle(const ads_point base, const ACHAR* prompt, ads_real* result);
/// Against the X axis.
int acedGetOrient(const ads_point base, const ACHAR* prompt, ads_real* result);
int acedGetReal(const ACHAR* prompt, ads_real* result);
int acedGetInt(const ACHAR* prompt, int* result);
int acedGetKword(const ACHAR* prompt, ACHAR* result, std::size_t size);
int acedGetKword(const ACHAR* prompt, AcString& result);
/// `wholeLine`: blanks are part of the text. Enter gives an empty text.
int acedGetString(int wholeLine, const ACHAR* prompt, ACHAR* result, std::size_t size);
int acedGetString(int wholeLine, const ACHAR* prompt, AcString& result);
/// The keyword or other text that the last question was answered with.
int acedGetInput(ACHAR* result, std::size_t size);
int acedGetInput(AcString& result);
inline int acedGetFullInput(AcString& result) {
    return acedGetInput(result);
}
template <std::size_t size>
int acedGetKword(const ACHAR* prompt, ACHAR (&result)[size]) {
    return acedGetKword(prompt, result, size);
}
template <std::size_t size>
int acedGetString(int wholeLine, const ACHAR* prompt, ACHAR (&result)[size]) {
    return acedGetString(wholeLine, prompt, result, size);
}
template <std::size_t size>
int acedGetInput(ACHAR (&result)[size]) {
    return acedGetInput(result, size);
}
template <std::size_t size>
int acedGetFullInput(ACHAR (&result)[size]) {
    return acedGetInput(result, size);
}
int acedEntSel(const ACHAR* prompt, ads_name entity, ads_point point);
/// The innermost entity at the point; `transform` takes its coordinates to the world (rows: X, Y, Z axis,
/// origin); `containers` are the references around it, innermost first.
int acedNEntSel(const ACHAR* prompt, ads_name entity, ads_point point, ads_point transform[4],
                resbuf** containers);
/// The same with a 4x4 matrix of columns; without `pick` the point in `point` is used.
int acedNEntSelP(const ACHAR* prompt, ads_name entity, ads_point point, int pick, ads_matrix transform,
                 resbuf** containers);
int acedUsrBrk();

// Selection sets.

/// Options: null (dialogue), "X" "A" "I" "P" "L" "W" "C" "WP" "CP" "F" ":S" ":L" ":E" ":$" and their
/// combinations, with underscore or without. `first`: a point, a list of points, or (":$") two prompts.
int acedSSGet(const ACHAR* options, const void* first, const void* second, const resbuf* filter,
              ads_name set);
int acedSSAdd(const ads_name entity, const ads_name set, ads_name result);
int acedSSDel(const ads_name entity, const ads_name set);
int acedSSMemb(const ads_name entity, const ads_name set);
int acedSSLength(const ads_name set, Adesk::Int32* length);
int acedSSName(const ads_name set, int index, ads_name entity);
int acedSSNameX(resbuf** result, const ads_name set, int index);
int acedSSFree(const ads_name set);
int acedSSSetFirst(const ads_name grips, const ads_name pickFirst);
int acedSSGetFirst(resbuf** grips, resbuf** pickFirst);
Acad::ErrorStatus acedGetCurrentSelectionSet(AcDbObjectIdArray& ids);

// Commands.

int acedCommandS(int type, ...);
int acedCommand(int type, ...);
int acedCmdS(const resbuf* list, bool forFutureUse = false, void* pForFutureUse = nullptr);
int acedCmd(const resbuf* list);
int acedInvoke(const resbuf* call, resbuf** result);
int acedCommandStatus();

// Text on the console.

/// The Windows meaning of the format. RTNORM.
int acutPrintf(const ACHAR* format, ...);
int acedPrompt(const ACHAR* text);
int acedAlert(const ACHAR* text);
/// Where acedAlert shows its text; without a window it is a line on the console.
using AlertFunction = void (*)(const ACHAR* text);
void acedSetAlertFunction(AlertFunction function);
void acutFail(const ACHAR* format, ...);

// Variables and surroundings.

/// The text of a string variable belongs to the caller (acutDelString).
int acedGetVar(const ACHAR* name, resbuf* value);
int acedSetVar(const ACHAR* name, const resbuf* value);
int acedGetEnv(const ACHAR* name, ACHAR* value, std::size_t size);
int acedGetEnv(const ACHAR* name, AcString& value);
int acedSetEnv(const ACHAR* name, const ACHAR* value);
int acedGetCfg(const ACHAR* name, ACHAR* value, std::size_t size);
int acedSetCfg(const ACHAR* name, const ACHAR* value);
int acedFindFile(const ACHAR* name, ACHAR* path, std::size_t size);
int acedFindFile(const ACHAR* name, AcString& path);
template <std::size_t size>
int acedFindFile(const ACHAR* name, ACHAR (&path)[size]) {
    return acedFindFile(name, path, size);
}
template <std::size_t size>
int acedGetEnv(const ACHAR* name, ACHAR (&value)[size]) {
    return acedGetEnv(name, value, size);
}
int acedMenuCmd(const ACHAR* text);
int acedGetSym(const ACHAR* name, resbuf** value);
int acedPutSym(const ACHAR* name, resbuf* value);
/// The full path of a file the user names; without a window the path is asked for on the command line.
int acedGetFileD(const ACHAR* title, const ACHAR* initial, const ACHAR* extension, int flags, resbuf* result);

// The picture. Without a window these have nothing to do.

int acedGrDraw(const ads_point from, const ads_point to, int color, int highlight);
int acedGrVecs(const resbuf* vectors, ads_matrix transform);
int acedGrText(int box, const ACHAR* text, int highlight);
int acedGrRead(int track, int* type, resbuf* result);
int acedRedraw(const ads_name entity, int mode);
void acedUpdateDisplay();
int acedUpdateDisplayPause(bool pause);
int acedTextScr();
int acedGraphScr();
int acedTextPage();
int acedMspace();
int acedPspace();
/// A point or, with `displacement`, a vector from one coordinate system to another: RTSHORT 0 world, 1 UCS, 2
/// display; an entity's name or an extrusion direction for its own.
int acedTrans(const ads_point point, const resbuf* from, const resbuf* to, int displacement,
              ads_point result);
/// The snap point nearest to a point ("end,mid"); RTERROR when there is none.
int acedOsnap(const ads_point point, const ACHAR* modes, ads_point result);
int acedXformSS(const ads_name set, ads_matrix transform);

// Functions for LISP.

int acedDefun(const ACHAR* name, int code);
int acedUndef(const ACHAR* name, int code);
int acedRegFunc(int (*handler)(), int code);
int acedGetFunCode();
/// The arguments of the function that runs; the list belongs to the host until it returns.
resbuf* acedGetArgs();
int acedRetVoid();
int acedRetNil();
int acedRetT();
int acedRetReal(ads_real value);
int acedRetInt(int value);
int acedRetStr(const ACHAR* value);
int acedRetPoint(const ads_point value);
int acedRetList(const resbuf* list);
int acedRetName(const ads_name name, int type);
int acedRetVal(const resbuf* value);

// Geometry and text.

ads_real acutDistance(const ads_point from, const ads_point to);
/// The angle of the line in the XY plane, in [0, 2 pi).
ads_real acutAngle(const ads_point from, const ads_point to);
void acutPolar(const ads_point from, ads_real angle, ads_real distance, ads_point result);
/// Where two lines cross; with `onSegments` only within both. RTERROR when they do not.
int acdbInters(const ads_point from1, const ads_point to1, const ads_point from2, const ads_point to2,
               int onSegments, ads_point result);
int acutWcMatch(const ACHAR* text, const ACHAR* pattern);
int acutToUpper(int character);
int acutToLower(int character);
bool acutIsAlpha(int character);
bool acutIsDigit(int character);
bool acutIsUpper(int character);
bool acutIsLower(int character);
bool acutIsSpace(int character);
bool acutIsAlNum(int character);
bool acutIsPrint(int character);
bool acutIsPunct(int character);
bool acutIsGraph(int character);
bool acutIsCntrl(int character);
bool acutIsXDigit(int character);
/// Modes and precisions of -1 are the drawing's.
int acdbRToS(ads_real value, int units, int precision, ACHAR* text, std::size_t size);
int acdbAngToS(ads_real value, int units, int precision, ACHAR* text, std::size_t size);
int acdbDisToF(const ACHAR* text, int units, ads_real* value);
int acdbAngToF(const ACHAR* text, int units, ads_real* value);
template <std::size_t size>
int acdbRToS(ads_real value, int units, int precision, ACHAR (&text)[size]) {
    return acdbRToS(value, units, precision, text, size);
}
template <std::size_t size>
int acdbAngToS(ads_real value, int units, int precision, ACHAR (&text)[size]) {
    return acdbAngToS(value, units, precision, text, size);
}
int acdbRToS(ads_real value, int units, int precision, AcString& text);
int acdbAngToS(ads_real value, int units, int precision, AcString& text);
/// Unit conversion by names ("m", "inch", ...); RTERROR for what can't be converted.
int acutCvUnit(ads_real value, const ACHAR* from, const ACHAR* to, ads_real* result);

// Entities and objects as lists.

resbuf* acdbEntGet(const ads_name entity);
/// With the extended data of the applications in the list (wildcards).
resbuf* acdbEntGetX(const ads_name entity, const resbuf* applications);
int acdbEntMod(const resbuf* list);
/// POLYLINE, INSERT with attributes and BLOCK are complete with SEQEND or ENDBLK; null gives up one that is
/// not complete. ENDBLK gives RTKWORD, with the block's name for acedGetInput.
int acdbEntMake(const resbuf* list);
int acdbEntMakeX(const resbuf* list, ads_name object);
/// Erases an entity, or brings it back.
int acdbEntDel(const ads_name entity);
/// Null or a nil name: the first. Vertices and attributes follow their entity.
int acdbEntNext(const ads_name entity, ads_name next);
int acdbEntLast(ads_name entity);
int acdbEntUpd(const ads_name entity);
int acdbHandEnt(const ACHAR* handle, ads_name entity);
resbuf* acdbTblSearch(const ACHAR* table, const ACHAR* name, int setNext);
resbuf* acdbTblNext(const ACHAR* table, int rewind);
/// Of a block its BLOCK entity, which names the record as owner; acdbEntNext goes on into the definition.
int acdbTblObjName(const ACHAR* table, const ACHAR* name, ads_name object);
int acdbNamedObjDict(ads_name dictionary);
int acdbDictAdd(const ads_name dictionary, const ACHAR* key, const ads_name object);
resbuf* acdbDictSearch(const ads_name dictionary, const ACHAR* key, int setNext);
resbuf* acdbDictNext(const ads_name dictionary, int rewind);
int acdbDictRemove(const ads_name dictionary, const ACHAR* key);
int acdbDictRename(const ads_name dictionary, const ACHAR* from, const ACHAR* to);
int acdbRegApp(const ACHAR* application);
/// Whether the name may be a symbol's, with `allowBar` also with a vertical bar.
int acdbSNValid(const ACHAR* name, int allowBar);
int acdbXDSize(const resbuf* xdata, Adesk::Int32* size);
int acdbXDRoom(const ads_name entity, Adesk::Int32* room);
int acdbXStrSave(ACHAR* text, ACHAR** saved);
int acdbXStrCase(ACHAR* text);
int acdbTextBox(const resbuf* list, ads_point first, ads_point second);
/// Points between world, UCS and object coordinates.
bool acdbUcs2Wcs(const ads_point ucs, ads_point wcs, bool isVector);
bool acdbWcs2Ucs(const ads_point wcs, ads_point ucs, bool isVector);
bool acdbWcs2Ecs(const ads_point wcs, ads_point ecs, const ads_point normal, bool isVector);
bool acdbEcs2Wcs(const ads_point ecs, ads_point wcs, const ads_point normal, bool isVector);
bool acdbUcs2Ecs(const ads_point ucs, ads_point ecs, const ads_point normal, bool isVector);
bool acdbEcs2Ucs(const ads_point ecs, ads_point ucs, const ads_point normal, bool isVector);
/// UCS to world.
Acad::ErrorStatus acdbGetCurUserCoordSystem(AcGeMatrix3d& matrix);
Acad::ErrorStatus acedGetCurrentUCS(AcGeMatrix3d& matrix);
Acad::ErrorStatus acedSetCurrentUCS(const AcGeMatrix3d& matrix);
/// The database that commands work on.
AcDbDatabase* acdbCurDwg();

namespace host {

/// Coordinates of the current drawing's UCS to the world's and back.
AcGePoint3d ucsToWorld(const AcGePoint3d& point);
AcGePoint3d worldToUcs(const AcGePoint3d& point);
AcGeMatrix3d ucsMatrix();
inline AcGePoint3d asPoint3d(const ads_point point) {
    return {point[0], point[1], point[2]};
}
inline void setPoint(ads_point to, const AcGePoint3d& from) {
    to[0] = from.x;
    to[1] = from.y;
    to[2] = from.z;
}

/// Wildcards as in acutWcMatch: # @ . * ? ~ [...] , ` .
bool wildcardMatch(std::wstring_view text, std::wstring_view pattern, bool ignoreCase = true);

} // namespace host
