// Attributes and their definitions.
#include "host/db/entities/attribute.h"

#include "host/db/dbdatabase.h"
#include "host/db/entities/blockreference.h"
#include "host/db/entities/fields.h"
#include "host/gi/gi.h"

#include <algorithm>

ACRX_DXF_DEFINE_MEMBERS(AcDbAttributeDefinition, AcDbText, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0,
                        ATTDEF, ObjectDBX Classes)
ACRX_DXF_DEFINE_MEMBERS(AcDbAttribute, AcDbText, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0, ATTRIB,
                        ObjectDBX Classes)

namespace host {

ACHAR* AttributeText::tag() const {
    ACHAR* copy = nullptr;
    acutNewString(tagConst(), copy);
    return copy;
}
const ACHAR* AttributeText::tagConst() const {
    assertReadEnabled();
    return a.tag.kwszPtr();
}
Acad::ErrorStatus AttributeText::setTag(const ACHAR* tag) {
    const std::wstring_view name = tag != nullptr ? tag : L"";
    if (name.empty() || name.find(L' ') != std::wstring_view::npos) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    a.tag = tag;
    return Acad::eOk;
}
bool AttributeText::isInvisible() const {
    assertReadEnabled();
    return a.has(AttributeData::invisible);
}
Acad::ErrorStatus AttributeText::setInvisible(bool invisible) {
    assertWriteEnabled();
    a.set(AttributeData::invisible, invisible);
    return Acad::eOk;
}
bool AttributeText::isConstant() const {
    assertReadEnabled();
    return a.has(AttributeData::constant);
}
bool AttributeText::isVerifiable() const {
    assertReadEnabled();
    return a.has(AttributeData::verified);
}
bool AttributeText::isPreset() const {
    assertReadEnabled();
    return a.has(AttributeData::preset);
}
Adesk::UInt16 AttributeText::fieldLength() const {
    assertReadEnabled();
    return static_cast<Adesk::UInt16>(a.fieldLength);
}
Acad::ErrorStatus AttributeText::setFieldLength(Adesk::UInt16 length) {
    assertWriteEnabled();
    a.fieldLength = static_cast<Adesk::Int16>(length);
    return Acad::eOk;
}
bool AttributeText::lockPositionInBlock() const {
    assertReadEnabled();
    return a.lockPosition;
}
Acad::ErrorStatus AttributeText::setLockPositionInBlock(bool locked) {
    assertWriteEnabled();
    a.lockPosition = locked;
    return Acad::eOk;
}

Acad::ErrorStatus AttributeText::dwgOutFields(AcDbDwgFiler* filer) const {
    const Acad::ErrorStatus status = AcDbText::dwgOutFields(filer);
    return status == Acad::eOk ? writeFields(filer, a) : status;
}

Acad::ErrorStatus AttributeText::dwgInFields(AcDbDwgFiler* filer) {
    const TextData before = data();
    Acad::ErrorStatus status = AcDbText::dwgInFields(filer);
    if (status == Acad::eOk) {
        status = readFields(filer, a);
    }
    if (status != Acad::eOk) {
        textData() = before;
    }
    return status;
}

Acad::ErrorStatus AttributeText::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    a = {};
    return AcDbText::dxfInFields(filer);
}

std::string_view AttributeText::dxfSubclass(std::string_view marker) const {
    return marker.empty() || marker == ownSubclass() ? ownSubclass() : AcDbText::dxfSubclass(marker);
}

bool AttributeText::takeDxfGroup(AcDbDxfFiler* filer, const DxfGroup& group, std::string_view subclass) {
    if (!subclass.empty() && subclass != ownSubclass()) {
        return AcDbText::takeDxfGroup(filer, group, subclass);
    }
    switch (group.code) {
    case 2:
        a.tag = group.string();
        return true;
    case 3:
        a.prompt = group.string();
        return true;
    case 70:
        a.flags = static_cast<Adesk::UInt8>(group.integer);
        return true;
    case 73:
        a.fieldLength = group.int16();
        return true;
    case 74:
        textData().vertical =
            static_cast<Adesk::UInt8>(group.integer >= 0 && group.integer <= 3 ? group.integer : 0);
        return true;
    case 280:
        // In front of the tag it is the version of the record.
        if (!a.tag.isEmpty()) {
            a.lockPosition = group.boolean();
        }
        return true;
    case 71: // of an attribute of several lines; of a text it would say that it is mirrored
    case 72:
        return subclass.empty() && AcDbText::takeDxfGroup(filer, group, subclass);
    default:
        return AcDbText::takeDxfGroup(filer, group, subclass);
    }
}

