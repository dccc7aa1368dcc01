// The bases of the MFC classes.
#pragma once

class CObject {
public:
    CObject() = default;
    virtual ~CObject() = default;
    CObject(const CObject&) = delete;
    CObject& operator=(const CObject&) = delete;
};

// What can get commands and messages.
class CCmdTarget : public CObject {};
