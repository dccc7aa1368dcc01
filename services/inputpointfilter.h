// A filter that keeps points, while they are picked, from snapping to chosen kinds of entities.
#pragma once

#include "restools/arxobject.h"

#include <initializer_list>
#include <map>
#include <memory>
#include <utility>

class QDVAcEdInputPointFilter;

/// A snap to an entity of a listed class by one of its listed modes is taken back: the raw cursor point
/// counts. It works on the current document from Enable to Disable. A document has one filter at a time:
/// enabling one ends whatever was there, and so does disabling or destroying any of them.
class QDV_EXPORT CQDVAcEdInputPointFilter {
public:
    /// The last word on a snap: gives 0 to keep it. One that sets `handled` decides whatever the modes are.
    using UserTreatFunc = int (*)(CArxEntity& entity, AcDb::OsnapMask activeModes, void* userData,
                                  bool& handled);
    /// By exact class: derived ones have rows of their own.
    using ClassTable = std::map<AcRxClass*, AcDb::OsnapMask>;
    /// In a mask: only block references that are external references.
    static constexpr int onlyExternalReferences = 0x40000000;

    CQDVAcEdInputPointFilter(const ClassTable& table, bool enable);
    CQDVAcEdInputPointFilter(AcRxClass* cls, AcDb::OsnapMask mask, bool enable);
    /// A later row of a class takes the place of an earlier one.
    CQDVAcEdInputPointFilter(std::initializer_list<std::pair<AcRxClass*, AcDb::OsnapMask>> rows, bool enable);
    /// Pairs of class and mask (an AcDb::OsnapMask) up to a null class.
    CQDVAcEdInputPointFilter(bool enable, AcRxClass* cls, ...);
    // A copy has the table and the user function, and is not enabled by copying.
    CQDVAcEdInputPointFilter(const CQDVAcEdInputPointFilter& other);
    CQDVAcEdInputPointFilter& operator=(const CQDVAcEdInputPointFilter& other);
    virtual ~CQDVAcEdInputPointFilter();

    void Add(AcRxClass* cls, AcDb::OsnapMask mask);
    void Remove(AcRxClass* cls);
    const ClassTable& GetMapInfo() const { return mClasses; }

    void SetUserTreatFunc(UserTreatFunc function, void* userData);
    UserTreatFunc GetUserTreatFunc() const { return mUserFunction; }
    void* GetUserData() const { return mUserData; }

    void Enable();
    void Disable() const;
    /// Whether the document has any filter.
    bool IsEnable() const;

private:
    void* mUserData = nullptr;
    UserTreatFunc mUserFunction = nullptr;
    ClassTable mClasses;
    std::unique_ptr<QDVAcEdInputPointFilter> mHostFilter;
};

/// What the host calls.
class QDVAcEdInputPointFilter : public AcEdInputPointFilter {
public:
    explicit QDVAcEdInputPointFilter(const CQDVAcEdInputPointFilter& owner) : mOwner(&owner) {}
    ~QDVAcEdInputPointFilter() override;
    Acad::ErrorStatus processInputPoint(const AcEdInputPoint& input,
                                        AcEdInputPointFilterResult& output) override;

private:
    const CQDVAcEdInputPointFilter* mOwner;
};
