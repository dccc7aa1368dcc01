// The loop of dragging and the questions of a sampler.
#include "host/ed/acjig.h"

#include "host/ed/aced.h"
#include "host/ed/pointreader.h"
#include "host/ed/question.h"
#include "host/ed/units.h"
#include "host/rx/format.h"

#include <cstdarg>

ACRX_NO_CONS_DEFINE_MEMBERS(AcEdJig, AcRxObject)

/// What an acquire function got.
struct AcEdJig::Answer {
    DragStatus status = kCancel;
    AcGePoint3d point; ///< world
    double number = 0.0;
    std::wstring text;
};

AcEdJig::AcEdJig() = default;
AcEdJig::~AcEdJig() = default;

AcEdJig::DragStatus AcEdJig::sampler() {
    return kCancel;
}
Adesk::Boolean AcEdJig::update() {
    return false;
}
AcDbEntity* AcEdJig::entity() const {
    return nullptr;
}

void AcEdJig::setDispPrompt(const ACHAR* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    mPrompt = host::formatWide(format, arguments);
    va_end(arguments);
}

AcEdJig::DragStatus AcEdJig::drag(const AcEdDragStyle&) {
    return drag();
}

AcEdJig::DragStatus AcEdJig::drag() {
    bool placed = false; // a movement has put the entity where the answer may leave it
    mPromptShown = false;
    for (;;) {
        mAcquired = mFinal = false;
        const DragStatus status = sampler();
        if (status == kNormal || status == kOther) {
            update();
        }
        const bool moved = status == kNormal || status == kNoChange;
        if (!mAcquired) {
            return moved ? kCancel : status; // a sampler that does not ask would never end
        }
        if (!moved) {
            return status;
        }
        if (mFinal && (status == kNormal || placed)) {
            return kNormal;
        }
        placed = status == kNormal || (placed && !mFinal);
    }
}

AcDbObjectId AcEdJig::append() {
    AcDbEntity* dragged = entity();
    AcDbDatabase* database = acdbCurDwg();
    AcDbObjectId id;
    if (dragged == nullptr || database == nullptr) {
        return id;
    }
    const host::Opened<AcDbBlockTableRecord> space(database->currentSpaceId(), AcDb::kForWrite);
    if (space && space->appendAcDbEntity(id, dragged) == Acad::eOk) {
        dragged->close();
    }
    return id;
}

AcEdJig::Answer AcEdJig::acquire(Wanted wanted, const AcGePoint3d* base) {
    const host::KeywordList keywords(mKeywords);
    std::optional<AcGePoint3d> ucsBase;
    host::AskOptions options;
    options.wantsPoint = wanted != Wanted::text;
    options.wantsMotion = true;
    if (AcDbEntity* dragged = entity()) {
        options.dragged.push_back(dragged);
    }
    options.takesDistance = wanted == Wanted::point && (mControls & kDisableDirectDistanceInput) == 0;
    if (wanted == Wanted::text && (mControls & kAnyBlankTerminatesInput) == 0) {
        options.mode = host::ReadMode::line;
    }
    if (base != nullptr) {
        options.base = *base;
        ucsBase = host::worldToUcs(*base);
    }
    for (;;) {
        Answer answer; // what a refused input left in one is not the next one's
        const host::InputItem item = host::inputStream().ask(mPromptShown ? L"" : mPrompt, options);
        mAcquired = true;
        mPromptShown = item.kind == host::InputItem::Kind::motion;
        mFinal = !mPromptShown;
        if (item.isCancel()) {
            return answer;
        }
        if (item.isEnter()) {
            if ((mControls & kNullResponseAccepted) != 0 || wanted == Wanted::text) {
                answer.status = kNull;
                return answer;
            }
            host::refuse(L"点无效。");
            continue;
        }
        if (read(item, wanted, ucsBase, keywords, answer)) {
            return answer;
        }
        host::refuse(keywords.empty() ? L"点无效。" : L"需要点或选项关键字。");
    }
}

