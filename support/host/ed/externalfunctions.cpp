// Functions of modules for LISP: their definition by document, invocation, arguments and results.
#include "host/ed/externalfunctions.h"

#include "host/ed/acdocman.h"
#include "host/ed/aced.h"
#include "host/ed/console.h"
#include "host/ed/documentstate.h"
#include "host/ed/input.h"
#include "host/ed/runcontext.h"
#include "host/rx/text.h"

namespace host {
namespace {

using FunctionTable = std::map<std::wstring, ExternalFunction, NoCaseLess>;

FunctionTable* tableOf(AcApDocument* document) {
    AcApDocument* owner = document != nullptr ? document : curDoc();
    return owner != nullptr ? &owner->state().functions : nullptr;
}

/// The function a module defined under the code in the current document.
ExternalFunction* functionOfCode(int code) {
    FunctionTable* table = tableOf(nullptr);
    if (table == nullptr) {
        return nullptr;
    }
    for (auto& [name, function] : *table) {
        if (function.code == code && function.module == currentModule()) {
            return &function;
        }
    }
    return nullptr;
}

int callFunction(const ExternalFunction& function) {
    const CurrentModuleScope scope(function.module);
    if (function.handler != nullptr) {
        return function.handler() == RTNORM ? RSRSLT : RSERR;
    }
    if (function.module == nullptr) {
        return RSERR;
    }
    // Entry points tell the call's outcome, or only that they took the message.
    const int answer = sendMessage(*function.module, AcRx::kInvkSubrMsg);
    return answer == AcRx::kRetOK ? RSRSLT : answer;
}

int setResult(ResbufBuilder& builder) {
    Invocation* running = runContext().invocation;
    if (running == nullptr) {
        return RTERROR;
    }
    running->result = builder.release();
    return RTNORM;
}

int setResultMark(int type) {
    ResbufBuilder builder;
    builder.mark(type);
    return setResult(builder);
}

} // namespace

const ExternalFunction* findExternalFunction(std::wstring_view name, AcApDocument* document) {
    const FunctionTable* table = tableOf(document);
    if (table == nullptr) {
        return nullptr;
    }
    const auto found = table->find(std::wstring(name));
    return found != table->end() ? &found->second : nullptr;
}

std::vector<std::wstring> externalFunctionNames(AcApDocument* document) {
    std::vector<std::wstring> names;
    if (const FunctionTable* table = tableOf(document)) {
        for (const auto& [name, function] : *table) {
            names.push_back(function.name);
        }
    }
    return names;
}

bool invokeExternal(const ExternalFunction& function, const resbuf* arguments, ResbufList& result) {
    Invocation running;
    running.outer = runContext().invocation;
    running.code = function.code;
    running.ownArguments = copyResbufList(arguments);
    running.arguments = running.ownArguments.get();
    runContext().invocation = &running;
    int code = RSERR;
    std::wstring failure;
    try {
        code = callFunction(function);
    } catch (const InputEnded&) {
        runContext().invocation = running.outer;
        throw;
    } catch (const std::exception& error) {
        failure = fromUtf8(error.what());
    } catch (...) {
        failure = L"未知异常";
    }
    runContext().invocation = running.outer;
    if (!failure.empty()) {
        reportFailure(L"函数 " + function.name + L" 出错: " + failure);
    }
    result = std::move(running.result);
    if (result == nullptr) {
        ResbufBuilder builder;
        builder.mark(code == RSRSLT ? RTVOID : RTNIL);
        result = builder.release();
    }
    return code == RSRSLT;
}

void removeExternalFunctionsOf(const LoadedModule& module) {
    for (const auto& document : acDocManagerPtr()->documents()) {
        std::erase_if(document->state().functions,
                      [&](const auto& entry) { return entry.second.module == &module; });
    }
}

} // namespace host

int acedDefun(const ACHAR* name, int code) {
    auto* table = host::tableOf(nullptr);
    if (table == nullptr || name == nullptr || *name == L'\0') {
        return RTERROR;
    }
    table->insert_or_assign(name, host::ExternalFunction{name, host::currentModule(), code, nullptr});
    return RTNORM;
}

int acedUndef(const ACHAR* name, int code) {
    auto* table = host::tableOf(nullptr);
    if (table == nullptr || name == nullptr) {
        return RTERROR;
    }
    const auto found = table->find(name);
    if (found == table->end() || found->second.code != code ||
        found->second.module != host::currentModule()) {
        return RTERROR;
    }
    table->erase(found);
    return RTNORM;
}

int acedRegFunc(int (*handler)(), int code) {
    host::ExternalFunction* function = host::functionOfCode(code);
    if (function == nullptr) {
        return RTERROR;
    }
    function->handler = handler;
    return RTNORM;
}

int acedGetFunCode() {
    const host::Invocation* running = host::runContext().invocation;
    return running != nullptr ? running->code : RTERROR;
}

resbuf* acedGetArgs() {
    const host::Invocation* running = host::runContext().invocation;
    return running != nullptr ? const_cast<resbuf*>(running->arguments) : nullptr;
}

int acedRetVoid() {
    return host::setResultMark(RTVOID);
}
int acedRetNil() {
    return host::setResultMark(RTNIL);
}
int acedRetT() {
    return host::setResultMark(RTT);
}

int acedRetReal(ads_real value) {
    host::ResbufBuilder builder;
    builder.real(RTREAL, value);
    return host::setResult(builder);
}

int acedRetInt(int value) {
    host::ResbufBuilder builder;
    builder.integer(RTLONG, value);
    return host::setResult(builder);
}

int acedRetStr(const ACHAR* value) {
    host::ResbufBuilder builder;
    builder.string(RTSTR, value != nullptr ? value : L"");
    return host::setResult(builder);
}

int acedRetPoint(const ads_point value) {
    host::ResbufBuilder builder;
    builder.point(RT3DPOINT, value[0], value[1], value[2]);
    return host::setResult(builder);
}

int acedRetList(const resbuf* list) {
    host::ResbufBuilder builder;
    builder.mark(RTLB);
    builder.take(host::copyResbufList(list).release());
    builder.mark(RTLE);
    return host::setResult(builder);
}

int acedRetName(const ads_name name, int type) {
    if (type != RTENAME && type != RTPICKS) {
        return RTERROR;
    }
    host::ResbufBuilder builder;
    builder.name(type, name);
    return host::setResult(builder);
}

int acedRetVal(const resbuf* value) {
    if (value == nullptr) {
        return acedRetNil();
    }
    host::ResbufBuilder builder;
    builder.take(host::copyResbuf(*value).release());
    return host::setResult(builder);
}
