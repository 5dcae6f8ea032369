#include "exchange/textimport.h"
#include "support/exchangetest.h"
#include "model/item.h"

#include <QTemporaryDir>
#include <sys/stat.h>
#include <QTest>

Q_DECLARE_METATYPE(TextImport::Result)

namespace {

using namespace ExchangeTest;

QByteArray unicodeFile(const char16_t *text)
{
    return QByteArray("\xff\xfe") + le(text);
}

} // namespace

class TestTextImport : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void outline_data();
    void outline();
    void encodings_data();
    void encodings();
    void invalidUtf8IsUnreadable();
    void onlyRegularFilesOfASensibleSize();
    void namesAreCut();
    void everyItemGetsTheIcon();
    void documentPath();
};

void TestTextImport::outline_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<TextImport::Result>("result");
    QTest::addColumn<QString>("outline");
    QTest::addColumn<int>("line"); // where a format error is reported

    const auto ok = TextImport::Result::Ok;
    const auto format = TextImport::Result::FormatError;
    const auto unreadable = TextImport::Result::Unreadable;

    QTest::newRow("spaces") << QByteArray("Groceries\r\n Fruit\r\n  Apples\r\n Bread\r\n") << ok
                            << "Groceries(Fruit(Apples),Bread)" << 0;
    QTest::newRow("a tab and a space are one level each")
        << QByteArray("R\r\n\ta\r\n \tb\r\n\t c\r\n  d\r\n") << ok << "R(a(b,c,d))" << 0;
    QTest::newRow("blank lines and every line end")
        << QByteArray("R\r\n\r\n a\r\r\r  b\n\n\r\n c\r") << ok << "R(a(b),c)" << 0;
    QTest::newRow("several levels up at once")
        << QByteArray("R\n a\n  b\n   c\n    d\n e\n") << ok << "R(a(b(c(d))),e)" << 0;
    QTest::newRow("white space only is an empty name") << QByteArray("R\n a\n  \n   x\n") << ok << "R(a((x)))" << 0;
    QTest::newRow("code page text") << QByteArray("Caf\xe9\r\n \x80 5\r\n") << ok << QString::fromUtf8("Café(€ 5)") << 0;
    QTest::newRow("unicode text") << unicodeFile(u"\u65e5\u672c\r\n\u3000\u6771\u4eac\r\n\t\t\u5927\u962a") << ok
                                  << QString::fromUtf8("日本(東京(大阪))") << 0;
    QTest::newRow("first item one level deep") << QByteArray("R\n  a\n  b\n   c\n") << ok << "R(a,b(c))" << 0;

    // Lines count as an editor counts them: CR LF is one break, blank lines count.
    QTest::newRow("line without indentation") << QByteArray("R\r\n a\r\n\r\nb\r\n") << format << QString() << 4;
    QTest::newRow("two levels deeper") << QByteArray("R\n a\n   b\n") << format << QString() << 3;
    QTest::newRow("climbing above the root") << QByteArray("R\r  a\r\r b\r") << format << QString() << 4;
    QTest::newRow("only line breaks") << QByteArray("\r\n\r\n") << format << QString() << 3;
    QTest::newRow("a zero byte is an error on its line, not the end")
        << QByteArray("R\n a\n", 5) + QByteArray(" b\0c\n d\n", 9) << format << QString() << 3;
    QTest::newRow("a zero unit in unicode text") << unicodeFile(u"R\r\n a") + QByteArray("\0\0", 2) << format
                                                 << QString() << 2;

    QTest::newRow("unicode without text") << QByteArray("\xff\xfe\0\0R\0", 6) << unreadable << QString() << 0;
    QTest::newRow("byte-order mark alone") << QByteArray("\xff\xfe") << unreadable << QString() << 0;
    QTest::newRow("empty file") << QByteArray() << unreadable << QString() << 0;
}

void TestTextImport::outline()
{
    QFETCH(QByteArray, bytes);
    QFETCH(TextImport::Result, result);
    QFETCH(QString, outline);
    QFETCH(int, line);
    TreeNode root;
    int errorLine = -1;
    QCOMPARE(TextImport::import(bytes, &root, {}, &errorLine), result);
    QCOMPARE(errorLine, line);
    if (result == TextImport::Result::Ok)
        QCOMPARE(describe(&root), outline);
}

void TestTextImport::encodings_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("utf8");
    QTest::addColumn<QString>("outline");

    const QString cafe = QString::fromUtf8("Café(日本)");
    QTest::newRow("UTF-8 mark") << QByteArray("\xef\xbb\xbf" "Caf\xc3\xa9\n \xe6\x97\xa5\xe6\x9c\xac") << false << cafe;
    QTest::newRow("UTF-16LE mark") << QByteArray("\xff\xfe" "C\0a\0f\0\xe9\0\n\0 \0\xe5\x65\x2c\x67", 18) << false
                                   << cafe;
    QTest::newRow("UTF-16BE mark") << QByteArray("\xfe\xff\0C\0a\0f\0\xe9\0\n\0 \x65\xe5\x67\x2c", 18) << false
                                   << cafe;
    QTest::newRow("UTF-8 chosen, no mark") << QByteArray("Caf\xc3\xa9\n \xe6\x97\xa5\xe6\x9c\xac") << true << cafe;
    QTest::newRow("a mark wins over the choice") << QByteArray("\xfe\xff\0R\0\n\0 \0a", 10) << true
                                                 << QStringLiteral("R(a)");
    QTest::newRow("ANSI stays the default") << QByteArray("Caf\xc3\xa9\n a") << false
                                            << QString::fromUtf8("CafÃ©(a)");
}

