// Pattern and style of hatches.
#include "host/db/dbdatabase.h"
#include "host/db/entities/hatch.h"

bool AcDbHatch::isGradient() const {
    assertReadEnabled();
    return gradient().has_value();
}
bool AcDbHatch::isSolidFill() const {
    assertReadEnabled();
    return m.solid;
}
AcDbHatch::HatchPatternType AcDbHatch::patternType() const {
    assertReadEnabled();
    return static_cast<HatchPatternType>(m.patternType);
}
const AcString& AcDbHatch::patternName() const {
    assertReadEnabled();
    return m.patternName;
}

Acad::ErrorStatus AcDbHatch::setPattern(HatchPatternType type, const ACHAR* name, AcString* fault) {
    if (name == nullptr || *name == L'\0') {
        return Acad::eInvalidInput;
    }
    if (type == kUserDefined) {
        assertWriteEnabled();
        m.patternType = type;
        m.patternName = name;
        m.solid = false;
        m.pattern = host::userPattern(m.patternAngle, m.patternScale, m.patternDouble);
        changed();
        return Acad::eOk;
    }
    if (AcString(name).compareNoCase(L"SOLID") == 0) {
        return setPatternLines(type, L"SOLID", {});
    }
    std::vector<host::HatchPatternLine> lines;
    std::wstring message = L"没有图案填充定义的读取器";
    const host::HatchPatternLoader& load = host::hatchPatternLoader();
    const Acad::ErrorStatus status = load ? load(name, database(), lines, message) : Acad::eNotImplementedYet;
    if (status != Acad::eOk) {
        if (fault != nullptr) {
            *fault = message.c_str();
        }
        return Acad::eInvalidInput;
    }
    return setPatternLines(type, name, std::move(lines));
}

Acad::ErrorStatus AcDbHatch::setPatternLines(HatchPatternType type, const ACHAR* name,
                                             std::vector<host::HatchPatternLine> lines) {
    assertWriteEnabled();
    m.patternType = type;
    m.patternName = name;
    m.solid = lines.empty();
    host::transformPattern(lines, m.patternAngle, m.patternScale);
    m.pattern = std::move(lines);
    changed();
    return Acad::eOk;
}

int AcDbHatch::numPatternDefinitions() const {
    assertReadEnabled();
    return static_cast<int>(m.pattern.size());
}

Acad::ErrorStatus AcDbHatch::getPatternDefinitionAt(int index, double& angle, double& baseX, double& baseY,
                                                    double& offsetX, double& offsetY,
                                                    AcGeDoubleArray& dashes) const {
    assertReadEnabled();
    if (index < 0 || index >= numPatternDefinitions()) {
        return Acad::eInvalidIndex;
    }
    const host::HatchPatternLine& line = m.pattern[static_cast<std::size_t>(index)];
    angle = line.angle;
    baseX = line.base.x;
    baseY = line.base.y;
    offsetX = line.offset.x;
    offsetY = line.offset.y;
    for (const double dash : line.dashes) {
        dashes.append(dash);
    }
    return Acad::eOk;
}

double AcDbHatch::patternAngle() const {
    assertReadEnabled();
    return m.patternAngle;
}
Acad::ErrorStatus AcDbHatch::setPatternAngle(double angle) {
    if (!std::isfinite(angle)) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    host::transformPattern(m.pattern, angle - m.patternAngle, 1.0);
    m.patternAngle = angle;
    changed();
    return Acad::eOk;
}

double AcDbHatch::patternScale() const {
    assertReadEnabled();
    return m.patternScale;
}
Acad::ErrorStatus AcDbHatch::setPatternScale(double scale) {
    if (!(scale > 0.0) || !std::isfinite(scale)) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    if (m.patternScale > 0.0) {
        host::transformPattern(m.pattern, 0.0, scale / m.patternScale);
    }
    m.patternScale = scale;
    changed();
    return Acad::eOk;
}
double AcDbHatch::patternSpace() const {
    return patternScale();
}
Acad::ErrorStatus AcDbHatch::setPatternSpace(double space) {
    return setPatternScale(space);
}

bool AcDbHatch::patternDouble() const {
    assertReadEnabled();
    return m.patternDouble;
}
Acad::ErrorStatus AcDbHatch::setPatternDouble(bool crossed) {
    assertWriteEnabled();
    m.patternDouble = crossed;
    if (m.patternType == kUserDefined && !m.pattern.empty()) {
        const AcGePoint2d origin = m.pattern.front().base;
        m.pattern = host::userPattern(m.patternAngle, m.patternScale, crossed);
        for (host::HatchPatternLine& line : m.pattern) {
            line.base = origin;
        }
    }
    changed();
    return Acad::eOk;
}

AcGePoint2d AcDbHatch::originPoint() const {
    assertReadEnabled();
    return m.pattern.empty() ? AcGePoint2d() : m.pattern.front().base;
}
Acad::ErrorStatus AcDbHatch::setOriginPoint(const AcGePoint2d& origin) {
    assertWriteEnabled();
    const AcGeVector2d move = origin - originPoint();
    for (host::HatchPatternLine& line : m.pattern) {
        line.base += move;
    }
    changed();
    return Acad::eOk;
}

AcDbHatch::HatchStyle AcDbHatch::hatchStyle() const {
    assertReadEnabled();
    return static_cast<HatchStyle>(m.style);
}
Acad::ErrorStatus AcDbHatch::setHatchStyle(HatchStyle style) {
    assertWriteEnabled();
    m.style = style;
    changed();
    return Acad::eOk;
}

int AcDbHatch::numSeedPoints() const {
    assertReadEnabled();
    return static_cast<int>(m.seeds.size());
}
Acad::ErrorStatus AcDbHatch::getSeedPointAt(int index, AcGePoint2d& point) const {
    if (index < 0 || index >= numSeedPoints()) {
        return Acad::eInvalidIndex;
    }
    point = m.seeds[static_cast<std::size_t>(index)];
    return Acad::eOk;
}
Acad::ErrorStatus AcDbHatch::setSeedPointAt(int index, const AcGePoint2d& point) {
    assertWriteEnabled();
    if (index < 0 || index > numSeedPoints()) {
        return Acad::eInvalidIndex;
    }
    if (index == numSeedPoints()) {
        m.seeds.push_back(point);
    }
    m.seeds[static_cast<std::size_t>(index)] = point;
    return Acad::eOk;
}
