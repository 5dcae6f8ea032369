#include "model/document.h"
#include "model/editing.h"
#include "model/editstep.h"
#include "views/applyattributes.h"

#include <benchmark/benchmark.h>

namespace {

// A document whose second top-level item holds a branch of count items, ten
// to a parent, below a first and before a last sibling.
std::unique_ptr<Document> documentWithBranch(int count, Item **branch)
{
    auto doc = std::make_unique<Document>();
    doc->root()->appendChild(new Item(QStringLiteral("first")));
    *branch = new Item(QStringLiteral("branch"));
    doc->root()->appendChild(*branch);
    doc->root()->appendChild(new Item(QStringLiteral("last")));
    std::vector<TreeNode *> parents{*branch};
    for (int i = 1, next = 0; i < count; ++i) {
        auto *item = new Item(QStringLiteral("item %1").arg(i));
        parents[size_t(next)]->appendChild(item);
        parents.push_back(item);
        if (parents[size_t(next)]->childCount() == 10)
            ++next;
    }
    return doc;
}

// Records one edit as the step's changes and ends the recording.
template <typename Edit> void record(EditStep &step, Edit edit)
{
    {
        EditStep::Recording recording(step);
        edit();
    }
    step.finish();
}

// Deleting a branch of half a million items, then undoing and redoing it:
// the branch is kept aside, not copied.
void deleteBranchUndoRedo(benchmark::State &state)
{
    Item *branch = nullptr;
    const auto doc = documentWithBranch(int(state.range(0)), &branch);
    for (auto _ : state) {
        EditStep step(*doc);
        record(step, [&] { Editing::deleteItem(*doc, branch, nullptr); });
        step.undo();
        step.redo();
        step.undo();
    }
}
BENCHMARK(deleteBranchUndoRedo)->Arg(500000)->Unit(benchmark::kMillisecond);

// Moving the same branch a level down (under its first sibling) and back.
void moveBranchUndo(benchmark::State &state)
{
    Item *branch = nullptr;
    const auto doc = documentWithBranch(int(state.range(0)), &branch);
    for (auto _ : state) {
        EditStep step(*doc);
        record(step, [&] { Editing::move(*doc, branch, Editing::Move::DownLevel); });
        step.undo();
    }
}
BENCHMARK(moveBranchUndo)->Arg(500000)->Unit(benchmark::kMillisecond);

// Apply Attributes over a million items where a tenth change: the step keeps
// those only.
void applyAttributesUndo(benchmark::State &state)
{
    Item *branch = nullptr;
    const auto doc = documentWithBranch(int(state.range(0)), &branch);
    int i = 0;
    branch->forEachDescendant([&i](Item *item) { item->setPriority(++i % 10 ? 5 : 9); });
    AttributeSet set;
    set.flags = AttributeSet::Priority;
    set.priority = 5;
    set.allSubItems = true;
    size_t kept = 0;
    for (auto _ : state) {
        EditStep step(*doc);
        record(step, [&] { ApplyAttributes::apply(branch, set); });
        kept = step.keptFields();
        step.undo();
    }
    state.counters["kept fields"] = double(kept);
}
BENCHMARK(applyAttributesUndo)->Arg(1000000)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
