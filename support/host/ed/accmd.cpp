// The command stack.
#include "host/ed/accmd.h"

#include "host/rx/text.h"

#include <algorithm>
#include <unordered_map>

ACRX_NO_CONS_DEFINE_MEMBERS(AcEdCommand, AcRxObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcEdCommandStack, AcRxObject)

struct AcEdCommandStack::Group {
    using NameIndex = std::unordered_map<std::wstring, AcEdCommand*, host::NoCaseHash, host::NoCaseEqual>;

    std::wstring name;
    std::vector<std::unique_ptr<AcEdCommand>> commands; ///< in the order of adding
    NameIndex byGlobalName;
    NameIndex byLocalName;

    static AcEdCommand* find(const NameIndex& index, std::wstring_view name) {
        const auto found = index.find(name);
        return found != index.end() ? found->second : nullptr;
    }
    void forget(const AcEdCommand& command) {
        byGlobalName.erase(command.globalName());
        byLocalName.erase(command.localName());
    }
    template <class Condition>
    void removeIf(Condition condition) {
        std::erase_if(commands, [&](const std::unique_ptr<AcEdCommand>& command) {
            const bool gone = condition(*command);
            if (gone) {
                forget(*command);
            }
            return gone;
        });
    }
};

AcEdCommand::AcEdCommand(std::wstring group, std::wstring globalName, std::wstring localName,
                         Adesk::Int32 flags, AcRxFunctionPtr function, AcEdUIContext* context,
                         int functionCode, HINSTANCE resource, host::LoadedModule* module)
    : mGroup(std::move(group)), mGlobalName(std::move(globalName)), mLocalName(std::move(localName)),
      mFlags(flags), mFunction(function), mContext(context), mFunctionCode(functionCode), mResource(resource),
      mModule(module) {}

void AcEdCommand::commandUndef(bool undefine) {
    mFlags = undefine ? mFlags | ACRX_CMD_UNDEFINED : mFlags & ~ACRX_CMD_UNDEFINED;
}

AcEdCommandStack::AcEdCommandStack() = default;
AcEdCommandStack::~AcEdCommandStack() = default;

AcEdCommandStack::Group* AcEdCommandStack::findGroup(std::wstring_view name) const {
    const auto found = std::find_if(mGroups.begin(), mGroups.end(), [&](const std::unique_ptr<Group>& group) {
        return host::equalNoCase(group->name, name);
    });
    return found != mGroups.end() ? found->get() : nullptr;
}

Acad::ErrorStatus AcEdCommandStack::addCommand(const ACHAR* groupName, const ACHAR* globalName,
                                               const ACHAR* localName, Adesk::Int32 flags,
                                               AcRxFunctionPtr function, AcEdUIContext* context,
                                               int functionCode, HINSTANCE resource, AcEdCommand** command) {
    if (command != nullptr) {
        *command = nullptr;
    }
    const auto isEmpty = [](const ACHAR* text) { return text == nullptr || *text == L'\0'; };
    if (isEmpty(groupName) || isEmpty(globalName) || function == nullptr) {
        return Acad::eInvalidInput;
    }
    const ACHAR* shownName = isEmpty(localName) ? globalName : localName;
    Group* group = findGroup(groupName);
    if (group == nullptr) {
        auto made = std::make_unique<Group>();
        made->name = groupName;
        group = mGroups.insert(mGroups.begin(), std::move(made))->get();
    }
    if (Group::find(group->byGlobalName, globalName) != nullptr ||
        Group::find(group->byLocalName, shownName) != nullptr) {
        return Acad::eDuplicateKey;
    }
    AcEdCommand& added = *group->commands.emplace_back(
        std::make_unique<AcEdCommand>(group->name, globalName, shownName, flags, function, context,
                                      functionCode, resource, host::currentModule()));
    group->byGlobalName.emplace(globalName, &added);
    group->byLocalName.emplace(shownName, &added);
    if (command != nullptr) {
        *command = &added;
    }
    return Acad::eOk;
}

AcEdCommand* AcEdCommandStack::lookupGlobalCmd(const ACHAR* name) {
    return lookupCmd(name, true, true);
}

AcEdCommand* AcEdCommandStack::lookupLocalCmd(const ACHAR* name) {
    return lookupCmd(name, false, true);
}

AcEdCommand* AcEdCommandStack::lookupCmd(const ACHAR* name, bool globalLookup, bool allGroups,
                                         const ACHAR* groupName, int) {
    if (name == nullptr) {
        return nullptr;
    }
    for (const std::unique_ptr<Group>& group : mGroups) {
        if (!allGroups && groupName != nullptr && !host::equalNoCase(group->name, groupName)) {
            continue;
        }
        if (AcEdCommand* found = Group::find(globalLookup ? group->byGlobalName : group->byLocalName, name)) {
            return found;
        }
    }
    return nullptr;
}

void AcEdCommandStack::dropEmptyGroups() {
    std::erase_if(mGroups, [](const std::unique_ptr<Group>& group) { return group->commands.empty(); });
}

Acad::ErrorStatus AcEdCommandStack::removeCmd(const ACHAR* groupName, const ACHAR* globalName) {
    Group* group = groupName != nullptr ? findGroup(groupName) : nullptr;
    AcEdCommand* command =
        group != nullptr && globalName != nullptr ? Group::find(group->byGlobalName, globalName) : nullptr;
    if (command == nullptr) {
        return Acad::eKeyNotFound;
    }
    group->removeIf([&](const AcEdCommand& other) { return &other == command; });
    dropEmptyGroups();
    return Acad::eOk;
}

Acad::ErrorStatus AcEdCommandStack::removeGroup(const ACHAR* groupName) {
    const Group* group = groupName != nullptr ? findGroup(groupName) : nullptr;
    if (group == nullptr) {
        return Acad::eKeyNotFound;
    }
    std::erase_if(mGroups, [&](const std::unique_ptr<Group>& other) { return other.get() == group; });
    return Acad::eOk;
}

Acad::ErrorStatus AcEdCommandStack::popGroupToTop(const ACHAR* groupName) {
    const Group* group = groupName != nullptr ? findGroup(groupName) : nullptr;
    if (group == nullptr) {
        return Acad::eKeyNotFound;
    }
    const auto at = std::find_if(mGroups.begin(), mGroups.end(),
                                 [&](const std::unique_ptr<Group>& other) { return other.get() == group; });
    std::rotate(mGroups.begin(), at, at + 1);
    return Acad::eOk;
}

AcEdCommandIterator* AcEdCommandStack::iterator() {
    return new AcEdCommandIterator(*this);
}

void AcEdCommandStack::removeCommandsOf(const host::LoadedModule& module) {
    for (const std::unique_ptr<Group>& group : mGroups) {
        group->removeIf([&](const AcEdCommand& command) { return command.module() == &module; });
    }
    dropEmptyGroups();
}

AcEdCommandIterator::AcEdCommandIterator(const AcEdCommandStack& stack) {
    for (const auto& group : stack.mGroups) {
        for (const std::unique_ptr<AcEdCommand>& command : group->commands) {
            mCommands.push_back(command.get());
        }
    }
}

AcEdCommandStack* acedCommandStack() {
    static AcEdCommandStack stack;
    return &stack;
}
