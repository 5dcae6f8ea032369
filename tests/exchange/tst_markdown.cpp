#include "exchange/markdownexport.h"
#include "exchange/markdownimport.h"
#include "support/exchangetest.h"
#include "support/treesummary.h"
#include "tools/documentgenerator.h"

#include <QBuffer>
#include <QTemporaryDir>
#include <QTest>

namespace {

using namespace ExchangeTest;

// What the Markdown keeps of a tree: the shape, names, status, links and notes.
const TreeSummary::Keep MarkdownKeeps{false, false, false};

Item *item(TreeNode *parent, const QString &name, quint16 status = Item::CheckBox, quint16 progress = 0)
{
    auto *made = new Item(name);
    made->setStatusType(status);
    made->storeProgress(progress);
    parent->appendChild(made);
    return made;
}

// Names and notes full of what Markdown would read as syntax, nested, with every status.
void trickyDocument(Document *document)
{
    document->root()->setName(QStringLiteral("Title #"));
    const char16_t *names[] = {u"# not a heading", u"1) not a list", u"42. nor this", u"+ plus", u"* star",
                               u"---", u"===", u"> quote", u"<div>html</div>", u"&amp; &#65; \\ \\*",
                               u"`code` **strong** _em_", u"[x] done?", u"[link](target) ![img](x)",
                               u"    four spaces", u"trailing  ", u"\ttab", u"a | b ~c~ ! #"};
    TreeNode *parent = document->root();
    quint16 status = 0;
    for (const char16_t *name : names) {
        Item *made = item(parent, QString::fromUtf16(name), status, status == Item::ProgressBar ? 7 : 0);
        made->setNote(NoteText::toPlainNote(QString::fromUtf16(name) + QLatin1String("\n") +
                                            QString::fromUtf16(name) + QLatin1String("\n\n===\n- x")));
        status = quint16((status + 1) % 3);
        parent = made;
    }
    item(document->root(), QString(), Item::NoStatus)->setNote(NoteText::toPlainNote(QStringLiteral("n")));
    item(document->root(), QString());
    item(document->root(), QStringLiteral("[ ] not a box"), Item::NoStatus);
}

} // namespace

