// Rotated, aligned and ordinate dimensions.
#include "host/db/entities/dimensionpainter.h"
#include "host/db/entities/fields.h"

#include <algorithm>

ACRX_DXF_DEFINE_MEMBERS(AcDbAlignedDimension, AcDbDimension, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0,
                        DIMENSION, ObjectDBX Classes)
ACRX_DXF_DEFINE_MEMBERS(AcDbRotatedDimension, AcDbAlignedDimension, AcDb::kDHL_CURRENT,
                        AcDb::kMReleaseCurrent, 0, DIMENSION, ObjectDBX Classes)
ACRX_DXF_DEFINE_MEMBERS(AcDbOrdinateDimension, AcDbDimension, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0,
                        DIMENSION, ObjectDBX Classes)

AcDbAlignedDimension::AcDbAlignedDimension(const AcGePoint3d& xLine1Point, const AcGePoint3d& xLine2Point,
                                           const AcGePoint3d& dimLinePoint, const ACHAR* text,
                                           AcDbObjectId style) {
    m.points[Point::second] = xLine1Point;
    m.points[Point::third] = xLine2Point;
    m.points[Point::first] = dimLinePoint;
    m.text = text;
    m.style = style;
}

double AcDbAlignedDimension::oblique() const {
    assertReadEnabled();
    return m.oblique;
}
Acad::ErrorStatus AcDbAlignedDimension::setOblique(double angle) {
    return setAngle(&host::DimensionData::oblique, angle);
}

AcGeVector2d AcDbAlignedDimension::lineDirection() const {
    const AcGeVector2d span = flat(Point::third) - flat(Point::second);
    return span.length() > 0.0 ? span.normal() : host::direction(m.horizontalRotation);
}

double AcDbAlignedDimension::subMeasurement() const {
    return std::fabs((flat(Point::third) - flat(Point::second)).dotProduct(lineDirection()));
}

AcDbRotatedDimension::AcDbRotatedDimension(double rotation, const AcGePoint3d& xLine1Point,
                                           const AcGePoint3d& xLine2Point, const AcGePoint3d& dimLinePoint,
                                           const ACHAR* text, AcDbObjectId style)
    : AcDbAlignedDimension(xLine1Point, xLine2Point, dimLinePoint, text, style) {
    m.rotation = rotation;
}
double AcDbRotatedDimension::rotation() const {
    assertReadEnabled();
    return m.rotation;
}
Acad::ErrorStatus AcDbRotatedDimension::setRotation(double angle) {
    return setAngle(&host::DimensionData::rotation, angle);
}
AcGeVector2d AcDbRotatedDimension::lineDirection() const {
    return host::direction(m.rotation);
}

std::vector<AcDbDimension::FileSubclass> AcDbAlignedDimension::fileSubclasses() const {
    return {{"AcDbAlignedDimension", {13, 14, 52}}};
}
std::vector<AcDbDimension::FileSubclass> AcDbRotatedDimension::fileSubclasses() const {
    return {{"AcDbAlignedDimension", {13, 14, 50, 52}}, {"AcDbRotatedDimension", {}}};
}

namespace {

using host::DimensionPainter;

/// The dimension line of a linear dimension: x runs along it from the first arrow to the second, y across,
/// to the left.
struct LineFrame {
    AcGePoint2d origin;
    AcGeVector2d x, y;
    double angle = 0.0;
    double length = 0.0;

