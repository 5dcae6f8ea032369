#include "model/document.h"
#include "platform/collation.h"
#include "tools/documentgenerator.h"
#include "views/finder.h"
#include "views/groupview.h"
#include "views/viewrows.h"

#include <benchmark/benchmark.h>

namespace {

// The generated outline of a million items, made once for every benchmark.
Document &millionItems()
{
    static Document *document = [] {
        Collation::instance().setLocale(QLocale(QLocale::English, QLocale::UnitedStates));
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
        auto *d = new Document;
        DocumentGenerator::Options options;
        options.items = 1000000;
        DocumentGenerator::generate(d, options);
        return d;
    }();
    return *document;
}

void findByNameSubstring(benchmark::State &state)
{
    Document &document = millionItems();
    FindCriteria criteria;
    criteria.flags = FindCriteria::Name;
    criteria.name = QStringLiteral("garden 12");
    criteria.caseInsensitive = state.range(0) != 0;
    size_t found = 0;
    for (auto _ : state) {
        const std::vector<Item *> matches = Finder::search(document, criteria);
        found = matches.size();
        benchmark::DoNotOptimize(matches.data());
    }
    state.counters["matches"] = double(found);
    state.SetItemsProcessed(state.iterations() * 1000000);
}
BENCHMARK(findByNameSubstring)->ArgName("caseInsensitive")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

// Builds the grouped view by category as the list first shows it: every
// item grouped, the headings in order; a group is ordered when opened.
void groupByCategory(benchmark::State &state)
{
    Document &document = millionItems();
    size_t headings = 0;
    for (auto _ : state) {
        const GroupView view(document, GroupView::ByCategory);
        headings = view.headings().size();
        benchmark::DoNotOptimize(view.headings().data());
    }
    state.counters["headings"] = double(headings);
    state.SetItemsProcessed(state.iterations() * 1000000);
}
BENCHMARK(groupByCategory)->Unit(benchmark::kMillisecond);

// The same with every group put in order too. Arg: the view order key (0
// name, 1 priority, 4 due date).
void groupByCategoryAllOrdered(benchmark::State &state)
{
    Document &document = millionItems();
    document.viewOrder = quint16(state.range(0));
    for (auto _ : state) {
        const GroupView view(document, GroupView::ByCategory);
        for (const GroupHeading *heading : view.headings())
            benchmark::DoNotOptimize(heading->items().data());
    }
    document.viewOrder = 0;
    state.SetItemsProcessed(state.iterations() * 1000000);
}
BENCHMARK(groupByCategoryAllOrdered)->ArgName("viewOrder")->Arg(0)->Arg(1)->Arg(4)->Unit(benchmark::kMillisecond);

// The rows of the grouped view with every heading open: a million rows.
void groupedRowsExpandAll(benchmark::State &state)
{
    Document &document = millionItems();
    document.viewMode = GroupView::ByCategory;
    for (auto _ : state) {
        ViewRows rows(document);
        rows.expandAll();
        benchmark::DoNotOptimize(rows.count());
    }
    document.viewMode = 0;
}
BENCHMARK(groupedRowsExpandAll)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
