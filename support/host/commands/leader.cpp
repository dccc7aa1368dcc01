// LEADER and QLEADER: lines with an arrow that lead to words, a tolerance or a block; TOLERANCE.
#include "host/commands/ask.h"
#include "host/commands/edit/dimvalues.h"
#include "host/commands/registry.h"
#include "host/commands/tables.h"
#include "host/commands/tolerancetext.h"

#include <cmath>

namespace host {

namespace {

/// Characters of the font for tolerances.
constexpr struct {
    const wchar_t* keyword;
    wchar_t character;
} toleranceSymbols[] = {{L"Position", L'j'},     {L"Concentricity", L'r'}, {L"Symmetry", L'i'},
                        {L"PARallel", L'f'},     {L"PERpendicular", L'b'}, {L"Angularity", L'a'},
                        {L"CYlindricity", L'g'}, {L"Flatness", L'c'},      {L"CIrcularity", L'e'},
                        {L"STraightness", L'u'}, {L"SUrface", L'd'},       {L"Line", L'k'},
                        {L"RUnout", L'h'},       {L"Total", L't'}};

std::wstring symbolCell(wchar_t character) {
    return std::wstring(L"{\\Fgdt;") + character + L"}";
}

} // namespace

std::optional<std::wstring> askToleranceText() {
    const Answer symbol = askKeyword(
        L"\n输入特征符号 [位置度(P)/同轴度(C)/对称度(S)/平行度(PAR)/垂直度(PER)/倾斜度(A)/圆柱度(CY)/"
        L"平面度(F)/圆度(CI)/直线度(ST)/面轮廓度(SU)/线轮廓度(L)/圆跳动(RU)/全跳动(T)/无(N)] <无>: ",
        L"Position Concentricity Symmetry PARallel PERpendicular Angularity CYlindricity Flatness "
        L"CIrcularity STraightness SUrface Line RUnout Total None");
    if (symbol.isCancelled()) {
        return std::nullopt;
    }
    std::wstring text;
    for (const auto& [keyword, character] : toleranceSymbols) {
        text += symbol.isKeyword(keyword) ? symbolCell(character) : L"";
    }
    const TextAnswer value = askText(L"\n输入公差值: ");
    if (value.isCancelled()) {
        return std::nullopt;
    }
    text += L"%%v";
    if (value.isValue()) {
        const std::optional<bool> diameter = askYesNo(L"\n是否加直径符号?", false);
        if (!diameter) {
            return std::nullopt;
        }
        text += (*diameter ? symbolCell(L'n') : L"") + value.text;
    }
    text += L"%%v";
    constexpr const wchar_t* prompts[] = {L"\n输入第一基准 <无>: ", L"\n输入第二基准 <无>: ",
                                          L"\n输入第三基准 <无>: "};
    std::wstring datums;
    for (const wchar_t* prompt : prompts) {
        const TextAnswer datum = askText(prompt);
        if (datum.isCancelled()) {
            return std::nullopt;
        }
        if (datum.isNone()) {
            break;
        }
        datums += L"%%v" + datum.text;
    }
    const bool isEmpty = text == L"%%v%%v" && datums.empty();
    if (isEmpty) {
        acutPrintf(L"\n公差没有内容。");
    }
    return isEmpty ? std::nullopt : std::optional(text + datums);
}

namespace {

double annotationScale(const DimVariables& variables) {
    return variables.scale > 0.0 ? variables.scale : 1.0;
}

/// Gives what was made in the UCS the current style with its overrides.
template <class Annotation>
void setCurrentStyle(Annotation& annotation) {
    annotation.setDatabaseDefaults();
    annotation.setDimensionStyle(currentDatabase().dimstyle());
    overrideByCurrent(annotation, currentDatabase());
}

/// Words, line by line; nothing for Escape, empty when none were typed.
std::optional<std::wstring> askLines(const std::wstring& firstPrompt, const std::wstring& nextPrompt) {
    std::wstring contents;
    for (;;) {
        const TextAnswer line = askText(contents.empty() ? firstPrompt : nextPrompt, true);
        if (line.isCancelled()) {
            return std::nullopt;
        }
        if (line.isNone()) {
            return contents;
        }
        contents += (contents.empty() ? L"" : L"\\P") + line.text;
    }
}

class LeaderDrawing {
public:
    void run();
    void runQuick();

private:
    bool askPoints();
    bool askFormat();
    /// Asks for the annotation of LEADER; false for Escape.
    bool askAnnotation();
    bool askCopied();
    bool askBlock();
    bool askSettings();

