// The answers as a chain of result buffers.
#include "restools/hostcommand.h"

#include "restools/resbuf.h"

#include <type_traits>

resbuf* CommandAnswer::NewBuffer() const {
    return std::visit(
        [](const auto& value) {
            using Value = std::decay_t<decltype(value)>;
            if constexpr (std::is_same_v<Value, const ACHAR*>) {
                return acutBuildList(RTSTR, value, RTNONE);
            } else if constexpr (std::is_same_v<Value, double>) {
                return acutBuildList(RTREAL, value, RTNONE);
            } else if constexpr (std::is_same_v<Value, int>) {
                return acutBuildList(RTSHORT, value, RTNONE);
            } else if constexpr (std::is_same_v<Value, AcGePoint3d>) {
                return acutBuildList(RT3DPOINT, asDblArray(value), RTNONE);
            } else if constexpr (std::is_same_v<Value, CEntity>) {
                return acutBuildList(RTENAME, value.Name(), RTNONE);
            } else {
                return acutBuildList(RTPICKS, value->Name(), RTNONE);
            }
        },
        mValue);
}

int RunHostCommand(std::initializer_list<CommandAnswer> answers) {
    CResbuf chain;
    resbuf* last = nullptr;
    for (const CommandAnswer& answer : answers) {
        resbuf* buffer = answer.NewBuffer();
        if (last == nullptr) {
            chain = CResbuf(buffer);
        } else {
            last->rbnext = buffer;
        }
        last = buffer;
    }
    return acedCmdS(chain.Get());
}
