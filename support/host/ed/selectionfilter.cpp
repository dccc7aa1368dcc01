// Conditions on entities from result lists.
#include "host/db/dbents.h"
#include "host/ed/aced.h"
#include "host/ed/entitylist.h"
#include "host/ed/selection.h"
#include "host/rx/text.h"

#include <cmath>

namespace host {
namespace {

constexpr short operatorCode = -4;
constexpr short xdataCode = -3;
constexpr short applicationCode = 1001;
constexpr double realTolerance = 1e-10;

} // namespace

struct SelectionFilter::Node {
    enum class Kind { all, any, exclusive, none, test };
    Kind kind = Kind::all;
    std::vector<Node> children;
    // A test.
    short code = 0;
    std::wstring relation; ///< empty: equal
    ResbufList value;
};

namespace {

using Node = SelectionFilter::Node;

/// The group operators by their words.
std::optional<Node::Kind> kindOf(std::wstring_view word) {
    if (equalNoCase(word, L"AND")) {
        return Node::Kind::all;
    }
    if (equalNoCase(word, L"OR")) {
        return Node::Kind::any;
    }
    if (equalNoCase(word, L"XOR")) {
        return Node::Kind::exclusive;
    }
    return equalNoCase(word, L"NOT") ? std::optional(Node::Kind::none) : std::nullopt;
}

/// Reads the list into a tree.
class FilterReader {
public:
    explicit FilterReader(const resbuf* list) : mAt(list) {}

    bool read(Node& root) { return readUntil(root, {}) && mAt == nullptr; }

private:
    bool readUntil(Node& group, std::wstring_view closing) {
        std::wstring relation;
        while (mAt != nullptr) {
            const resbuf& item = *mAt;
            mAt = mAt->rbnext;
            if (item.restype == RTLB || item.restype == RTLE || item.restype == RTDOTE) {
                continue;
            }
            if (item.restype != operatorCode) {
                readTest(group, item, std::exchange(relation, {}));
                continue;
            }
            const std::wstring_view word = item.resval.rstring != nullptr ? item.resval.rstring : L"";
            if (word.size() > 2 && word.front() == L'<' && kindOf(word.substr(1))) {
                Node& child = group.children.emplace_back();
                child.kind = *kindOf(word.substr(1));
                if (!readUntil(child, word.substr(1))) {
                    return false;
                }
            } else if (word.size() > 2 && word.back() == L'>' && kindOf(word.substr(0, word.size() - 1))) {
                return !closing.empty() && equalNoCase(word.substr(0, word.size() - 1), closing);
            } else {
                relation = word;
            }
        }
        return closing.empty();
    }

    void readTest(Node& group, const resbuf& item, std::wstring relation) {
        if (item.restype == xdataCode) {
            readApplications(group);
            return;
        }
        Node& test = group.children.emplace_back();
        test.kind = Node::Kind::test;
        test.code = item.restype;
        test.relation = std::move(relation);
        test.value = copyResbuf(item);
    }

    void readApplications(Node& group) {
        for (; mAt != nullptr && (mAt->restype >= 1000 || mAt->restype == RTSTR); mAt = mAt->rbnext) {
            if (mAt->restype == applicationCode || mAt->restype == RTSTR) {
                Node& test = group.children.emplace_back();
                test.kind = Node::Kind::test;
                test.code = xdataCode;
                test.value = copyResbuf(*mAt);
            }
        }
    }

    const resbuf* mAt;
};

bool compare(double value, double wanted, std::wstring_view relation) {
    const bool equal = std::fabs(value - wanted) <= realTolerance * std::max(1.0, std::fabs(wanted));
    if (relation.empty() || relation == L"=") {
        return equal;
    }
    if (relation == L"*") {
        return true;
    }
    if (relation == L"!=" || relation == L"/=" || relation == L"<>") {
        return !equal;
    }
    if (relation == L"<") {
        return value < wanted && !equal;
    }
    if (relation == L"<=") {
        return value < wanted || equal;
    }
    if (relation == L">") {
        return value > wanted && !equal;
    }
    if (relation == L">=") {
        return value > wanted || equal;
    }
    constexpr double mostBits = 9e15;
    if (!(std::fabs(value) < mostBits && std::fabs(wanted) < mostBits)) {
        return false;
    }
    const auto bits = static_cast<long long>(value);
    const auto mask = static_cast<long long>(wanted);
    return relation == L"&" ? (bits & mask) != 0 : relation == L"&=" && (bits & mask) == mask;
}

/// A relation for each coordinate, between commas; the last holds for the rest.
bool comparePoints(const double* value, const double* wanted, int dimensions, std::wstring_view relation) {
    for (int i = 0; i < dimensions; ++i) {
        const std::size_t comma = relation.find(L',');
        const std::wstring_view own = relation.substr(0, comma);
        if (!compare(value[i], wanted[i], own)) {
            return false;
        }
        if (comma != std::wstring_view::npos) {
            relation.remove_prefix(comma + 1);
        }
    }
    return true;
}

std::optional<double> numberOf(const resbuf& value) {
    switch (resbufKind(value.restype)) {
    case ResbufKind::real:
        return value.resval.rreal;
    case ResbufKind::int16:
        return value.resval.rint;
    case ResbufKind::int32:
        return value.resval.rlong;
    case ResbufKind::int64:
        return static_cast<double>(value.resval.mnInt64);
    default:
        return std::nullopt;
    }
}

bool fits(const resbuf& value, const Node& test) {
    const resbuf& wanted = *test.value;
    const ResbufKind kind = resbufKind(wanted.restype);
    if (kind == ResbufKind::string) {
        const bool matches = resbufKind(value.restype) == ResbufKind::string &&
                             value.resval.rstring != nullptr && wanted.resval.rstring != nullptr &&
                             wildcardMatch(value.resval.rstring, wanted.resval.rstring);
        const bool inverted = test.relation == L"!=" || test.relation == L"/=" || test.relation == L"<>";
        return matches != inverted;
    }
    if (kind == ResbufKind::point) {
        return resbufKind(value.restype) == ResbufKind::point &&
               comparePoints(value.resval.rpoint, wanted.resval.rpoint, 3, test.relation);
    }
    if (kind == ResbufKind::name) {
        return resbufKind(value.restype) == ResbufKind::name &&
               ads_name_equal(value.resval.rlname, wanted.resval.rlname);
    }
    const std::optional<double> have = numberOf(value);
    const std::optional<double> want = numberOf(wanted);
    return have && want && compare(*have, *want, test.relation);
}

/// An entity's values, made into a list only when a test needs more than the common ones.
class Subject {
public:
    explicit Subject(AcDbEntity& entity) : mEntity(entity) {}