    bool pointsRight() const { return mPoints.back().x >= mPoints[mPoints.size() - 2].x; }
    /// One that does not come in level gets a hook line towards its annotation.
    double hookLength(bool toText) const;
    std::unique_ptr<AcDbMText> newText(const std::wstring& contents) const;
    std::unique_ptr<AcDbFcf> newFrame(const std::wstring& text) const;
    void make(std::unique_ptr<AcDbEntity> annotation);

    std::vector<AcGePoint3d> mPoints; // UCS
    bool mIsSplined = false;
    bool mHasArrow = true;
    double mTextWidth = 0.0;
    std::unique_ptr<AcDbEntity> mAnnotation;
    enum class Kind { words, tolerance, none } mKind = Kind::words; // of QLEADER
    int mMostPoints = 3;
};

double LeaderDrawing::hookLength(bool toText) const {
    const DimVariables variables = currentDimVariables(currentDatabase());
    const AcGeVector3d arrival = mPoints.back() - mPoints[mPoints.size() - 2];
    const bool isLevel = std::fabs(arrival.x) >= std::cos(15.0 * pi / 180.0) * arrival.length();
    const bool isBelowText = toText && variables.tad != 0;
    return isLevel || mIsSplined || isBelowText ? 0.0 : variables.asz * annotationScale(variables);
}

std::unique_ptr<AcDbMText> LeaderDrawing::newText(const std::wstring& contents) const {
    const DimVariables variables = currentDimVariables(currentDatabase());
    const double scale = annotationScale(variables);
    const double gap = std::fabs(variables.gap) * scale;
    const bool right = pointsRight();
    const bool above = variables.tad != 0;
    auto text = std::make_unique<AcDbMText>();
    text->setDatabaseDefaults();
    text->setTextStyle(variables.txsty.isNull() ? currentDatabase().textstyle() : variables.txsty);
    const auto* style = peek<AcDbTextStyleTableRecord>(text->textStyle());
    text->setTextHeight(style != nullptr && style->textSize() > 0.0 ? style->textSize()
                                                                    : variables.txt * scale);
    if (variables.clrt != 0) {
        text->setColorIndex(static_cast<Adesk::UInt16>(variables.clrt));
    }
    text->setAttachment(above ? (right ? AcDbMText::kBottomLeft : AcDbMText::kBottomRight)
                              : (right ? AcDbMText::kMiddleLeft : AcDbMText::kMiddleRight));
    text->setLocation(mPoints.back() +
                      AcGeVector3d((right ? 1.0 : -1.0) * (hookLength(true) + gap), above ? gap : 0.0, 0.0));
    text->setWidth(mTextWidth);
    text->setContents(contents.c_str());
    return text;
}

std::unique_ptr<AcDbFcf> LeaderDrawing::newFrame(const std::wstring& text) const {
    auto frame =
        std::make_unique<AcDbFcf>(text.c_str(), mPoints.back(), AcGeVector3d::kZAxis, AcGeVector3d::kXAxis);
    setCurrentStyle(*frame);
    AcGePoint3dArray corners;
    frame->getBoundingPoints(corners);
    const auto [low, high] = std::ranges::minmax(corners, {}, &AcGePoint3d::x);
    const double side = pointsRight() ? hookLength(false) : low.x - high.x - hookLength(false);
    frame->setLocation(mPoints.back() + AcGeVector3d(side, 0.0, 0.0));
    return frame;
}

void LeaderDrawing::make(std::unique_ptr<AcDbEntity> annotation) {
    auto leader = std::make_unique<AcDbLeader>();
    setCurrentStyle(*leader);
    for (const AcGePoint3d& point : mPoints) {
        leader->appendVertex(point);
    }
    if (mIsSplined) {
        leader->setToSplineLeader();
    }
    if (!mHasArrow) {
        leader->disableArrowHead();
    }
    if (annotation == nullptr) {
        transformFromUcs(*leader);
        appendToCurrentSpace(leader.release());
        return;
    }
    // From the annotation's place to where the leader ends.
    AcGeVector3d offset;
    if (const auto* text = AcDbMText::cast(annotation.get())) {
        offset.set(0.0, mPoints.back().y - text->location().y, 0.0);
    } else if (const auto* frame = AcDbFcf::cast(annotation.get())) {
        const double hook = pointsRight() ? hookLength(false) : -hookLength(false);
        offset = mPoints.back() + AcGeVector3d(hook, 0.0, 0.0) - frame->location();
    }
    leader->setAnnotationOffset(offset);
    transformFromUcs(*leader);
    transformFromUcs(*annotation);
    const AcDbObjectId annotationId = appendToCurrentSpace(annotation.release());
    const AcDbObjectId id = appendToCurrentSpace(leader.release());
    const Opened<AcDbLeader> opened(id, AcDb::kForWrite);
    if (opened) {
        opened->attachAnnotation(annotationId);
    }
}

/// The points after the first; false for Escape.
bool LeaderDrawing::askPoints() {
    const PointAnswer first = askPoint(L"\n指定引线起点: ", nullptr, nullptr, RSG_NONULL);
    if (!first.isValue()) {
        return false;
    }
    mPoints.push_back(first.ucs);
    for (;;) {
        const PointAnswer next = mPoints.size() < 2
                                     ? askPoint(L"\n指定下一点: ", nullptr, &mPoints.back(), RSG_NONULL)
                                     : askPoint(L"\n指定下一点或 [注释(A)/格式(F)/放弃(U)] <注释>: ",
                                                L"Annotation Format Undo", &mPoints.back());
        if (next.isCancelled()) {
            return false;
        }
        if (next.isKeyword(L"Undo")) {
            mPoints.pop_back();
        } else if (next.isKeyword(L"Format")) {
            if (!askFormat()) {
                return false;
            }
        } else if (!next.isValue()) {
            return true;
        } else if (next.ucs.isEqualTo(mPoints.back())) {
            acutPrintf(L"\n点与前一点重合。");
        } else {
            mPoints.push_back(next.ucs);
        }
    }
}

bool LeaderDrawing::askFormat() {
    for (;;) {
        const Answer option = askKeyword(L"\n输入引线格式选项 [样条曲线(S)/直线(ST)/箭头(A)/无(N)] <退出>: ",
                                         L"Spline STraight Arrow None");
        if (option.kind != Answer::Kind::keyword) {
            return !option.isCancelled();
        }
        if (option.isKeyword(L"Spline") || option.isKeyword(L"STraight")) {
            mIsSplined = option.isKeyword(L"Spline");
        } else {
            mHasArrow = option.isKeyword(L"Arrow");
        }
    }
}

bool LeaderDrawing::askCopied() {
    const auto refuse = [](const AcDbEntity& entity) -> const wchar_t* {
        return AcDbMText::cast(&entity) != nullptr || AcDbText::cast(&entity) != nullptr ||
                       AcDbFcf::cast(&entity) != nullptr || AcDbBlockReference::cast(&entity) != nullptr
                   ? nullptr
                   : L"需要文字、公差或块。";
    };
    const EntityAnswer picked = askEntity(L"\n选择要复制的对象: ", nullptr, refuse);
    if (!picked.isValue()) {
        return false;
    }
    const auto* entity = peek<AcDbEntity>(picked.id);
    const ReadAccess access(*entity);
    if (const auto* text = AcDbText::cast(entity)) {
        mAnnotation = newText(text->textStringConst());
        return true;
    }
    if (const auto* words = AcDbMText::cast(entity)) {
        AcString contents;
        words->contents(contents);
        auto text = newText(contents.kwszPtr());
        text->setTextStyle(words->textStyle());
        text->setTextHeight(words->textHeight());
        mAnnotation = std::move(text);
        return true;
    }
    if (const auto* frame = AcDbFcf::cast(entity)) {
        AcString text;
        frame->text(text);
        mAnnotation = newFrame(text.kwszPtr());
        return true;
    }
    const auto* block = AcDbBlockReference::cast(entity);
    auto copy = std::make_unique<AcDbBlockReference>(mPoints.back(), block->blockTableRecord());
    copy->setDatabaseDefaults();
    copy->setScaleFactors(block->scaleFactors());
    copy->setRotation(block->rotation());
    mAnnotation = std::move(copy);
    return true;
}

bool LeaderDrawing::askBlock() {
    const std::optional<AcDbObjectId> block =
        askRecord(currentDatabase().blockTableId(), L"输入块名或 [?]", L"块", {});
    if (!block || block->isNull()) {
        return block.has_value();
    }
    const RealAnswer scale = askReal(L"\n指定比例因子 <1>: ", nullptr, RSG_NOZERO);
    const RealAnswer angle = scale.isCancelled() ? RealAnswer() : askAngle(L"\n指定旋转角度 <0>: ");
    if (angle.isCancelled()) {
        return false;
    }
    auto reference = std::make_unique<AcDbBlockReference>(mPoints.back(), *block);
    reference->setDatabaseDefaults();
    reference->setScaleFactors(AcGeScale3d(scale.isValue() ? scale.value : 1.0));
    reference->setRotation(angle.isValue() ? angle.value : 0.0);
    mAnnotation = std::move(reference);
    return true;
}

bool LeaderDrawing::askAnnotation() {
    std::optional<std::wstring> words =
        askLines(L"\n输入注释文字的第一行或 <选项>: ", L"\n输入注释文字的下一行: ");
    if (!words) {
        return false;
    }
    if (words->empty()) {
        const Answer option =
            askKeyword(L"\n输入注释选项 [公差(T)/副本(C)/块(B)/无(N)/多行文字(M)] <多行文字>: ",
                       L"Tolerance Copy Block None Mtext");
        if (option.isCancelled() || option.isKeyword(L"None")) {
            return !option.isCancelled();
        }
        if (option.isKeyword(L"Tolerance")) {
            const std::optional<std::wstring> text = askToleranceText();
            mAnnotation = text ? newFrame(*text) : nullptr;
            return text.has_value();
        }
        if (option.isKeyword(L"Copy") || option.isKeyword(L"Block")) {
            return option.isKeyword(L"Copy") ? askCopied() : askBlock();
        }
        words = askLines(L"\nMText: ", L"\nMText: ");
        if (!words) {
            return false;
        }
    }
    if (!words->empty()) {
        mAnnotation = newText(*words);
    }
    return true;
}

void LeaderDrawing::run() {
    if (askPoints() && askAnnotation()) {
        make(std::move(mAnnotation));
    }
}

bool LeaderDrawing::askSettings() {
    for (;;) {
        const Answer option =
            askKeyword(L"\n输入引线设置选项 [注释(A)/点数(P)/线型(L)/箭头(AR)/退出(X)] <退出>: ",
                       L"Annotation Points Line ARrow eXit");
        if (option.kind != Answer::Kind::keyword || option.isKeyword(L"eXit")) {
            return !option.isCancelled();
        }
        if (option.isKeyword(L"Annotation")) {
            const Answer kind = askKeyword(L"\n输入注释类型 [多行文字(M)/公差(T)/无(N)] <多行文字>: ",
                                           L"Mtext Tolerance None");
            mKind = kind.isKeyword(L"Tolerance") ? Kind::tolerance
                    : kind.isKeyword(L"None")    ? Kind::none
                                                 : Kind::words;
        } else if (option.isKeyword(L"Points")) {
            const IntegerAnswer most = askInteger(
                L"\n输入最多点数, 0 为不限 <" + std::to_wstring(mMostPoints) + L">: ", nullptr, RSG_NONEG);
            mMostPoints = most.isValue() ? (most.value == 0 ? 0 : std::max(most.value, 2)) : mMostPoints;
        } else if (option.isKeyword(L"Line")) {
            mIsSplined = askKeyword(L"\n输入引线线型 [直线(ST)/样条曲线(S)] <直线>: ", L"STraight Spline")
                             .isKeyword(L"Spline");
        } else {
            mHasArrow = askYesNo(L"\n是否有箭头?", mHasArrow).value_or(mHasArrow);
        }
    }
}

void LeaderDrawing::runQuick() {
    while (mPoints.empty()) {
        const PointAnswer first = askPoint(L"\n指定第一个引线点或 [设置(S)] <设置>: ", L"Settings");
        if (first.isCancelled() || (!first.isValue() && !askSettings())) {
            return;
        }
        if (first.isValue()) {
            mPoints.push_back(first.ucs);
        }
    }
    while (mMostPoints == 0 || static_cast<int>(mPoints.size()) < mMostPoints) {
        const PointAnswer next = askPoint(L"\n指定下一点: ", nullptr, &mPoints.back());
        if (next.isCancelled() || (next.isNone() && mPoints.size() < 2)) {
            return;
        }
        if (next.isNone()) {
            break;
        }
        if (!next.ucs.isEqualTo(mPoints.back())) {
            mPoints.push_back(next.ucs);
        }
    }
    if (mKind == Kind::tolerance) {
        const std::optional<std::wstring> text = askToleranceText();
        if (text) {
            make(newFrame(*text));
        }
        return;
    }
    std::optional<std::wstring> words(L"");
    if (mKind == Kind::words) {
        const RealAnswer width = askDistance(L"\n指定文字宽度 <0>: ", nullptr, &mPoints.back(), RSG_NONEG);
        mTextWidth = width.value;
        words = width.isCancelled()
                    ? std::nullopt
                    : askLines(L"\n输入注释文字的第一行 <多行文字(M)>: ", L"\n输入注释文字的下一行: ");
        if (words && words->empty()) {
            words = askLines(L"\nMText: ", L"\nMText: ");
        }
    }
    if (words) {
        make(words->empty() ? nullptr : newText(*words));
    }
}

void runLeader() {
    LeaderDrawing().run();
}
void runQuickLeader() {
    LeaderDrawing().runQuick();
}

void runTolerance() {
    const std::optional<std::wstring> text = askToleranceText();
    const PointAnswer place =
        text ? askPoint(L"\n输入公差位置: ", nullptr, nullptr, RSG_NONULL) : PointAnswer();
    if (place.isValue()) {
        auto frame =
            std::make_unique<AcDbFcf>(text->c_str(), place.ucs, AcGeVector3d::kZAxis, AcGeVector3d::kXAxis);
        setCurrentStyle(*frame);
        transformFromUcs(*frame);
        appendToCurrentSpace(frame.release());
    }
}

constexpr CommandRow rows[] = {{L"LEADER", L"引线", ACRX_CMD_MODAL, runLeader},
                               {L"QLEADER", L"快速引线", ACRX_CMD_MODAL, runQuickLeader},
                               {L"TOLERANCE", L"公差", ACRX_CMD_MODAL, runTolerance}};

} // namespace

std::span<const CommandRow> leaderCommands() {
    return rows;
}

} // namespace host
