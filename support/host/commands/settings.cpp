// -STYLE, -UNITS and LIMITS.
#include "host/commands/ask.h"
#include "host/commands/registry.h"
#include "host/commands/tables.h"
#include "host/rx/text.h"

#include <cmath>

namespace host {
namespace {

constexpr double maximumOblique = 85.0 * pi / 180.0;

AcDbTextStyleTable& styles() {
    return *peek<AcDbTextStyleTable>(currentDatabase().textStyleTableId());
}

void listStyles(const std::wstring& pattern) {
    for (AcDbStub* stub : styles().records()) {
        const auto* style = peek<AcDbTextStyleTableRecord>(stub);
        if (style == nullptr || style->isShapeFile() || !wildcardMatch(style->name().kwszPtr(), pattern)) {
            continue;
        }
        acutPrintf(L"\n样式名: \"%s\"    字体文件: %s", style->name().kwszPtr(),
                   style->fontFileName().kwszPtr());
        if (!style->bigFontName().isEmpty()) {
            acutPrintf(L",%s", style->bigFontName().kwszPtr());
        }
        acutPrintf(L"\n   高度: %s  宽度因子: %s  倾斜角度: %s", shown(style->textSize()).c_str(),
                   shown(style->xScale()).c_str(), shownAngle(style->obliquingAngle()).c_str());
    }
}

/// What the questions settle; nothing is changed before the last one is answered.
struct StyleSettings {
    AcString fontFile;
    AcString bigFont;
    AcString typeface;
    bool bold = false;
    bool italic = false;
    int charset = 0;
    int pitch = 0;
    double height = 0.0;
    double width = 1.0;
    double oblique = 0.0;
    bool backwards = false;
    bool upsideDown = false;
    bool vertical = false;
};

StyleSettings settingsOf(const AcDbTextStyleTableRecord& style) {
    StyleSettings settings;
    settings.fontFile = style.fontFileName();
    settings.bigFont = style.bigFontName();
    style.font(settings.typeface, settings.bold, settings.italic, settings.charset, settings.pitch);
    settings.height = style.textSize();
    settings.width = style.xScale();
    settings.oblique = style.obliquingAngle();
    settings.backwards = (style.flagBits() & 2) != 0;
    settings.upsideDown = (style.flagBits() & 4) != 0;
    settings.vertical = style.isVertical();
    return settings;
}

bool isShapeFontName(const std::wstring& name) {
    const std::size_t dot = name.rfind(L'.');
    return dot == std::wstring::npos || equalNoCase(name.substr(dot), L".shx");
}

/// A font file, two with a comma for a big font, or the name of a face.
bool askFont(StyleSettings& settings) {
    std::wstring standard =
        settings.typeface.isEmpty() ? settings.fontFile.kwszPtr() : settings.typeface.kwszPtr();
    if (!settings.bigFont.isEmpty()) {
        standard += std::wstring(L",") + settings.bigFont.kwszPtr();
    }
    const TextAnswer answer =
        askText(L"\n指定完整的字体名或字体文件名 (TTF 或 SHX) <" + standard + L">: ", true);
    if (!answer.isValue()) {
        return !answer.isCancelled();
    }
    const std::wstring text = unquoted(answer.text);
    const std::size_t comma = text.find(L',');
    const std::wstring font = text.substr(0, comma);
    settings.bigFont = comma == std::wstring::npos ? L"" : text.substr(comma + 1).c_str();
    settings.typeface = L"";
    const bool file = font.find(L'.') != std::wstring::npos || comma != std::wstring::npos ||
                      FontEngine::instance().shapeGlyph(font, L'A') != nullptr;
    if (file || font.empty()) {
        settings.fontFile = font.c_str();
    } else {
        settings.typeface = font.c_str();
        settings.fontFile = L"";
        settings.bold = settings.italic = false;
        settings.charset = settings.pitch = 0;
    }
    return true;
}

bool askNumbers(StyleSettings& settings) {
    const RealAnswer height =
        askDistance(L"\n指定文字高度 <" + shown(settings.height) + L">: ", nullptr, nullptr, RSG_NONEG);
    if (height.isCancelled()) {
        return false;
    }
    settings.height = height.isValue() ? height.value : settings.height;
    const RealAnswer width =
        askReal(L"\n指定宽度因子 <" + shown(settings.width) + L">: ", nullptr, RSG_NOZERO | RSG_NONEG);
    if (width.isCancelled()) {
        return false;
    }
    settings.width = width.isValue() ? width.value : settings.width;
    for (;;) {
        const RealAnswer oblique = askAngle(L"\n指定倾斜角度 <" + shownAngle(settings.oblique) + L">: ");
        if (oblique.isCancelled()) {
            return false;
        }
        const double angle = oblique.isValue() ? signedAngle(oblique.value) : settings.oblique;
        if (std::fabs(angle) <= maximumOblique) {
            settings.oblique = angle;
            return true;
        }
        acutPrintf(L"\n倾斜角度必须在 -85 和 85 度之间。");
    }
}

bool askDirections(StyleSettings& settings) {
    const std::pair<const wchar_t*, bool*> questions[] = {{L"\n是否反向显示文字?", &settings.backwards},
                                                          {L"\n是否颠倒显示文字?", &settings.upsideDown},
                                                          {L"\n是否垂直?", &settings.vertical}};
    for (const auto& [prompt, value] : questions) {
        // Only shape fonts have characters for vertical text.
        if (value == &settings.vertical &&
            (!settings.typeface.isEmpty() || !isShapeFontName(settings.fontFile.kwszPtr()))) {
            settings.vertical = false;
            break;
        }
        const std::optional<bool> answer = askYesNo(prompt, *value);
        if (!answer) {
            return false;
        }
        *value = *answer;
    }
    return true;
}

void apply(const StyleSettings& settings, AcDbTextStyleTableRecord& style) {
    if (settings.typeface.isEmpty()) {
        style.setFont(L"", false, false, 0, 0);
        style.setFileName(settings.fontFile.kwszPtr());
    } else {
        style.setFont(settings.typeface.kwszPtr(), settings.bold, settings.italic, settings.charset,
                      settings.pitch);
    }
    style.setBigFontFileName(settings.bigFont.kwszPtr());
    style.setTextSize(settings.height);
    style.setXScale(settings.width);
    style.setObliquingAngle(settings.oblique);
    style.setFlagBits(
        static_cast<Adesk::UInt8>((settings.backwards ? 2 : 0) | (settings.upsideDown ? 4 : 0)));
    style.setIsVertical(settings.vertical);
}

/// The style to be made or changed; "?" lists.
std::optional<std::wstring> askStyleName() {
    for (;;) {
        const std::wstring current = recordName(currentDatabase().textstyle());
        const TextAnswer answer = askName(L"\n输入文字样式名或 [?] <" + current + L">: ");
        if (answer.isCancelled()) {
            return std::nullopt;
        }
        const std::wstring name = answer.isNone() ? current : answer.text;
        if (name == L"?") {
            const TextAnswer pattern = askName(L"\n输入要列出的文字样式 <*>: ");
            if (pattern.isCancelled()) {
                return std::nullopt;
            }
            listStyles(pattern.isNone() ? L"*" : pattern.text);
            continue;
        }
        if (styles().has(name.c_str()) || acdbSNValid(name.c_str(), 0) == RTNORM) {
            return name;
        }
        acutPrintf(L"\n文字样式名 \"%s\" 无效。", name.c_str());
    }
}

void runStyle() {
    const std::optional<std::wstring> name = askStyleName();
    if (!name) {
        return;
    }
    AcDbObjectId id;
    const bool exists = styles().getAt(name->c_str(), id) == Acad::eOk;
    StyleSettings settings =
        settingsOf(*peek<AcDbTextStyleTableRecord>(exists ? id : currentDatabase().textstyle()));
    acutPrintf(exists ? L"\n现有样式。" : L"\n新样式。");
    if (!askFont(settings) || !askNumbers(settings) || !askDirections(settings)) {
        return;
    }
    if (!exists) {
        const Opened<AcDbTextStyleTable> table(currentDatabase().textStyleTableId(), AcDb::kForWrite);
        auto style = std::make_unique<AcDbTextStyleTableRecord>();
        if (!table || style->setName(name->c_str()) != Acad::eOk ||
            table->add(id, style.get()) != Acad::eOk) {
            reportFailure(L"文字样式 \"" + *name + L"\" 无法创建");
            return;
        }
        style.release()->close();
    }
    {
        const Opened<AcDbTextStyleTableRecord> style(id, AcDb::kForWrite);
        if (style) {
            apply(settings, *style.get());
        }
    }
    currentDatabase().setTextstyle(id);
    acutPrintf(L"\n\"%s\" 是当前文字样式。", name->c_str());
}

/// An integer in a range, asked for again until it is; false for Escape.
bool askInRange(const std::wstring& prompt, int low, int high, const wchar_t* variable) {
    const int now = systemVariableInteger(variable);
    for (;;) {
        const IntegerAnswer answer = askInteger(prompt + L" <" + std::to_wstring(now) + L">: ");
        if (!answer.isValue()) {
            return !answer.isCancelled();
        }
        if (answer.value >= low && answer.value <= high) {
            setSystemVariable(variable, answer.value);
            return true;
        }
        acutPrintf(L"\n需要 %d 和 %d 之间的整数。", low, high);
    }
}

void runUnits() {
    acutPrintf(L"\n报告格式:      (样例)\n"
               L"\n  1. 科学         1.55E+01\n  2. 小数         15.50\n  3. 工程         1'-3.50\"\n"
               L"  4. 建筑         1'-3 1/2\"\n  5. 分数         15 1/2\n");
    // Units in steps from 1 on the command line.
    if (!askInRange(L"\n输入选择, 1 到 5", 1, 5, L"LUNITS")) {
        return;
    }
    const bool fraction = systemVariableInteger(L"LUNITS") >= 4;
    if (!askInRange(fraction ? L"\n输入分母位数 (2 的幂), 0 到 8" : L"\n输入小数位数 (0 到 8)", 0, 8,
                    L"LUPREC")) {
        return;
    }
    acutPrintf(
        L"\n角度测量系统:         (样例)\n"
        L"\n  0. 十进制度数       45.0000\n  1. 度/分/秒         45d0'0\"\n  2. 百分度           50.0000g\n"
        L"  3. 弧度             0.7854r\n  4. 勘测单位         N 45d0'0\" E\n");
    if (!askInRange(L"\n输入选择, 0 到 4", 0, 4, L"AUNITS") ||
        !askInRange(L"\n输入角度显示的小数位数 (0 到 8)", 0, 8, L"AUPREC")) {
        return;
    }
    const RealAnswer base =
        askAngle(L"\n输入角度 0 的方向 <" + shown(systemVariableReal(L"ANGBASE") * 180.0 / pi) + L">: ");
    if (base.isCancelled()) {
        return;
    }
    if (base.isValue()) {
        setSystemVariable(L"ANGBASE", base.value);
    }
    const std::optional<bool> clockwise =
        askYesNo(L"\n是否按顺时针方向测量角度?", systemVariableInteger(L"ANGDIR") != 0);
    if (clockwise) {
        setSystemVariable(L"ANGDIR", *clockwise ? 1 : 0);
    }
}

AcGePoint3d limit(const wchar_t* name) {
    const ResbufList value = systemVariable(name);
    return value != nullptr ? AcGePoint3d(value->resval.rpoint[0], value->resval.rpoint[1], 0.0)
                            : AcGePoint3d();
}

void setLimit(const wchar_t* name, const AcGePoint3d& point) {
    resbuf value{};
    value.restype = RTPOINT;
    setPoint(value.resval.rpoint, {point.x, point.y, 0.0});
    setSystemVariable(name, value);
}

std::wstring shownLimit(const AcGePoint3d& point) {
    return shown(point.x) + L"," + shown(point.y);
}

void runLimits() {
    acutPrintf(L"\n重新设置%s空间界限:", currentDatabase().tilemode() ? L"模型" : L"图纸");
    const AcGePoint3d oldLow = limit(L"LIMMIN");
    const PointAnswer low = askPoint(L"\n指定左下角点或 [开(ON)/关(OFF)] <" + shownLimit(oldLow) + L">: ",
                                     L"ON OFF", nullptr, RSG_NOLIM);
    if (low.kind == Answer::Kind::keyword) {
        setSystemVariable(L"LIMCHECK", low.isKeyword(L"ON") ? 1 : 0);
        return;
    }
    if (low.isCancelled()) {
        return;
    }
    const AcGePoint3d first = low.isValue() ? low.ucs : oldLow;
    for (;;) {
        const AcGePoint3d oldHigh = limit(L"LIMMAX");
        const PointAnswer high =
            askPoint(L"\n指定右上角点 <" + shownLimit(oldHigh) + L">: ", nullptr, &first, RSG_NOLIM);
        if (high.isCancelled()) {
            return;
        }
        const AcGePoint3d second = high.isValue() ? high.ucs : oldHigh;
        if (second.x > first.x && second.y > first.y) {
            setLimit(L"LIMMIN", first);
            setLimit(L"LIMMAX", second);
            return;
        }
        acutPrintf(L"\n右上角点必须在左下角点的右上方。");
    }
}

constexpr CommandRow rows[] = {{L"-STYLE", L"-文字样式", ACRX_CMD_MODAL, runStyle},
                               {L"STYLE", L"文字样式", ACRX_CMD_MODAL, runStyle},
                               {L"-UNITS", L"-单位", ACRX_CMD_TRANSPARENT, runUnits},
                               {L"UNITS", L"单位", ACRX_CMD_TRANSPARENT, runUnits},
                               {L"LIMITS", L"图形界限", ACRX_CMD_TRANSPARENT, runLimits}};

} // namespace

std::span<const CommandRow> settingsCommands() {
    return rows;
}

} // namespace host
