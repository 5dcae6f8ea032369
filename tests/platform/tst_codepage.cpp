#include "platform/codepage.h"

#include <QTest>

namespace {
QString units(std::initializer_list<char16_t> list)
{
    QString text;
    for (char16_t unit : list)
        text.append(QChar(unit));
    return text;
}
} // namespace

class TestCodePage : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void fromUnicode_data();
    void fromUnicode();
    void exportBytes_data();
    void exportBytes();
    void toUnicode_data();
    void toUnicode();
    void piecesGiveTheWholeConversion();
    void unknownCodePage();
};

void TestCodePage::fromUnicode_data()
{
    QTest::addColumn<QString>("codePage");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("bytes");

    QTest::newRow("ascii") << "windows-1252"
                           << "Plain, text!" << QByteArray("Plain, text!");
    QTest::newRow("western letters and euro")
        << "windows-1252" << QString::fromUtf8("Café 5€") << QByteArray("Caf\xe9 5\x80");
    QTest::newRow("letter missing from the page") << "windows-1252" << QString::fromUtf8("Łódź")
                                                  << QByteArray("?\xf3"
                                                                "d?");
    QTest::newRow("pair is one character") << "windows-1252" << QString::fromUtf8("a😀b") << QByteArray("a?b");
    QTest::newRow("lone first half") << "windows-1252" << units({u'a', 0xd800, u'b'}) << QByteArray("a?b");
    QTest::newRow("lone second half") << "windows-1252" << units({u'a', 0xdc00, u'b'}) << QByteArray("a?b");
    QTest::newRow("first half at the end") << "windows-1252" << units({u'a', u'b', 0xd800}) << QByteArray("ab?");
    QTest::newRow("cyrillic page") << "windows-1251" << QString::fromUtf8("Дом") << QByteArray("\xc4\xee\xec");
    QTest::newRow("double-byte page") << "windows-932" << QString::fromUtf8("a日本") << QByteArray("a\x93\xfa\x96\x7b");
    QTest::newRow("double-byte page, missing") << "windows-932" << QString::fromUtf8("ā日") << QByteArray("?\x93\xfa");
}

void TestCodePage::fromUnicode()
{
    QFETCH(QString, codePage);
    QFETCH(QString, text);
    QFETCH(QByteArray, bytes);
    CodePage page(codePage);
    QVERIFY(page.isValid());
    QCOMPARE(page.fromUnicode(text), bytes);
    // The converter keeps no state from one call to the next.
    QCOMPARE(page.fromUnicode(text), bytes);
}

void TestCodePage::exportBytes_data()
{
    QTest::addColumn<QString>("codePage");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("bytes");

    QTest::newRow("one byte per unit") << "windows-1252" << QString::fromUtf8("Ünïcödé\r\n")
                                       << QByteArray("\xdcn\xef"
                                                     "c\xf6"
                                                     "d\xe9\r\n");
    QTest::newRow("pair leaves a zero at the end")
        << "windows-1252" << QString::fromUtf8("A😀B") << QByteArray("A?B\0", 4);
    QTest::newRow("double bytes are cut") << "windows-932" << QString::fromUtf8("日本") << QByteArray("\x93\xfa");
    QTest::newRow("cut inside a character") << "windows-932" << QString::fromUtf8("a日") << QByteArray("a\x93");
    QTest::newRow("empty") << "windows-1252" << QString() << QByteArray();
}

void TestCodePage::exportBytes()
{
    QFETCH(QString, codePage);
    QFETCH(QString, text);
    QFETCH(QByteArray, bytes);
    CodePage page(codePage);
    const QByteArray written = page.exportBytes(text);
    QCOMPARE(written.size(), text.size());
    QCOMPARE(written, bytes);
}

void TestCodePage::toUnicode_data()
{
    QTest::addColumn<QString>("codePage");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("text");

    QTest::newRow("western") << "windows-1252" << QByteArray("\x80 caf\xe9") << QString::fromUtf8("€ café");
    // Windows keeps the five bytes that windows-1252 leaves undefined as the
    // control characters of the same value; so do we.
    QTest::newRow("undefined bytes") << "windows-1252" << QByteArray("\x81\x8d\x8f\x90\x9d")
                                     << units({0x81, 0x8d, 0x8f, 0x90, 0x9d});
    QTest::newRow("double-byte") << "windows-932" << QByteArray("x\x93\xfa\x96\x7by") << QString::fromUtf8("x日本y");
    QTest::newRow("cyrillic") << "windows-1251" << QByteArray("\xc4\xee\xec") << QString::fromUtf8("Дом");
}

void TestCodePage::toUnicode()
{
    QFETCH(QString, codePage);
    QFETCH(QByteArray, bytes);
    QFETCH(QString, text);
    CodePage page(codePage);
    bool ok = false;
    QCOMPARE(page.toUnicode(bytes, &ok), text);
    QVERIFY(ok);
}

void TestCodePage::piecesGiveTheWholeConversion()
{
    // Cut the text at every place, inside the surrogate pair too: the pieces
    // must give the bytes of the whole.
    const QString text = QString::fromUtf8("ab é😀€ x") + units({0xd800}) + QStringLiteral("z");
    const QByteArray whole("ab \xe9?\x80 x?z");
    CodePage page(QStringLiteral("windows-1252"));
    QCOMPARE(page.fromUnicode(text), whole);
    for (qsizetype cut = 0; cut <= text.size(); ++cut) {
        for (qsizetype cut2 = cut; cut2 <= text.size(); ++cut2) {
            QByteArray bytes;
            page.append(QStringView(text).left(cut), &bytes);
            page.append(QStringView(text).mid(cut, cut2 - cut), &bytes);
            page.append(QStringView(text).mid(cut2), &bytes);
            page.finish(&bytes);
            QVERIFY2(bytes == whole, qPrintable(QStringLiteral("cut at %1 and %2").arg(cut).arg(cut2)));
        }
    }
}

void TestCodePage::unknownCodePage()
{
    CodePage page(QStringLiteral("no-such-page"));
    QVERIFY(!page.isValid());
    bool ok = true;
    QVERIFY(page.toUnicode("abc", &ok).isEmpty());
    QVERIFY(!ok);
}

QTEST_GUILESS_MAIN(TestCodePage)
#include "tst_codepage.moc"
