#include "host/gi/dashes.h"

#include <algorithm>
#include <cmath>

namespace host {

DashLayout::DashLayout(const LinetypeLook& linetype, double scale, double length, double resolution) {
    constexpr double mostPatterns = 100000;
    const double pattern = linetype.patternLength() * scale;
    if (linetype.elements.size() < 2 || !(pattern > resolution) || !(length >= pattern) ||
        length / pattern > mostPatterns)
        return;
    mIsContinuous = false;
    if (linetype.elements.front().length >= 0)
        layAligned(linetype, scale, length, pattern);
    else
        layFromStart(linetype, scale, length);
}

// n whole patterns fit, and what is left over lengthens the first and the last dash equally. A pattern that
// starts with a dot has nothing to lengthen: it is stretched instead, so that dots stand at both ends.
void DashLayout::layAligned(const LinetypeLook& linetype, double scale, double length, double pattern) {
    const auto count = static_cast<long>(length / pattern + 1e-9);
    const double first = linetype.elements.front().length * scale;
    const bool startsWithDot = first == 0;
    const double stretched = startsWithDot ? scale * length / (static_cast<double>(count) * pattern) : scale;
    const double end =
        (length - static_cast<double>(count) * pattern + first) / 2; // the first and the last dash
    double position = startsWithDot ? 0 : end - first;               // where the first pattern would begin
    for (long i = 0; i < count; ++i) {
        for (const LinetypeLook::Element& element : linetype.elements) {
            const double next = position + std::abs(element.length) * stretched;
            if (element.inset != LinetypeLook::Element::Inset::none)
                mInsets.push_back({next, &element});
            if (element.length >= 0)
                addPiece(std::max(position, 0.0), next);
            position = next;
        }
    }
    if (!startsWithDot)
        mPieces.front().start = 0;
    addPiece(startsWithDot ? length : position, length);
}

void DashLayout::layFromStart(const LinetypeLook& linetype, double scale, double length) {
    double position = 0;
    while (position < length)
        for (const LinetypeLook::Element& element : linetype.elements) {
            const double next = position + std::abs(element.length) * scale;
            if (element.inset != LinetypeLook::Element::Inset::none && next <= length)
                mInsets.push_back({next, &element});
            if (element.length > 0 ? position < length : element.length == 0 && position <= length)
                addPiece(position, std::min(next, length));
            position = next;
        }
}

void DashLayout::addPiece(double start, double end) {
    if (!mPieces.empty() && mPieces.back().end >= start && end > start) // two dashes in a row
        mPieces.back().end = end;
    else
        mPieces.push_back({start, end});
}

RunCutter::RunCutter(std::span<const RunPoint> run) : mRun(run) {
    mDistances.reserve(run.size());
    double distance = 0;
    for (std::size_t i = 0; i < run.size(); ++i) {
        if (i > 0)
            distance += run[i].point.distanceTo(run[i - 1].point);
        mDistances.push_back(distance);
    }
}

RunPoint RunCutter::at(std::size_t segment, double distance) const {
    const RunPoint &from = mRun[segment], &to = mRun[segment + 1];
    const double length = mDistances[segment + 1] - mDistances[segment];
    const double share = length > 0 ? std::clamp((distance - mDistances[segment]) / length, 0.0, 1.0) : 0;
    const double width = from.widthOut + (to.widthIn - from.widthOut) * share;
    return {from.point + (to.point - from.point) * share, width, width};
}

void RunCutter::cut(double start, double end, std::vector<RunPoint>& result) {
    result.clear();
    while (mSegment + 2 < mRun.size() && mDistances[mSegment + 1] <= start)
        ++mSegment;
    result.push_back(at(mSegment, start));
    std::size_t segment = mSegment;
    for (; segment + 2 < mRun.size() && mDistances[segment + 1] < end; ++segment)
        result.push_back(mRun[segment + 1]);
    result.push_back(at(segment, end));
}

void RunCutter::locate(double distance, AcGePoint3d& point, AcGeVector3d& direction) const {
    const auto above = std::ranges::upper_bound(mDistances, distance);
    const auto index = static_cast<std::size_t>(above - mDistances.begin());
    const std::size_t segment = std::clamp<std::size_t>(index, 1, mRun.size() - 1) - 1;
    point = at(segment, distance).point;
    direction = (mRun[segment + 1].point - mRun[segment].point).normal();
}

} // namespace host
