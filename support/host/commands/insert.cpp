// INSERT: places a block of the drawing, or a drawing file as a block, or its parts (name after an asterisk).
#include "host/commands/ask.h"
#include "host/commands/edit/editing.h"
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

/// What was typed as a name: a block, a file, or `name=file`, which takes the file anew.
struct Source {
    std::wstring name;
    std::wstring file;      ///< to look for when there is no such block; empty: none may be read
    bool takesFile = false; ///< the file counts, whatever the drawing has
};

Source sourceOf(const std::wstring& given) {
    const std::size_t equals = given.find(L'=');
    if (equals == std::wstring::npos) {
        // A name with folders is a file's.
        const bool isPath = given.find_first_of(L"/\\") != std::wstring::npos;
        return {blockNameOf(given), given, isPath};
    }
    const std::wstring name = given.substr(0, equals);
    const std::wstring file = given.substr(equals + 1);
    return {name.empty() ? blockNameOf(file) : name, file.empty() ? name : file, true};
}

/// The block named so, or made of a file. Null with a line told when there is neither, or the user does not
/// want what is there replaced.
AcDbObjectId definitionOf(const std::wstring& given) {
    AcDbDatabase& database = currentDatabase();
    const Source source = sourceOf(given);
    AcDbObjectId id;
    const auto* blocks = peek<AcDbBlockTable>(database.blockTableId());
    if (blocks->getAt(given.c_str(), id) == Acad::eOk) {
        return id;
    }
    const bool exists = blocks->getAt(source.name.c_str(), id) == Acad::eOk;
    if (exists && !source.takesFile) {
        return id;
    }
    const std::filesystem::path path = findDrawing(source.file);
    if (path.empty()) {
        reportFailure(L"找不到块或图形文件 \"" + given + L"\"");
        return {};
    }
    if (exists && systemVariableInteger(L"EXPERT") < 2) {
        const std::optional<bool> again =
            askYesNo(L"\n块 \"" + source.name + L"\" 已经存在。是否重定义?", false);
        if (!again) {
            return {};
        }
        if (!*again) {
            return id;
        }
    }
    AcDbDatabase drawing(false);
    std::wstring message;
    if (fileFormats().read(drawing, toWindowsPath(path), message) != Acad::eOk) {
        reportFailure(message);
        return {};
    }
    if (!message.empty()) {
        acutPrintf(L"\n%s", message.c_str());
    }
    if (database.insert(id, source.name.c_str(), &drawing) != Acad::eOk) {
        reportFailure(L"无法插入 \"" + given + L"\"");
        return {};
    }
    if (exists) {
        acutPrintf(L"\n块 \"%s\" 已重定义。", source.name.c_str());
    }
    return id;
}

struct Placing {
    AcGePoint3d point; ///< UCS
    AcGeScale3d scale{1.0, 1.0, 1.0};
    double rotation = 0.0;
    AcGeVector3d shift;    ///< of another base point, in block coordinates
    bool exploded = false; ///< the parts are placed, not a reference
    bool uniform = false;  ///< one factor is asked for: the name had an asterisk
    bool repeats = false;
    bool hasScale = false;
    bool hasRotation = false;
};

/// The box between the insertion point and an opposite corner.
bool askCorner(Placing& placing) {
    for (;;) {
        const PointAnswer corner = askPoint(L"\n指定对角点: ", nullptr, &placing.point, RSG_NONULL);
        if (!corner.isValue()) {
            return false;
        }
        placing.scale.sx = corner.ucs.x - placing.point.x;
        placing.scale.sy = corner.ucs.y - placing.point.y;
        placing.scale.sz = placing.scale.sx;
        if (placing.scale.sx != 0.0 && placing.scale.sy != 0.0) {
            return true;
        }
        acutPrintf(L"\n比例因子不能为零。");
    }
}

bool askScale(Placing& placing) {
    if (placing.uniform) {
        const RealAnswer scale =
            askDistance(L"\n指定 XYZ 轴比例因子 <1>: ", nullptr, &placing.point, RSG_NOZERO);
        if (scale.isValue()) {
            placing.scale.set(scale.value, scale.value, scale.value);
        }
        return !scale.isCancelled();
    }
    const RealAnswer x = askDistance(L"\n输入 X 比例因子，指定对角点，或 [角点(C)/XYZ(XYZ)] <1>: ",
                                     L"Corner XYZ", &placing.point, RSG_NOZERO);
    if (x.isCancelled()) {
        return false;
    }
    if (x.isKeyword(L"Corner")) {
        return askCorner(placing);
    }
    placing.scale.sx = x.isValue() ? x.value : 1.0;
    if (x.isKeyword(L"XYZ")) {
        const RealAnswer own = askDistance(L"\n指定 X 比例因子 <1>: ", nullptr, &placing.point, RSG_NOZERO);
        if (own.isCancelled()) {
            return false;
        }
        placing.scale.sx = own.isValue() ? own.value : 1.0;
    }
    const RealAnswer y =
        askDistance(L"\n输入 Y 比例因子 <使用 X 比例因子>: ", nullptr, &placing.point, RSG_NOZERO);
    if (y.isCancelled()) {
        return false;
    }
    placing.scale.sy = y.isValue() ? y.value : placing.scale.sx;
    placing.scale.sz = placing.scale.sx;
    if (x.isKeyword(L"XYZ")) {
        const RealAnswer z =
            askDistance(L"\n指定 Z 比例因子或 <使用 X 比例因子>: ", nullptr, &placing.point, RSG_NOZERO);
        placing.scale.sz = z.isValue() ? z.value : placing.scale.sx;
        return !z.isCancelled();
    }
    return true;
}

