// AcEdJig: dragging of an entity while a point, angle, distance or text is asked for.
#pragma once

#include "host/db/db.h"
#include "host/ed/input.h"
#include "host/ed/keywords.h"

#include <optional>
#include <string>

class AcEdDragStyle {
public:
    enum StyleType { kNone = 0, kHide, kTransparent25, kTransparent75, kDeletedEffect, kHighlight, kNotSet };
    AcEdDragStyle() = default;
    AcEdDragStyle(StyleType original, StyleType dragged) : mOriginal(original), mDragged(dragged) {}
    StyleType styleTypeForOriginal() const { return mOriginal; }
    StyleType styleTypeForDragged() const { return mDragged; }

private:
    StyleType mOriginal = kNotSet;
    StyleType mDragged = kNotSet;
};

/// Derived classes ask in sampler() with one of the acquire functions and move their entity in update().
/// Points are in world coordinates.
class AcEdJig : public AcRxObject {
    ACRX_DECLARE_MEMBERS(AcEdJig);

public:
    enum UserInputControls {
        kGovernedByOrthoMode = 0x0001,
        kNullResponseAccepted = 0x0002,
        kDontEchoCancelForCtrlC = 0x0004,
        kDontUpdateLastPoint = 0x0008,
        kNoDwgLimitsChecking = 0x0010,
        kNoZeroResponseAccepted = 0x0020,
        kNoNegativeResponseAccepted = 0x0040,
        kAccept3dCoordinates = 0x0080,
        kAcceptMouseUpAsPoint = 0x0100,
        kAnyBlankTerminatesInput = 0x0200,
        kInitialBlankTerminatesInput = 0x0400,
        kAcceptOtherInputString = 0x0800,
        kGovernedByUCSDetect = 0x1000,
        kNoZDirectionOrtho = 0x2000,
        kImpliedFaceForUCSChange = 0x4000,
        kUseBasePointElevation = 0x8000,
        kDisableDirectDistanceInput = 0x10000
    };
    enum DragStatus {
        kModeless = -17,
        kNoChange = -6,
        kCancel = -4,
        kOther = -3,
        kNull = -1,
        kNormal = 0,
        kKW1,
        kKW2,
        kKW3,
        kKW4,
        kKW5,
        kKW6,
        kKW7,
        kKW8,
        kKW9
    };
    enum CursorType {
        kNoSpecialCursor = -1,
        kCrosshair = 0,
        kRectCursor,
        kRubberBand,
        kNotRotated,
        kTargetBox,
        kRotatedCrosshair,
        kCrosshairNoRotate,
        kInvisible,
        kEntitySelect,
        kParallelogram,
        kEntitySelectNoPersp,
        kPkfirstOrGrips,
        kCrosshairDashed
    };

    AcEdJig();
    ~AcEdJig() override;

    /// Asks until there is an answer that ends the dragging; kNormal when the entity stands where it should.
    DragStatus drag();
    DragStatus drag(const AcEdDragStyle& style);
    /// Adds the entity to the current space and closes it.
    AcDbObjectId append();

    virtual DragStatus sampler();
    virtual Adesk::Boolean update();
    virtual AcDbEntity* entity() const;

    void setDispPrompt(const ACHAR* format, ...);
    const ACHAR* dispPrompt() const { return mPrompt.c_str(); }
    void setKeywordList(const ACHAR* keywords) { mKeywords = keywords != nullptr ? keywords : L""; }
    const ACHAR* keywordList() const { return mKeywords.c_str(); }
    CursorType specialCursorType() const { return mCursor; }
    void setSpecialCursorType(CursorType cursor) { mCursor = cursor; }
    UserInputControls userInputControls() const { return mControls; }
    void setUserInputControls(UserInputControls controls) { mControls = controls; }
    void setUserInputControls(int controls) { mControls = static_cast<UserInputControls>(controls); }

    DragStatus acquireString(ACHAR* value, std::size_t size);
    template <std::size_t size>
    DragStatus acquireString(ACHAR (&value)[size]) {
        return acquireString(value, size);
    }
    DragStatus acquireString(AcString& value);
    /// Radians from the X axis of the UCS.
    DragStatus acquireAngle(double& value);
    DragStatus acquireAngle(double& value, const AcGePoint3d& base);
    DragStatus acquireDist(double& value);
    DragStatus acquireDist(double& value, const AcGePoint3d& base);
    DragStatus acquirePoint(AcGePoint3d& value);
    DragStatus acquirePoint(AcGePoint3d& value, const AcGePoint3d& base);

private:
    enum class Wanted { point, distance, angle, text };
    struct Answer;
    Answer acquire(Wanted wanted, const AcGePoint3d* base);
    DragStatus acquireNumber(double& value, const AcGePoint3d* base, bool angle);
    bool read(const host::InputItem& item, Wanted wanted, const std::optional<AcGePoint3d>& base,
              const host::KeywordList& keywords, Answer& answer);
    bool readNumber(const host::InputItem& item, bool angle, double& value) const;

    std::wstring mPrompt;
    std::wstring mKeywords;
    CursorType mCursor = kNoSpecialCursor;
    UserInputControls mControls = kGovernedByOrthoMode;
    bool mAcquired = false; ///< the sampler has asked
    bool mFinal = false;    ///< with an answer that ends the dragging
    bool mPromptShown = false;
};