    AcGePoint2d at(double along, double across = 0.0) const { return origin + x * along + y * across; }
};

/// What stands between the extension lines and what outside.
struct Fit {
    bool textInside = true;
    bool arrowsInside = true;
};

Fit fitOf(const DimensionPainter& painter, double length, double textExtent) {
    const host::DimVariables& v = painter.v;
    const double arrows = 2.0 * painter.arrowSize();
    const double text = painter.hasText() ? textExtent + 2.0 * painter.gap() : 0.0;
    const double slack = 1e-9 * (1.0 + length);
    const bool textFits = text <= length + slack;
    const bool arrowsFit = arrows + painter.gap() <= length + slack;
    if (text + arrows <= length + slack) {
        return {true, true};
    }
    if (v.tix != 0) {
        return {true, false};
    }
    switch (v.atfit) {
    case 0:
        return {false, false};
    case 1: // arrows go first
        return {textFits, false};
    case 2: // the text goes first
        return {false, arrowsFit};
    default:
        return textFits ? Fit{true, false} : Fit{false, arrowsFit};
    }
}

/// How far the middle of the text stands from the line, to its left; `breaks` when the line ends at the text.
struct Lift {
    double distance = 0.0;
    bool breaks = false;
};

Lift liftOf(const DimensionPainter& painter, const LineFrame& frame, double textAngle, double halfAcross,
            bool inside, double sideOfOrigins) {
    const host::DimVariables& v = painter.v;
    const double turned = std::fabs(std::sin(textAngle - frame.angle));
    const double up =
        host::direction(painter.readable(frame.angle)).perpVector().dotProduct(frame.y) > 0.0 ? 1.0 : -1.0;
    const double clear = painter.gap() + halfAcross;
    const bool liesAcross = turned > 1e-6 && inside && !painter.data().hasTextRotation;
    if (v.tad == 0 || (liesAcross && v.tad != 2)) {
        const double raised = v.tad == 0 ? v.tvp * painter.scaled(v.txt) : 0.0;
        return {up * raised, std::fabs(raised) < clear};
    }
    if (v.tad == 2) {
        return {-sideOfOrigins * clear, false};
    }
    return {(v.tad == 4 ? -up : up) * clear, false};
}

class LinearPainter {
public:
    LinearPainter(DimensionPainter& painter, const LineFrame& frame, const AcGePoint2d (&origins)[2],
                  const AcGeVector2d& extension)
        : mPainter(painter), mFrame(frame), mExtension(extension), v(painter.v) {
        mOrigins[0] = origins[0];
        mOrigins[1] = origins[1];
    }

    void paint() {
        const double forcedInside = mPainter.textAngle(mFrame.angle, v.tih != 0);
        const AcGeVector2d half = mPainter.textHalfExtent(forcedInside, mFrame.angle);
        mFit = fitOf(mPainter, mFrame.length, 2.0 * half.x);
        placeText();
        extensionLines();
        lines();
        arrows();
    }

private:
    double sideOfOrigins() const {
        const double side = (mOrigins[0] - mFrame.origin).dotProduct(mFrame.y) +
                            (mOrigins[1] - mFrame.at(mFrame.length)).dotProduct(mFrame.y);
        return side >= 0.0 ? 1.0 : -1.0;
    }

    void placeText() {
        if (!mPainter.hasText()) {
            return;
        }
        const std::optional<AcGePoint2d> given = mPainter.givenTextPlace();
        if (given) {
            const AcGeVector2d arm = *given - mFrame.origin;
            mTextAlong = arm.dotProduct(mFrame.x);
            const bool inside = mTextAlong >= 0.0 && mTextAlong <= mFrame.length;
            mTextAngle = mPainter.textAngle(mFrame.angle, inside ? v.tih != 0 : v.toh != 0);
            mPainter.placeText(*given, mTextAngle, true);
            mHalf = mPainter.textHalfExtent(mTextAngle, mFrame.angle);
            mTextLift = arm.dotProduct(mFrame.y);
            return;
        }
        if (v.just >= 3 && mFit.textInside) {
            return placeOverExtensionLine();
        }
        mTextAngle = mPainter.textAngle(mFrame.angle, mFit.textInside ? v.tih != 0 : v.toh != 0);
        mHalf = mPainter.textHalfExtent(mTextAngle, mFrame.angle);
        Lift lift = liftOf(mPainter, mFrame, mTextAngle, mHalf.y, mFit.textInside, sideOfOrigins());
        const double end = mPainter.arrowSize() + mPainter.gap() + mHalf.x;
        if (mFit.textInside) {
            mTextAlong = v.just == 1 ? end : v.just == 2 ? mFrame.length - end : 0.5 * mFrame.length;
        } else if (v.tmove == 0) {
            const double arrow = mPainter.arrowSize() * (mFit.arrowsInside ? 1.0 : 2.0);
            mTextAlong = mFrame.length + arrow + mPainter.gap() + mHalf.x;
        } else {
            mTextAlong = 0.5 * mFrame.length;
            const double clear = 2.0 * mPainter.gap() + mHalf.y + mPainter.arrowSize();
            lift = {lift.distance < 0.0 ? -clear : clear, false};
        }
        mTextLift = lift.distance;
        mPainter.placeText(mFrame.at(mTextAlong, lift.distance), mTextAngle, lift.breaks);
        mLineUnderText = !lift.breaks;
    }

