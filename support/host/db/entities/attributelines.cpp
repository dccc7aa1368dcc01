// Attributes of several lines: the text embedded in them, and how it follows what is done to the attribute.
#include "host/db/dbdatabase.h"
#include "host/db/entities/attribute.h"
#include "host/db/entities/curvepiece.h"
#include "host/rx/text.h"

#include <array>
#include <optional>

namespace host {
namespace {

constexpr std::string_view embeddedObject = "Embedded Object";

/// Walks the groups that follow an attribute's own; `visit` is told of each whether it belongs to the
/// embedded text, whose marker does not.
template <class Visit>
void walkGroups(const GroupList& groups, Visit visit) {
    bool isEmbedded = false;
    for (const GroupList::Group group : groups) {
        const bool isMarker = group.code == 100 || group.code == 101;
        visit(group, isEmbedded && !isMarker);
        isEmbedded = isMarker ? group.code == 101 && group.text == embeddedObject : isEmbedded;
    }
}

GroupList embeddedGroups(const GroupList* kept) {
    GroupList embedded;
    if (kept != nullptr) {
        walkGroups(*kept, [&](const GroupList::Group& group, bool isEmbedded) {
            if (isEmbedded) {
                embedded.add(group.code, group.text);
            }
        });
    }
    return embedded;
}

struct Real {
    short code;
    double value;
    double whenAbsent;
};
/// The reals of an embedded text that change with it.
std::array<Real, 11> realsOf(const MTextData& text) {
    return {{{10, text.location.x, 0.0},
             {20, text.location.y, 0.0},
             {30, text.location.z, 0.0},
             {40, text.textHeight, 0.0},
             {41, text.width, 0.0},
             {210, text.normal.x, 0.0},
             {220, text.normal.y, 0.0},
             {230, text.normal.z, 1.0},
             {11, text.direction.x, 1.0},
             {21, text.direction.y, 0.0},
             {31, text.direction.z, 0.0}}};
}

/// The groups of an embedded text with what differs between two states of it put in. Numbers that stay keep
/// their digits.
class ChangedGroups {
public:
    ChangedGroups(const MTextData& before, const MTextData& after)
        : mBefore(realsOf(before)), mAfter(realsOf(after)), mContents(after.contents.view()),
          mHasNewContents(!(before.contents == after.contents)) {}

    GroupList operator()(const GroupList& groups) {
        bool wasEmbedded = false;
        walkGroups(groups, [&](const GroupList::Group& group, bool isEmbedded) {
            if (wasEmbedded && !isEmbedded) {
                addAbsent();
            }
            wasEmbedded = isEmbedded;
            isEmbedded ? addEmbedded(group) : mWritten.add(group.code, group.text);
        });
        if (wasEmbedded) {
            addAbsent();
        }
        return std::move(mWritten);
    }

private:
    void addEmbedded(const GroupList::Group& group) {
        for (std::size_t i = 0; i < mAfter.size(); ++i) {
            if (group.code == mAfter[i].code) {
                mIsThere[i] = true;
                if (mAfter[i].value != mBefore[i].value) {
                    mWritten.addReal(group.code, mAfter[i].value);
                    return;
                }
            }
        }
        const bool isContents = group.code == 1 || group.code == 3;
        if (!isContents || !mHasNewContents) {
            mWritten.add(group.code, group.text);
        } else if (!std::exchange(mHasWrittenContents, true)) {
            forContentsGroups(mContents, [&](short code, const std::wstring& part) {
                mWritten.add(code, encodeDxfText(toUtf8(part)));
            });
        }
    }
    /// Values that files leave out while they are the usual ones; all three coordinates or none.
    void addAbsent() {
        constexpr std::size_t firstVector = 5, afterVectors = 11;
        for (std::size_t vector = firstVector; vector < afterVectors; vector += 3) {
            bool isUsual = true;
            for (std::size_t i = vector; i < vector + 3; ++i) {
                isUsual = isUsual && (mIsThere[i] || mAfter[i].value == mAfter[i].whenAbsent);
            }
            for (std::size_t i = vector; !isUsual && i < vector + 3; ++i) {
                mWritten.addReal(mAfter[i].code, mAfter[i].value);
            }
        }
    }