/// An option given before the point; false for Escape.
bool takeOption(const Answer& option, Placing& placing) {
    if (option.isKeyword(L"Rotate")) {
        const RealAnswer angle = askAngle(L"\n指定旋转角度 <" + shownAngle(0.0) + L">: ");
        placing.rotation = angle.isValue() ? angle.value : 0.0;
        placing.hasRotation = true;
        return !angle.isCancelled();
    }
    if (option.isKeyword(L"Explode")) {
        const std::optional<bool> explodes = askYesNo(L"\n是否分解块?", placing.exploded);
        placing.exploded = explodes.value_or(false);
        return explodes.has_value();
    }
    if (option.isKeyword(L"REpeat")) {
        const std::optional<bool> repeats = askYesNo(L"\n是否重复插入?", placing.repeats);
        placing.repeats = repeats.value_or(false);
        return repeats.has_value();
    }
    if (option.isKeyword(L"Basepoint")) {
        const PointAnswer base = askPoint(L"\n指定基点: ", nullptr, nullptr, RSG_NONULL);
        placing.shift = AcGePoint3d::kOrigin - base.ucs;
        return base.isValue();
    }
    const RealAnswer factor = askDistance(L"\n指定比例因子 <1>: ", nullptr, nullptr, RSG_NOZERO);
    const double value = factor.isValue() ? factor.value : 1.0;
    if (option.isKeyword(L"Scale")) {
        placing.scale.set(value, value, value);
    } else {
        (option.isKeyword(L"X")   ? placing.scale.sx
         : option.isKeyword(L"Y") ? placing.scale.sy
                                  : placing.scale.sz) = value;
    }
    placing.hasScale = true;
    return !factor.isCancelled();
}