    /// DIMJUST 3 and 4: along an extension line, which goes on beside the text.
    void placeOverExtensionLine() {
        const bool second = v.just == 4;
        const AcGePoint2d foot = second ? mFrame.at(mFrame.length) : mFrame.origin;
        const AcGeVector2d away = mExtension * -sideAlong();
        mTextAngle = mPainter.textAngle(away.angle(), v.tih != 0);
        const AcGeVector2d half = mPainter.textHalfExtent(mTextAngle, away.angle());
        const AcGeVector2d aside = host::direction(mPainter.readable(away.angle())).perpVector();
        const double start = mPainter.scaled(v.exe) + mPainter.gap();
        const double shift = v.tad == 0 ? 0.0 : half.y + mPainter.gap();
        mPainter.placeText(foot + away * (start + half.x) + aside * shift, mTextAngle, false);
        mExtended[second ? 1 : 0] = shift == 0.0 ? 0.0 : mPainter.gap() + 2.0 * half.x;
        mHalf = {};
    }
    /// 1 when the origins lie in the direction of mExtension from the line, else -1.
    double sideAlong() const {
        const double side = (mOrigins[0] - mFrame.origin).dotProduct(mExtension);
        const double other = (mOrigins[1] - mFrame.at(mFrame.length)).dotProduct(mExtension);
        return side + other > 0.0 ? 1.0 : -1.0;
    }

    void extensionLines() {
        const Adesk::Int16 suppressed[] = {v.se1, v.se2};
        for (int which = 0; which < 2; ++which) {
            const AcGePoint2d foot = which == 0 ? mFrame.origin : mFrame.at(mFrame.length);
            const AcGePoint2d origin = mOrigins[which];
            if (suppressed[which] != 0) {
                continue;
            }
            AcGeVector2d away = foot - origin;
            const double distance = away.length();
            away = distance > 0.0 ? away / distance : mExtension * -sideAlong();
            AcGePoint2d start = origin + away * mPainter.scaled(v.exo);
            if (v.fxlon != 0 && mPainter.scaled(v.fxl) + mPainter.scaled(v.exo) < distance) {
                start = foot - away * mPainter.scaled(v.fxl);
            }
            mPainter.extensionLine(start, foot + away * (mPainter.scaled(v.exe) + mExtended[which]),
                                   which == 1);
        }
    }

