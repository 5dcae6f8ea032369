// Load and save of a generated 1,000,000-item document, and of a chain one
// million levels deep. The documents are generated in a child process, so
// the peak resident size reported is the loader's own.
#include "model/document.h"
#include "model/item.h"
#include "storage/documentfile.h"
#include "tools/documentgenerator.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

#include <cstdio>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int Items = 1000000;

QTemporaryDir &folder()
{
    static QTemporaryDir dir;
    return dir;
}

QString documentPath(bool chain)
{
    const QString path = folder().filePath(chain ? QStringLiteral("chain.qbx") : QStringLiteral("million.qbx"));
    if (QFile::exists(path))
        return path;
    const pid_t child = fork();
    if (child == 0) {
        Document doc;
        DocumentGenerator::generate(&doc, {Items, 1, chain, 0});
        _exit(DocumentFile::save(doc, path) ? 0 : 1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
        std::fprintf(stderr, "could not generate %s\n", qPrintable(path));
    return path;
}

double peakResidentMB()
{
    rusage usage;
    getrusage(RUSAGE_SELF, &usage);
    return double(usage.ru_maxrss) / 1024.0; // kilobytes on Linux
}

double residentMB()
{
    long pages = 0;
    long resident = 0;
    if (FILE *statm = std::fopen("/proc/self/statm", "r")) {
        if (std::fscanf(statm, "%ld %ld", &pages, &resident) != 2)
            resident = 0;
        std::fclose(statm);
    }
    return double(resident) * double(sysconf(_SC_PAGESIZE)) / (1024.0 * 1024.0);
}

void load(benchmark::State &state, bool chain)
{
    const QString path = documentPath(chain);
    const double before = residentMB();
    // The first load's figures are a fresh process's; later iterations
    // reuse memory the allocator kept, which only adds fragmentation.
    double held = -1;
    double peak = 0;
    for (auto _ : state) {
        auto *doc = new Document;
        if (DocumentFile::load(path, doc) != DocumentFile::Loaded)
            state.SkipWithError("load failed");
        state.PauseTiming();
        if (held < 0) {
            held = residentMB() - before;
            peak = peakResidentMB();
        }
        delete doc;
        state.ResumeTiming();
    }
    state.counters["file_MB"] = double(QFile(path).size()) / (1024.0 * 1024.0);
    state.counters["first_load_MB"] = held;
    state.counters["first_peak_rss_MB"] = peak;
}

void save(benchmark::State &state, bool chain, bool toDisk)
{
    Document doc;
    if (DocumentFile::load(documentPath(chain), &doc) != DocumentFile::Loaded)
        state.SkipWithError("load failed");
    const QString out = folder().filePath(QStringLiteral("saved.qbx"));
    qint64 bytes = 0;
    for (auto _ : state) {
        if (toDisk) {
            if (!DocumentFile::save(doc, out))
                state.SkipWithError("save failed");
        } else {
            bytes = DocumentFile::toBytes(doc).size();
            benchmark::DoNotOptimize(bytes);
        }
    }
    state.counters["peak_rss_MB"] = peakResidentMB();
}

void BM_LoadMillionItems(benchmark::State &state)
{
    load(state, false);
}
void BM_SaveMillionItems(benchmark::State &state)
{
    save(state, false, true);
}
void BM_SerializeMillionItems(benchmark::State &state)
{
    save(state, false, false);
}
void BM_LoadChainMillionDeep(benchmark::State &state)
{
    load(state, true);
}
void BM_SaveChainMillionDeep(benchmark::State &state)
{
    save(state, true, true);
}

// Every item with a category of its own: collecting the categories at load
// must stay close to linear.
void BM_LoadDistinctCategories(benchmark::State &state)
{
    const QString path = folder().filePath(QStringLiteral("categories.qbx"));
    if (!QFile::exists(path)) {
        Document doc;
        for (int i = 0; i < int(state.range(0)); ++i) {
            auto *item = new Item(QStringLiteral("Item %1").arg(i));
            item->setCategory(QStringLiteral("Category %1").arg(i));
            doc.root()->appendChild(item);
        }
        if (!DocumentFile::save(doc, path))
            state.SkipWithError("could not write the document");
    }
    for (auto _ : state) {
        Document doc;
        if (DocumentFile::load(path, &doc) != DocumentFile::Loaded ||
            doc.categories.size() != qsizetype(state.range(0)))
            state.SkipWithError("load failed");
    }
    state.counters["file_MB"] = double(QFile(path).size()) / (1024.0 * 1024.0);
}

} // namespace

// Load first: its peak resident size is measured before anything else grows.
BENCHMARK(BM_LoadMillionItems)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_SaveMillionItems)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_SerializeMillionItems)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_LoadChainMillionDeep)->Unit(benchmark::kMillisecond)->Iterations(2);
BENCHMARK(BM_SaveChainMillionDeep)->Unit(benchmark::kMillisecond)->Iterations(2);
BENCHMARK(BM_LoadDistinctCategories)->Arg(100000)->Unit(benchmark::kMillisecond)->Iterations(3);

BENCHMARK_MAIN();
