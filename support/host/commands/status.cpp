// TIME and STATUS: what a drawing and its settings are, in lines.
#include "host/commands/ask.h"
#include "host/commands/registry.h"
#include "host/commands/tables.h"
#include "host/ed/acdocman.h"
#include "host/ed/colornames.h"
#include "host/ed/drawingtimes.h"
#include "host/rx/format.h"
#include "host/win/clock.h"

#include <algorithm>
#include <cmath>

namespace host {
namespace {

std::wstring clockText(long long milliseconds) {
    const auto part = [&](long long unit, int count) {
        return static_cast<int>(milliseconds / unit % count);
    };
    return formatted(L"%02d:%02d:%02d:%03d", part(3600000, 24), part(60000, 60), part(1000, 60),
                     part(1, 1000));
}

std::wstring dateText(double julian) {
    if (!(julian > 0.0)) {
        return L"未知";
    }
    const JulianDate date = JulianDate::fromValue(julian);
    const std::chrono::year_month_day day = civilDate(date.day);
    return formatted(L"%d年%d月%d日  ", static_cast<int>(day.year()), static_cast<int>(unsigned(day.month())),
                     static_cast<int>(unsigned(day.day()))) +
           clockText(date.milliseconds);
}

std::wstring lengthText(double days) {
    constexpr double millisecondsADay = 86400000.0;
    constexpr double longest = 1e6; // what a file says may be anything
    days = std::clamp(days, 0.0, longest);
    const auto milliseconds = static_cast<long long>(std::llround(days * millisecondsADay));
    return formatted(L"%d 天 ", static_cast<int>(days)) + clockText(milliseconds);
}

void showTimes() {
    const DrawingTimes times = drawingTimes(*curDoc());
    const double now = toJulianDate(std::chrono::system_clock::now(), Zone::local).value();
    acutPrintf(L"\n当前时间:          %s", dateText(now).c_str());
    acutPrintf(L"\n此图形的各项时间统计:");
    acutPrintf(L"\n  创建时间:        %s", dateText(times.created).c_str());
    acutPrintf(L"\n  上次更新时间:    %s", dateText(times.updated).c_str());
    acutPrintf(L"\n  累计编辑时间:    %s", lengthText(times.edited).c_str());
    acutPrintf(L"\n  消耗时间计时器 (%s): %s", times.timerRuns ? L"开" : L"关",
               lengthText(times.timer).c_str());
}

void runTime() {
    showTimes();
    for (;;) {
        const Answer answer =
            askKeyword(L"\n输入选项 [显示(D)/开(ON)/关(OFF)/重置(R)]: ", L"Display ON OFF Reset");
        if (answer.kind != Answer::Kind::keyword) {
            return;
        }
        if (answer.isKeyword(L"Display")) {
            showTimes();
        } else if (answer.isKeyword(L"Reset")) {
            resetTimer(*curDoc());
            acutPrintf(L"\n计时器已重置。");
        } else {
            runTimer(*curDoc(), answer.isKeyword(L"ON"));
            acutPrintf(answer.isKeyword(L"ON") ? L"\n计时器打开。" : L"\n计时器关闭。");
        }
    }
}

std::wstring planPoint(const resbuf* point) {
    return point != nullptr
               ? L"X: " + shown(point->resval.rpoint[0]) + L"  Y: " + shown(point->resval.rpoint[1])
               : std::wstring();
}

const wchar_t* onOff(const wchar_t* variable) {
    return systemVariableInteger(variable) != 0 ? L"开" : L"关";
}

std::size_t entityCount(AcDbObjectId block) {
    const auto& entities = peek<AcDbBlockTableRecord>(block)->entities();
    return static_cast<std::size_t>(
        std::count_if(entities.begin(), entities.end(), [](const AcDbStub* stub) { return !stub->erased; }));
}

std::wstring snapNames() {
    constexpr std::pair<int, const wchar_t*> names[] = {
        {AcDb::kOsMaskEnd, L"端点"},   {AcDb::kOsMaskMid, L"中点"},    {AcDb::kOsMaskCen, L"圆心"},
        {AcDb::kOsMaskNode, L"节点"},  {AcDb::kOsMaskQuad, L"象限点"}, {AcDb::kOsMaskInt, L"交点"},
        {AcDb::kOsMaskIns, L"插入点"}, {AcDb::kOsMaskPerp, L"垂足"},   {AcDb::kOsMaskTan, L"切点"},
        {AcDb::kOsMaskNear, L"最近点"}};
    const int modes = systemVariableInteger(L"OSMODE");
    std::wstring text;
    for (const auto& [bit, name] : names) {
        if ((modes & bit) != 0) {
            text += (text.empty() ? L"" : L", ") + std::wstring(name);
        }
    }
    return text.empty() ? L"无" : text;
}

void runStatus() {
    AcDbDatabase& database = currentDatabase();
    const bool model = database.tilemode();
    acutPrintf(L"\n\"%s\" 的当前空间中有 %d 个对象", curDoc()->docTitle(),
               static_cast<int>(entityCount(database.currentSpaceId())));
    acutPrintf(L"\n图形界限:      %s (%s)\n               %s",
               planPoint(systemVariable(L"LIMMIN").get()).c_str(), onOff(L"LIMCHECK"),
               planPoint(systemVariable(L"LIMMAX").get()).c_str());
    if (model) {
        const bool any = database.updateExt() == Acad::eOk && database.extmin().x <= database.extmax().x;
        acutPrintf(L"\n图形使用范围:  %s",
                   any ? planPoint(systemVariable(L"EXTMIN").get()).c_str() : L"*无*");
        if (any) {
            acutPrintf(L"\n               %s", planPoint(systemVariable(L"EXTMAX").get()).c_str());
        }
    }
    acutPrintf(L"\n插入基点:      %s", planPoint(systemVariable(L"INSBASE").get()).c_str());
    acutPrintf(L"\n捕捉分辨率:    %s", planPoint(systemVariable(L"SNAPUNIT").get()).c_str());
    acutPrintf(L"\n栅格间距:      %s", planPoint(systemVariable(L"GRIDUNIT").get()).c_str());
    acutPrintf(L"\n当前空间:      %s", model ? L"模型空间" : L"图纸空间");
    acutPrintf(L"\n当前布局:      %s", systemVariableText(L"CTAB").c_str());
    acutPrintf(L"\n当前图层:      \"%s\"", recordName(database.clayer()).c_str());
    acutPrintf(L"\n当前颜色:      %s", systemVariableText(L"CECOLOR").c_str());
    acutPrintf(L"\n当前线型:      %s", recordName(database.celtype()).c_str());
    acutPrintf(L"\n当前标高:      %s  厚度: %s", shown(systemVariableReal(L"ELEVATION")).c_str(),
               shown(systemVariableReal(L"THICKNESS")).c_str());
    acutPrintf(L"\n填充 %s  栅格 %s  正交 %s  快速文字 %s  捕捉 %s", onOff(L"FILLMODE"), onOff(L"GRIDMODE"),
               onOff(L"ORTHOMODE"), onOff(L"QTEXTMODE"), onOff(L"SNAPMODE"));
    acutPrintf(L"\n对象捕捉模式:  %s", snapNames().c_str());
}

constexpr Adesk::Int32 flags = ACRX_CMD_TRANSPARENT | ACRX_CMD_NO_UNDO_MARKER;
constexpr CommandRow rows[] = {{L"TIME", L"时间", flags, runTime}, {L"STATUS", L"状态", flags, runStatus}};

} // namespace

std::span<const CommandRow> statusCommands() {
    return rows;
}

} // namespace host
