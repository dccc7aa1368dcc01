// Breaking multi-line texts into lines, and the places of lines, columns, stacks and tabs.
#include "host/db/entities/mtextlayout.h"

#include <algorithm>
#include <cmath>

namespace host {
namespace {

/// Distance of base lines of single spacing, in text heights.
constexpr double lineDistance = 5.0 / 3.0;
constexpr double stackGap = 0.2;    ///< between a bar and the characters, in text heights
constexpr double defaultTabs = 4.0; ///< in text heights

bool isWideCharacter(wchar_t c) {
    return (c >= 0x2E80 && c <= 0x9FFF) || (c >= 0xAC00 && c <= 0xD7A3) || (c >= 0xF900 && c <= 0xFAFF) ||
           (c >= 0xFE30 && c <= 0xFE4F) || (c >= 0xFF00 && c <= 0xFFEF) || (c >= 0x20000 && c <= 0x3FFFF);
}
bool isOneOf(wchar_t c, std::wstring_view set) {
    return set.find(c) != std::wstring_view::npos;
}

/// What stands in a line without a place to break inside.
struct Atom {
    enum class Kind { word, blank, tab, stack };
    Kind kind = Kind::word;
    std::wstring text;
    const MTextPiece* piece = nullptr;
    bool mayBreakBefore = false;
    double width = 0.0;
    double above = 0.0; ///< the base line
    double below = 0.0;
    double x = 0.0; ///< from the left edge of the column
};

struct Line {
    std::size_t begin = 0; ///< atoms
    std::size_t end = 0;
    double width = 0.0; ///< right end of the last atom that is no blank
    double above = 0.0;
    double below = 0.0;
    double size = 0.0; ///< height of the largest characters
    bool endsParagraph = false;
    const MTextParagraph* paragraph = nullptr;
    bool startsParagraph = false;
    int column = 0;
    double y = 0.0; ///< base line
};

double advanceOf(std::wstring_view text, const TextFormat& format) {
    const ShapedText shaped = FontEngine::instance().shape(text, format, true);
    return format.vertical ? -shaped.advanceY : shaped.advanceX;
}

/// The attachment that a vertical text's has once the text is laid with its lines across: what was its right
/// side is its top, and what was its top is its left.
int laidAcross(int attachment) {
    const int column = (attachment - 1) % 3, row = (attachment - 1) / 3;
    return 3 * (2 - column) + row + 1;
}

/// Places of a stack's parts relative to where it starts on the base line.
struct StackParts {
    TextFormat format;
    double upperWidth = 0.0, lowerWidth = 0.0;
    double width = 0.0;
    AcGePoint2d upper, lower;
    AcGePoint2d barStart, barEnd;
    double top = 0.0, bottom = 0.0;

    explicit StackParts(const MTextPiece& piece) : format(piece.look.format) {
        const double size = format.height;
        const double gap = stackGap * size;
        upperWidth = advanceOf(piece.text, format);
        lowerWidth = advanceOf(piece.below, format);
        const double middle = size + gap; // of the stack, above its bottom
        const double total = 2.0 * middle;
        if (piece.divider == L'#') {
            const double slope = 0.5 * size;
            upper = {0.0, total - size};
            lower = {upperWidth + slope, 0.0};
            barStart = {upperWidth - 0.5 * slope, 0.0};
            barEnd = {upperWidth + 1.5 * slope, total};
            width = lower.x + lowerWidth;
        } else {
            width = std::max(upperWidth, lowerWidth);
            const bool bar = piece.divider == L'/';
            upper = {bar ? 0.5 * (width - upperWidth) : 0.0, total - size};
            lower = {bar ? 0.5 * (width - lowerWidth) : 0.0, 0.0};
            barStart = {0.0, middle};
            barEnd = {width, middle};
        }
        const int alignment = piece.look.stackAlignment;
        const double shift = alignment == 0 ? 0.0 : (size - total) * (alignment == 1 ? 0.5 : 1.0);
        for (AcGePoint2d* point : {&upper, &lower, &barStart, &barEnd}) {
            point->y += shift;
        }
        top = total + shift;
        bottom = shift;
    }
};

class Layouter {
public:
    Layouter(std::wstring_view contents, const MTextSettings& settings)
        : mSettings(settings), mParagraphs(parseMText(contents, settings.look)) {
        mIsVertical = settings.look.format.vertical;
        mAttachment = mIsVertical ? laidAcross(settings.attachment) : settings.attachment;
        mHasColumns = settings.columns.width > 0.0 && !mIsVertical;
        mWrapWidth = mHasColumns ? settings.columns.width : std::max(settings.width, 0.0);
    }

