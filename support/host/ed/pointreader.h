// Points as they are answered: typed, given by programs or picked, with what may be typed before one - object
// snap, coordinate filters, the middle of two points, an offset from one.
#pragma once

#include "host/ed/input.h"
#include "host/ed/osnap.h"

namespace host {

/// Reads the answers to one question for a point. All points are in UCS coordinates.
class PointReader {
public:
    /// `base` is what relative coordinates go from; without one the last point.
    explicit PointReader(std::optional<AcGePoint3d> base) : mBase(base) {}

    /// The point of an answer; a word before a point asks further. Nothing when there is none, or when what
    /// was asked further was cancelled.
    std::optional<AcGePoint3d> read(const InputItem& item);
    bool isCancelled() const { return mCancelled; }

private:
    std::optional<AcGePoint3d> read(const InputItem& item, std::optional<int> overrides, int depth);
    std::optional<AcGePoint3d> readWord(const PointWord& word, int depth);
    std::optional<AcGePoint3d> ask(std::wstring_view prompt, const std::optional<AcGePoint3d>& base,
                                   std::optional<int> overrides, int depth);
    std::optional<AcGePoint3d> combined(const std::string& axes, int depth);
    AcGePoint3d last() const;

    std::optional<AcGePoint3d> mBase;
    bool mCancelled = false;
};

} // namespace host
