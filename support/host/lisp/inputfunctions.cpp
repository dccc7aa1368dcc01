// Questions to the user: the get... functions, entsel and its kin.
#include "host/ed/ed.h"
#include "host/lisp/convert.h"
#include "host/lisp/drawingbuiltins.h"
#include "host/lisp/points.h"

namespace host::lisp {

namespace {

constexpr int pickMissed = 7; // values of ERRNO
constexpr int nullResponse = 52;

Value initGet(LispInterpreter&, Arguments arguments) {
    int flags = 0;
    std::wstring keywords;
    for (const Value& argument : arguments) {
        if (argument.isText()) {
            keywords = argument.text();
        } else if (argument) {
            flags = integerOf(argument);
        }
    }
    acedInitGet(flags, keywords.empty() ? nullptr : keywords.c_str());
    return {};
}

// The base point and the prompt of a question, in either order and both optional.
struct Question {
    explicit Question(Arguments arguments) {
        for (const Value& argument : arguments) {
            if (argument.isText()) {
                prompt = argument.text();
                hasPrompt = true;
            } else if (argument) {
                const AcGePoint3d point = pointOf(argument).point;
                setPoint(base, point);
                hasBase = true;
            }
        }
    }
    const ACHAR* promptText() const { return hasPrompt ? prompt.c_str() : nullptr; }
    const double* basePoint() const { return hasBase ? base : nullptr; }

