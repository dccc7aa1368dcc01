// The dialogue of a symbol's line. Its segments are polylines of their own until the end, so that each can be
// taken back.
#include "frame/symbolline.h"

#include "restools/drawing.h"
#include "restools/hostcommand.h"
#include "restools/sysvar.h"

#include <vector>

namespace {

constexpr const ACHAR* enter = L"";

enum class Step { point, undo, close, finish, abandon };

struct Answer {
    Step step = Step::finish;
    AcGePoint3d point;
};

Answer askNextPoint(const AcGePoint3d& from) {
    ads_point picked;
    acedInitGet(0, L"Undo Close");
    switch (acedGetPoint(asDblArray(from), L"\n到点 [闭合(C)/回退(U)]<退出>:", picked)) {
    case RTNORM:
        return {Step::point, asPnt3d(picked)};
    case RTKWORD: {
        AcString keyword;
        acedGetInput(keyword);
        return {keyword == L"Undo" ? Step::undo : Step::close, {}};
    }
    case RTCAN:
        return {Step::abandon, {}};
    default:
        return {Step::finish, {}};
    }
}

/// The segments drawn so far, as the host's selection set and by their points.
class Segments {
public:
    explicit Segments(const AcGePoint3d& start) : mPoints{start} { mPicks.CreateNullEntPicks(); }

    int Count() const { return static_cast<int>(mPoints.size()) - 1; }
    const AcGePoint3d& Last() const { return mPoints.back(); }

    void Add(const AcGePoint3d& point) {
        RunHostCommand({L"_.pline", Last(), point, enter});
        mPicks.Add(CEntity::Last().ObjectId());
        mPoints.push_back(point);
    }
    void Close() { Add(mPoints.front()); }
    void RemoveLast() {
        const CEntity segment = CEntity::Last();
        acedSSDel(segment.Name(), mPicks.Name());
        acdbEntDel(segment.Name());
        mPoints.pop_back();
    }
    void Join() const {
        if (Count() > 1) {
            RunHostCommand({L"_.pedit", mPicks, L"_j", mPicks, enter, enter});
        }
    }

private:
    std::vector<AcGePoint3d> mPoints; ///< where the segments meet, beginning with the first point
    CEntPicks mPicks;
};

/// False when the user cancelled.
bool drawSegments(Segments& segments) {
    for (;;) {
        const Answer answer = askNextPoint(segments.Last());
        switch (answer.step) {
        case Step::point:
            segments.Add(answer.point);
            break;
        case Step::undo:
            if (segments.Count() == 0) {
                acutPrintf(L"\n无可回退!");
            } else {
                segments.RemoveLast();
            }
            break;
        case Step::close:
            if (segments.Count() > 1) {
                segments.Close();
                return true;
            }
            acedAlert(L"无法闭合!");
            break;
        case Step::finish:
            return true;
        case Step::abandon:
            return false;
        }
    }
}

/// Null when nothing is to be kept.
CEntity drawJoined() {
    acedMenuCmd(L"S=OSNAPB");
    ads_point start;
    acedInitGet(0, nullptr);
    if (acedGetPoint(nullptr, L"\n起点 <退出>:", start) != RTNORM) {
        return {};
    }
    Segments segments(asPnt3d(start));
    const bool isKept = drawSegments(segments);
    segments.Join();
    if (segments.Count() == 0) {
        return {};
    }
    const CEntity joined = CEntity::Last();
    if (!isKept) {
        acdbEntDel(joined.Name());
        return {};
    }
    return joined;
}

} // namespace

CEntity DrawSymbolLine(double width) {
    SetVar(L"PLINEWID", width);
    SetVar(L"PLINEGEN", 1);
    CEntity line;
    {
        // The segments are 2D polylines, which a spline can be fitted to.
        const CSysVar heavyPolylines(L"PLINETYPE", 0);
        line = drawJoined();
    }
    if (!line.IsNull()) {
        RunHostCommand({L"_.pedit", line, L"_s", L"_L", L"_ON", enter});
    }
    return line;
}