Acad::ErrorStatus AttributeText::dxfOutFields(AcDbDxfFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbEntity::dxfOutFields(filer); status != Acad::eOk) {
        return status;
    }
    writeTextGroups(filer);
    filer->writeText(100, ownSubclass());
    filer->writeInteger(280, 0);
    if (ownSubclass() == "AcDbAttributeDefinition") {
        filer->writeString(3, a.prompt);
    }
    filer->writeString(2, a.tag);
    filer->writeInteger(70, a.flags);
    writeUnlessZero(filer, 73, a.fieldLength);
    writeUnlessZero(filer, 74, data().vertical);
    filer->writeInteger(280, a.lockPosition ? 1 : 0);
    writeKeptGroups(filer, ownSubclass());
    return filer->filerStatus();
}

} // namespace host

AcDbAttributeDefinition::AcDbAttributeDefinition(const AcGePoint3d& position, const ACHAR* text,
                                                 const ACHAR* tag, const ACHAR* prompt, AcDbObjectId style) {
    textData().position = position;
    textData().text = text;
    textData().style = style;
    a.tag = tag;
    a.prompt = prompt;
}

ACHAR* AcDbAttributeDefinition::prompt() const {
    ACHAR* copy = nullptr;
    acutNewString(promptConst(), copy);
    return copy;
}
const ACHAR* AcDbAttributeDefinition::promptConst() const {
    assertReadEnabled();
    return a.prompt.kwszPtr();
}
Acad::ErrorStatus AcDbAttributeDefinition::setPrompt(const ACHAR* prompt) {
    assertWriteEnabled();
    a.prompt = prompt;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbAttributeDefinition::setConstant(bool constant) {
    assertWriteEnabled();
    a.set(a.constant, constant);
    return Acad::eOk;
}
Acad::ErrorStatus AcDbAttributeDefinition::setVerifiable(bool verified) {
    assertWriteEnabled();
    a.set(a.verified, verified);
    return Acad::eOk;
}
Acad::ErrorStatus AcDbAttributeDefinition::setPreset(bool preset) {
    assertWriteEnabled();
    a.set(a.preset, preset);
    return Acad::eOk;
}

void AcDbAttributeDefinition::drawConstant(AcGiWorldDraw* draw) const {
    if (a.has(a.constant) && !a.has(a.invisible)) {
        drawShown(draw);
    }
}

AcDbAttribute::AcDbAttribute(const AcGePoint3d& position, const ACHAR* text, const ACHAR* tag,
                             AcDbObjectId style) {
    textData().position = position;
    textData().text = text;
    textData().style = style;
    a.tag = tag;
}

Acad::ErrorStatus AcDbAttribute::setAttributeFromBlock(const AcDbAttributeDefinition* definition,
                                                       const AcGeMatrix3d& blockTransform) {
    if (definition == nullptr) {
        return Acad::eNullObjectPointer;
    }
    setPropertiesFrom(definition);
    textData() = definition->data();
    copyLines(*definition);
    a.tag = definition->tagConst();
    a.flags = 0;
    a.set(a.invisible, definition->isInvisible());
    a.set(a.constant, definition->isConstant());
    a.set(a.verified, definition->isVerifiable());
    a.set(a.preset, definition->isPreset());
    a.fieldLength = static_cast<Adesk::Int16>(definition->fieldLength());
    a.lockPosition = definition->lockPositionInBlock();
    const Acad::ErrorStatus status = transformBy(blockTransform);
    if (status == Acad::eOk && !isDefaultAlignment()) {
        adjustAlignment(); // a definition is aligned by its tag
    }
    return status;
}

Acad::ErrorStatus AcDbAttribute::setAttributeFromBlock(const AcGeMatrix3d& blockTransform) {
    const auto* reference = host::peek<AcDbBlockReference>(ownerId());
    const auto* block =
        reference != nullptr ? host::peek<AcDbBlockTableRecord>(reference->blockTableRecord()) : nullptr;
    if (block == nullptr) {
        return Acad::eInvalidInput;
    }
    for (AcDbStub* stub : block->entities()) {
        const auto* definition = host::peek<AcDbAttributeDefinition>(AcDbObjectId(stub));
        if (definition == nullptr) {
            continue;
        }
        const host::ReadAccess access(*definition);
        if (a.tag.compareNoCase(definition->tagConst()) != 0) {
            continue;
        }
        assertWriteEnabled();
        const AcString text = data().text;
        const std::unique_ptr<AcDbMText> own = lines();
        AcString contents = text;
        if (own != nullptr) {
            own->contents(contents);
        }
        textData() = definition->data();
        textData().text = text;
        copyLines(*definition);
        if (const std::unique_ptr<AcDbMText> taken = lines()) {
            taken->setContents(contents);
            setLines(*taken);
        }
        const Acad::ErrorStatus status = transformBy(blockTransform);
        if (status == Acad::eOk && !isDefaultAlignment()) {
            adjustAlignment();
        }
        return status;
    }
    return Acad::eKeyNotFound;
}

bool AcDbAttribute::isMTextAttribute() const {
    assertReadEnabled();
    return hasLines();
}

bool AcDbAttribute::subWorldDraw(AcGiWorldDraw* draw) {
    if (!isInvisible()) {
        drawShown(draw);
    }
    return true;
}
