#include "exchange/textimport.h"
#include "support/exchangetest.h"
#include "model/item.h"

#include <QTemporaryDir>
#include <QTest>
#include <sys/stat.h>

using namespace ExchangeTest;

static const QByteArray Bom("\xff\xfe");

class TestTextImport : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void outline()
    {
        // An empty outline with a line: a format error there; with none, unreadable.
        const std::tuple<QByteArray, const char *, int> cases[] = {
            {"Groceries\r\n Fruit\r\n  Apples\r\n Bread\r\n", "Groceries(Fruit(Apples),Bread)", 0},
            {"R\r\n\ta\r\n \tb\r\n\t c\r\n  d\r\n", "R(a(b,c,d))", 0}, // a tab and a space are one level each
            {"R\r\n\r\n a\r\r\r  b\n\n\r\n c\r", "R(a(b),c)", 0},
            {"R\n a\n  b\n   c\n    d\n e\n", "R(a(b(c(d))),e)", 0},
            {"R\n a\n  \n   x\n", "R(a((x)))", 0},
            {"Caf\xe9\r\n \x80 5\r\n", "Café(€ 5)", 0},
            {Bom + le(u"\u65e5\u672c\r\n\u3000\u6771\u4eac\r\n\t\t\u5927\u962a"), "日本(東京(大阪))", 0},
            {"R\n  a\n  b\n   c\n", "R(a,b(c))", 0},
            // Lines count as an editor counts them: CR LF is one break, blank lines count.
            {"R\r\n a\r\n\r\nb\r\n", "", 4},
            {"R\n a\n   b\n", "", 3},
            {"R\r  a\r\r b\r", "", 4},
            {"\r\n\r\n", "", 3},
            {QByteArray("R\n a\n b\0c\n d\n", 14), "", 3}, // a zero byte is an error on its line, not the end
            {Bom + le(u"R\r\n a") + QByteArray(2, '\0'), "", 2},
            {QByteArray("\xff\xfe\0\0R\0", 6), "", 0},
            {Bom, "", 0},
            {"", "", 0},
        };
        for (const auto &[bytes, outline, line] : cases) {
            TreeNode root;
            int errorLine = -1;
            const TextImport::Result expected = *outline ? TextImport::Result::Ok
                                                : line   ? TextImport::Result::FormatError
                                                         : TextImport::Result::Unreadable;
            QCOMPARE(TextImport::import(bytes, &root, {}, &errorLine), expected);
            QCOMPARE(errorLine, line);
            if (*outline)
                QCOMPARE(describe(&root), QString::fromUtf8(outline));
        }
    }

    void encodings()
    {
        const char *const cafe = "Café(日本)";
        const auto ansi = TextImport::Encoding::Ansi;
        const auto utf8 = TextImport::Encoding::Utf8;
        // No outline: invalid UTF-8 is unreadable.
        const std::tuple<QByteArray, TextImport::Encoding, const char *> cases[] = {
            {QByteArray::fromHex("efbbbf") + "Caf\xc3\xa9\n \xe6\x97\xa5\xe6\x9c\xac", ansi, cafe},
            {Bom + QByteArray("C\0a\0f\0\xe9\0\n\0 \0\xe5\x65\x2c\x67", 16), ansi, cafe},
            {QByteArray("\xfe\xff\0C\0a\0f\0\xe9\0\n\0 \x65\xe5\x67\x2c", 18), ansi, cafe},
            {"Caf\xc3\xa9\n \xe6\x97\xa5\xe6\x9c\xac", utf8, cafe},
            {QByteArray("\xfe\xff\0R\0\n\0 \0a", 10), utf8, "R(a)"}, // a mark wins over the choice
            {"Caf\xc3\xa9\n a", ansi, "CafÃ©(a)"},                   // ANSI stays the default
            {"R\n a\xff\xfe", utf8, nullptr},
            {"\xef\xbb\xbfR\n \xc3", ansi, nullptr},
        };
        for (const auto &[bytes, encoding, outline] : cases) {
            TreeNode root;
            const TextImport::Options options{.codePage = QStringLiteral("windows-1252"), .encoding = encoding};
            QCOMPARE(TextImport::import(bytes, &root, options),
                     outline ? TextImport::Result::Ok : TextImport::Result::Unreadable);
            if (outline)
                QCOMPARE(describe(&root), QString::fromUtf8(outline));
        }
    }

    void namesIconsAndMessages()
    {
        const QByteArray long100 = QByteArray("0123456789").repeated(10);
        TreeNode root;
        const TextImport::Options options{.icon = TextImport::iconOf(0x0002002a)};
        QCOMPARE(TextImport::import(long100 + "\r\n\t" + long100 + "\r\n\t\tb", &root, options),
                 TextImport::Result::Ok);
        QCOMPARE(describe(&root), QString::fromLatin1(long100.left(96) + "(" + long100.left(96) + "(b))"));
        QCOMPARE(std::pair(root.child(0)->image(), root.child(0)->child(0)->image()),
                 std::pair(quint16(42), quint16(42)));
        QCOMPARE(TextImport::noteTypeOf(0x0002002a), quint16(2));

        QCOMPARE(TextImport::message(TextImport::Result::FormatError, 0) + QStringLiteral(" (line 1)"),
                 TextImport::message(TextImport::Result::FormatError, 1));
        QCOMPARE(TextImport::documentPath(QStringLiteral("/home/me/list.tar.txt")),
                 QStringLiteral("/home/me/list.tar.qbx"));
        QCOMPARE(TextImport::documentPath(QStringLiteral("/home/me.old/list")),
                 QStringLiteral("/home/me.old/list.qbx"));
    }

    void onlyRegularFilesOfASensibleSize()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("list.txt"));
        TreeNode root;
        QCOMPARE(TextImport::importFile(path, &root, {}), TextImport::Result::Unreadable);
        QVERIFY(writeFile(path, "R\r\n\ta\r\n"));
        QCOMPARE(TextImport::importFile(path, &root, {}), TextImport::Result::Ok);
        QCOMPARE(describe(&root), QStringLiteral("R(a)"));
        QCOMPARE(QFileInfo(path).size(), 7); // the file keeps its size

        const QString fifo = dir.filePath(QStringLiteral("pipe.txt"));
        QCOMPARE(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
        QCOMPARE(TextImport::importFile(fifo, &root, {}), TextImport::Result::Unreadable); // would wait for ever
        QCOMPARE(TextImport::importFile(QStringLiteral("/dev/zero"), &root, {}), TextImport::Result::Unreadable);
        QCOMPARE(TextImport::importFile(dir.path(), &root, {}), TextImport::Result::Unreadable);
        // Over the limit, as a sparse file: it is refused before any reading.
        QVERIFY(QFile::resize(path, TextImport::MaxFileSize + 1));
        QCOMPARE(TextImport::importFile(path, &root, {}), TextImport::Result::Unreadable);
    }
};

QTEST_GUILESS_MAIN(TestTextImport)
#include "tst_textimport.moc"