class TestMarkdown : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void exportWritesTheTree()
    {
        TreeNode root(QStringLiteral("Plans # 1"));
        Item *a = item(&root, QStringLiteral("1. *not* a [list]"), Item::CheckBox, 100);
        a->setNote(note(u"first line\r\n  indented\r\n\r\nsecond paragraph"));
        a->setLinks(
            {QStringLiteral("!3"), QStringLiteral("https://example.org/a b"), QStringLiteral("C:\\docs\\x.doc")});
        item(a, QStringLiteral("- dash"), Item::NoStatus);
        Item *c = item(a, QStringLiteral(" padded \t"), Item::ProgressBar, 40);
        item(c, QStringLiteral("<b>&amp;</b> ~x~ | `c` _u_"));
        item(&root, QString(), Item::NoStatus)->setNote(note(u"n"));
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        QCOMPARE(MarkdownExport::write(buffer, &root, {0}), MarkdownExport::Result::Ok);
        QCOMPARE(buffer.data(),
                 QByteArray("# Plans \\# 1\n\n- [x] 1\\. \\*not\\* a \\[list\\] [https://example.org/a b](<https://"
                            "example.org/a b>) [C:\\\\docs\\\\x.doc](<C:\\\\docs\\\\x.doc>)\n\n  first line\\\n"
                            "  &#32;&#32;indented\n\n  second paragraph\n  - \\- dash\n  - [40%] &#32;padded&#32;&#9;\n"
                            "    - [ ] \\<b\\>\\&amp;\\</b\\> \\~x\\~ \\| \\`c\\` \\_u\\_\n- <span></span>\n\n  n\n"));
    }

    void refusesWhatIsTooDeep()
    {
        Document document;
        DocumentGenerator::generate(&document, {MarkdownExport::MaxDepth + 1, 1, true});
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("deep.md"));
        QCOMPARE(MarkdownExport::exportMarkdown(path, document.root(), {}), MarkdownExport::Result::TooDeep);
        QVERIFY(!QFile::exists(path));
    }

    void importsWhatOthersWrite()
    {
        // The root's name and the items.
        const std::tuple<QByteArray, const char *> cases[] = {
            {"* a\n\t* b\n\t\t+ c\n- d\n", "Root\n1 a[-]\n2 b[-]\n3 c[-]\n1 d[-]\n"},
            {"1. one\n2. two\n   1) sub\n10. ten\n", "Root\n1 one[-]\n1 two[-]\n2 sub[-]\n1 ten[-]\n"},
            {"- \\[ ] first line\n- [ ] open\n- [x] done\n- [X] Done\n- [40%] part\n- [y] not a box\n- \\[x] escaped\n"
             "- [100%]\n- [x]tight\n",
             "Root\n1 [ ] first line[-]\n1 open\n1 done[x]\n1 Done[x]\n1 part[40%]\n1 [y] not a box[-]\n"
             "1 [x] escaped[-]\n1 [100%]\n1 [x]tight[-]\n"},
            {"# Project\n\nIntro text.\n\n## Phase 1\n\n- [ ] task\n\n### Detail\n\nSome notes\nover two lines.\n\n"
             "## Phase 2\n",
             "Project\n1 Intro text.[-]\n1 Phase 1[-]\n2 task\n2 Detail[-]{Some notes\nover two lines.}\n"
             "1 Phase 2[-]\n"},
            // No heading ranks above the others.
            {"# A\n- x\n# B\n- y\n", "Root\n1 A[-]\n2 x[-]\n1 B[-]\n2 y[-]\n"},
            // What follows an item's name is its note.
            {"- item\n\n  first para\n  continues\n\n  > quoted\n\n      code  line\n\n  - child\n",
             "Root\n1 item[-]{first para\ncontinues\n\nquoted\n\ncode  line}\n2 child[-]\n"},
            {"- [Docs](https://d.example.org) and <https://x.example.org>\n\n  See [the wiki](wiki.md).\n",
             "Root\n1 Docs and[-]<https://d.example.org><https://x.example.org><wiki.md>{See the wiki.}\n"},
            {"- **Bold** _it_ `a*b` <b>&eacute;</b>\n", "Root\n1 Bold it a*b é[-]\n"},
            {"\xef\xbb\xbfJust a line\nand another\n", "Root\n1 Just a line and another[-]\n"},
            {"", "Root\n"},
        };
        for (const auto &[markdown, expected] : cases) {
            TreeNode root;
            QCOMPARE(MarkdownImport::read(markdown, &root, {}), MarkdownImport::Result::Ok);
            QCOMPARE(root.name() + '\n' + TreeSummary::of(&root, 0), QString::fromUtf8(expected));
        }
    }

    void roundTrip()
    {
        // No items: names that look like Markdown.
        const DocumentGenerator::Options cases[] = {
            {3000}, {800, 9, false, 2}, {MarkdownExport::MaxDepth, 3, true}, {0}};
        for (const DocumentGenerator::Options &options : cases) {
            const quint16 noteType = options.noteType;
            Document original;
            if (options.items > 0)
                DocumentGenerator::generate(&original, options);
            else
                trickyDocument(&original);
            QTemporaryDir dir;
            const QString path = dir.filePath(QStringLiteral("Outline.md"));
            QCOMPARE(MarkdownExport::exportMarkdown(path, original.root(), {noteType}), MarkdownExport::Result::Ok);
            Document copy;
            QCOMPARE(MarkdownImport::importDocument(path, {noteType, 812}, &copy), MarkdownImport::Result::Ok);
            QCOMPARE(copy.path, dir.filePath(QStringLiteral("Outline.qbx")));
            QCOMPARE(copy.root()->name(), original.root()->name());
            const QString expected = TreeSummary::of(original.root(), noteType, MarkdownKeeps);
            QVERIFY(expected.contains(QLatin1Char('{')));
            QCOMPARE(TreeSummary::of(copy.root(), noteType, MarkdownKeeps), expected);
        }
    }
};

QTEST_GUILESS_MAIN(TestMarkdown)
#include "tst_markdown.moc"
