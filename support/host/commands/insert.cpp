// INSERT: places a block of the drawing, or a drawing file as a block, or its parts (name after an asterisk).
#include "host/commands/ask.h"
#include "host/commands/registry.h"
#include "host/rx/text.h"
#include "host/win/win.h"

#include <cmath>

namespace host {
namespace {

/// The block's name when a file is given: without folders and extension.
std::wstring blockNameOf(const std::wstring& file) {
    const std::size_t separator = file.find_last_of(L"/\\");
    std::wstring name = separator == std::wstring::npos ? file : file.substr(separator + 1);
    if (const std::size_t dot = name.rfind(L'.'); dot != std::wstring::npos) {
        name.erase(dot);
    }
    return name;
}

std::filesystem::path findDrawing(const std::wstring& name) {
    for (const wchar_t* extension : {L"", L".dxf", L".dwg"}) {
        if (const std::filesystem::path found = findSupportFile(name + extension);
            !found.empty() && !std::filesystem::is_directory(found)) {
            return found;
        }
    }
    return {};
}

/// The definition: of the drawing, or of a file read for it. `name=file` takes the file anew.
AcDbObjectId definitionOf(const std::wstring& given) {
    AcDbDatabase& database = currentDatabase();
    const std::size_t equals = given.find(L'=');
    const std::wstring file = equals != std::wstring::npos ? given.substr(equals + 1) : given;
    const std::wstring name =
        equals != std::wstring::npos && equals > 0 ? given.substr(0, equals) : blockNameOf(file);
    AcDbObjectId id;
    if (equals == std::wstring::npos &&
        peek<AcDbBlockTable>(database.blockTableId())->getAt(name.c_str(), id) == Acad::eOk) {
        return id;
    }
    const std::filesystem::path path = findDrawing(file.empty() ? name : file);
    if (path.empty()) {
        reportFailure(L"找不到块或图形文件 \"" + given + L"\"");
        return {};
    }
    AcDbDatabase source(false);
    std::wstring message;
    if (fileFormats().read(source, toWindowsPath(path), message) != Acad::eOk) {
        reportFailure(message);
        return {};
    }
    if (!message.empty()) {
        acutPrintf(L"\n%s", message.c_str());
    }
    if (database.insert(id, name.c_str(), &source) != Acad::eOk) {
        reportFailure(L"无法插入 \"" + given + L"\"");
        return {};
    }
    return id;
}

struct Placing {
    AcGePoint3d point; ///< UCS
    AcGeScale3d scale{1.0, 1.0, 1.0};
    double rotation = 0.0;
    bool exploded = false;
};

bool askScale(Placing& placing) {
    if (placing.exploded) {
        const RealAnswer scale = askReal(L"\n指定 XYZ 轴比例因子 <1>: ", nullptr, 2);
        if (scale.isValue()) {
            placing.scale.set(scale.value, scale.value, scale.value);
        }
        return !scale.isCancelled();
    }
    const RealAnswer x =
        askReal(L"\n输入 X 比例因子，指定对角点，或 [角点(C)/xyz(XYZ)] <1>: ", L"Corner XYZ", 2);
    if (x.isCancelled()) {
        return false;
    }
    placing.scale.sx = x.isValue() ? x.value : 1.0;
    if (x.isKeyword(L"XYZ")) {
        const RealAnswer own = askReal(L"\n输入 X 比例因子 <1>: ", nullptr, 2);
        placing.scale.sx = own.isValue() ? own.value : 1.0;
    }
    const RealAnswer y = askReal(L"\n输入 Y 比例因子 <使用 X 比例因子>: ", nullptr, 2);
    if (y.isCancelled()) {
        return false;
    }
    placing.scale.sy = y.isValue() ? y.value : placing.scale.sx;
    placing.scale.sz = placing.scale.sx;
    if (x.isKeyword(L"XYZ")) {
        const RealAnswer z = askReal(L"\n输入 Z 比例因子或 <使用 X 比例因子>: ", nullptr, 2);
        placing.scale.sz = z.isValue() ? z.value : placing.scale.sx;
        return !z.isCancelled();
    }
    return true;
}

/// Options before the point are asked for as often as they are given.
bool askPlacing(Placing& placing) {
    bool scaled = false;
    bool turned = false;
    for (;;) {
        const PointAnswer point = askPoint(L"\n指定插入点或 [基点(B)/比例(S)/X/Y/Z/旋转(R)]: ",
                                           L"Basepoint Scale X Y Z Rotate", nullptr, 1);
        if (point.isValue()) {
            placing.point = point.ucs;
            break;
        }
        if (point.isCancelled()) {
            return false;
        }
        if (point.isKeyword(L"Rotate")) {
            const RealAnswer angle = askAngle(L"\n指定旋转角度 <0>: ");
            placing.rotation = angle.isValue() ? angle.value : 0.0;
            turned = true;
            continue;
        }
        const RealAnswer factor = askReal(L"\n指定比例因子 <1>: ", nullptr, 2);
        const double value = factor.isValue() ? factor.value : 1.0;
        if (point.isKeyword(L"Scale")) {
            placing.scale.set(value, value, value);
        } else {
            (point.isKeyword(L"X")   ? placing.scale.sx
             : point.isKeyword(L"Y") ? placing.scale.sy
                                     : placing.scale.sz) = value;
        }
        scaled = true;
    }
    if (!scaled && !askScale(placing)) {
        return false;
    }
    if (turned) {
        return true;
    }
    const RealAnswer rotation =
        askAngle(L"\n指定旋转角度 <" + shownAngle(0.0) + L">: ", nullptr, &placing.point);
    placing.rotation = rotation.isValue() ? rotation.value : 0.0;
    return !rotation.isCancelled();
}

AcGeMatrix3d placingMatrix(const Placing& placing) {
    const AcGeMatrix3d scale = [&] {
        AcGeMatrix3d matrix;
        matrix(0, 0) = placing.scale.sx;
        matrix(1, 1) = placing.scale.sy;
        matrix(2, 2) = placing.scale.sz;
        return matrix;
    }();
    return ucsMatrix() * AcGeMatrix3d::translation(placing.point.asVector()) *
           AcGeMatrix3d::rotation(placing.rotation, AcGeVector3d::kZAxis) * scale;
}

/// The values of the definition's attributes, asked for when ATTREQ says so.
void addAttributes(AcDbBlockReference& reference, const AcDbBlockTableRecord& block) {
    const AcGeMatrix3d transform = reference.blockTransform();
    const bool asks = systemVariableInteger(L"ATTREQ") != 0;
    for (AcDbStub* stub : std::vector(block.entities())) {
        const auto* definition = peek<AcDbAttributeDefinition>(stub);
        if (definition == nullptr || definition->isConstant()) {
            continue;
        }
        const ReadAccess access(*definition);
        std::wstring value = definition->textStringConst();
        if (asks && !definition->isPreset()) {
            const std::wstring prompt =
                *definition->promptConst() != L'\0' ? definition->promptConst() : definition->tagConst();
            const TextAnswer answer =
                askText(L"\n" + prompt + (value.empty() ? L": " : L" <" + value + L">: "), true);
            if (answer.isValue()) {
                value = answer.text;
            }
        }
        auto* attribute = new AcDbAttribute;
        attribute->setAttributeFromBlock(definition, transform);
        attribute->setTextString(value.c_str());
        AcDbObjectId id;
        reference.appendAttribute(id, attribute);
        attribute->adjustAlignment(&currentDatabase());
        attribute->close();
    }
}

void placeReference(AcDbObjectId block, const Placing& placing) {
    auto* reference = new AcDbBlockReference(placing.point, block);
    reference->setDatabaseDefaults();
    reference->setScaleFactors(placing.scale);
    reference->setRotation(placing.rotation);
    if (const AcGeMatrix3d matrix = ucsMatrix(); matrix != AcGeMatrix3d::kIdentity) {
        reference->transformBy(matrix);
    }
    const AcDbObjectId id = appendToCurrentSpace(reference);
    const auto* definition = peek<AcDbBlockTableRecord>(block);
    if (id.isNull() || !definition->hasAttributeDefinitions()) {
        return;
    }
    const Opened<AcDbBlockReference> opened(id, AcDb::kForWrite);
    if (opened) {
        addAttributes(*opened.get(), *definition);
    }
}

void placeParts(AcDbObjectId block, const Placing& placing) {
    AcDbDatabase& database = currentDatabase();
    const auto* definition = peek<AcDbBlockTableRecord>(block);
    AcDbObjectIdArray parts;
    for (AcDbStub* stub : definition->entities()) {
        if (!stub->erased) {
            parts.append(AcDbObjectId(stub));
        }
    }
    const AcGeMatrix3d matrix =
        placingMatrix(placing) * AcGeMatrix3d::translation(AcGePoint3d::kOrigin - definition->origin());
    AcDbIdMapping mapping;
    database.deepCloneObjects(parts, database.currentSpaceId(), mapping);
    for (const AcDbIdPair& pair : mapping.pairs()) {
        const Opened<AcDbEntity> entity(pair.isPrimary() ? pair.value() : AcDbObjectId(), AcDb::kForWrite);
        if (entity) {
            entity->transformBy(matrix);
        }
    }
}

/// The space that is drawn in may not come to hold itself.
bool isOpenSpace(AcDbObjectId block) {
    return block == currentDatabase().currentSpaceId();
}

void listBlocks() {
    acutPrintf(L"\n已定义的块。");
    for (AcDbStub* stub : peek<AcDbBlockTable>(currentDatabase().blockTableId())->records()) {
        const auto* block = peek<AcDbBlockTableRecord>(stub);
        if (block != nullptr && !block->isLayout() && !block->isAnonymous()) {
            acutPrintf(L"\n  \"%s\"", block->name().kwszPtr());
        }
    }
}

void runInsert() {
    const std::wstring last = systemVariableText(L"INSNAME");
    const TextAnswer answer =
        askText(L"\n输入块名或 [?]" + (last.empty() ? L": " : L" <" + last + L">: "), true);
    std::wstring name = answer.isNone() ? last : answer.text;
    if (answer.isCancelled() || name.empty()) {
        return;
    }
    if (name == L"?") {
        listBlocks();
        return;
    }
    if (name.size() >= 2 && name.front() == L'"' && name.back() == L'"') {
        name = name.substr(1, name.size() - 2);
    }
    Placing placing;
    placing.exploded = name.front() == L'*';
    const AcDbObjectId block = definitionOf(placing.exploded ? name.substr(1) : name);
    if (block.isNull()) {
        return;
    }
    if (isOpenSpace(block)) {
        reportFailure(L"块 \"" + name + L"\" 不能插入它自身");
        return;
    }
    setSystemVariable(L"INSNAME", std::wstring_view(name));
    if (!askPlacing(placing)) {
        return;
    }
    placing.exploded ? placeParts(block, placing) : placeReference(block, placing);
}

constexpr CommandRow rows[] = {{L"INSERT", L"插入", ACRX_CMD_MODAL, runInsert},
                               {L"-INSERT", L"-插入", ACRX_CMD_MODAL, runInsert}};

} // namespace

std::span<const CommandRow> insertCommands() {
    return rows;
}

} // namespace host
