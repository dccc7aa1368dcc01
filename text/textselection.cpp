// Selection of single-line texts.
#include "text/textselection.h"

#include "restools/entitypick.h"
#include "restools/resbuf.h"

bool SelectTexts(CEntPicks& texts, const ACHAR* prompt) {
    const CResbuf filter(AcDbText::desc());
    return texts.GetSelection(prompt, filter);
}

bool SelectSeveralTexts(CEntPicks& texts, const ACHAR* prompt, const ACHAR* complaint, const ACHAR* note) {
    for (;;) {
        if (note != nullptr) {
            acutPrintf(L"%s", note);
        }
        if (!SelectTexts(texts, prompt)) {
            return false;
        }
        if (texts.GetLength() > 1) {
            return true;
        }
        acutPrintf(L"%s", complaint);
    }
}

std::optional<AcDbObjectId> PickText(const ACHAR* prompt) {
    const CResbuf filter(AcDbText::desc());
    for (;;) {
        CEntity picked;
        switch (qdv_acedEntSel(picked, filter, prompt)) {
        case RTNORM:
            return picked.ObjectId();
        case unusablePick:
            break;
        default:
            return std::nullopt;
        }
    }
}