    bool passes(const Node& test) {
        switch (test.code) {
        case 0:
            return text(test, fromUtf8(mEntity.dxfRecordName()));
        case 8:
            return text(test, recordName(mEntity.layerId()));
        case 6:
            return text(test, recordName(mEntity.linetypeId()));
        case 62:
            return number(test, mEntity.colorIndex());
        case 48:
            return number(test, mEntity.linetypeScale());
        case 60:
            return number(test, mEntity.visibility() == AcDb::kInvisible ? 1 : 0);
        case 370:
            return number(test, mEntity.lineWeight());
        case 67:
            return number(test, inPaperSpace() ? 1 : 0);
        case 410:
            return text(test, layoutName());
        case xdataCode:
            return hasApplication(test.value->resval.rstring);
        default:
            return inList(test);
        }
    }

private:
    static std::wstring recordName(AcDbObjectId id) {
        const auto* record = peek<AcDbSymbolTableRecord>(id);
        return record != nullptr ? std::wstring(record->name().kwszPtr()) : std::wstring();
    }

    bool inPaperSpace() const {
        const AcDbDatabase* database = mEntity.database();
        return database != nullptr && mEntity.ownerId() != database->modelSpaceId();
    }

    std::wstring layoutName() const {
        const auto* block = peek<AcDbBlockTableRecord>(mEntity.ownerId());
        const auto* layout = block != nullptr ? peek<AcDbLayout>(block->getLayoutId()) : nullptr;
        return layout != nullptr ? std::wstring(layout->layoutName().kwszPtr())
               : inPaperSpace()  ? L"Layout1"
                                 : L"Model";
    }

    static bool text(const Node& test, const std::wstring& value) {
        ResbufBuilder builder;
        builder.string(RTSTR, value);
        return fits(*builder.release(), test);
    }

    static bool number(const Node& test, double value) {
        const std::optional<double> wanted = numberOf(*test.value);
        return wanted && compare(value, *wanted, test.relation);
    }

    bool hasApplication(const ACHAR* pattern) const {
        if (pattern == nullptr) {
            return false;
        }
        for (const GroupList::Group group : mEntity.xdataGroups()) {
            if (group.code == applicationCode && wildcardMatch(fromUtf8(group.text), pattern)) {
                return true;
            }
        }
        return false;
    }

    bool inList(const Node& test) {
        if (mList == nullptr) {
            mList = objectList(mEntity.objectId());
        }
        for (const resbuf* at = mList.get(); at != nullptr; at = at->rbnext) {
            if (at->restype == test.code && fits(*at, test)) {
                return true;
            }
        }
        return false;
    }

    AcDbEntity& mEntity;
    ResbufList mList;
};

bool evaluate(const Node& node, Subject& subject) {
    const auto passes = [&](const Node& child) { return evaluate(child, subject); };
    switch (node.kind) {
    case Node::Kind::test:
        return subject.passes(node);
    case Node::Kind::all:
        return std::all_of(node.children.begin(), node.children.end(), passes);
    case Node::Kind::any:
        return std::any_of(node.children.begin(), node.children.end(), passes);
    case Node::Kind::none:
        return std::none_of(node.children.begin(), node.children.end(), passes);
    case Node::Kind::exclusive:
        return std::count_if(node.children.begin(), node.children.end(), passes) == 1;
    }
    return false;
}

} // namespace

SelectionFilter::SelectionFilter(const resbuf* list) {
    if (list != nullptr) {
        mRoot = std::make_unique<Node>();
        mValid = FilterReader(list).read(*mRoot);
    }
}

SelectionFilter::~SelectionFilter() = default;
SelectionFilter::SelectionFilter(SelectionFilter&&) noexcept = default;

bool SelectionFilter::isValid() const {
    return mValid;
}

bool SelectionFilter::accepts(AcDbEntity& entity) const {
    if (mRoot == nullptr) {
        return true;
    }
    const ReadAccess access(entity);
    Subject subject(entity);
    return mValid && evaluate(*mRoot, subject);
}

} // namespace host