/// Options before the point are asked for as often as they are given.
bool askPlacing(Placing& placing) {
    for (;;) {
        const PointAnswer point =
            askPoint(L"\n指定插入点或 [基点(B)/比例(S)/X/Y/Z/旋转(R)/分解(E)/重复(RE)]: ",
                     L"Basepoint Scale X Y Z Rotate Explode REpeat", nullptr, RSG_NONULL);
        if (point.isValue()) {
            placing.point = point.ucs;
            break;
        }
        if (point.kind != Answer::Kind::keyword || !takeOption(point, placing)) {
            return false;
        }
    }
    if (!placing.hasScale && !askScale(placing)) {
        return false;
    }
    if (placing.hasRotation) {
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
           AcGeMatrix3d::rotation(placing.rotation, AcGeVector3d::kZAxis) * scale *
           AcGeMatrix3d::translation(placing.shift);
}

/// An attribute to be: Enter and Escape leave the value that the definition has.
struct AttributeValue {
    const AcDbAttributeDefinition* definition;
    std::wstring value;

    void ask() {
        const ReadAccess access(*definition);
        const std::wstring prompt =
            *definition->promptConst() != L'\0' ? definition->promptConst() : definition->tagConst();
        const TextAnswer answer =
            askText(L"\n" + prompt + (value.empty() ? L": " : L" <" + value + L">: "), true);
        if (answer.isValue()) {
            value = answer.text;
        }
    }
};

/// The values of the definition's attributes, asked for when ATTREQ says so; once more those to be verified.
std::vector<AttributeValue> attributeValues(const AcDbBlockTableRecord& block) {
    const bool asks = systemVariableInteger(L"ATTREQ") != 0;
    std::vector<AttributeValue> values;
    std::vector<std::size_t> verified;
    for (AcDbStub* stub : std::vector(block.entities())) {
        const auto* definition = peek<AcDbAttributeDefinition>(stub);
        if (definition == nullptr) {
            continue;
        }
        const ReadAccess access(*definition);
        if (definition->isConstant()) {
            continue;
        }
        values.push_back({definition, definition->textStringConst()});
        if (asks && !definition->isPreset()) {
            values.back().ask();
            if (definition->isVerifiable()) {
                verified.push_back(values.size() - 1);
            }
        }
    }
    if (!verified.empty()) {
        acutPrintf(L"\n验证属性值");
    }
    for (const std::size_t index : verified) {
        values[index].ask();
    }
    return values;
}

void addAttributes(AcDbBlockReference& reference, const AcDbBlockTableRecord& block) {
    const AcGeMatrix3d transform = reference.blockTransform();
    for (const AttributeValue& one : attributeValues(block)) {
        const ReadAccess access(*one.definition);
        auto* attribute = new AcDbAttribute;
        attribute->setAttributeFromBlock(one.definition, transform);
        attribute->setTextString(one.value.c_str());
        AcDbObjectId id;
        reference.appendAttribute(id, attribute);
        attribute->adjustAlignment(&currentDatabase());
        attribute->close();
    }
}

/// A reference that is in no drawing yet.
std::unique_ptr<AcDbBlockReference> referenceTo(AcDbObjectId block, const Placing& placing) {
    const AcGeVector3d shift =
        AcGeMatrix3d::rotation(placing.rotation, AcGeVector3d::kZAxis) *
        AcGeVector3d(placing.shift.x * placing.scale.sx, placing.shift.y * placing.scale.sy,
                     placing.shift.z * placing.scale.sz);
    auto reference = std::make_unique<AcDbBlockReference>(placing.point + shift, block);
    reference->setDatabaseDefaults();
    reference->setScaleFactors(placing.scale);
    reference->setRotation(placing.rotation);
    transformFromUcs(*reference);
    return reference;
}

void placeReference(AcDbObjectId block, const Placing& placing) {
    const AcDbObjectId id = appendToCurrentSpace(referenceTo(block, placing).release());
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
    const AcGeScale3d& scale = placing.scale;
    if (std::fabs(scale.sx) != std::fabs(scale.sy) || std::fabs(scale.sx) != std::fabs(scale.sz)) {
        // What can't be scaled by axis goes into its own parts.
        AcDbVoidPtrArray parts;
        if (referenceTo(block, placing)->explode(parts) != Acad::eOk) {
            acutPrintf(L"\n块的内容不能这样缩放。");
        }
        for (void* part : parts) {
            appendTo(database.currentSpaceId(), std::unique_ptr<AcDbEntity>(static_cast<AcDbEntity*>(part)));
        }
        return;
    }
    const auto* definition = peek<AcDbBlockTableRecord>(block);
    AcDbObjectIdArray parts;
    for (AcDbStub* stub : definition->entities()) {
        if (!stub->erased) {
            parts.append(AcDbObjectId(stub));
        }
    }
    const AcGeMatrix3d matrix =
        placingMatrix(placing) * AcGeMatrix3d::translation(AcGePoint3d::kOrigin - definition->origin());
    if (const int refused = copyTransformed(parts, database.currentSpaceId(), matrix); refused > 0) {
        acutPrintf(L"\n%d 个对象不能这样变换，没有插入。", refused);
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

bool hasBlock(const std::wstring& given) {
    return peek<AcDbBlockTable>(currentDatabase().blockTableId())->has(sourceOf(given).name.c_str());
}

void runInsert() {
    const std::wstring last = systemVariableText(L"INSNAME");
    const TextAnswer answer = askName(L"\n输入块名或 [?]" + (last.empty() ? L": " : L" <" + last + L">: "));
    std::wstring name = answer.isNone() ? last : answer.text;
    if (answer.isCancelled() || name.empty()) {
        return;
    }
    if (name == L"?") {
        listBlocks();
        return;
    }
    name = unquoted(name);
    Placing placing;
    placing.uniform = placing.exploded = name.front() == L'*';
    const std::wstring given = placing.exploded ? name.substr(1) : name;
    const bool isNew = !hasBlock(given);
    const AcDbObjectId block = definitionOf(given);
    if (block.isNull()) {
        return;
    }
    if (isOpenSpace(block)) {
        reportFailure(L"块 \"" + name + L"\" 不能插入它自身");
        return;
    }
    setSystemVariable(L"INSNAME", std::wstring_view(name));
    const bool onlyParts = placing.exploded;
    do {
        if (!askPlacing(placing)) {
            break;
        }
        placing.exploded ? placeParts(block, placing) : placeReference(block, placing);
    } while (placing.repeats);
    if (onlyParts && isNew) {
        // Of a file named with an asterisk only the parts are wanted, and what they are made of.
        if (const Opened<AcDbBlockTableRecord> record(block, AcDb::kForWrite); record) {
            record->erase();
        }
    }
}

constexpr CommandRow rows[] = {{L"INSERT", L"插入", ACRX_CMD_MODAL, runInsert},
                               {L"-INSERT", L"-插入", ACRX_CMD_MODAL, runInsert}};

} // namespace

std::span<const CommandRow> insertCommands() {
    return rows;
}

} // namespace host
