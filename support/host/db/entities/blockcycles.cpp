// Blocks that hold themselves: they are refused, and taken apart where a file has them.
#include "host/db/dbdatabase.h"
#include "host/db/entities/blockreference.h"
#include "host/rx/format.h"

#include <unordered_map>
#include <unordered_set>

namespace host {
namespace {

/// Calls visit(reference, block) for the references that stand in a block.
template <class Visit>
void forReferences(const AcDbBlockTableRecord& block, Visit&& visit) {
    for (AcDbStub* stub : block.entities()) {
        if (auto* reference = peek<AcDbBlockReference>(AcDbObjectId(stub))) {
            visit(*reference, reference->data().block);
        }
    }
}

/// Calls visit(block) for a block and all that it holds, each once, until it gives false; gives that.
template <class Visit>
bool forContents(AcDbObjectId outer, Visit&& visit) {
    std::unordered_set<AcDbStub*> seen;
    std::vector<AcDbStub*> open{outer.stub()};
    while (!open.empty()) {
        AcDbStub* at = open.back();
        open.pop_back();
        if (!seen.insert(at).second) {
            continue;
        }
        const auto* block = peek<AcDbBlockTableRecord>(AcDbObjectId(at));
        if (!visit(at, block)) {
            return false;
        }
        if (block != nullptr) {
            forReferences(*block,
                          [&](AcDbBlockReference&, AcDbObjectId inner) { open.push_back(inner.stub()); });
        }
    }
    return true;
}

/// What a reference of a block comes to, with all that its blocks hold.
struct Contents {
    double references = 0.0; ///< as many as blocks in blocks make: beyond what integers hold
    int depth = 0;
    bool isImmense() const { return references > mostNestedReferences || depth >= deepestBlocks; }
};

std::wstring immensity(const AcDbBlockTableRecord& block, const Contents& contents) {
    return formatted(L"块 \"%s\" 展开后有 %.7g 个块参照, 嵌套 %d 层, 最多显示 %d 个, %d 层",
                     block.name().constPtr(), contents.references, contents.depth, mostNestedReferences,
                     deepestBlocks);
}

} // namespace

bool blockContains(AcDbObjectId outer, AcDbObjectId inner) {
    return !forContents(outer, [&](AcDbStub* at, const AcDbBlockTableRecord*) { return at != inner.stub(); });
}

bool wouldHoldItself(const AcDbDatabase& database, const ACHAR* blockName, const AcDbDatabase& source) {
    const auto* table = peek<AcDbBlockTable>(database.blockTableId());
    if (table == nullptr) {
        return false;
    }
    AcDbObjectId target;
    table->AcDbSymbolTable::getAt(blockName, target);
    // A block of the source that this drawing has too is taken from this drawing.
    return !forContents(source.modelSpaceId(), [&](AcDbStub* at, const AcDbBlockTableRecord* block) {
        if (block == nullptr || at == source.modelSpaceId().stub()) {
            return true;
        }
        AcDbObjectId own;
        const bool known = table->AcDbSymbolTable::getAt(block->name().kwszPtr(), own) == Acad::eOk;
        return block->name().compareNoCase(blockName) != 0 &&
               !(known && !target.isNull() && blockContains(own, target));
    });
}

void breakBlockCycles(AcDbDatabase& database, const BlockReport& report, const BlockReport& tell) {
    const auto* table = peek<AcDbBlockTable>(database.blockTableId());
    if (table == nullptr) {
        return;
    }
    enum class State { unseen, open, done };
    std::unordered_map<AcDbStub*, State> states;
    struct Frame {
        AcDbStub* block;
        std::vector<std::pair<AcDbBlockReference*, AcDbStub*>> references;
        std::unordered_map<AcDbStub*, std::size_t> counts; ///< of references, by their block
        std::size_t next = 0;
    };
    std::vector<Frame> stack;
    const auto enter = [&](AcDbStub* stub) {
        states[stub] = State::open;
        Frame& frame = stack.emplace_back();
        frame.block = stub;
        const auto* block = peek<AcDbBlockTableRecord>(AcDbObjectId(stub));
        forReferences(*block, [&](AcDbBlockReference& reference, AcDbObjectId inner) {
            // References to what is known to be free of cycles need no visit.
            if (++frame.counts[inner.stub()] > 1 && states[inner.stub()] == State::unseen) {
                return;
            }
            if (states[inner.stub()] != State::done && peek<AcDbBlockTableRecord>(inner) != nullptr) {
                frame.references.emplace_back(&reference, inner.stub());
            }
        });
    };
    std::unordered_map<AcDbStub*, Contents> sizes;
    const auto leave = [&](const Frame& frame) {
        states[frame.block] = State::done;
        Contents& contents = sizes[frame.block];
        bool isTold = false;
        for (const auto& [inner, count] : frame.counts) {
            if (const auto found = sizes.find(inner); found != sizes.end()) {
                contents.references += static_cast<double>(count) * (1.0 + found->second.references);
                contents.depth = std::max(contents.depth, found->second.depth + 1);
                isTold = isTold || found->second.isImmense();
            }
        }
        const auto* block = peek<AcDbBlockTableRecord>(AcDbObjectId(frame.block));
        if (contents.isImmense() && !isTold && !block->isLayout()) {
            tell(immensity(*block, contents), frame.block->handle);
        }
    };
    for (AcDbStub* record : table->records()) {
        if (states[record] != State::unseen || peek<AcDbBlockTableRecord>(AcDbObjectId(record)) == nullptr) {
            continue;
        }
        enter(record);
        while (!stack.empty()) {
            if (stack.back().next == stack.back().references.size()) {
                leave(stack.back());
                stack.pop_back();
                continue;
            }
            const auto [reference, inner] = stack.back().references[stack.back().next++];
            if (states[inner] == State::unseen) {
                enter(inner);
            } else if (states[inner] == State::open) {
                AcDbStub* stub = reference->objectId().stub();
                stub->erased = true;
                ++database.impl().changeStamp;
                const auto* holder = peek<AcDbBlockTableRecord>(AcDbObjectId(stack.back().block));
                const auto* held = peek<AcDbBlockTableRecord>(AcDbObjectId(inner));
                report(L"块 \"" + std::wstring(holder->name().view()) + L"\" 中的块参照 \"" +
                           held->name().constPtr() + L"\" 使块包含自身",
                       stub->handle);
            }
        }
    }
}

} // namespace host
