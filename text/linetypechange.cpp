// Linetypes by one letter.
#include "text/linetypechange.h"

#include "restools/drawing.h"
#include "restools/entpicks.h"
#include "restools/sysvar.h"

#include <optional>

namespace {

/// What a letter stands for.
struct Choice {
    const ACHAR* linetype = nullptr; ///< null: by layer
    bool isScaled = false;           ///< looks the same at every LTSCALE
};

std::optional<Choice> askChoice() {
    AcString keyword;
    acedInitGet(RSG_NONULL, L"A B C D");
    if (acedGetKword(L"\n线型修改为 [实线(A)/虚线(B)/点划线(C)/恢复随层(D)]:", keyword) != RTNORM) {
        return std::nullopt;
    }
    if (keyword == L"A") {
        return Choice{L"CONTINUOUS", false};
    }
    if (keyword == L"B") {
        return Choice{L"DASHED", true};
    }
    if (keyword == L"C") {
        return Choice{L"CENTER", true};
    }
    return Choice{};
}

AcDbObjectId needLinetype(const ACHAR* name) {
    AcDbObjectId id = FindRecord<AcDbLinetypeTable>(name);
    if (id.isNull() && WorkingDatabase()->loadLineTypeFile(name, L"acad.lin") == Acad::eOk) {
        id = FindRecord<AcDbLinetypeTable>(name);
    }
    if (id.isNull()) {
        acutPrintf(L"\n没有找到线型：%s", name);
    }
    return id;
}

bool isLinetypeOfLayer(AcDbObjectId linetype, AcDbObjectId layerId) {
    const CArxObjTemplate<AcDbLayerTableRecord> layer(layerId, false);
    return layer && layer->linetypeObjectId() == linetype;
}

} // namespace

void ChangeLinetype() {
    constexpr double scaledSize = 5.0;
    CEntPicks entities;
    if (!entities.GetSelection(L"选择要修改线型的线:")) {
        return;
    }
    const std::optional<Choice> choice = askChoice();
    if (!choice) {
        return;
    }
    SetVar(L"CMDECHO", 0);
    double ltscale = 1.0;
    GetVar(L"LTSCALE", ltscale);
    const AcDbObjectId byLayer = WorkingDatabase()->byLayerLinetype();
    const AcDbObjectId linetype = choice->linetype != nullptr ? needLinetype(choice->linetype) : byLayer;
    if (linetype.isNull()) {
        return;
    }
    for (int i = 0; i < entities.GetLength(); ++i) {
        const CArxEntity entity(entities[i], true);
        if (!entity) {
            continue;
        }
        if (choice->isScaled) {
            entity->setLinetypeScale(scaledSize / ltscale);
        }
        entity->setLinetype(isLinetypeOfLayer(linetype, entity->layerId()) ? byLayer : linetype);
    }
}
