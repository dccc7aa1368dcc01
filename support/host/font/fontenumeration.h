// The Windows way of asking which typefaces are installed.
#pragma once

#include "host/win/types.h"

constexpr int LF_FACESIZE = 32;
constexpr int LF_FULLFACESIZE = 64;
constexpr BYTE DEFAULT_CHARSET = 1;
constexpr DWORD TRUETYPE_FONTTYPE = 4;

struct LOGFONTW {
    LONG lfHeight, lfWidth, lfEscapement, lfOrientation, lfWeight;
    BYTE lfItalic, lfUnderline, lfStrikeOut, lfCharSet;
    BYTE lfOutPrecision, lfClipPrecision, lfQuality, lfPitchAndFamily;
    wchar_t lfFaceName[LF_FACESIZE];
};
using LOGFONT = LOGFONTW;

struct ENUMLOGFONTEXW {
    LOGFONTW elfLogFont;
    wchar_t elfFullName[LF_FULLFACESIZE];
    wchar_t elfStyle[LF_FACESIZE];
    wchar_t elfScript[LF_FACESIZE];
};

/// Only what is known of a face without opening its file is set.
struct TEXTMETRICW {
    LONG tmHeight, tmAscent, tmDescent, tmWeight;
    BYTE tmItalic, tmPitchAndFamily, tmCharSet;
    LONG tmInternalLeading, tmExternalLeading, tmAveCharWidth, tmMaxCharWidth;
};
using TEXTMETRIC = TEXTMETRICW;

/// 0 ends the enumeration.
using FONTENUMPROCW = int(CALLBACK*)(const LOGFONTW* font, const TEXTMETRICW* metric, DWORD fontType,
                                     LPARAM parameter);

/// Calls the function once for each installed family, under each of its names (a Chinese face has a Latin one
/// too, and both once more with @ for its turned face); those of the face name in `font` only, when it has
/// one. The device does not matter. Gives what the function gave last.
int EnumFontFamiliesExW(HDC device, LOGFONTW* font, FONTENUMPROCW function, LPARAM parameter, DWORD flags);
inline int EnumFontFamiliesEx(HDC device, LOGFONTW* font, FONTENUMPROCW function, LPARAM parameter,
                              DWORD flags) {
    return EnumFontFamiliesExW(device, font, function, parameter, flags);
}
