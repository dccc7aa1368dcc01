// Selection of single-line texts, as the text commands share it.
#pragma once

#include "restools/arxobject.h"
#include "restools/entpicks.h"

#include <optional>

/// Lets the user select single-line texts. False when nothing was selected.
bool SelectTexts(CEntPicks& texts, const ACHAR* prompt);
/// The same for commands that need two at least: for one text it shows `complaint` and asks again. `note` is
/// shown before each question.
bool SelectSeveralTexts(CEntPicks& texts, const ACHAR* prompt, const ACHAR* complaint,
                        const ACHAR* note = nullptr);

/// Lets the user pick one text; asks again when a pick finds none. None on Enter and Escape.
std::optional<AcDbObjectId> PickText(const ACHAR* prompt);