/// False when the answer is none.
bool AcEdJig::read(const host::InputItem& item, Wanted wanted, const std::optional<AcGePoint3d>& base,
                   const host::KeywordList& keywords, Answer& answer) {
    if (item.kind == host::InputItem::Kind::text) {
        if (const std::optional<std::size_t> keyword = keywords.match(item.text)) {
            host::lastInput() = keywords[*keyword].global;
            answer.status = static_cast<DragStatus>(kKW1 + static_cast<int>(*keyword));
            return true;
        }
    }
    answer.status = kNormal;
    if (wanted == Wanted::text) {
        answer.text = item.kind == host::InputItem::Kind::text ? item.text : host::inputText(*item.value);
        return true;
    }
    if (wanted != Wanted::point && readNumber(item, wanted == Wanted::angle, answer.number)) {
        return true;
    }
    host::PointReader reader(base);
    const std::optional<AcGePoint3d> read =
        mFinal ? reader.read(item) : host::pointIn(item, base); // words come with an answer only
    if (reader.isCancelled()) {
        answer.status = kCancel;
        return true;
    }
    if (const std::optional<AcGePoint3d> point = read) {
        answer.point = host::ucsToWorld(*point);
        if (mFinal && (mControls & kDontUpdateLastPoint) == 0) {
            host::setLastPoint(*point);
        }
        const AcGePoint3d from = base.value_or(host::lastPoint());
        answer.number = wanted == Wanted::angle ? host::angleBetween(from, *point) : from.distanceTo(*point);
        return true;
    }
    if (item.kind == host::InputItem::Kind::text && (mControls & kAcceptOtherInputString) != 0) {
        host::lastInput() = item.text;
        answer.status = kOther;
        return true;
    }
    return false;
}

bool AcEdJig::readNumber(const host::InputItem& item, bool angle, double& value) const {
    std::optional<double> number;
    if (angle && item.kind == host::InputItem::Kind::text) {
        number = host::parseAngle(item.text, host::UnitFormat::of(acdbCurDwg()), true);
    } else {
        number = host::numberIn(item);
    }
    if (!number) {
        return false;
    }
    const bool zero = (mControls & kNoZeroResponseAccepted) != 0 && *number == 0.0;
    const bool negative = (mControls & kNoNegativeResponseAccepted) != 0 && *number < 0.0;
    if (zero || negative) {
        return false;
    }
    value = *number;
    return true;
}

AcEdJig::DragStatus AcEdJig::acquireString(ACHAR* value, std::size_t size) {
    const Answer answer = acquire(Wanted::text, nullptr);
    if (size > 0) {
        const std::size_t count = std::min(answer.text.size(), size - 1);
        std::copy_n(answer.text.data(), count, value);
        value[count] = L'\0';
    }
    return answer.status;
}

AcEdJig::DragStatus AcEdJig::acquireString(AcString& value) {
    const Answer answer = acquire(Wanted::text, nullptr);
    value = answer.text.c_str();
    return answer.status;
}

AcEdJig::DragStatus AcEdJig::acquireNumber(double& value, const AcGePoint3d* base, bool angle) {
    const Answer answer = acquire(angle ? Wanted::angle : Wanted::distance, base);
    if (answer.status == kNormal) {
        value = answer.number;
    }
    return answer.status;
}

AcEdJig::DragStatus AcEdJig::acquireAngle(double& value) {
    return acquireNumber(value, nullptr, true);
}
AcEdJig::DragStatus AcEdJig::acquireAngle(double& value, const AcGePoint3d& base) {
    return acquireNumber(value, &base, true);
}
AcEdJig::DragStatus AcEdJig::acquireDist(double& value) {
    return acquireNumber(value, nullptr, false);
}
AcEdJig::DragStatus AcEdJig::acquireDist(double& value, const AcGePoint3d& base) {
    return acquireNumber(value, &base, false);
}

AcEdJig::DragStatus AcEdJig::acquirePoint(AcGePoint3d& value) {
    const Answer answer = acquire(Wanted::point, nullptr);
    if (answer.status == kNormal) {
        value = answer.point;
    }
    return answer.status;
}

AcEdJig::DragStatus AcEdJig::acquirePoint(AcGePoint3d& value, const AcGePoint3d& base) {
    const Answer answer = acquire(Wanted::point, &base);
    if (answer.status == kNormal) {
        value = answer.point;
    }
    return answer.status;
}