    std::array<Real, 11> mBefore, mAfter;
    std::array<bool, 11> mIsThere{};
    std::wstring_view mContents;
    bool mHasNewContents;
    bool mHasWrittenContents = false;
    GroupList mWritten;
};

} // namespace

bool AttributeText::hasLines() const {
    return !embeddedGroups(keptGroups("")).empty();
}

std::unique_ptr<AcDbMText> AttributeText::lines() const {
    assertReadEnabled();
    const GroupList groups = embeddedGroups(keptGroups(""));
    if (groups.empty()) {
        return nullptr;
    }
    auto text = std::make_unique<AcDbMText>();
    const ResbufList list = groups.toResbuf(database());
    ResbufDxfReader reader(database(), list.get());
    return text->dxfInFields(&reader) == Acad::eOk ? std::move(text) : nullptr;
}

void AttributeText::setLines(const AcDbMText& changed) {
    const std::unique_ptr<AcDbMText> before = lines();
    if (before != nullptr) {
        assertWriteEnabled();
        replaceKeptGroups("", ChangedGroups(before->data(), changed.data())(*keptGroups("")));
    }
}

void AttributeText::embedLines(const AcDbMText& text) {
    ResbufDxfWriter writer(nullptr);
    text.dxfOutFields(&writer);
    const ResbufList list = writer.release();
    GroupList kept = keptGroups("") != nullptr ? *keptGroups("") : GroupList();
    kept.add(101, embeddedObject);
    bool isInside = false;
    for (const GroupList::Group group : GroupList::fromResbuf(list.get())) {
        const bool isMarker = group.code == 100 || group.code == 101;
        if (isInside && !isMarker && group.code < 1000) {
            kept.add(group.code, group.text);
        }
        isInside = isMarker ? group.text == "AcDbMText" : isInside;
    }
    replaceKeptGroups("", std::move(kept));
}

void AttributeText::copyLines(const AttributeText& source) {
    assertWriteEnabled();
    replaceKeptGroups("", source.hasLines() ? *source.keptGroups("") : GroupList());
}

void AttributeText::drawShown(AcGiWorldDraw* draw) const {
    if (const std::unique_ptr<AcDbMText> shown = lines()) {
        shown->worldDraw(draw);
    } else {
        drawText(draw, data().text);
    }
}

void AttributeText::subPartChanged(Part part, const AcGeVector3d& offset) {
    const std::unique_ptr<AcDbMText> text = lines();
    if (text == nullptr) {
        return;
    }
    switch (part) {
    case Part::text:
        text->setContents(data().text);
        break;
    case Part::height:
        text->setTextHeight(data().height);
        break;
    case Part::rotation:
        text->setRotation(data().rotation);
        break;
    case Part::place:
        text->setLocation(text->location() + offset);
        break;
    case Part::style:
        return; // the embedded text names its own
    }
    setLines(*text);
}

bool AttributeText::subCurvePieces(std::vector<CurvePiece>& pieces) const {
    const std::unique_ptr<AcDbMText> shown = showsText() ? lines() : nullptr;
    return shown != nullptr ? shown->curvePieces(pieces) : AcDbText::subCurvePieces(pieces);
}

Acad::ErrorStatus AttributeText::subGetExtentsUnder(const AcGeMatrix3d& transform,
                                                    AcDbExtents& extents) const {
    const std::unique_ptr<AcDbMText> shown = showsText() ? lines() : nullptr;
    return shown != nullptr ? shown->getExtentsUnder(transform, extents)
                            : AcDbText::subGetExtentsUnder(transform, extents);
}

Acad::ErrorStatus AttributeText::subTransformBy(const AcGeMatrix3d& transform) {
    const Acad::ErrorStatus status = AcDbText::subTransformBy(transform);
    const std::unique_ptr<AcDbMText> text = status == Acad::eOk ? lines() : nullptr;
    if (text != nullptr && text->transformBy(transform) == Acad::eOk) {
        setLines(*text);
    }
    return status;
}

Acad::ErrorStatus AttributeText::subMoveGripPointsAt(const AcDbIntArray& indices,
                                                     const AcGeVector3d& offset) {
    const Acad::ErrorStatus status = AcDbText::subMoveGripPointsAt(indices, offset);
    if (status == Acad::eOk && !indices.isEmpty()) {
        subPartChanged(Part::place, offset);
    }
    return status;
}

} // namespace host
