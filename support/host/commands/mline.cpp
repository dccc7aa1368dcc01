// MLINE: parallel lines along the points that are picked.
#include "host/commands/ask.h"
#include "host/commands/registry.h"

namespace host {
namespace {

constexpr const wchar_t* justificationNames[] = {L"上", L"无", L"下"};

AcDbObjectId styleNamed(const std::wstring& name) {
    const auto* styles = peek<AcDbDictionary>(currentDatabase().mLStyleDictionaryId());
    AcDbObjectId id;
    return styles != nullptr && styles->getAt(name.c_str(), id) == Acad::eOk ? id : AcDbObjectId();
}

void tellSettings() {
    const int justification = std::clamp(systemVariableInteger(L"CMLJUST"), 0, 2);
    acutPrintf(L"\n当前设置: 对正 = %s，比例 = %s，样式 = %s", justificationNames[justification],
               shown(systemVariableReal(L"CMLSCALE")).c_str(), systemVariableText(L"CMLSTYLE").c_str());
}

bool askJustification() {
    const Answer answer = askKeyword(L"\n输入对正类型 [上(T)/无(Z)/下(B)]: ", L"Top Zero Bottom");
    constexpr const wchar_t* words[] = {L"Top", L"Zero", L"Bottom"};
    for (int i = 0; i < 3; ++i) {
        if (answer.isKeyword(words[i])) {
            setSystemVariable(L"CMLJUST", i);
        }
    }
    return !answer.isCancelled();
}

bool askScale() {
    const RealAnswer scale = askReal(L"\n输入多线比例 <" + shown(systemVariableReal(L"CMLSCALE")) + L">: ");
    if (scale.isValue()) {
        setSystemVariable(L"CMLSCALE", scale.value);
    }
    return !scale.isCancelled();
}

bool askStyle() {
    for (;;) {
        const TextAnswer name = askName(L"\n输入多线样式名或 [?]: ");
        if (!name.isValue()) {
            return !name.isCancelled();
        }
        if (name.text == L"?") {
            const auto* styles = peek<AcDbDictionary>(currentDatabase().mLStyleDictionaryId());
            for (const AcDbDictionary::Entry& entry : styles->entries()) {
                acutPrintf(L"\n  %s", entry.name.kwszPtr());
            }
        } else if (const AcDbObjectId style = styleNamed(name.text); !style.isNull()) {
            AcString own; // as the style itself writes its name
            peek<AcDbDictionary>(currentDatabase().mLStyleDictionaryId())->nameAt(style, own);
            setSystemVariable(L"CMLSTYLE", std::wstring_view(own.kwszPtr()));
            return true;
        } else {
            acutPrintf(L"\n找不到多线样式 \"%s\"。", name.text.c_str());
        }
    }
}

std::unique_ptr<AcDbMline> newMline() {
    auto mline = std::make_unique<AcDbMline>();
    mline->setDatabaseDefaults();
    mline->setStyle(styleNamed(systemVariableText(L"CMLSTYLE")));
    mline->setJustification(static_cast<Mline::MlineJustification>(systemVariableInteger(L"CMLJUST")));
    mline->setScale(systemVariableReal(L"CMLSCALE"));
    mline->setNormal(ucsNormal());
    return mline;
}

void runMline() {
    tellSettings();
    PointAnswer first;
    for (;;) {
        first = askPoint(L"\n指定起点或 [对正(J)/比例(S)/样式(ST)]: ", L"Justification Scale STyle", nullptr,
                         RSG_NONULL);
        if (first.isValue()) {
            break;
        }
        const bool goesOn = first.isKeyword(L"Justification") ? askJustification()
                            : first.isKeyword(L"Scale")       ? askScale()
                            : first.isKeyword(L"STyle")       ? askStyle()
                                                              : false;
        if (!goesOn) {
            return;
        }
        tellSettings();
    }
    std::vector<PointAnswer> points{first};
    bool closed = false;
    for (;;) {
        const PointAnswer next =
            points.size() < 2 ? askPoint(L"\n指定下一点: ", nullptr, &points.back().ucs)
            : points.size() < 3
                ? askPoint(L"\n指定下一点或 [放弃(U)]: ", L"Undo", &points.back().ucs)
                : askPoint(L"\n指定下一点或 [闭合(C)/放弃(U)]: ", L"Close Undo", &points.back().ucs);
        if (next.isKeyword(L"Undo")) {
            points.pop_back();
        } else if (next.isValue()) {
            if (!next.world.isEqualTo(points.back().world)) {
                points.push_back(next);
            }
        } else {
            closed = next.isKeyword(L"Close");
            break;
        }
    }
    if (points.size() < 2) {
        return;
    }
    std::unique_ptr<AcDbMline> mline = newMline();
    for (const PointAnswer& point : points) {
        mline->appendSeg(point.world);
    }
    mline->setClosedMline(closed);
    appendToCurrentSpace(mline.release());
}

constexpr CommandRow rows[] = {{L"MLINE", L"多线", ACRX_CMD_MODAL, runMline}};

} // namespace

std::span<const CommandRow> mlineCommands() {
    return rows;
}

} // namespace host
