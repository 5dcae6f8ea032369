#include "platform/codepage.h"

#include <QTest>

namespace {
struct Row {
    const char *codePage;
    QString text;
    QByteArray bytes;
};
} // namespace

class TestCodePage : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void fromUnicode();
    void exportBytes();
    void toUnicode();
    void piecesGiveTheWholeConversion();
};

void TestCodePage::fromUnicode()
{
    const Row rows[] = {
        {"windows-1252", "Plain, text!", "Plain, text!"},
        {"windows-1252", "Café 5€", "Caf\xe9 5\x80"},
        {"windows-1252", "Łódź", "?\363d?"}, // letters missing from the page
        {"windows-1252", "a😀b", "a?b"},      // a surrogate pair is one character
        {"windows-1252", QStringView(u"a\xd800z").toString(), "a?z"},
        {"windows-1252", QStringView(u"a\xdc00z").toString(), "a?z"},
        {"windows-1252", QStringView(u"az\xd800").toString(), "az?"},
        {"windows-1251", "Дом", "\xc4\xee\xec"},
        {"windows-932", "a日本", "a\x93\xfa\x96\x7b"},
        {"windows-932", "ā日", "?\x93\xfa"},
        {"ibm-037", "Az 1", "\xc1\xa9\x40\xf1"}, // EBCDIC keeps no ASCII byte as it is
    };
    for (const Row &row : rows) {
        CodePage page(QLatin1String(row.codePage));
        QVERIFY(page.isValid());
        QCOMPARE(page.fromUnicode(row.text), row.bytes);
        // The converter keeps no state from one call to the next.
        QCOMPARE(page.fromUnicode(row.text), row.bytes);
    }
}

void TestCodePage::exportBytes()
{
    // One byte for every UTF-16 unit, whatever the characters take.
    const Row rows[] = {
        {"windows-1252", "Ünïcödé\r\n", "\xdcn\357c\366d\xe9\r\n"},
        {"windows-1252", "A😀B", QByteArray("A?B\0", 4)}, // the pair leaves a zero at the end
        {"windows-932", "日本", "\x93\xfa"},             // double bytes are cut
        {"windows-932", "a日", "a\x93"},                 // even inside a character
        {"windows-1252", "", ""},
    };
    for (const Row &row : rows)
        QCOMPARE(CodePage(QLatin1String(row.codePage)).exportBytes(row.text), row.bytes);
}

void TestCodePage::toUnicode()
{
    // The five bytes windows-1252 leaves undefined are the control characters of the same value, as in Windows.
    const Row rows[] = {
        {"windows-1252", "€ café", "\x80 caf\xe9"},
        {"windows-1252", QStringView(u"\x81\x8d\x8f\x90\x9d").toString(), "\x81\x8d\x8f\x90\x9d"},
        {"windows-932", "x日本y", "x\x93\xfa\x96\x7by"},
        {"windows-1251", "Дом", "\xc4\xee\xec"},
    };
    for (const Row &row : rows) {
        bool ok = false;
        QCOMPARE(CodePage(QLatin1String(row.codePage)).toUnicode(row.bytes, &ok), row.text);
        QVERIFY(ok);
    }
    CodePage unknown(QStringLiteral("no-such-page"));
    bool ok = true;
    QVERIFY(!unknown.isValid() && unknown.toUnicode("abc", &ok).isEmpty() && !ok);
}

void TestCodePage::piecesGiveTheWholeConversion()
{
    // Cut the text at every place, inside the surrogate pair too: the pieces must give the bytes of the whole.
    const QString text = QString::fromUtf8("ab é😀€ x") + QStringView(u"\xd800").toString() + QStringLiteral("z");
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

QTEST_GUILESS_MAIN(TestCodePage)
#include "tst_codepage.moc"
