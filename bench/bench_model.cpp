#include "model/childorder.h"
#include "model/document.h"
#include "platform/collation.h"

#include <benchmark/benchmark.h>
#include <random>

namespace {

// Names of about 20 characters, some with non-ASCII letters.
QString randomName(std::mt19937 &rng)
{
    static const QString letters = QString::fromUtf8("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ     äöüéèçñßøå");
    std::uniform_int_distribution<int> length(14, 26);
    std::uniform_int_distribution<int> pick(0, int(letters.size()) - 1);
    QString name;
    const int n = length(rng);
    for (int i = 0; i < n; ++i)
        name += letters[pick(rng)];
    return name;
}

void sortChildrenByName(benchmark::State &state)
{
    Collation::instance().setLocale(QLocale(QLocale::English, QLocale::UnitedStates));
    const int count = int(state.range(0));
    std::mt19937 rng(42);
    TreeNode root;
    for (int i = 0; i < count; ++i)
        root.appendChild(new Item(randomName(rng)));
    const std::vector<Item *> original = root.copyOfChildren();
    for (auto _ : state) {
        state.PauseTiming();
        root.reorderChildren(original);
        root.setSort(TreeNode::SortManual);
        state.ResumeTiming();
        ChildOrder::orderChildrenBy(&root, TreeNode::SortName);
    }
    state.SetItemsProcessed(state.iterations() * count);
}
BENCHMARK(sortChildrenByName)->Arg(100000)->Unit(benchmark::kMillisecond);

void sortChildrenByDueDate(benchmark::State &state)
{
    const int count = int(state.range(0));
    std::mt19937 rng(7);
    TreeNode root;
    for (int i = 0; i < count; ++i) {
        auto *item = new Item(QString());
        if (rng() % 4)
            item->setDueDate({quint16(2020 + rng() % 5), quint16(1 + rng() % 12), 0, quint16(1 + rng() % 28), 0, 0, 0, 0});
        root.appendChild(item);
    }
    const std::vector<Item *> original = root.copyOfChildren();
    for (auto _ : state) {
        state.PauseTiming();
        root.reorderChildren(original);
        state.ResumeTiming();
        ChildOrder::sortItems(const_cast<std::vector<Item *> &>(original), TreeNode::SortDueDate, false);
    }
}
BENCHMARK(sortChildrenByDueDate)->Arg(100000)->Unit(benchmark::kMillisecond);

// One change at the bottom of a chain of automatic items climbs to the root.
void rollUpDeepChain(benchmark::State &state)
{
    const int depth = int(state.range(0));
    TreeNode root;
    TreeNode *parent = &root;
    Item *deepest = nullptr;
    for (int i = 0; i < depth; ++i) {
        auto *item = new Item(QString());
        item->setAutoProgress(i + 1 < depth);
        parent->appendChild(item);
        parent = deepest = item;
    }
    quint16 value = 0;
    for (auto _ : state) {
        value = value == 100 ? 0 : 100;
        deepest->setProgress(value);
        benchmark::DoNotOptimize(root.child(0)->progress());
    }
    state.SetItemsProcessed(state.iterations() * depth);
}
BENCHMARK(rollUpDeepChain)->Arg(1000000)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
