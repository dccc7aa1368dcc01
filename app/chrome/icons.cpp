#include "app/chrome/icons.h"

#include <QColor>
#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>
#include <algorithm>
#include <charconv>
#include <iterator>
#include <string>

namespace app {
namespace {

/// Parts between bars on a field of 24 x 24: a letter for the look (g grey line, b blue line, y yellow, r
/// red, n green; a capital one fills), then M, L, C (cubic), O (circle: centre, radius), R (rectangle:
/// corner, size), Z.
struct Drawing {
    std::string_view name;
    std::string_view parts;
};

constexpr Drawing drawings[] = {
    {"new", "gM6 3L14 3L19 8L19 21L6 21Z|gM14 3L14 8L19 8"},
    {"open", "YM3 8L10 8L12 10L21 10L18 20L3 20Z|gM3 19L3 5L9 5L11 7L18 7L18 10"},
    {"save", "BM4 4L17 4L20 7L20 20L4 20Z|GR8 4 8 5|GR7 13 10 7"},
    {"saveas", "BM3 3L14 3L17 6L17 17L3 17Z|GR6 3 7 4|yM12 21L20 13|yM12 21L15 20"},
    {"plot", "gR6 3 12 6|GR3 9 18 7|gR6 14 12 7|nO18 12 0.6"},
    {"preview", "gM5 3L15 3L15 9|gM5 3L5 21L11 21|bO15 15 4.5|bM18 18L22 22"},
    {"undo", "bM9 6L4 11L9 16|bM4 11L15 11C20 11 20 19 15 19L11 19"},
    {"redo", "bM15 6L20 11L15 16|bM20 11L9 11C4 11 4 19 9 19L13 19"},
    {"erase", "RM5 16L13 6L19 11L12 20L8 20Z|gM8 20L21 20"},
    {"line", "bM4 20L20 4|GO4 20 1.6|GO20 4 1.6"},
    {"pline", "bM3 19L9 8L15 15C18 17 22 12 20 5|GO3 19 1.5|GO9 8 1.5|GO15 15 1.5"},
    {"circle", "bO12 12 8.5|GO12 12 1.5"},
    {"arc", "bM4 18C4 4 20 4 20 18|GO4 18 1.5|GO20 18 1.5"},
    {"rectangle", "bR3 6 18 12|GO3 18 1.5|GO21 6 1.5"},
    {"polygon", "bM12 3L21 10L17.5 20L6.5 20L3 10Z"},
    {"ellipse", "bM3 12C3 4 21 4 21 12C21 20 3 20 3 12"},
    {"spline", "bM3 18C8 0 14 26 21 6|GO3 18 1.5|GO21 6 1.5"},
    {"mline", "bM3 17L13 7L21 13|bM5 21L13 12L19 17"},
    {"point", "GO12 12 2.2|gM12 4L12 8|gM12 16L12 20|gM4 12L8 12|gM16 12L20 12"},
    {"hatch", "gR4 4 16 16|bM4 10L10 4|bM4 16L16 4|bM6 20L20 6|bM12 20L20 12"},
    {"text", "bM5 6L5 4L19 4L19 6|bM12 4L12 20|bM9 20L15 20"},
    {"mtext", "bM3 8L3 5L13 5L13 8|bM8 5L8 19|gM16 11L21 11|gM16 15L21 15|gM12 19L21 19"},
    {"block", "gR4 4 9 9|bR10 10 10 10|GO15 15 1.5"},
    {"insert", "bR4 10 10 10|nM20 4L12 12|nM12 7L12 12L17 12"},
    {"move",
     "bM12 3L12 21|bM3 12L21 12|bM9 6L12 3L15 6|bM9 18L12 21L15 18|bM6 9L3 12L6 15|bM18 9L21 12L18 15"},
    {"copy", "gR4 4 11 11|bR9 9 11 11"},
    {"rotate", "bM19 8C15 2 5 4 5 12C5 20 16 21 19 15|bM19 3L19 8L14 8"},
    {"scale", "gR3 12 9 9|bR3 3 18 18|nM13 11L19 5|nM15 5L19 5L19 9"},
    {"mirror", "yM12 2L12 22|gM9 6L3 18L9 18Z|bM15 6L21 18L15 18Z"},
    {"offset", "gM4 20L4 8C4 6 6 4 8 4L20 4|bM10 20L10 12C10 11 11 10 12 10L20 10"},
    {"trim", "gM4 12L20 12|bM12 3L12 12|rM10 16L14 20|rM14 16L10 20"},
    {"extend", "gM20 3L20 21|bM3 12L12 12|nM12 12L19 12|nM16 9L19 12L16 15"},
    {"stretch", "gM3 6L12 6L12 18L3 18|bM12 6L21 6L21 18L12 18|nM14 12L20 12"},
    {"fillet", "bM4 20L4 12C4 7 8 4 12 4L20 4"},
    {"chamfer", "bM4 20L4 12L12 4L20 4"},
    {"break", "bM3 20L10 13|bM14 9L21 2|rM9 8L15 14"},
    {"join", "bM3 18L11 12|bM13 11L21 6|nO12 11.5 3"},
    {"explode", "yM12 12L4 4|yM12 12L20 4|yM12 12L4 20|yM12 12L20 20|bR9 9 6 6"},
    {"array", "bR3 3 7 7|bR14 3 7 7|bR3 14 7 7|gR14 14 7 7"},
    {"pedit", "bM3 19L9 9L15 15|yM14 13L20 5L22 7L16 15Z"},
    {"matchprop", "YM5 13L12 6L16 10L9 17Z|bM12 6L18 3L20 5L16 10|gM9 17L5 21"},
    {"dimlinear", "gM4 20L4 7|gM20 20L20 7|bM4 10L20 10|bM7 8L4 10L7 12|bM17 8L20 10L17 12"},
    {"dimaligned", "gM3 13L11 21|gM13 3L21 11|bM5 15L15 5|bM6 11L5 15L9 14"},
    {"dimradius", "gO12 12 8.5|bM12 12L18 6|bM14 6L18 6L18 10"},
    {"dimdiameter", "gO12 12 8.5|bM6 18L18 6|bM14 6L18 6L18 10|bM6 14L6 18L10 18"},
    {"dimangular", "gM4 20L20 20|gM4 20L16 5|bM16 20C16 15 14 12 11 11"},
    {"zoomin", "gO10 10 6.5|gM15 15L21 21|bM7 10L13 10|bM10 7L10 13"},
    {"zoomout", "gO10 10 6.5|gM15 15L21 21|bM7 10L13 10"},
    {"zoomextents", "gO11 11 5|gM15 15L19 19|bM3 8L3 3L8 3|bM16 3L21 3L21 8|bM21 16L21 21|bM3 16L3 21L8 21"},
    {"zoomwindow", "bR3 3 13 11|gO15 14 4.5|gM18 17L22 21"},
    {"zoomprevious", "gO13 11 6|gM17 15L22 20|bM8 4L3 8L8 12|bM3 8L10 8"},
    {"pan", "gM8 21L5 14C4 12 6 11 7 13L8 14L8 5C8 3 10 3 10 5L10 10L10 4C10 2 13 2 13 4L13 10L13 5C13 3 16 "
            "3 16 5L16 11L16 "
            "7C16 5 19 5 19 7L19 15L17 21Z"},
    {"layers", "YM12 4L21 9L12 14L3 9Z|bM3 13L12 18L21 13|bM3 17L12 22L21 17"},
    {"properties", "gR4 3 16 18|bM7 8L17 8|bM7 12L17 12|bM7 16L13 16"},
    {"distance", "bM4 17L20 7|gM2 14L6 20|gM18 4L22 10"},
    {"list", "gR5 3 14 18|bM8 8L16 8|bM8 12L16 12|bM8 16L16 16"},
    {"wall", "gM2 9L22 9|bM2 9L2 14|bM7 9L7 14|bM12 9L12 14|bM17 9L17 14|bM22 9L22 14"},
    {"doublewall", "gM2 8L22 8|gM2 14L22 14|bM6 8L6 14|bM12 8L12 14|bM18 8L18 14"},
    {"river", "bM3 7C8 3 13 11 21 6|bM3 13C8 9 13 17 21 12|BM3 19C8 15 13 23 21 18L21 20C13 25 8 17 3 21Z"},
    {"bridge", "gM3 9L21 9|gM3 15L21 15|bM3 9L1 6|bM21 9L23 6|bM3 15L1 18|bM21 15L23 18"},
    {"titleblock", "gR2 4 20 16|bR12 13 10 7|bM12 16L22 16"},
    {"library", "YR3 4 5 16|BR9 4 4 16|GM15 5L19 4L22 19L18 20Z"},
    {"sum", "bM18 6L18 4L6 4L12 12L6 20L18 20L18 18"},
    {"textalignh", "gM2 18L22 18|bM5 16L8 7L11 16|bM6 13L10 13|bM14 16L14 9L18 9L18 16"},
    {"textalignv", "gM5 2L5 22|bM8 6L19 6|bM8 12L15 12|bM8 18L21 18"},
    {"linktext", "bM3 7L9 7|bM15 7L21 7|nM9 7L15 7|gM4 16L20 16|gM16 13L20 16L16 19"},
    {"edittext", "bM4 6L4 4L14 4L14 6|bM9 4L9 16|yM12 20L20 10L22 12L14 21Z"},
    {"texttool", "bM3 7L3 4L13 4L13 7|bM8 4L8 15|gO17 16 4|gM17 10L17 12|gM17 20L17 22"},
    {"ccscale", "bM3 5L10 5|bM6.5 5L6.5 15|gM14 15L17.5 5L21 15|gM15 12L20 12|yM3 20L21 20"},
    {"linetype", "bM2 6L22 6|bM2 12L8 12|bM11 12L13 12|bM16 12L22 12|gM2 18L5 18|gM8 18L11 18|gM14 18L17 "
                 "18|gM20 18L22 18"},
    {"delta", "bM12 4L21 19L3 19Z|yM9 15L15 15"},
    {"font", "bM3 19L8 5L13 19|bM5 14L11 14|nM15 9L21 9L18 6|nM21 15L15 15L18 18"},
    {"cursor", "gM12 2L12 22|gM2 12L22 12|bR9 9 6 6"},
    {"roadon", "gM7 3L3 21|gM17 3L21 21|yM12 3L12 7|yM12 10L12 14|yM12 17L12 21"},
    {"roadoff", "gM7 3L3 21|gM17 3L21 21|rM9 9L15 15|rM15 9L9 15"},
    {"batchplot", "gR3 3 9 12|gR7 6 9 12|bR11 9 10 12|bM14 14L18 14"},
    {"dimheight", "gM4 20L4 8|gM16 20L16 8|bM4 11L16 11|yM20 20L20 6|yM18 9L20 6L22 9"},
    {"mapline", "gM2 16L22 8|bM7 11L9 16|bM13 9L15 14|bO5 15 1"},
    {"grid", "gM3 8L21 8|gM3 16L21 16|gM8 3L8 21|gM16 3L16 21"},
    {"snap", "gO6 6 1|gO12 6 1|gO18 6 1|gO6 12 1|BO12 12 2.5|gO18 12 1|gO6 18 1|gO12 18 1|gO18 18 1"},
    {"ortho", "bM5 3L5 19L21 19|gM5 14L10 14L10 19"},
    {"osnap", "nR7 7 10 10|gM12 2L12 7|gM12 17L12 22|gM2 12L7 12|gM17 12L22 12"},
    {"lineweight", "gM3 6L21 6|BR3 10 18 2.5|BR3 16 18 4.5"},
    {"dynamic", "gM4 4L4 14L7 11L12 11Z|bR11 15 11 6"},
    {"app", "BR2 2 20 20|WM5 18L10 6L14 14L19 5|WO10 6 1.6|WO14 14 1.6"},
    {"lighton", "YO12 10 6|gM9 17L15 17|gM10 20L14 20"},
    {"lightoff", "gO12 10 6|gM9 17L15 17|gM10 20L14 20"},
    {"close", "gM7 7L17 17|gM17 7L7 17"},
    {"lock", "YR5 11 14 9|gM8 11L8 7C8 3 16 3 16 7L16 11"},
    {"freeze", "bM12 3L12 21|bM4 7.5L20 16.5|bM4 16.5L20 7.5"},
};

QColor colorOf(char look) {
    switch (look) {
    case 'b':
    case 'B':
        return {92, 168, 250};
    case 'y':
    case 'Y':
        return {235, 190, 90};
    case 'r':
    case 'R':
        return {235, 105, 95};
    case 'n':
        return {110, 205, 120};
    case 'W':
    case 'w':
        return Qt::white;
    default:
        return {200, 207, 215};
    }
}

const Drawing* find(std::string_view name) {
    const auto* found = std::find_if(std::begin(drawings), std::end(drawings),
                                     [&](const Drawing& drawing) { return drawing.name == name; });
    return found != std::end(drawings) ? found : nullptr;
}

/// Numbers of a path's text.
class Numbers {
public:
    explicit Numbers(std::string_view text) : mText(text) {}
    bool atEnd() {
        while (!mText.empty() && mText.front() == ' ') {
            mText.remove_prefix(1);
        }
        return mText.empty();
    }
    char verb() {
        const char c = mText.front();
        mText.remove_prefix(1);
        return c;
    }
    double number() {
        atEnd();
        double value = 0;
        const auto [end, error] = std::from_chars(mText.data(), mText.data() + mText.size(), value);
        mText.remove_prefix(error == std::errc() ? static_cast<std::size_t>(end - mText.data())
                                                 : mText.size());
        return value;
    }
    QPointF point() {
        const double x = number();
        return {x, number()};
    }

private:
    std::string_view mText;
};

QPainterPath pathOf(std::string_view text) {
    QPainterPath path;
    for (Numbers numbers(text); !numbers.atEnd();) {
        switch (numbers.verb()) {
        case 'M':
            path.moveTo(numbers.point());
            break;
        case 'L':
            path.lineTo(numbers.point());
            break;
        case 'C': {
            const QPointF first = numbers.point();
            const QPointF second = numbers.point();
            path.cubicTo(first, second, numbers.point());
            break;
        }
        case 'O': {
            const QPointF centre = numbers.point();
            const double radius = numbers.number();
            path.addEllipse(centre, radius, radius);
            break;
        }
        case 'R': {
            const QPointF corner = numbers.point();
            const double width = numbers.number();
            path.addRect(QRectF(corner, QSizeF(width, numbers.number())));
            break;
        }
        case 'Z':
            path.closeSubpath();
            break;
        default:
            return path;
        }
    }
    return path;
}

class DrawnIcon final : public QIconEngine {
public:
    explicit DrawnIcon(const Drawing& drawing) : mDrawing(drawing) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        constexpr double field = 24;
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->translate(rect.topLeft());
        painter->scale(rect.width() / field, rect.height() / field);
        if (mode == QIcon::Disabled) {
            painter->setOpacity(0.35);
        }
        for (std::string_view rest = mDrawing.parts; !rest.empty();) {
            const std::size_t bar = std::min(rest.find('|'), rest.size());
            const char look = rest.front();
            // "R" after the look is a rectangle, after nothing the red fill: the look always comes first.
            const QPainterPath path = pathOf(rest.substr(1, bar - 1));
            const bool fills = look >= 'A' && look <= 'Z';
            painter->setPen(QPen(colorOf(look), 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
            painter->setBrush(fills ? QBrush(colorOf(look)) : QBrush(Qt::NoBrush));
            painter->drawPath(path);
            rest.remove_prefix(std::min(bar + 1, rest.size()));
        }
        painter->restore();
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, QRect(QPoint(0, 0), size), mode, state);
        return pixmap;
    }
    QIconEngine* clone() const override { return new DrawnIcon(mDrawing); }

private:
    const Drawing& mDrawing;
};

} // namespace

bool hasIcon(std::string_view name) {
    return find(name) != nullptr;
}

QIcon icon(std::string_view name) {
    const Drawing* drawing = find(name);
    static constexpr Drawing plain{"", "gR4 4 16 16"};
    return QIcon(new DrawnIcon(drawing != nullptr ? *drawing : plain));
}

QIcon colorIcon(std::uint32_t color) {
    constexpr int size = 32;
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setPen(QColor(120, 128, 136));
    painter.setBrush(QColor::fromRgb(color));
    painter.drawRect(4, 4, size - 9, size - 9);
    painter.end();
    return QIcon(pixmap);
}

} // namespace app