void TestTextImport::encodings()
{
    QFETCH(QByteArray, bytes);
    QFETCH(bool, utf8);
    QFETCH(QString, outline);
    TextImport::Options options;
    options.codePage = QStringLiteral("windows-1252");
    options.encoding = utf8 ? TextImport::Encoding::Utf8 : TextImport::Encoding::Ansi;
    TreeNode root;
    QCOMPARE(TextImport::import(bytes, &root, options), TextImport::Result::Ok);
    QCOMPARE(describe(&root), outline);
}

void TestTextImport::invalidUtf8IsUnreadable()
{
    TreeNode root;
    TextImport::Options options;
    options.encoding = TextImport::Encoding::Utf8;
    QCOMPARE(TextImport::import("R\n a\xff\xfe", &root, options), TextImport::Result::Unreadable);
    QCOMPARE(TextImport::import("\xef\xbb\xbfR\n \xc3", &root, {}), TextImport::Result::Unreadable);
    const QString invalid =
        QStringLiteral("The format of the import text file is invalid. Please correct the file and try again.");
    QCOMPARE(TextImport::message(TextImport::Result::FormatError, 1), invalid + QStringLiteral(" (line 1)"));
    QCOMPARE(TextImport::message(TextImport::Result::FormatError, 0), invalid);
}

void TestTextImport::namesAreCut()
{
    const QByteArray long100 = QByteArray("0123456789").repeated(10);
    TreeNode root;
    QCOMPARE(TextImport::import(long100 + "\r\n\t" + long100, &root, {}), TextImport::Result::Ok);
    QCOMPARE(root.name(), QString::fromLatin1(long100.left(96)));
    QCOMPARE(root.child(0)->name(), QString::fromLatin1(long100.left(96)));
}

void TestTextImport::everyItemGetsTheIcon()
{
    TreeNode root;
    TextImport::Options options;
    options.icon = TextImport::iconOf(0x0002002a);
    QCOMPARE(TextImport::import("R\n a\n  b\n", &root, options), TextImport::Result::Ok);
    QCOMPARE(root.child(0)->image(), quint16(42));
    QCOMPARE(root.child(0)->child(0)->image(), quint16(42));
    QCOMPARE(TextImport::noteTypeOf(0x0002002a), quint16(2));
    QCOMPARE(TextImport::iconOf(TextImport::DefaultSetting), quint16(812));
    QCOMPARE(TextImport::noteTypeOf(TextImport::DefaultSetting), quint16(1));
}

void TestTextImport::documentPath()
{
    QCOMPARE(TextImport::documentPath(QStringLiteral("/home/me/list.txt")), QStringLiteral("/home/me/list.qbx"));
    QCOMPARE(TextImport::documentPath(QStringLiteral("/home/me/list.tar.txt")),
             QStringLiteral("/home/me/list.tar.qbx"));
    QCOMPARE(TextImport::documentPath(QStringLiteral("/home/me.old/list")), QStringLiteral("/home/me.old/list.qbx"));
}

void TestTextImport::onlyRegularFilesOfASensibleSize()
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("list.txt"));
    TreeNode root;
    QCOMPARE(TextImport::importFile(path, &root, {}), TextImport::Result::Unreadable);
    QFile text(path);
    QVERIFY(text.open(QIODevice::WriteOnly));
    text.write("R\r\n\ta\r\n");
    text.close();
    QCOMPARE(TextImport::importFile(path, &root, {}), TextImport::Result::Ok);
    QCOMPARE(describe(&root), QStringLiteral("R(a)"));
    QCOMPARE(QFileInfo(path).size(), 7); // the file keeps its size

    const QString fifo = dir.filePath(QStringLiteral("pipe.txt"));
    QCOMPARE(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
    QCOMPARE(TextImport::importFile(fifo, &root, {}), TextImport::Result::Unreadable); // would wait for ever
    QCOMPARE(TextImport::importFile(QStringLiteral("/dev/zero"), &root, {}), TextImport::Result::Unreadable);
    QCOMPARE(TextImport::importFile(dir.path(), &root, {}), TextImport::Result::Unreadable);

    // Over the limit, as a sparse file: it is refused before any reading.
    const QString huge = dir.filePath(QStringLiteral("huge.txt"));
    QFile file(huge);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("R\n a\n");
    QVERIFY(file.resize(TextImport::MaxFileSize + 1));
    file.close();
    QCOMPARE(TextImport::importFile(huge, &root, {}), TextImport::Result::Unreadable);
}

QTEST_GUILESS_MAIN(TestTextImport)
#include "tst_textimport.moc"