    void lines() {
        const double length = mFrame.length;
        const bool textBeyond = mPainter.hasText() && (mTextAlong < 0.0 || mTextAlong > length);
        const double half = 0.5 * length;
        const auto inner = [&](double from, double to) {
            // Each half may be suppressed; they meet at the middle.
            if (v.sd1 == 0 && v.sd2 == 0) {
                mPainter.brokenLine(mFrame.at(from), mFrame.at(to));
            } else if (v.sd1 == 0) {
                mPainter.brokenLine(mFrame.at(from), mFrame.at(half));
            } else if (v.sd2 == 0) {
                mPainter.brokenLine(mFrame.at(half), mFrame.at(to));
            }
        };
        if (mPainter.hasTicks() && (mFit.arrowsInside || mFit.textInside)) {
            inner(-mPainter.scaled(v.dle), length + mPainter.scaled(v.dle));
        } else if (mFit.arrowsInside) {
            inner(mPainter.arrowCut(false), length - mPainter.arrowCut(true));
        } else if (v.tofl != 0) {
            inner(0.0, length);
        }
        if (v.soxd != 0 || v.tmove != 0) {
            return;
        }
        const double arrow = mPainter.arrowSize();
        double left = mFit.arrowsInside ? 0.0 : -2.0 * arrow;
        double right = mFit.arrowsInside ? length : length + 2.0 * arrow;
        if (textBeyond) { // the line goes to the text, or on below it
            const double reach = mLineUnderText ? mHalf.x : -mHalf.x - mPainter.gap();
            (mTextAlong > length ? right : left) = mTextAlong > length ? std::max(right, mTextAlong + reach)
                                                                       : std::min(left, mTextAlong - reach);
        }
        const double leftStart = mFit.arrowsInside ? 0.0 : -mPainter.arrowCut(false);
        const double rightStart = mFit.arrowsInside ? length : length + mPainter.arrowCut(true);
        if (left < leftStart && v.sd1 == 0) {
            mPainter.dimensionLine(mFrame.at(left), mFrame.at(leftStart));
        }
        if (right > rightStart && v.sd2 == 0) {
            mPainter.dimensionLine(mFrame.at(rightStart), mFrame.at(right));
        }
    }

    void arrows() {
        if (!mFit.arrowsInside && v.soxd != 0) {
            return;
        }
        const double outward = mFit.arrowsInside ? host::pi : 0.0;
        if (v.sd1 == 0) {
            mPainter.arrow(mFrame.origin, mFrame.angle + outward, false);
        }
        if (v.sd2 == 0) {
            mPainter.arrow(mFrame.at(mFrame.length), mFrame.angle + outward + host::pi, true);
        }
    }

    DimensionPainter& mPainter;
    const LineFrame& mFrame;
    AcGePoint2d mOrigins[2];
    AcGeVector2d mExtension;
    const host::DimVariables& v;
    Fit mFit;
    AcGeVector2d mHalf;
    double mTextAngle = 0.0;
    double mTextAlong = 0.0;
    double mTextLift = 0.0;
    double mExtended[2] = {0.0, 0.0};
    bool mLineUnderText = false;
};

/// Where the line through a point in a direction meets the dimension line, as a distance along it.
double meeting(const AcGePoint2d& point, const AcGeVector2d& along, const AcGePoint2d& onLine,
               const AcGeVector2d& line) {
    const double across = along.crossProduct(line);
    return (point - onLine).crossProduct(along) / (std::fabs(across) > 1e-12 ? -across : 1.0);
}

} // namespace

void AcDbAlignedDimension::paint(host::DimensionPainter& painter) const {
    const AcGePoint2d origins[] = {flat(Point::second), flat(Point::third)};
    const AcGePoint2d onLine = flat(Point::first);
    AcGeVector2d x = lineDirection();
    AcGeVector2d extension = m.oblique == 0.0 ? x.perpVector() : host::direction(x.angle() + m.oblique);
    if (std::fabs(extension.crossProduct(x)) < 1e-6) {
        extension = x.perpVector();
    }
    const double first = meeting(origins[0], extension, onLine, x);
    const double second = meeting(origins[1], extension, onLine, x);
    LineFrame frame;
    frame.origin = onLine + x * first;
    frame.x = second >= first ? x : x * -1.0;
    frame.y = frame.x.perpVector();
    frame.angle = frame.x.angle();
    frame.length = std::fabs(second - first);
    LinearPainter(painter, frame, origins, extension).paint();
    painter.definitionPoint(host::toObject(m.normal, m.points[Point::second]));
    painter.definitionPoint(host::toObject(m.normal, m.points[Point::third]));
    painter.definitionPoint(host::toObject(m.normal, m.points[Point::first]));
}

