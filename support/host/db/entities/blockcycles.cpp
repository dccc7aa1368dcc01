// Blocks that hold themselves: they are refused, and taken apart where a file has them.
#include "host/db/dbdatabase.h"
#include "host/db/entities/blockreference.h"

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

void breakBlockCycles(AcDbDatabase& database,
                      const std::function<void(const std::wstring&, Adesk::UInt64)>& report) {
    const auto* table = peek<AcDbBlockTable>(database.blockTableId());
    if (table == nullptr) {
        return;
    }
    enum class State { unseen, open, done };
    std::unordered_map<AcDbStub*, State> states;
    struct Frame {
        AcDbStub* block;
        std::vector<std::pair<AcDbBlockReference*, AcDbStub*>> references;
        std::size_t next = 0;
    };
    std::vector<Frame> stack;
    const auto enter = [&](AcDbStub* stub) {
        states[stub] = State::open;
        Frame& frame = stack.emplace_back();
        frame.block = stub;
        const auto* block = peek<AcDbBlockTableRecord>(AcDbObjectId(stub));
        std::unordered_set<AcDbStub*> done; // references to what is known to be free of cycles need no visit
        forReferences(*block, [&](AcDbBlockReference& reference, AcDbObjectId inner) {
            if (states[inner.stub()] == State::unseen && !done.insert(inner.stub()).second) {
                return;
            }
            if (states[inner.stub()] != State::done && peek<AcDbBlockTableRecord>(inner) != nullptr) {
                frame.references.emplace_back(&reference, inner.stub());
            }
        });
    };
    for (AcDbStub* record : table->records()) {
        if (states[record] != State::unseen || peek<AcDbBlockTableRecord>(AcDbObjectId(record)) == nullptr) {
            continue;
        }
        enter(record);
        while (!stack.empty()) {
            if (stack.back().next == stack.back().references.size()) {
                states[stack.back().block] = State::done;
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
