// Mirroring of entities and of texts.
#include "host/commands/edit/mirroring.h"

#include "host/db/entities/fields.h"

#include <cmath>
#include <vector>

namespace host {

AcGeMatrix3d readableMirroring(const AcDbText& text, const AcGeMatrix3d& mirror) {
    AcGePoint3d corners[4];
    text.getCorners(corners);
    const AcGePoint3d middle = corners[0] + (corners[2] - corners[0]) * 0.5;
    const AcGeVector3d along =
        toWorld(text.normal(), AcGeVector3d(std::cos(text.rotation()), std::sin(text.rotation()), 0.0));
    const AcGeVector3d up = text.normal().crossProduct(along);
    const AcGePoint3d newMiddle = mirror * middle;
    AcGeVector3d newAlong = (mirror * along).normal();
    AcGeVector3d newUp = (mirror * up).normal();
    // Of the two ways to read the image, the one that turns the text less.
    if (newAlong.dotProduct(along) > 1e-9) {
        newUp = -newUp;
    } else {
        newAlong = -newAlong;
    }
    const auto frame = [](const AcGePoint3d& origin, const AcGeVector3d& x, const AcGeVector3d& y) {
        AcGeMatrix3d matrix;
        matrix.setCoordSystem(origin, x, y, x.crossProduct(y));
        return matrix;
    };
    return frame(newMiddle, newAlong, newUp) * frame(middle, along, up).inverse();
}

Acad::ErrorStatus mirrorEntity(AcDbEntity& entity, const AcGeMatrix3d& mirror, bool mirrorsText) {
    if (mirrorsText) {
        return entity.transformBy(mirror);
    }
    if (const auto* text = AcDbText::cast(&entity)) {
        return entity.transformBy(readableMirroring(*text, mirror));
    }
    // Attributes go along with their reference, and are then put right by what is left to do.
    std::vector<AcGeMatrix3d> corrections;
    if (const SubentityList* attributes = entity.subentities();
        attributes != nullptr && AcDbBlockReference::cast(&entity) != nullptr) {
        attributes->forEach<AcDbAttribute>([&](const AcDbAttribute& attribute) {
            corrections.push_back(readableMirroring(attribute, mirror) * mirror.inverse());
        });
    }
    const Acad::ErrorStatus status = entity.transformBy(mirror);
    if (status == Acad::eOk && !corrections.empty()) {
        std::size_t at = 0;
        entity.subentities()->change<AcDbAttribute>(
            [&](AcDbAttribute& attribute) { attribute.transformBy(corrections[at++]); });
    }
    return status;
}

} // namespace host
