// The drawing of a multiline: its last vertex follows the cursor.
#include "drawing/mlinejig.h"

#include "restools/drawing.h"

const ACHAR* CAcDbMlineJig::JustificationName(int justification) {
    switch (justification) {
    case 0:
        return L"左边";
    case 2:
        return L"右边";
    default:
        return L"中心";
    }
}

CAcDbMlineJig::CAcDbMlineJig(const ACHAR* section) : mSection(section) {}

CAcDbMlineJig::~CAcDbMlineJig() = default;

AcEdJig::DragStatus CAcDbMlineJig::sampler() {
    setUserInputControls(kAccept3dCoordinates | kNullResponseAccepted);
    setKeywordList(mPoints.length() > 1 ? L"Undo" : L"");
    AcGePoint3d point;
    const DragStatus status = acquirePoint(point);
    if (status != kNormal) {
        return status;
    }
    if (point.isEqualTo(mCurrent)) {
        return kNoChange;
    }
    mCurrent.set(point.x, point.y, 0.0);
    return kNormal;
}

Adesk::Boolean CAcDbMlineJig::update() {
    multiline().moveVertexAt(multiline().numVertices() - 1, mCurrent);
    return Adesk::kTrue;
}

AcDbEntity* CAcDbMlineJig::entity() const {
    return AcDbEntity::cast(mMultiline.Get());
}

void CAcDbMlineJig::begin(const AcGePoint3d& start) {
    CreateNewLayer(LayerName(), L"CONTINUOUS", LayerColor());
    mStyle.setNull();
    AcDbDictionary* styles = nullptr;
    if (WorkingDatabase()->getMLStyleDictionary(styles, AcDb::kForRead) == Acad::eOk) {
        styles->getAt(L"Standard", mStyle);
        styles->close();
    }
    mCurrent.set(start.x, start.y, 0.0);
    mPoints.setLogicalLength(0);
    mPoints.append(mCurrent);
    auto* drawn = mMultiline.New<AcDbMline>();
    drawn->setNormal(AcGeVector3d::kZAxis);
    drawn->setLayer(LayerName());
    drawn->setJustification(static_cast<Mline::MlineJustification>(mJustification));
    drawn->setStyle(mStyle);
    drawn->appendSeg(mCurrent);
    drawn->setScale(mWidth);
}

void CAcDbMlineJig::removeLastSegment() const {
    AcGePoint3d removed;
    multiline().removeLastSeg(removed);
}

bool CAcDbMlineJig::Draw(const AcGePoint3d& start) {
    begin(start);
    multiline().appendSeg(mCurrent);
    for (;;) {
        mCurrent = mPoints.last();
        setDispPrompt(mPoints.length() > 1 ? L"\n%s绘制下一点 [回退(U)]<退出>:" : L"\n%s绘制下一点 <退出>:",
                      DisplayName());
        switch (drag()) {
        case kCancel:
            return false;
        case kKW1:
            mPoints.removeLast();
            removeLastSegment();
            break;
        case kNormal:
            mPoints.append(mCurrent);
            multiline().appendSeg(mCurrent);
            break;
        case kNull:
            removeLastSegment();
            return mPoints.length() > 1;
        default:
            break;
        }
    }
}
