#include "app/chrome/propertyrows.h"

#include "app/chrome/entityvalues.h"

#include "host/db/entities/dimension.h"
#include "host/db/entities/ellipse.h"
#include "host/db/entities/hatch.h"
#include "host/db/entities/mtext.h"
#include "host/db/entities/text.h"
#include "host/ed/aced.h"

#include <QCoreApplication>
#include <map>
#include <numbers>

namespace app {
namespace {

/// Marks a text for translation.
constexpr const char* T(const char* text) {
    return text;
}

constexpr const char* general = T("常规");
constexpr const char* geometry = T("几何图形");
constexpr const char* writing = T("文字");

QString degrees(double radians) {
    return QString::number(radians * 180 / std::numbers::pi, 'f', 4);
}

QString shownPoint(const AcGePoint3d& at) {
    return shownNumber(at.x) + QLatin1Char(',') + shownNumber(at.y) + QLatin1Char(',') + shownNumber(at.z);
}

QString yesOrNo(bool yes) {
    return QCoreApplication::translate("Properties", yes ? "是" : "否");
}

bool always(const AcDbEntity&) {
    return true;
}
template <class Kind>
bool is(const AcDbEntity& entity) {
    return Kind::cast(&entity) != nullptr;
}
template <class Kind>
const Kind& as(const AcDbEntity& entity) {
    return *Kind::cast(&entity);
}

bool isAligned(const AcDbText& string) {
    return string.horizontalMode() != AcDb::kTextLeft || string.verticalMode() != AcDb::kTextBase;
}
bool isFreeText(const AcDbEntity& entity) {
    return is<AcDbText>(entity) && !isAligned(as<AcDbText>(entity));
}
bool isAlignedText(const AcDbEntity& entity) {
    return is<AcDbText>(entity) && isAligned(as<AcDbText>(entity));
}

bool hasLength(const AcDbEntity& entity) {
    const auto* curve = AcDbCurve::cast(&entity);
    return curve != nullptr && curveLength(*curve).has_value();
}
bool hasArea(const AcDbEntity& entity) {
    const auto* curve = AcDbCurve::cast(&entity);
    double area = 0;
    return curve != nullptr && !is<AcDbLine>(entity) && curve->getArea(area) == Acad::eOk;
}

using E = const AcDbEntity&;

constexpr PropertyRow rows[] = {
    {general, T("图层"), "_LA", always, [](E e) { return nameOf(e.layerId()); }},
    {general, T("颜色"), "_C", always, [](E e) { return shownColor(e.entityColor()); }},
    {general, T("线型"), "_LT", always, [](E e) { return nameOf(e.linetypeId()); }},
    {general, T("线型比例"), "_S", always, [](E e) { return shownNumber(e.linetypeScale()); }},
    {general, T("线宽"), "_LW", always, [](E e) { return shownWeight(e.lineWeight()); }},

    {geometry, T("起点"), "p10", is<AcDbLine>, [](E e) { return shownPoint(as<AcDbLine>(e).startPoint()); }},
    {geometry, T("端点"), "p11", is<AcDbLine>, [](E e) { return shownPoint(as<AcDbLine>(e).endPoint()); }},
    {geometry, T("角度"), nullptr, is<AcDbLine>,
     [](E e) {
         const AcGeVector3d along = as<AcDbLine>(e).endPoint() - as<AcDbLine>(e).startPoint();
         return degrees(std::atan2(along.y, along.x) +
                        (std::atan2(along.y, along.x) < 0 ? 2 * std::numbers::pi : 0));
     }},
    {geometry, T("圆心"), "p10", is<AcDbCircle>, [](E e) { return shownPoint(as<AcDbCircle>(e).center()); }},
    {geometry, T("半径"), "r40", is<AcDbCircle>, [](E e) { return shownNumber(as<AcDbCircle>(e).radius()); }},
    {geometry, T("圆心"), "p10", is<AcDbArc>, [](E e) { return shownPoint(as<AcDbArc>(e).center()); }},
    {geometry, T("半径"), "r40", is<AcDbArc>, [](E e) { return shownNumber(as<AcDbArc>(e).radius()); }},
    {geometry, T("起点角度"), "a50", is<AcDbArc>, [](E e) { return degrees(as<AcDbArc>(e).startAngle()); }},
    {geometry, T("端点角度"), "a51", is<AcDbArc>, [](E e) { return degrees(as<AcDbArc>(e).endAngle()); }},
    {geometry, T("中心"), "p10", is<AcDbEllipse>,
     [](E e) { return shownPoint(as<AcDbEllipse>(e).center()); }},
    {geometry, T("长轴半径"), nullptr, is<AcDbEllipse>,
     [](E e) { return shownNumber(as<AcDbEllipse>(e).majorRadius()); }},
    {geometry, T("短轴半径"), nullptr, is<AcDbEllipse>,
     [](E e) { return shownNumber(as<AcDbEllipse>(e).minorRadius()); }},
    {geometry, T("顶点数"), nullptr, is<AcDbPolyline>,
     [](E e) { return QString::number(as<AcDbPolyline>(e).numVerts()); }},
    {geometry, T("闭合"), "c70", is<AcDbPolyline>,
     [](E e) { return yesOrNo(as<AcDbPolyline>(e).isClosed()); }},
    {geometry, T("全局宽度"), "r40 41 43", is<AcDbPolyline>,
     [](E e) {
         double width = 0;
         return as<AcDbPolyline>(e).getConstantWidth(width) == Acad::eOk
                    ? shownNumber(width)
                    : QCoreApplication::translate("Properties", "*多种*");
     }},
    {geometry, T("标高"), "r38", is<AcDbPolyline>,
     [](E e) { return shownNumber(as<AcDbPolyline>(e).elevation()); }},
    {geometry, T("位置"), "p10", is<AcDbPoint>, [](E e) { return shownPoint(as<AcDbPoint>(e).position()); }},
    {geometry, T("块名"), nullptr, is<AcDbBlockReference>,
     [](E e) { return nameOf(as<AcDbBlockReference>(e).blockTableRecord()); }},
    {geometry, T("位置"), "p10", is<AcDbBlockReference>,
     [](E e) { return shownPoint(as<AcDbBlockReference>(e).position()); }},
    {geometry, T("X 比例"), "r41", is<AcDbBlockReference>,
     [](E e) { return shownNumber(as<AcDbBlockReference>(e).scaleFactors().sx); }},
    {geometry, T("Y 比例"), "r42", is<AcDbBlockReference>,
     [](E e) { return shownNumber(as<AcDbBlockReference>(e).scaleFactors().sy); }},
    {geometry, T("旋转"), "a50", is<AcDbBlockReference>,
     [](E e) { return degrees(as<AcDbBlockReference>(e).rotation()); }},
    {geometry, T("图案比例"), nullptr, is<AcDbHatch>,
     [](E e) { return shownNumber(as<AcDbHatch>(e).patternScale()); }},
    {geometry, T("图案角度"), nullptr, is<AcDbHatch>,
     [](E e) { return degrees(as<AcDbHatch>(e).patternAngle()); }},
    {geometry, T("测量值"), nullptr, is<AcDbDimension>,
     [](E e) {
         double value = 0;
         as<AcDbDimension>(e).getMeasurement(value);
         return shownNumber(value);
     }},
    {geometry, T("标注样式"), nullptr, is<AcDbDimension>,
     [](E e) { return nameOf(as<AcDbDimension>(e).dimensionStyle()); }},
    {geometry, T("长度"), nullptr, hasLength,
     [](E e) { return shownNumber(curveLength(as<AcDbCurve>(e)).value_or(0)); }},
    {geometry, T("面积"), nullptr, hasArea,
     [](E e) {
         double area = 0;
         as<AcDbCurve>(e).getArea(area);
         return shownNumber(area);
     }},

    {writing, T("内容"), "s1", is<AcDbText>, [](E e) { return text(as<AcDbText>(e).textStringConst()); }},
    {writing, T("样式"), "s7", is<AcDbText>, [](E e) { return nameOf(as<AcDbText>(e).textStyle()); }},
    {writing, T("高度"), "r40", is<AcDbText>, [](E e) { return shownNumber(as<AcDbText>(e).height()); }},
    {writing, T("旋转"), "a50", is<AcDbText>, [](E e) { return degrees(as<AcDbText>(e).rotation()); }},
    {writing, T("宽度因子"), "r41", is<AcDbText>,
     [](E e) { return shownNumber(as<AcDbText>(e).widthFactor()); }},
    {writing, T("倾斜"), "a51", is<AcDbText>, [](E e) { return degrees(as<AcDbText>(e).oblique()); }},
    {writing, T("位置"), "p10", isFreeText, [](E e) { return shownPoint(as<AcDbText>(e).position()); }},
    {writing, T("位置"), "p11", isAlignedText,
     [](E e) { return shownPoint(as<AcDbText>(e).alignmentPoint()); }},
    {writing, T("样式"), "s7", is<AcDbMText>, [](E e) { return nameOf(as<AcDbMText>(e).textStyle()); }},
    {writing, T("高度"), "r40", is<AcDbMText>,
     [](E e) { return shownNumber(as<AcDbMText>(e).textHeight()); }},
    {writing, T("文字宽度"), "r41", is<AcDbMText>, [](E e) { return shownNumber(as<AcDbMText>(e).width()); }},
    {writing, T("位置"), "p10", is<AcDbMText>, [](E e) { return shownPoint(as<AcDbMText>(e).location()); }},
    {writing, T("文字替代"), "s1", is<AcDbDimension>,
     [](E e) {
         AcString own;
         as<AcDbDimension>(e).dimensionText(own);
         return text(own);
     }},
};

/// The LISP expression whose value is put in; nil when the text cannot be read.
QString valueForm(QChar kind, const QString& value) {
    if (kind == QLatin1Char('r')) {
        return QStringLiteral("(distof %1)").arg(quoted(value));
    }
    if (kind == QLatin1Char('a')) {
        return QStringLiteral("(angtof %1 0)").arg(quoted(value));
    }
    if (kind == QLatin1Char('c')) {
        return value == yesOrNo(true) ? QStringLiteral("1") : QStringLiteral("0");
    }
    if (kind != QLatin1Char('p')) {
        return quoted(value);
    }
    QString form = QStringLiteral("(list");
    for (const QString& part : value.split(QLatin1Char(','))) {
        form += QStringLiteral(" (distof %1)").arg(quoted(part.trimmed()));
    }
    return form + QLatin1Char(')');
}

QString standardWord(const QString& value) {
    static const std::map<QString, const char*> words = {
        {QStringLiteral("随层"), "_ByLayer"}, {QStringLiteral("随块"), "_ByBlock"},
        {QStringLiteral("默认"), "_Default"}, {QStringLiteral("红"), "1"},
        {QStringLiteral("黄"), "2"},          {QStringLiteral("绿"), "3"},
        {QStringLiteral("青"), "4"},          {QStringLiteral("蓝"), "5"},
        {QStringLiteral("洋红"), "6"},        {QStringLiteral("白"), "7"}};
    const auto found = words.find(value);
    return found != words.end() ? QString::fromLatin1(found->second) : value;
}

} // namespace

std::span<const PropertyRow> propertyRows() {
    return rows;
}

QString kindName(const AcDbEntity& entity) {
    static const std::map<std::string, const char*> names = {
        {"LINE", "直线"},      {"LWPOLYLINE", "多段线"}, {"POLYLINE", "多段线"}, {"CIRCLE", "圆"},
        {"ARC", "圆弧"},       {"ELLIPSE", "椭圆"},      {"SPLINE", "样条曲线"}, {"TEXT", "单行文字"},
        {"MTEXT", "多行文字"}, {"INSERT", "块参照"},     {"POINT", "点"},        {"HATCH", "图案填充"},
        {"DIMENSION", "标注"}, {"MLINE", "多线"},        {"SOLID", "实体填充"},  {"XLINE", "构造线"},
        {"RAY", "射线"},       {"LEADER", "引线"},       {"VIEWPORT", "视口"},   {"IMAGE", "图像"}};
    const auto found = names.find(entity.dxfRecordName());
    return found != names.end() ? QString::fromUtf8(found->second)
                                : QString::fromStdString(entity.dxfRecordName());
}

std::optional<double> curveLength(const AcDbCurve& curve) {
    double end = 0;
    double length = 0;
    const bool known = curve.getEndParam(end) == Acad::eOk && curve.getDistAtParam(end, length) == Acad::eOk;
    return known ? std::optional(length) : std::nullopt;
}

QString shownNumber(double value) {
    AcString shown;
    return acdbRToS(value, -1, -1, shown) == RTNORM ? text(shown) : QString::number(value);
}

QString shownColor(const AcCmEntityColor& color) {
    if (color.isByLayer() || color.isByBlock()) {
        return QCoreApplication::translate("Properties", color.isByLayer() ? "随层" : "随块");
    }
    return color.isByACI() ? QString::number(color.colorIndex())
                           : QStringLiteral("%1,%2,%3").arg(color.red()).arg(color.green()).arg(color.blue());
}

QString shownWeight(int weight) {
    return weight >= 0 ? QString::number(weight / 100.0, 'f', 2)
                       : QCoreApplication::translate("Properties", weight == -1   ? "随层"
                                                                   : weight == -2 ? "随块"
                                                                                  : "默认");
}

QString editingLisp(const QString& edit, const QString& value, const QString& kinds) {
    // Asking for the choice takes it, so it is set again before some of it is asked for.
    const QString chosen =
        QStringLiteral("$a (ssget \"_I\") $s (sssetfirst nil $a) $s (ssget \"_I\" (list (cons 0 %1)))")
            .arg(quoted(kinds));
    const QString end =
        QStringLiteral("(sssetfirst nil $a) (setq $a nil $s nil $v nil $e nil $i nil) (princ))\n");
    if (edit.startsWith(QLatin1Char('_'))) {
        const QString given = standardWord(value);
        const QString typed = edit == QLatin1String("_C") && given.contains(QLatin1Char(','))
                                  ? QStringLiteral("\"_T\" ") + quoted(given)
                                  : quoted(given);
        return QStringLiteral("(progn (setq %1) (command \"_.CHPROP\" $s \"\" \"%2\" %3 \"\") ")
                   .arg(chosen, edit, typed) +
               end;
    }
    const QChar kind = edit.at(0);
    const QString put =
        kind == QLatin1Char('c') ? QStringLiteral("(+ $v (logand (cdr g) 126))") : QStringLiteral("$v");
    const QString codes = edit.mid(1);
    return QStringLiteral(
               "(progn (setq %1 $v %2 $i 0) (if (and $v $s (or (atom $v) (apply 'and $v))) "
               "(repeat (sslength $s) (setq $e (entget (ssname $s $i)) $i (1+ $i)) "
               "(entmod (mapcar '(lambda (g) (if (member (car g) '(%3)) (cons (car g) %4) g)) "
               "(if (assoc %5 $e) $e (append $e (list (cons %5 $v))))))) (princ \"\\n值无效。\")) ")
               .arg(chosen, valueForm(kind, value), codes, put, codes.section(QLatin1Char(' '), -1)) +
           end;
}

} // namespace app
