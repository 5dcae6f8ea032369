#include "model/childorder.h"
#include "model/editing.h"
#include "model/editstep.h"
#include "model/progress.h"
#include "storage/bytewriter.h"
#include "storage/documentwriter.h"
#include "views/applyattributes.h"

#include "support/outline.h"
#include "support/randomtree.h"

#include <QtTest>
#include <functional>

namespace {

// The bytes a save writes, numbered from the root whatever is current.
QByteArray savedBytes(Document &doc)
{
    TreeNode *current = doc.current();
    doc.setCurrent(doc.root());
    ByteWriter out;
    DocumentWriter::writeDocument(out, doc);
    doc.setCurrent(current);
    return out.bytes();
}

// One random edit of the kinds the commands make.
void randomEdit(Document &doc, ItemClip &clip, QRandomGenerator &rng)
{
    std::vector<Item *> items;
    doc.root()->forEachDescendant([&](Item *item) { items.push_back(item); });
    const auto pick = [&]() -> Item * { return items.empty() ? nullptr : items[rng.bounded(quint32(items.size()))]; };
    const auto anyNode = [&]() -> TreeNode * { return rng.bounded(5u) == 0 ? doc.root() : pick(); };
    Item *item = pick();
    if (!item) {
        Editing::insertItem(doc, new Item(QStringLiteral("first")), InsertPosition::Top);
        return;
    }
    doc.setCurrent(item);
    const std::function<void()> edits[] = {
        [&] { Editing::insertItem(doc, new Item(QStringLiteral("new")), InsertPosition(rng.bounded(3u))); },
        [&] { Editing::createCopy(item); },
        [&] { Editing::deleteItem(doc, item, &clip); },
        [&] { Editing::move(doc, item, Editing::Move(rng.bounded(4u))); },
        [&] { Editing::drop(item, anyNode()); },
        [&] {
            rng.bounded(2u) ? clip.markMove(item) : clip.markCopy(item);
            clip.paste(anyNode(), rng.bounded(2u));
        },
        [&] {
            ItemProperties p;
            p.name = QStringLiteral("renamed");
            p.priority = quint16(1 + rng.bounded(20u));
            p.category = rng.bounded(2u) ? QStringLiteral("Fresh %1").arg(rng.bounded(3u)) : item->category();
            p.statusType = quint16(rng.bounded(3u));
            p.autoProgress = rng.bounded(2u);
            p.progress = quint16(rng.bounded(101u));
            p.links = QStringList{pick()->linkText()};
            p.note = QByteArray("note ") + QByteArray::number(rng.bounded(9u));
            Editing::applyProperties(item, p, &doc);
        },
        [&] { Editing::setPriority(item, quint16(1 + rng.bounded(20u))); },
        [&] {
            ChildOrder::orderChildrenBy(anyNode(), quint16(rng.bounded(6u)));
            ChildOrder::setDirection(anyNode(), rng.bounded(2u));
        },
        [&] {
            // flags, priority, category, icon, colour, status, italic, icon shown, progress, all sub-items, automatic
            ApplyAttributes::apply(
                anyNode(), AttributeSet{rng.bounded(0x200u), quint16(1 + rng.bounded(20u)), QStringLiteral("Applied"),
                                        quint16(rng.bounded(4u)), quint16(rng.bounded(4u)), 1, false, true,
                                        quint16(rng.bounded(101u)), bool(rng.bounded(2u)), bool(rng.bounded(2u))});
        },
        [&] {
            Progress::tap(item);
            Progress::resortAncestors(item);
        },
        [&] {
            item->setNote(rng.bounded(2u) ? QByteArray() : QByteArray("typed"));
            item->setExpanded(!item->isExpanded());
        }};
    edits[rng.bounded(quint32(std::size(edits)))]();
}

// Records what edit does as step; true when something changed.
template <typename Edit> bool recorded(EditStep &step, Edit edit)
{
    {
        EditStep::Recording recording(step);
        edit();
    }
    return step.finish();
}

} // namespace

class TestEditStep : public QObject {
    Q_OBJECT
private Q_SLOTS:

    void undoAndRedoGiveBackTheSavedBytes()
    {
        // Random edits, a step each: undone, the saved bytes as before; redone, the bytes as edited.
        for (quint32 seed = 1; seed <= 1500; ++seed) {
            Document doc;
            RandomTree::fill(doc.root(), int(seed % 40), seed);
            QRandomGenerator rng(seed);
            ItemClip clip;
            const QByteArray before = savedBytes(doc);
            std::vector<std::unique_ptr<EditStep>> steps;
            const int edits = 1 + int(rng.bounded(8u));
            for (int i = 0; i < edits; ++i) {
                auto step = std::make_unique<EditStep>(doc);
                if (recorded(*step, [&] { randomEdit(doc, clip, rng); }))
                    steps.push_back(std::move(step));
            }
            clip.clear();
            const QByteArray after = savedBytes(doc);
            for (auto step = steps.rbegin(); step != steps.rend(); ++step)
                (*step)->undo();
            QCOMPARE(savedBytes(doc), before);
            for (auto &step : steps)
                step->redo();
            QCOMPARE(savedBytes(doc), after);
            // Half undone again, then dropped: a sanitizer build sees a leak or a double free.
            for (size_t i = steps.size(); i > steps.size() / 2; --i)
                steps[i - 1]->undo();
        }
    }

