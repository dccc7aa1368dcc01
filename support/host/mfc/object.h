// The bases of the MFC classes.
#pragma once

#include "host/mfc/messagemap.h"

// A place in a list that is walked; null at its end.
using POSITION = struct POSITION__*;
// Marks handlers of messages.
#define afx_msg

class CObject {
public:
    CObject() = default;
    virtual ~CObject() = default;
    CObject(const CObject&) = delete;
    CObject& operator=(const CObject&) = delete;
};

// What can get commands and messages.
class CCmdTarget : public CObject {
public:
    // Gives a command (code BN_CLICKED, EN_CHANGE, ... of the control `id`) to its handler: TRUE when there
    // is one. `info` asks only whether there is.
    virtual BOOL OnCmdMsg(UINT id, int code, void* extra, void* info);

    // The handler of the class or its bases for a message, command or notification; null when there is none.
    const AFX_MSGMAP_ENTRY* findEntry(UINT message, UINT code, UINT id) const;

protected:
    static const AFX_MSGMAP* GetThisMessageMap();
    virtual const AFX_MSGMAP* GetMessageMap() const;
};