    std::wstring prompt;
    ads_point base = {0.0, 0.0, 0.0};
    bool hasPrompt = false;
    bool hasBase = false;
};

// What a question came to, when that is no value of its own kind.
Value otherAnswer(int status) {
    switch (status) {
    case RTKWORD: {
        AcString word;
        acedGetInput(word);
        return makeText(word.kwszPtr());
    }
    case RTNONE:
        return {};
    case RTCAN:
        cancelled();
    default:
        throw Error(L"输入无效");
    }
}

using PointQuestion = int (*)(const ads_point, const ACHAR*, ads_point);
template <PointQuestion ask>
Value getPoint(LispInterpreter&, Arguments arguments) {
    const Question question(arguments);
    ads_point point{};
    const int status = ask(question.basePoint(), question.promptText(), point);
    return status == RTNORM ? pointList(asPoint3d(point)) : otherAnswer(status);
}

using NumberQuestion = int (*)(const ads_point, const ACHAR*, ads_real*);
template <NumberQuestion ask>
Value getNumber(LispInterpreter&, Arguments arguments) {
    const Question question(arguments);
    ads_real value = 0.0;
    const int status = ask(question.basePoint(), question.promptText(), &value);
    return status == RTNORM ? Value(value) : otherAnswer(status);
}

Value getReal(LispInterpreter&, Arguments arguments) {
    const Question question(arguments);
    ads_real value = 0.0;
    const int status = acedGetReal(question.promptText(), &value);
    return status == RTNORM ? Value(value) : otherAnswer(status);
}

Value getInteger(LispInterpreter&, Arguments arguments) {
    const Question question(arguments);
    int value = 0;
    const int status = acedGetInt(question.promptText(), &value);
    return status == RTNORM ? Value(std::int32_t{value}) : otherAnswer(status);
}

// (getstring [blanks] [prompt]).
Value getText(LispInterpreter&, Arguments arguments) {
    bool wholeLine = false;
    const Value* prompt = nullptr;
    if (arguments.size() == 2) {
        wholeLine = static_cast<bool>(arguments[0]);
        prompt = &arguments[1];
    } else if (arguments.size() == 1) {
        if (arguments[0].isText()) {
            prompt = &arguments[0];
        } else {
            wholeLine = static_cast<bool>(arguments[0]);
        }
    }
    AcString text;
    const int status =
        acedGetString(wholeLine ? 1 : 0, prompt != nullptr ? textOf(*prompt).c_str() : nullptr, text);
    return status == RTNORM || status == RTNONE ? makeText(text.kwszPtr()) : otherAnswer(status);
}

Value getKeyword(LispInterpreter&, Arguments arguments) {
    const Question question(arguments);
    AcString word;
    const int status = acedGetKword(question.promptText(), word);
    return status == RTNORM ? makeText(word.kwszPtr()) : otherAnswer(status);
}

Value missed(int status) {
    if (status == RTKWORD) {
        return otherAnswer(status);
    }
    if (status == RTCAN) {
        cancelled();
    }
    setErrorNumber(status == RTERROR ? pickMissed : nullResponse);
    return {};
}

Value selectEntity(LispInterpreter&, Arguments arguments) {
    const Question question(arguments);
    ads_name entity{};
    ads_point point{};
    const int status = acedEntSel(question.promptText(), entity, point);
    return status == RTNORM ? list(entityValue(entity), pointList(asPoint3d(point))) : missed(status);
}

Value containerList(const resbuf* containers) {
    ListBuilder builder;
    for (const resbuf* at = containers; at != nullptr; at = at->rbnext) {
        if (resbufKind(at->restype) == ResbufKind::name) {
            builder.add(entityValue(at->resval.rlname));
        }
    }
    return builder.take();
}

// (entity point), inside a block reference (entity point matrix containers): rows X, Y, Z axis and origin.
Value selectNested(LispInterpreter&, Arguments arguments) {
    const Question question(arguments);
    ads_name entity{};
    ads_point point{};
    ads_point transform[4] = {};
    resbuf* found = nullptr;
    const int status = acedNEntSel(question.promptText(), entity, point, transform, &found);
    const ResbufList containers(found);
    if (status != RTNORM) {
        return missed(status);
    }
    if (containers == nullptr) {
        return list(entityValue(entity), pointList(asPoint3d(point)));
    }
    ListBuilder rows;
    for (const ads_point& row : transform) {
        rows.add(pointList(asPoint3d(row)));
    }
    return list(entityValue(entity), pointList(asPoint3d(point)), rows.take(),
                containerList(containers.get()));
}

// The same with a 4x4 matrix; a point given is used instead of a pick.
Value selectNestedPoint(LispInterpreter&, Arguments arguments) {
    const Question question(arguments);
    ads_name entity{};
    ads_point point{question.base[0], question.base[1], question.base[2]};
    ads_matrix transform{};
    resbuf* found = nullptr;
    const int status =
        acedNEntSelP(question.promptText(), entity, point, question.hasBase ? 0 : 1, transform, &found);
    const ResbufList containers(found);
    if (status != RTNORM) {
        return missed(status);
    }
    if (containers == nullptr) {
        return list(entityValue(entity), pointList(asPoint3d(point)));
    }
    ListBuilder rows;
    for (const auto& row : transform) {
        rows.add(list(row[0], row[1], row[2], row[3]));
    }
    return list(entityValue(entity), pointList(asPoint3d(point)), rows.take(),
                containerList(containers.get()));
}

// (grread [track] ...) gives (kind value); without a window it ends like a cancelled question.
Value readDevice(LispInterpreter& lisp, Arguments arguments) {
    int kind = 0;
    resbuf value{};
    const int track = !arguments.empty() && arguments[0] ? 1 : 0;
    const int status = acedGrRead(track, &kind, &value);
    if (status != RTNORM) {
        cancelled();
    }
    return list(Value(std::int32_t{kind}), valueFrom(lisp, &value).value_or(Value()));
}

constexpr FunctionRow rows[] = {
    {L"INITGET", initGet, 0, 2},
    {L"GETPOINT", getPoint<acedGetPoint>, 0, 2},
    {L"GETCORNER", getPoint<acedGetCorner>, 1, 2},
    {L"GETDIST", getNumber<acedGetDist>, 0, 2},
    {L"GETANGLE", getNumber<acedGetAngle>, 0, 2},
    {L"GETORIENT", getNumber<acedGetOrient>, 0, 2},
    {L"GETREAL", getReal, 0, 1},
    {L"GETINT", getInteger, 0, 1},
    {L"GETSTRING", getText, 0, 2},
    {L"GETKWORD", getKeyword, 0, 1},
    {L"ENTSEL", selectEntity, 0, 1},
    {L"NENTSEL", selectNested, 0, 1},
    {L"NENTSELP", selectNestedPoint, 0, 2},
    {L"GRREAD", readDevice, 0, 3},
};

} // namespace

void addInputFunctions(LispInterpreter& lisp) {
    addFunctions(lisp, rows);
}

} // namespace host::lisp
