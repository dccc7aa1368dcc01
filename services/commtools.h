// Small services for the commands and for sibling modules: the scale of the module, its folder, and the
// splitting of texts.
#pragma once

#include "host/arx.h"

/// Factor of the commands' default sizes; 1 when the module is loaded, kept nowhere.
QDV_EXPORT double GetCOMMTOOLSSystemScale();
/// Takes any number as it is, also zero and negative ones.
QDV_EXPORT void SetCOMMTOOLSSystemScale(double scale);

/// The folder that holds the module's file, without or with a backslash at its end.
QDV_EXPORT AcString GetMySoftPath(bool withSeparator);

/// Splits a text at each of the separator characters. Unless `noTrim`, white space around pieces goes away
/// and pieces of nothing else are dropped; with it, empty pieces are kept when `keepEmpty` says so. A
/// separator at the end never gives an empty last piece. The array is emptied first; it keeps its storage.
QDV_EXPORT void SplitString(AcArray<CString>& pieces, const wchar_t* text, const wchar_t* separators,
                            int keepEmpty, int noTrim);