    MTextLayout run() {
        for (const MTextParagraph& paragraph : mParagraphs) {
            addParagraph(paragraph);
        }
        placeLines();
        alignLines();
        place();
        if (mIsVertical) {
            turnDown();
        }
        findInk();
        return std::move(mResult);
    }

private:
    void addParagraph(const MTextParagraph& paragraph);
    void addAtoms(const MTextPiece& piece);
    void breakLines(const MTextParagraph& paragraph, std::size_t first);
    std::size_t placeTab(const MTextParagraph& paragraph, std::size_t at, double& x);
    Line& startLine(const MTextParagraph& paragraph, std::size_t at);
    void finishLine(Line& line, std::size_t end);
    void placeLines();
    void alignLines();
    void justify(Line& line, double space);
    void place();
    void turnDown();
    void findInk();
    void placeRun(std::wstring_view text, const MTextLook& look, const TextFormat& format, double x, double y,
                  double width);
    void placeStack(const Atom& atom, double x, double y);
    double columnHeight(int column) const;
    double columnLeft(int column) const;

    const MTextSettings& mSettings;
    std::vector<MTextParagraph> mParagraphs;
    std::vector<Atom> mAtoms;
    std::vector<Line> mLines;
    bool mIsVertical = false; ///< laid with its lines across, turned at the end
    int mAttachment = 1;
    bool mHasColumns = false;
    double mWrapWidth = 0.0;
    int mColumnCount = 1;
    double mBottom = 0.0; ///< of the deepest column
    MTextLayout mResult;
};

void Layouter::addAtoms(const MTextPiece& piece) {
    const auto add = [&](Atom::Kind kind, std::wstring text, bool mayBreak) {
        Atom atom;
        atom.kind = kind;
        atom.piece = &piece;
        atom.mayBreakBefore = mayBreak;
        atom.above = piece.look.format.height;
        if (kind == Atom::Kind::word || kind == Atom::Kind::blank) {
            atom.width = advanceOf(text, piece.look.format);
        }
        atom.text = std::move(text);
        mAtoms.push_back(std::move(atom));
    };
    if (piece.kind == MTextPiece::Kind::tab) {
        return add(Atom::Kind::tab, {}, false);
    }
    if (piece.kind == MTextPiece::Kind::stack && mIsVertical) { // one part below the other anyway
        return add(Atom::Kind::word, piece.text + (piece.divider == L'^' ? L"" : L"/") + piece.below, false);
    }
    if (piece.kind == MTextPiece::Kind::stack) {
        add(Atom::Kind::stack, {}, false);
        const StackParts parts(piece);
        mAtoms.back().width = parts.width;
        mAtoms.back().above = parts.top;
        mAtoms.back().below = std::max(-parts.bottom, 0.0);
        return;
    }
    const std::wstring_view text = piece.text;
    for (std::size_t at = 0; at < text.size();) {
        std::size_t end = at + 1;
        if (text[at] == L' ' || text[at] == L'\x3000') {
            while (end < text.size() && (text[end] == L' ' || text[end] == L'\x3000')) {
                ++end;
            }
            add(Atom::Kind::blank, std::wstring(text.substr(at, end - at)), false);
            at = end;
            continue;
        }
        const Atom* before = mAtoms.empty() ? nullptr : &mAtoms.back();
        const bool breaks = before != nullptr && before->kind == Atom::Kind::word && !before->text.empty() &&
                            mayBreakBetween(before->text.back(), text[at]);
        while (end < text.size() && text[end] != L' ' && text[end] != L'\x3000' &&
               !mayBreakBetween(text[end - 1], text[end])) {
            ++end;
        }
        add(Atom::Kind::word, std::wstring(text.substr(at, end - at)), breaks);
        at = end;
    }
}

void Layouter::addParagraph(const MTextParagraph& paragraph) {
    const std::size_t first = mAtoms.size();
    for (const MTextPiece& piece : paragraph.pieces) {
        addAtoms(piece);
    }
    for (std::size_t index = first; index < mAtoms.size(); ++index) {
        const bool afterGap = index > first && mAtoms[index - 1].kind != Atom::Kind::word &&
                              mAtoms[index - 1].kind != Atom::Kind::stack;
        Atom& atom = mAtoms[index];
        atom.mayBreakBefore = index > first && (atom.mayBreakBefore || afterGap) &&
                              (atom.kind == Atom::Kind::word || atom.kind == Atom::Kind::stack);
    }
    breakLines(paragraph, first);
}

Line& Layouter::startLine(const MTextParagraph& paragraph, std::size_t at) {
    Line line;
    line.begin = line.end = at;
    line.paragraph = &paragraph;
    line.startsParagraph = mLines.empty() || mLines.back().endsParagraph;
    return mLines.emplace_back(line);
}

void Layouter::finishLine(Line& line, std::size_t end) {
    line.end = end;
    for (std::size_t index = line.begin; index < end; ++index) {
        const Atom& atom = mAtoms[index];
        line.above = std::max(line.above, atom.above);
        line.below = std::max(line.below, atom.below);
        line.size = std::max(line.size, atom.piece->look.format.height);
        if (atom.kind != Atom::Kind::blank) {
            line.width = std::max(line.width, atom.x + atom.width);
        }
    }
    if (line.begin == end) {
        line.size = line.above = line.paragraph->look.format.height;
    }
}

/// Moves x to the tab's stop; for centred and right stops back by what follows up to the next tab.
std::size_t Layouter::placeTab(const MTextParagraph& paragraph, std::size_t at, double& x) {
    Atom& tab = mAtoms[at];
    const std::vector<MTextTab>& stops = paragraph.format.tabs;
    const auto stop = std::find_if(stops.begin(), stops.end(),
                                   [&](const MTextTab& one) { return one.position > x + 1e-9; });
    double target = 0.0;
    if (stop == stops.end()) {
        const double pitch = defaultTabs * mSettings.look.format.height;
        target = pitch > 0.0 ? (std::floor(x / pitch + 1e-9) + 1.0) * pitch : x;
    } else {
        double following = 0.0;
        for (std::size_t index = at + 1; index < mAtoms.size() && mAtoms[index].kind != Atom::Kind::tab;
             ++index) {
            const std::size_t point = mAtoms[index].text.find_first_of(L".,");
            if (stop->kind == MTextTab::Kind::decimal && point != std::wstring::npos) {
                following += advanceOf(std::wstring_view(mAtoms[index].text).substr(0, point),
                                       mAtoms[index].piece->look.format);
                break;
            }
            following += mAtoms[index].width;
        }
        const double part = stop->kind == MTextTab::Kind::left     ? 0.0
                            : stop->kind == MTextTab::Kind::center ? 0.5
                                                                   : 1.0;
        target = std::max(x, stop->position - part * following);
    }
    tab.x = x;
    tab.width = target - x;
    x = target;
    return at + 1;
}

void Layouter::breakLines(const MTextParagraph& paragraph, std::size_t first) {
    const MTextParagraphFormat& format = paragraph.format;
    const double right = mWrapWidth - format.right;
    startLine(paragraph, first);
    double x = format.left + format.firstIndent;
    bool lineHasInk = false;
    for (std::size_t at = first; at < mAtoms.size();) {
        if (mAtoms[at].kind == Atom::Kind::tab) {
            at = placeTab(paragraph, at, x);
            continue;
        }
        // Up to the next place where a line may end.
        std::size_t end = at + 1;
        double width = mAtoms[at].width;
        while (mAtoms[at].kind != Atom::Kind::blank && end < mAtoms.size() && !mAtoms[end].mayBreakBefore &&
               (mAtoms[end].kind == Atom::Kind::word || mAtoms[end].kind == Atom::Kind::stack)) {
            width += mAtoms[end++].width;
        }
        const bool isBlank = mAtoms[at].kind == Atom::Kind::blank;
        const double slack = 1e-9 * std::max(1.0, mWrapWidth);
        if (!isBlank && lineHasInk && mWrapWidth > 0.0 && x + width > right + slack) {
            finishLine(mLines.back(), at);
            startLine(paragraph, at);
            x = format.left;
        }
        lineHasInk = true;
        for (; at < end; ++at) {
            mAtoms[at].x = x;
            x += mAtoms[at].width;
        }
    }
    finishLine(mLines.back(), mAtoms.size());
    mLines.back().endsParagraph = true;
}

double Layouter::columnHeight(int column) const {
    const MTextColumns& columns = mSettings.columns;
    const auto index = static_cast<std::size_t>(column);
    return index < columns.heights.size() && columns.heights[index] > 0.0 ? columns.heights[index]
                                                                          : columns.height;
}

/// Gives lines their base lines, downwards from 0 in every column.
void Layouter::placeLines() {
    int column = 0;
    double base = 0.0;
    bool atTop = true;
    const Line* before = nullptr;
    const auto baseOf = [&](const Line& line) {
        const MTextParagraphFormat& format = line.paragraph->format;
        if (atTop) {
            return -line.above;
        }
        const bool own = format.spacingFactor > 0.0;
        const double factor = own ? format.spacingFactor : mSettings.spacingFactor;
        const bool exact = own ? format.exactSpacing : mSettings.exactSpacing;
        const double size = exact ? mSettings.look.format.height : line.size;
        double step = lineDistance * factor * size;
        if (!exact) { // stacks keep clear of the line before
            step += std::max(line.above - line.size, 0.0) + (before != nullptr ? before->below : 0.0);
        }
        if (line.startsParagraph) {
            step += format.before + (before != nullptr ? before->paragraph->format.after : 0.0);
        }
        return base - step;
    };
    for (Line& line : mLines) {
        double y = baseOf(line);
        const double limit = mHasColumns ? columnHeight(column) : 0.0;
        const bool isLast = mSettings.columns.count > 0 && column + 1 >= mSettings.columns.count;
        if (!atTop && limit > 0.0 && !isLast && -y > limit * (1.0 + 1e-9)) {
            ++column;
            atTop = true;
            y = baseOf(line);
        }
        line.column = column;
        line.y = base = y;
        mBottom = std::min(mBottom, y - line.below);
        atTop = false;
        before = &line;
        if (line.endsParagraph && mHasColumns && line.paragraph->end == MTextParagraph::End::column) {
            ++column;
            atTop = true;
        }
        if (line.endsParagraph && line.paragraph->end == MTextParagraph::End::belowDimensionLine) {
            mResult.isSplit = true;
            mResult.splitTop = y;
        } else if (mResult.isSplit && mResult.splitBottom == 0.0) {
            mResult.splitBottom = y + line.above;
        }
    }
    mColumnCount = std::max(column + 1, mHasColumns ? mSettings.columns.count : 1);
}

double Layouter::columnLeft(int column) const {
    const int place = mSettings.columns.rightToLeft ? mColumnCount - 1 - column : column;
    return place * (mSettings.columns.width + mSettings.columns.gutter);
}

/// Spreads the blanks of a line over the space that is left.
void Layouter::justify(Line& line, double space) {
    std::size_t last = line.end;
    while (last > line.begin && mAtoms[last - 1].kind == Atom::Kind::blank) {
        --last;
    }
    const bool evenly = line.paragraph->format.justification == MTextJustification::distributed;
    const auto isGap = [&](std::size_t index) {
        return mAtoms[index].kind == Atom::Kind::blank ||
               (evenly && index > line.begin && mAtoms[index].mayBreakBefore &&
                mAtoms[index - 1].kind != Atom::Kind::blank);
    };
    std::size_t start = line.begin; // nothing moves before the last tab
    for (std::size_t index = line.begin; index < last; ++index) {
        start = mAtoms[index].kind == Atom::Kind::tab ? index + 1 : start;
    }
    int gaps = 0;
    for (std::size_t index = start; index < last; ++index) {
        gaps += isGap(index) ? 1 : 0;
    }
    if (gaps == 0) {
        return;
    }
    double shift = 0.0;
    for (std::size_t index = start; index < last; ++index) {
        if (mAtoms[index].kind != Atom::Kind::blank && isGap(index)) {
            shift += space / gaps;
        }
        mAtoms[index].x += shift;
        if (mAtoms[index].kind == Atom::Kind::blank) {
            shift += space / gaps;
        }
    }
    line.width += space;
}

void Layouter::alignLines() {
    double widest = 0.0;
    for (const Line& line : mLines) {
        widest = std::max(widest, line.width);
    }
    mResult.actualWidth = widest;
    const double frame = mWrapWidth > 0.0 ? mWrapWidth : widest;
    for (Line& line : mLines) {
        MTextJustification kind = line.paragraph->format.justification;
        if (kind == MTextJustification::byAttachment) {
            constexpr MTextJustification byColumn[] = {MTextJustification::left, MTextJustification::center,
                                                       MTextJustification::right};
            kind = byColumn[(mAttachment - 1) % 3];
        }
        const double space = frame - line.paragraph->format.right - line.width;
        if (kind == MTextJustification::center || kind == MTextJustification::right) {
            const double left = line.paragraph->format.left;
            const double shift = kind == MTextJustification::right ? space : 0.5 * (space - left);
            for (std::size_t index = line.begin; index < line.end; ++index) {
                mAtoms[index].x += shift;
            }
        } else if (space > 0.0 && mWrapWidth > 0.0 &&
                   (kind == MTextJustification::distributed ||
                    (kind == MTextJustification::justified && !line.endsParagraph))) {
            justify(line, space);
        }
    }
}

void Layouter::placeRun(std::wstring_view text, const MTextLook& look, const TextFormat& format, double x,
                        double y, double width) {
    if (text.empty()) {
        return;
    }
    // What goes on where the run before ends is drawn in one with it.
    if (!mResult.runs.empty()) {
        MTextRun& last = mResult.runs.back();
        const bool joins = last.y == y && std::fabs(last.x + last.advance - x) <= 1e-9 * format.height &&
                           last.hasColor == look.hasColor && last.color == look.color;
        if (joins && MTextLook{last.format, 0, false, {}} == MTextLook{format, 0, false, {}}) {
            last.text += text;
            last.advance += width;
            return;
        }
    }
    MTextRun run;
    run.text = text;
    run.format = format;
    run.hasColor = look.hasColor;
    run.color = look.color;
    run.x = x;
    run.y = y;
    run.advance = width;
    mResult.runs.push_back(std::move(run));
}

void Layouter::placeStack(const Atom& atom, double x, double y) {
    const MTextPiece& piece = *atom.piece;
    const StackParts parts(piece);
    placeRun(piece.text, piece.look, parts.format, x + parts.upper.x, y + parts.upper.y, parts.upperWidth);
    placeRun(piece.below, piece.look, parts.format, x + parts.lower.x, y + parts.lower.y, parts.lowerWidth);
    if (piece.divider != L'^') {
        MTextBar bar;
        bar.start = {x + parts.barStart.x, y + parts.barStart.y};
        bar.end = {x + parts.barEnd.x, y + parts.barEnd.y};
        bar.hasColor = piece.look.hasColor;
        bar.color = piece.look.color;
        mResult.bars.push_back(bar);
    }
}

void Layouter::place() {
    const MTextColumns& columns = mSettings.columns;
    const double width = mHasColumns ? mColumnCount * columns.width + (mColumnCount - 1) * columns.gutter
                         : mWrapWidth > 0.0 ? mWrapWidth
                                            : mResult.actualWidth;
    if (mHasColumns) {
        mResult.actualWidth = width;
    }
    const int across = (mAttachment - 1) % 3;
    const int down = (mAttachment - 1) / 3;
    const double left = -0.5 * across * width;
    const double top = -0.5 * down * mBottom; // the bottom is negative
    for (const Line& line : mLines) {
        const double origin = left + (mHasColumns ? columnLeft(line.column) : 0.0);
        for (std::size_t index = line.begin; index < line.end; ++index) {
            const Atom& atom = mAtoms[index];
            if (atom.kind == Atom::Kind::stack) {
                placeStack(atom, origin + atom.x, top + line.y);
            } else if (atom.kind != Atom::Kind::tab) {
                placeRun(atom.text, atom.piece->look, atom.piece->look.format, origin + atom.x, top + line.y,
                         atom.width);
            }
        }
    }
    mResult.lowerLeft = {left, top + mBottom};
    mResult.upperRight = {left + width, top};
    mResult.actualHeight = -mBottom;
    mResult.lineCount = static_cast<int>(mLines.size());
    mResult.splitTop += top;
    mResult.splitBottom += top;
}

/// A quarter turn to the right about the insertion point. A vertical run hangs from the middle of its line.
void Layouter::turnDown() {
    for (MTextRun& run : mResult.runs) {
        const double along = run.x;
        run.x = run.y + 0.5 * run.format.height;
        run.y = -along;
    }
    const AcGePoint2d lowerLeft = mResult.lowerLeft, upperRight = mResult.upperRight;
    mResult.lowerLeft = {lowerLeft.y, -upperRight.x};
    mResult.upperRight = {upperRight.y, -lowerLeft.x};
    std::swap(mResult.actualWidth, mResult.actualHeight);
}

void Layouter::findInk() {
    for (const MTextRun& run : mResult.runs) {
        GlyphBox ink = FontEngine::instance().shape(run.text, run.format, true).ink;
        if (!ink.empty) {
            mResult.ink.add(run.x + ink.left, run.y + ink.bottom);
            mResult.ink.add(run.x + ink.right, run.y + ink.top);
        }
    }
    for (const MTextBar& bar : mResult.bars) {
        mResult.ink.add(bar.start.x, bar.start.y);
        mResult.ink.add(bar.end.x, bar.end.y);
    }
}

} // namespace

bool mayBreakBetween(wchar_t before, wchar_t after) {
    constexpr std::wstring_view neverFirst = L"!%),.:;?]}\u00A2\u00B0\u2019\u201D\u2026\u2030\u2103"
                                             L"\u3001\u3002\u3003\u3009\u300B\u300D\u300F\u3011\u3015\u3017"
                                             L"\uFF01\uFF05\uFF09\uFF0C\uFF0E\uFF1A\uFF1B\uFF1F\uFF3D\uFF5D"
                                             L"\u00B7\u2014\u3005\u30FC\uFF5E";
    constexpr std::wstring_view neverLast = L"$([{\u00A3\u00A5\u2018\u201C\u3008\u300A\u300C\u300E\u3010"
                                            L"\u3014\u3016\uFF04\uFF08\uFF3B\uFF5B\uFFE1\uFFE5";
    constexpr wchar_t noBreak = L'\xA0';
    if (before == noBreak || after == noBreak || isOneOf(after, neverFirst) || isOneOf(before, neverLast)) {
        return false;
    }
    return isWideCharacter(before) || isWideCharacter(after);
}

MTextLayout layOutMText(std::wstring_view contents, const MTextSettings& settings) {
    return Layouter(contents, settings).run();
}

} // namespace host
