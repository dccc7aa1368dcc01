// Commands and the stack that holds them by groups. The group added or brought to the top last is searched
// first.
#pragma once

#include "host/db/db.h"
#include "host/win/types.h"

#include <memory>
#include <string>
#include <vector>

using AcRxFunctionPtr = void (*)();
class AcEdUIContext;
class AcEdCommand;
class AcEdCommandIterator;

inline constexpr Adesk::Int32 ACRX_CMD_MODAL = 0x00000000;
inline constexpr Adesk::Int32 ACRX_CMD_TRANSPARENT = 0x00000001;
inline constexpr Adesk::Int32 ACRX_CMD_USEPICKSET = 0x00000002;
inline constexpr Adesk::Int32 ACRX_CMD_REDRAW = 0x00000004;
inline constexpr Adesk::Int32 ACRX_CMD_NOPERSPECTIVE = 0x00000008;
inline constexpr Adesk::Int32 ACRX_CMD_NOMULTIPLE = 0x00000010;
inline constexpr Adesk::Int32 ACRX_CMD_NOTILEMODE = 0x00000020;
inline constexpr Adesk::Int32 ACRX_CMD_NOPAPERSPACE = 0x00000040;
inline constexpr Adesk::Int32 ACRX_CMD_PLOTONLY = 0x00000080;
inline constexpr Adesk::Int32 ACRX_CMD_NOOEM = 0x00000100;
inline constexpr Adesk::Int32 ACRX_CMD_UNDEFINED = 0x00000200;
inline constexpr Adesk::Int32 ACRX_CMD_INPROGRESS = 0x00000400;
inline constexpr Adesk::Int32 ACRX_CMD_DEFUN = 0x00000800;
inline constexpr Adesk::Int32 ACRX_CMD_NOINTERNALLOCK = 0x00020000;
inline constexpr Adesk::Int32 ACRX_CMD_DOCREADLOCK = 0x00080000;
inline constexpr Adesk::Int32 ACRX_CMD_DOCEXCLUSIVELOCK = 0x00100000;
inline constexpr Adesk::Int32 ACRX_CMD_SESSION = 0x00200000;
inline constexpr Adesk::Int32 ACRX_CMD_INTERRUPTIBLE = 0x00400000;
inline constexpr Adesk::Int32 ACRX_CMD_NOHISTORY = 0x00800000;
/// The command makes no undo step of its own (U, UNDO, REDO, OPEN, ...).
inline constexpr Adesk::Int32 ACRX_CMD_NO_UNDO_MARKER = 0x01000000;
inline constexpr Adesk::Int32 ACRX_CMD_NOBEDIT = 0x02000000;
inline constexpr Adesk::Int32 ACRX_CMD_NOACTIONRECORDING = 0x04000000;
inline constexpr Adesk::Int32 ACRX_CMD_ACTIONMACRO = 0x08000000;
inline constexpr Adesk::Int32 ACRX_CMD_NOINFERCONSTRAINT = 0x40000000;

/// The group of the host's own commands.
inline constexpr const ACHAR* ACED_HOST_GROUP = L"ACAD";

class AcEdCommand : public AcRxObject {
    ACRX_DECLARE_MEMBERS(AcEdCommand);

public:
    AcEdCommand(std::wstring group, std::wstring globalName, std::wstring localName, Adesk::Int32 flags,
                AcRxFunctionPtr function, AcEdUIContext* context, int functionCode, HINSTANCE resource,
                host::LoadedModule* module);

    virtual void functionAddr(AcRxFunctionPtr function) { mFunction = function; }
    virtual AcRxFunctionPtr functionAddr() const { return mFunction; }
    virtual Adesk::Int32 commandFlags() const { return mFlags; }
    virtual const ACHAR* globalName() const { return mGlobalName.c_str(); }
    virtual const ACHAR* localName() const { return mLocalName.c_str(); }
    virtual AcEdUIContext* UIContext() const { return mContext; }
    virtual int fcode() const { return mFunctionCode; }
    virtual HINSTANCE resourceInstance() const { return mResource; }
    /// Makes the command be passed over by name without the `.` prefix, or found again.
    virtual void commandUndef(bool undefine);
    const std::wstring& group() const { return mGroup; }
    /// The module that added the command; null for the host's own.
    host::LoadedModule* module() const { return mModule; }

private:
    std::wstring mGroup;
    std::wstring mGlobalName;
    std::wstring mLocalName;
    Adesk::Int32 mFlags;
    AcRxFunctionPtr mFunction;
    AcEdUIContext* mContext;
    int mFunctionCode;
    HINSTANCE mResource;
    host::LoadedModule* mModule;
};

class AcEdCommandStack : public AcRxObject {
    ACRX_DECLARE_MEMBERS(AcEdCommandStack);

public:
    AcEdCommandStack();
    ~AcEdCommandStack() override;

    /// eDuplicateKey when the group has a command of either name; eInvalidInput without names or function.
    virtual Acad::ErrorStatus addCommand(const ACHAR* groupName, const ACHAR* globalName,
                                         const ACHAR* localName, Adesk::Int32 flags, AcRxFunctionPtr function,
                                         AcEdUIContext* context = nullptr, int functionCode = -1,
                                         HINSTANCE resource = nullptr, AcEdCommand** command = nullptr);
    virtual AcEdCommand* lookupGlobalCmd(const ACHAR* name);
    virtual AcEdCommand* lookupLocalCmd(const ACHAR* name);
    /// By global or local name in one group (null: in all).
    virtual AcEdCommand* lookupCmd(const ACHAR* name, bool globalLookup, bool allGroups,
                                   const ACHAR* groupName = nullptr, int flags = 0);
    virtual Acad::ErrorStatus removeCmd(const ACHAR* groupName, const ACHAR* globalName);
    virtual Acad::ErrorStatus removeGroup(const ACHAR* groupName);
    virtual Acad::ErrorStatus popGroupToTop(const ACHAR* groupName);
    /// Over all groups from the top; owned by the caller.
    virtual AcEdCommandIterator* iterator();

    /// Takes away what a module that is unloaded has left.
    void removeCommandsOf(const host::LoadedModule& module);

private:
    friend class AcEdCommandIterator;
    struct Group;
    Group* findGroup(std::wstring_view name) const;
    void dropEmptyGroups();
    std::vector<std::unique_ptr<Group>> mGroups; ///< top first
};

class AcEdCommandIterator {
public:
    explicit AcEdCommandIterator(const AcEdCommandStack& stack);
    bool done() const { return mIndex >= mCommands.size(); }
    bool next() {
        ++mIndex;
        return !done();
    }
    const AcEdCommand* command() const { return done() ? nullptr : mCommands[mIndex]; }
    const ACHAR* commandGroup() const { return done() ? L"" : mCommands[mIndex]->group().c_str(); }

private:
    std::vector<const AcEdCommand*> mCommands;
    std::size_t mIndex = 0;
};

/// The stack, which the system registry also gives as the service ACAD_REGISTERED_COMMANDS.
AcEdCommandStack* acedCommandStack();
#define acedRegCmds acedCommandStack()
#define ACRX_COMMAND_DOCK L"ACAD_REGISTERED_COMMANDS"
