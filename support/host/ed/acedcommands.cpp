// Commands driven by programs.
#include "host/ed/acdocman.h"
#include "host/ed/aced.h"
#include "host/ed/commandrunner.h"
#include "host/ed/externalfunctions.h"
#include "host/ed/input.h"
#include "host/ed/lisphook.h"

namespace host {
namespace {

/// The type and value pairs of a variable argument list. Null for a type that no command takes.
bool listOfArguments(int type, va_list& arguments, ResbufBuilder& builder) {
    for (; type != RTNONE && type != 0; type = va_arg(arguments, int)) {
        switch (type) {
        case RTSTR: {
            const ACHAR* text = va_arg(arguments, const ACHAR*);
            builder.string(RTSTR, text != nullptr ? text : L"");
            break;
        }
        case RTREAL:
        case RTANG:
        case RTORINT:
            builder.real(type, va_arg(arguments, double));
            break;
        case RTSHORT:
        case RTLONG:
            builder.integer(type, va_arg(arguments, int));
            break;
        case RTPOINT:
        case RT3DPOINT: {
            const double* point = va_arg(arguments, const double*);
            builder.point(type, point[0], point[1], type == RTPOINT ? 0.0 : point[2]);
            break;
        }
        case RTENAME:
        case RTPICKS:
            builder.name(type, va_arg(arguments, const std::int64_t*));
            break;
        case RTLB:
        case RTLE:
        case RTNIL:
        case RTVOID:
            builder.mark(type);
            break;
        default:
            return false;
        }
    }
    return true;
}

} // namespace
} // namespace host

int acedCommandS(int type, ...) {
    va_list arguments;
    va_start(arguments, type);
    host::ResbufBuilder builder;
    const bool known = host::listOfArguments(type, arguments, builder);
    va_end(arguments);
    return known ? host::driveCommands(builder.release().get()) : RTREJ;
}

int acedCommand(int type, ...) {
    va_list arguments;
    va_start(arguments, type);
    host::ResbufBuilder builder;
    const bool known = host::listOfArguments(type, arguments, builder);
    va_end(arguments);
    return known ? host::driveCommands(builder.release().get()) : RTREJ;
}

int acedCmdS(const resbuf* list, bool, void*) {
    return host::driveCommands(list);
}

int acedCmd(const resbuf* list) {
    return host::driveCommands(list);
}

int acedCommandStatus() {
    const AcApDocument* document = curDoc();
    return document != nullptr ? host::activeCommandBits(*document) : 0;
}

int acedInvoke(const resbuf* call, resbuf** result) {
    if (call == nullptr || call->restype != RTSTR || call->resval.rstring == nullptr || result == nullptr) {
        return RTERROR;
    }
    *result = nullptr;
    host::ResbufList value;
    bool good = false;
    if (const host::ExternalFunction* function = host::findExternalFunction(call->resval.rstring)) {
        good = host::invokeExternal(host::ExternalFunction(*function), call->rbnext, value);
    } else if (host::lispHook().invoke) {
        good = host::lispHook().invoke(call, value);
    }
    *result = value.release();
    return good ? RTNORM : RTERROR;
}

int acedGetSym(const ACHAR* name, resbuf** value) {
    host::ResbufList found;
    if (name == nullptr || value == nullptr || !host::lispHook().getSymbol ||
        !host::lispHook().getSymbol(name, found)) {
        return RTERROR;
    }
    *value = found.release();
    return RTNORM;
}

int acedPutSym(const ACHAR* name, resbuf* value) {
    return name != nullptr && host::lispHook().putSymbol && host::lispHook().putSymbol(name, value) ? RTNORM
                                                                                                    : RTERROR;
}
