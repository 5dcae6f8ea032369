#include "model/document.h"
#include "model/editing.h"
#include "shell/document/documentview.h"
#include "shell/document/treepane.h"
#include "shell/document/undostack.h"
#include "storage/documentfile.h"
#include "storage/settings.h"
#include "support/scriptedprompts.h"
#include "tools/documentgenerator.h"
#include "views/viewrows.h"

#include <QApplication>
#include <QImage>
#include <QLoggingCategory>
#include <QScrollBar>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <memory>

// The generated document of a million items, written once and opened by
// every run the way the application opens it.
namespace {

constexpr int Items = 1000000;

struct Fixture {
    QTemporaryDir dir;
    QString path;
    Settings settings;
    ScriptedPrompts prompts;

    Fixture()
    {
        Document doc;
        DocumentGenerator::Options options;
        options.items = Items;
        DocumentGenerator::generate(&doc, options);
        path = dir.filePath(QStringLiteral("Million.qbx"));
        doc.path = path;
        DocumentFile::save(doc);
    }

    std::unique_ptr<DocumentView> open()
    {
        auto doc = std::make_unique<Document>();
        DocumentFile::load(path, doc.get());
        auto view = std::make_unique<DocumentView>(std::move(doc), &settings, &prompts);
        view->resize(900, 700);
        view->show();
        return view;
    }
};

Fixture &fixture()
{
    static Fixture f;
    return f;
}

// Paints the tree pane now, as the next frame would.
void paint(DocumentView *view)
{
    QWidget *viewport = view->treePane()->viewport();
    static QImage frame;
    if (frame.size() != viewport->size())
        frame = QImage(viewport->size(), QImage::Format_ARGB32_Premultiplied);
    viewport->render(&frame);
}

void openAndShowFirstRows(benchmark::State &state)
{
    Fixture &f = fixture();
    for (auto _ : state) {
        auto view = f.open();
        paint(view.get());
        state.PauseTiming();
        view.reset(); // closing is not part of opening
        state.ResumeTiming();
    }
}
BENCHMARK(openAndShowFirstRows)->Unit(benchmark::kMillisecond)->Iterations(3);

void expandAll(benchmark::State &state)
{
    Fixture &f = fixture();
    auto view = f.open();
    for (auto _ : state) {
        view->expandAll();
        paint(view.get());
        state.PauseTiming();
        view->collapseAll();
        state.ResumeTiming();
    }
    view->expandAll();
    state.counters["rows"] = view->rows()->count();
}
BENCHMARK(expandAll)->Unit(benchmark::kMillisecond)->Iterations(3);

void collapseAll(benchmark::State &state)
{
    Fixture &f = fixture();
    auto view = f.open();
    for (auto _ : state) {
        state.PauseTiming();
        view->expandAll();
        state.ResumeTiming();
        view->collapseAll();
        paint(view.get());
    }
}
BENCHMARK(collapseAll)->Unit(benchmark::kMillisecond)->Iterations(3);

// One page down and a repaint, all the way through the expanded million rows.
void scrollPage(benchmark::State &state)
{
    Fixture &f = fixture();
    auto view = f.open();
    view->expandAll();
    QScrollBar *bar = view->treePane()->verticalScrollBar();
    for (auto _ : state) {
        int value = bar->value() + bar->pageStep();
        if (value > bar->maximum())
            value = 0;
        bar->setValue(value);
        paint(view.get());
    }
}
BENCHMARK(scrollPage)->Unit(benchmark::kMicrosecond);

// Moving the selection one row down: the note pane stores and loads a note,
// the row is scrolled into view and repainted.
void selectNextRow(benchmark::State &state)
{
    Fixture &f = fixture();
    auto view = f.open();
    view->expandAll();
    TreePane *tree = view->treePane();
    tree->setCurrentRow(Items / 2);
    for (auto _ : state) {
        tree->setCurrentRow(tree->currentRow() + 1);
        paint(view.get());
    }
}
BENCHMARK(selectNextRow)->Unit(benchmark::kMicrosecond);

// A check box tap in the expanded million rows: roll-up, rows rebuilt, repaint.
void tapCheckBox(benchmark::State &state)
{
    Fixture &f = fixture();
    auto view = f.open();
    view->expandAll();
    TreePane *tree = view->treePane();
    int row = Items / 3;
    for (;; ++row) {
        const Item *item = view->rows()->row(row).node->asItem();
        if (item->statusType() == Item::CheckBox && !item->autoProgress())
            break;
    }
    tree->setCurrentRow(row);
    for (auto _ : state) {
        Q_EMIT tree->statusTapped(tree->currentNode()->asItem(), QPoint());
        paint(view.get());
    }
}
BENCHMARK(tapCheckBox)->Unit(benchmark::kMillisecond)->Iterations(5);

// The largest top-level branch deleted as the command does it, the rows
// rebuilt, then the delete undone and the rows rebuilt again.
void deleteBranchAndUndo(benchmark::State &state)
{
    Fixture &f = fixture();
    auto view = f.open();
    Document *doc = view->document();
    Item *largest = nullptr;
    int largestSize = 0;
    for (Item *top : doc->root()->children()) {
        int size = 1;
        top->forEachDescendant([&size](Item *) { ++size; });
        if (size > largestSize) {
            largest = top;
            largestSize = size;
        }
    }
    for (auto _ : state) {
        {
            EditScope scope(view->undoStack(), QStringLiteral("Delete Item"));
            view->forgetBranch(largest);
            view->changed(Editing::deleteItem(*doc, largest, &view->clip()));
        }
        paint(view.get());
        view->undoStack()->undo();
        paint(view.get());
    }
    state.counters["branch items"] = largestSize;
}
BENCHMARK(deleteBranchAndUndo)->Unit(benchmark::kMillisecond)->Iterations(5);

// A chain one million levels deep: opened, every level expanded, the deepest
// rows shown, and closed, without recursion anywhere on the way.
void deepChain(benchmark::State &state)
{
    Fixture &f = fixture();
    Document chain;
    DocumentGenerator::Options options;
    options.items = Items;
    options.chain = true;
    DocumentGenerator::generate(&chain, options);
    const QString path = f.dir.filePath(QStringLiteral("Chain.qbx"));
    chain.path = path;
    DocumentFile::save(chain);
    for (auto _ : state) {
        auto doc = std::make_unique<Document>();
        DocumentFile::load(path, doc.get());
        auto view = std::make_unique<DocumentView>(std::move(doc), &f.settings, &f.prompts);
        view->resize(900, 700);
        view->show();
        view->expandAll();
        view->treePane()->setCurrentRow(view->rows()->count() - 1);
        paint(view.get());
        state.counters["rows"] = view->rows()->count();
    }
}
BENCHMARK(deepChain)->Unit(benchmark::kMillisecond)->Iterations(1);

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("qt.qpa.*=false"));
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