// Ordinate dimensions.

AcDbOrdinateDimension::AcDbOrdinateDimension(bool useXAxis, const AcGePoint3d& definingPoint,
                                             const AcGePoint3d& leaderEndPoint, const ACHAR* text,
                                             AcDbObjectId style) {
    m.set(m.alongX, useXAxis);
    m.points[Point::second] = definingPoint;
    m.points[Point::third] = leaderEndPoint;
    m.text = text;
    m.style = style;
}
bool AcDbOrdinateDimension::isUsingXAxis() const {
    assertReadEnabled();
    return m.has(m.alongX);
}
Acad::ErrorStatus AcDbOrdinateDimension::useXAxis() {
    changing();
    m.set(m.alongX, true);
    return Acad::eOk;
}
Acad::ErrorStatus AcDbOrdinateDimension::useYAxis() {
    changing();
    m.set(m.alongX, false);
    return Acad::eOk;
}

double AcDbOrdinateDimension::subMeasurement() const {
    const AcGeVector2d x = host::direction(m.horizontalRotation);
    const AcGeVector2d arm = flat(Point::second) - flat(Point::first);
    return std::fabs(arm.dotProduct(m.has(m.alongX) ? x : x.perpVector()));
}

std::vector<AcDbDimension::FileSubclass> AcDbOrdinateDimension::fileSubclasses() const {
    return {{"AcDbOrdinateDimension", {13, 14}}};
}

void AcDbOrdinateDimension::paint(host::DimensionPainter& painter) const {
    const host::DimVariables& v = painter.v;
    const AcGeVector2d horizontal = host::direction(m.horizontalRotation);
    // The leader of an x coordinate runs across the X axis.
    const AcGeVector2d along = m.has(m.alongX) ? horizontal.perpVector() : horizontal;
    const AcGePoint2d feature = flat(Point::second);
    const AcGePoint2d end = flat(Point::third);
    const double reach = (end - feature).dotProduct(along);
    const double aside = (end - feature).dotProduct(along.perpVector());
    const double forward = reach < 0.0 ? -1.0 : 1.0;
    const AcGeVector2d out = along * forward;
    const double angle = painter.textAngle(out.angle(), false);
    const AcGeVector2d half = painter.textHalfExtent(angle, out.angle());
    AcGePoint2d last = end;
    if (painter.hasText()) {
        const bool above = v.tad != 0;
        const AcGeVector2d up = host::direction(painter.readable(out.angle())).perpVector();
        const double lift = above ? (v.tad == 4 ? -1.0 : 1.0) * (painter.gap() + half.y) : 0.0;
        const std::optional<AcGePoint2d> given = painter.givenTextPlace();
        painter.placeText(given ? *given : end + out * (painter.gap() + half.x) + up * lift, angle, false);
        if (above && !given) {
            last = end + out * (painter.gap() + 2.0 * half.x);
        }
    }
    const AcGePoint2d start = feature + out * painter.scaled(v.exo);
    if (std::fabs(aside) <= 1e-9 * (1.0 + std::fabs(reach))) {
        painter.extensionLine(start, last, false);
    } else { // with a jog before the end
        const double jog = std::min(2.0 * painter.scaled(v.asz), 0.5 * std::fabs(reach));
        const AcGePoint2d foot = end - out * jog;
        const AcGePoint2d bend = feature + out * std::max(std::fabs(reach) - 2.0 * jog, 0.0);
        painter.extensionLine(start, bend, false);
        painter.extensionLine(bend, foot, false);
        painter.extensionLine(foot, last, false);
    }
    painter.definitionPoint(host::toObject(m.normal, m.points[Point::second]));
    painter.definitionPoint(host::toObject(m.normal, m.points[Point::third]));
    painter.definitionPoint(host::toObject(m.normal, m.points[Point::first]));
}
