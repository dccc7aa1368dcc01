// Input points on their way to who asked: the filter that may change them and the monitors that watch them.
#pragma once

#include "host/db/db.h"

#include <vector>

class AcApDocument;
class AcDbCustomOsnapMode;
class AcGeCurve3d;
class AcGiViewportDraw;

/// What is known of a point when it was picked or snapped. History bits: AcEdInputPointManager's.
class AcEdInputPoint {
public:
    struct Values {
        AcApDocument* document = nullptr;
        AcGiViewportDraw* drawContext = nullptr;
        bool pointComputed = false;
        int history = 0;
        AcGePoint3d lastPoint, rawPoint, grippedPoint, cartesianSnappedPoint, osnappedPoint, computedPoint;
        AcDb::OsnapMask osnapMask = static_cast<AcDb::OsnapMask>(0);
        AcDb::OsnapMask osnapOverrides = static_cast<AcDb::OsnapMask>(0);
        AcArray<AcDbCustomOsnapMode*> customOsnapModes, customOsnapOverrides;
        AcArray<AcDbObjectId> pickedEntities, keyPointEntities;
        std::vector<AcDbObjectIdArray> nestedPickedEntities, nestedKeyPointEntities;
        AcArray<Adesk::GsMarker> gsSelectionMark, keyPointGsSelectionMark;
        AcArray<AcGeCurve3d*> alignmentPaths;
        AcString tooltipString;
    };
    explicit AcEdInputPoint(const Values& values) : mValues(values) {}

    AcApDocument* document() const { return mValues.document; }
    AcGiViewportDraw* drawContext() const { return mValues.drawContext; }
    bool pointComputed() const { return mValues.pointComputed; }
    int history() const { return mValues.history; }
    const AcGePoint3d& lastPoint() const { return mValues.lastPoint; }
    const AcGePoint3d& rawPoint() const { return mValues.rawPoint; }
    const AcGePoint3d& grippedPoint() const { return mValues.grippedPoint; }
    const AcGePoint3d& cartesianSnappedPoint() const { return mValues.cartesianSnappedPoint; }
    const AcGePoint3d& osnappedPoint() const { return mValues.osnappedPoint; }
    const AcGePoint3d& computedPoint() const { return mValues.computedPoint; }
    AcDb::OsnapMask osnapMask() const { return mValues.osnapMask; }
    AcDb::OsnapMask osnapOverrides() const { return mValues.osnapOverrides; }
    const AcArray<AcDbCustomOsnapMode*>& customOsnapModes() const { return mValues.customOsnapModes; }
    const AcArray<AcDbObjectId>& pickedEntities() const { return mValues.pickedEntities; }
    const std::vector<AcDbObjectIdArray>& nestedPickedEntities() const {
        return mValues.nestedPickedEntities;
    }
    const AcArray<Adesk::GsMarker>& gsSelectionMark() const { return mValues.gsSelectionMark; }
    const AcArray<AcDbObjectId>& keyPointEntities() const { return mValues.keyPointEntities; }
    const AcArray<AcGeCurve3d*>& alignmentPaths() const { return mValues.alignmentPaths; }
    const ACHAR* tooltipString() const { return mValues.tooltipString.kwszPtr(); }

private:
    const Values& mValues;
};

class AcEdInputPointFilterResult {
public:
    void setNewPoint(const AcGePoint3d& point) {
        mPoint = point;
        mChanged = true;
    }
    AcGePoint3d newPoint() const { return mPoint; }
    void setDisplayOsnapGlyph(bool display) { mGlyph = display; }
    bool displayOsnapGlyph() const { return mGlyph; }
    void setNewTooltipString(const ACHAR* text) { mTooltip = text; }
    const ACHAR* newTooltipString() const { return mTooltip.kwszPtr(); }
    void setRetry(bool retry) { mRetry = retry; }
    bool retry() const { return mRetry; }
    bool isPointChanged() const { return mChanged; }

private:
    AcGePoint3d mPoint;
    AcString mTooltip;
    bool mChanged = false;
    bool mGlyph = true;
    bool mRetry = false;
};

class AcEdInputPointMonitorResult {
public:
    void setAdditionalTooltipString(const ACHAR* text) { mText = text; }
    const ACHAR* additionalTooltipString() const { return mText.kwszPtr(); }
    bool appendToTooltipStr() const { return mAppend; }
    void setAppendToTooltipStr(bool append) { mAppend = append; }

private:
    AcString mText;
    bool mAppend = false;
};

class AcEdInputPointFilter : public AcRxObject {
    ACRX_DECLARE_MEMBERS(AcEdInputPointFilter);

public:
    virtual Acad::ErrorStatus processInputPoint(const AcEdInputPoint& input,
                                                AcEdInputPointFilterResult& output) = 0;
    virtual AcEdInputPointFilter* revokeInputPointFilter(AcEdInputPointFilter*) { return nullptr; }
};

class AcEdInputPointMonitor : public AcRxObject {
    ACRX_DECLARE_MEMBERS(AcEdInputPointMonitor);

public:
    virtual Acad::ErrorStatus monitorInputPoint(const AcEdInputPoint& input,
                                                AcEdInputPointMonitorResult& output) = 0;
    virtual bool excludeFromOsnapCalculation(const AcDbObjectId&) { return false; }
};

/// One a document.
class AcEdInputPointManager {
public:
    enum {
        eMousePoint = 0x01,
        eTabletPoint = 0x02,
        eOrtho = 0x04,
        eGripped = 0x08,
        eCartSnapped = 0x20,
        eOsnapped = 0x80,
        eCyclingPt = 0x100,
        eOsnapUnresolved = 0x200
    };

    /// The filter replaces an earlier one; it is not owned.
    Acad::ErrorStatus registerPointFilter(AcEdInputPointFilter* filter);
    Acad::ErrorStatus revokePointFilter();
    AcEdInputPointFilter* currentPointFilter() const { return mFilter; }
    Acad::ErrorStatus addPointMonitor(AcEdInputPointMonitor* monitor);
    Acad::ErrorStatus removePointMonitor(AcEdInputPointMonitor* monitor);
    void disableSystemCursorGraphics() {}
    void enableSystemCursorGraphics() {}
    bool systemCursorDisabled() const { return false; }

    bool isWatched() const { return mFilter != nullptr || !mMonitors.empty(); }
    /// The point after filter and monitors.
    AcGePoint3d process(AcEdInputPoint::Values values) const;

private:
    AcEdInputPointFilter* mFilter = nullptr;
    std::vector<AcEdInputPointMonitor*> mMonitors;
};
