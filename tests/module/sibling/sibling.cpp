// A sibling module: calls what QDVCommonTools.arx exports, from LISP functions that a script can run.
#include "entities/blockpline.h"
#include "frame/loaddrawinghook.h"
#include "restools/drawing.h"
#include "restools/entity.h"
#include "restools/resbuf.h"
#include "services/commtools.h"
#include "services/curvetopolyline.h"
#include "services/inputpointfilter.h"
#include "services/linktwopolyline.h"

#include "host/arx.h"

#include <memory>
#include <vector>

namespace {

std::vector<int> hookArguments;
int hookAnswer = 1;

int loadDrawing(int count) {
    hookArguments.push_back(count);
    return hookAnswer;
}

/// The arguments of the call, one after the other.
class Arguments {
public:
    int integer() {
        const resbuf* value = next();
        return value == nullptr ? 0 : value->restype == RTLONG ? value->resval.rlong : value->resval.rint;
    }
    double real() { return next()->resval.rreal; }
    const ACHAR* text() { return next()->resval.rstring; }
    AcDbObjectId entity() { return CEntity(next()->resval.rlname).ObjectId(); }
    bool done() const { return mNext == nullptr; }

private:
    const resbuf* next() {
        const resbuf* value = mNext;
        mNext = value != nullptr ? value->rbnext : nullptr;
        return value;
    }
    const resbuf* mNext = acedGetArgs();
};

void returnList(host::ResbufBuilder& values) {
    if (values.empty()) {
        acedRetNil();
    } else {
        acedRetList(values.release().get());
    }
}

void returnEntity(AcDbObjectId id) {
    ads_name name;
    if (acdbGetAdsName(name, id) == Acad::eOk) {
        acedRetName(name, RTENAME);
    } else {
        acedRetNil();
    }
}

/// (sib-hook answer) sets the hook; (sib-hook) removes it.
int hook() {
    Arguments arguments;
    if (arguments.done()) {
        SetLoadDWGFun(nullptr);
    } else {
        hookAnswer = arguments.integer();
        SetLoadDWGFun(loadDrawing);
    }
    return RTNORM;
}

/// (sib-hook-calls): what the hook was called with.
int hookCalls() {
    host::ResbufBuilder calls;
    for (const int argument : hookArguments) {
        calls.integer(RTSHORT, argument);
    }
    returnList(calls);
    return RTNORM;
}

/// (sib-scale [scale])
int scale() {
    Arguments arguments;
    if (!arguments.done()) {
        SetCOMMTOOLSSystemScale(arguments.real());
    }
    acedRetReal(GetCOMMTOOLSSystemScale());
    return RTNORM;
}

/// (sib-split text separators keepEmpty noTrim)
int split() {
    Arguments arguments;
    const ACHAR* text = arguments.text();
    const ACHAR* separators = arguments.text();
    const int keepEmpty = arguments.integer();
    AcArray<CString> pieces;
    SplitString(pieces, text, separators, keepEmpty, arguments.integer());
    host::ResbufBuilder result;
    for (const CString& piece : pieces) {
        result.string(RTSTR, piece.GetString());
    }
    returnList(result);
    return RTNORM;
}

/// (sib-folder): whether the module's folder holds the module.
int folder() {
    AcString file = GetMySoftPath(true) + L"QDVCommonTools.arx";
    acedFindFile(file, file) == RTNORM ? acedRetT() : acedRetNil();
    return RTNORM;
}

/// (sib-create): an empty block polyline in model space.
int create() {
    AcDbObjectId id;
    AppendEnt(QDVB_CreatePolyline(), id);
    returnEntity(id);
    return RTNORM;
}

/// (sib-copy entity): a block polyline of it in model space.
int copy() {
    const CArxEntity source(Arguments().entity(), false);
    AcDbObjectId id;
    if (CQDVBlockPline* copied = QDVB_CopyFrom(source.Get())) {
        AppendEnt(copied, id);
    }
    returnEntity(id);
    return RTNORM;
}

/// (sib-convert entity)
int convert() {
    CArxEntity entity(Arguments().entity(), true);
    QDVB_ConvertOneEnt(entity);
    return RTNORM;
}

/// (sib-source entity): the source class name of a block polyline.
int source() {
    const CArxObjTemplate<CQDVBlockPline> entity(Arguments().entity(), false);
    entity ? acedRetStr(entity->sourceClassName()) : acedRetNil();
    return RTNORM;
}

/// (sib-widen entity width): gives the entity a width and fits what was an ellipse.
int widen() {
    Arguments arguments;
    CArxEntity entity(arguments.entity(), true);
    AcArray<AcDbObjectId> ellipses;
    MultiplePEDIT(ellipses, entity, arguments.real());
    entity.Close();
    MultiplePEDITAcDbEllipse(ellipses);
    return RTNORM;
}

/// (sib-link first second): the kind of join; the joined polyline is put into model space.
int link() {
    Arguments arguments;
    const CArxObjTemplate<AcDbPolyline> first(arguments.entity(), false);
    const CArxObjTemplate<AcDbPolyline> second(arguments.entity(), false);
    auto joined = std::make_unique<AcDbPolyline>();
    int how = -1;
    LinkTwoPolyline(*joined, *first, *second, how);
    if (how >= 0) {
        AppendEnt(joined.release());
    }
    acedRetInt(how);
    return RTNORM;
}

std::unique_ptr<CQDVAcEdInputPointFilter> lineEndFilter;

/// (sib-filter on): no snapping to ends of lines, or again.
int filterLineEnds() {
    lineEndFilter.reset();
    if (Arguments().integer() != 0) {
        lineEndFilter = std::make_unique<CQDVAcEdInputPointFilter>(AcDbLine::desc(), AcDb::kOsMaskEnd, true);
    }
    return RTNORM;
}

struct Function {
    const ACHAR* name;
    int (*handler)();
};
constexpr Function functions[] = {
    {L"sib-hook", hook},     {L"sib-hook-calls", hookCalls},
    {L"sib-scale", scale},   {L"sib-split", split},
    {L"sib-folder", folder}, {L"sib-create", create},
    {L"sib-copy", copy},     {L"sib-convert", convert},
    {L"sib-source", source}, {L"sib-widen", widen},
    {L"sib-link", link},     {L"sib-filter", filterLineEnds},
};

void defineFunctions() {
    int code = 0;
    for (const Function& function : functions) {
        acedDefun(function.name, code);
        acedRegFunc(function.handler, code);
        ++code;
    }
}

} // namespace

extern "C" __declspec(dllexport) AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode message, void* packet) {
    if (message == AcRx::kInitAppMsg) {
        acrxUnlockApplication(packet);
    } else if (message == AcRx::kLoadDwgMsg) {
        defineFunctions();
    } else if (message == AcRx::kUnloadAppMsg) {
        SetLoadDWGFun(nullptr);
        lineEndFilter.reset();
    }
    return AcRx::kRetOK;
}