    void keepsOnlyWhatChanged()
    {
        Outline::Doc doc("0 | pri=3\n1 | pri=7\n2 | pri=3\n3 | pri=7\n4 | pri=3\n5 | pri=7\n6 | pri=3\ntop\n  deep\n"
                         "    deeper");
        const auto at = [&](int i) { return doc.root()->child(i); };
        EditStep step(doc);
        QVERIFY(recorded(step, [&] {
            ApplyAttributes::apply(doc.root(), AttributeSet{.flags = AttributeSet::Priority, .priority = 7});
        }));
        QCOMPARE(step.keptFields(), size_t(5)); // the children whose priority was not 7
        QCOMPARE(step.focus(), at(0));

        // A deleted branch is kept, not copied: one place noted, the parent's fields at most.
        EditStep remove(doc);
        QVERIFY(recorded(remove, [&] { Editing::deleteItem(doc, doc["top"], nullptr); }));
        QCOMPARE(remove.keptPlaces(), size_t(1));
        QVERIFY(remove.keptFields() <= 1);
        QCOMPARE(doc.current(), doc.root());
        remove.undo();
        QCOMPARE(doc.current(), at(7));
        remove.redo();
        QCOMPARE(remove.focus(), doc.root());

        // Every field is kept aside, those no command of ours sets included.
        EditStep rare(doc);
        QVERIFY(recorded(rare, [&] {
            at(2)->setExtraWord(7);
            at(3)->setTaskTimeType(2);
            // A minute of 70 does not pack: the date waits whole in the extras.
            at(4)->setDueDate({2024, 1, 0, 1, 0, 70, 0, 0});
            at(5)->setReminderTime({2024, 2, 0, 3, 4, 5, 0, 0});
            at(5)->setReminderTime({});
            at(6)->setStdFlags(0); // the order turns, the expansion stays
        }));
        QCOMPARE(rare.keptFields(), size_t(4));
        rare.undo();
        QCOMPARE(
            QList<int>({int(at(2)->extraWord()), at(3)->taskTimeType(), at(4)->hasDueDate(), at(6)->isAscending()}),
            QList<int>({0, 0, 0, 1}));
        rare.redo();
        QCOMPARE(at(4)->dueDate().minute, quint16(70));

        EditStep same(doc);
        QVERIFY(!recorded(same, [&] {
            at(0)->setPriority(7);
            ChildOrder::sortAgain(doc.root());
        }));
    }

    void freesWhatOnlyItHolds()
    {
        // A destroyed Item leaves the handle registry: that tells whether a step freed it.
        Outline::Doc doc("deleted\nstays\nparent");
        Item *added = new Item(QStringLiteral("added")), *kept = new Item(QStringLiteral("kept"));
        const quint32 handles[] = {doc["deleted"]->handle(), added->handle(), doc["stays"]->handle(), kept->handle()};
        {
            EditStep remove(doc), insert(doc), undoneRemove(doc), doneInsert(doc), childInsert(doc);
            QVERIFY(recorded(remove, [&] { Editing::deleteItem(doc, doc["deleted"], nullptr); }));
            QVERIFY(recorded(insert, [&] { doc.root()->appendChild(added); }));
            insert.undo();
            QVERIFY(!insert.isDone());
            QVERIFY(recorded(undoneRemove, [&] { Editing::deleteItem(doc, doc["stays"], nullptr); }));
            undoneRemove.undo();
            QVERIFY(recorded(doneInsert, [&] { doc.root()->appendChild(kept); }));
            QVERIFY(recorded(childInsert, [&] { doc["parent"]->appendChild(new Item(QStringLiteral("child"))); }));
            childInsert.undo();
            QCOMPARE(childInsert.focus(), doc["parent"]); // undone, an insert shows the parent the item went into
            QVERIFY(Item::fromHandle(handles[0]));
        }
        // Freed: the deleted item and the undone insert's; kept: those in the document.
        QCOMPARE(QList<bool>({Item::fromHandle(handles[0]) != nullptr, Item::fromHandle(handles[1]) != nullptr,
                              Item::fromHandle(handles[2]) != nullptr, Item::fromHandle(handles[3]) != nullptr}),
                 QList<bool>({false, false, true, true}));
    }
};

QTEST_GUILESS_MAIN(TestEditStep)
#include "tst_editstep.moc"
