#include "exchange/noteconverter.h"
#include "exchange/notetext.h"
#include "exchange/richink.h"
#include "model/document.h"
#include "views/finder.h"

#include <QTest>

namespace {

// UTF-16LE bytes of a text, as a test writes them out.
QByteArray le(const char16_t *text, bool terminated = true)
{
    QByteArray bytes;
    for (const char16_t *p = text; *p; ++p) {
        bytes += char(*p & 0xff);
        bytes += char(*p >> 8);
    }
    if (terminated)
        bytes += QByteArray(2, '\0');
    return bytes;
}

QByteArray chunk(const char *tag, const QByteArray &data)
{
    QByteArray bytes(tag, 4);
    const quint32 n = quint32(data.size());
    bytes += char(n & 0xff);
    bytes += char((n >> 8) & 0xff);
    bytes += char((n >> 16) & 0xff);
    bytes += char(n >> 24);
    return bytes + data;
}

const QByteArray Magic("QBINK\r\n\x1a", 8);
const QByteArray Header("{\\rtf1\\ansi\\ansicpg1252\\deff0\\uc1{\\fonttbl{\\f0\\fnil Tahoma;}}\r\n");

// A converter that fails on the n-th note it meets.
class FailingConverter : public NoteConverter {
public:
    explicit FailingConverter(int failAt) : m_failAt(failAt) {}
    bool convert(const QByteArray &note, quint16 from, quint16 to, QByteArray *result) override
    {
        if (++m_seen == m_failAt)
            return false;
        return NoteConverter::convert(note, from, to, result);
    }

private:
    int m_failAt;
    int m_seen = 0;
};

} // namespace

class TestNoteConversion : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void convertsOneNote_data();
    void convertsOneNote();
    void unknownTypeFails();
    void convertsEveryNoteOfATree();
    void failureChangesNothing();
    void plainTextOfEveryType_data();
    void plainTextOfEveryType();
    void findReadsEveryType_data();
    void findReadsEveryType();
};

void TestNoteConversion::convertsOneNote_data()
{
    QTest::addColumn<quint16>("from");
    QTest::addColumn<quint16>("to");
    QTest::addColumn<QByteArray>("note");
    QTest::addColumn<QByteArray>("expected");

    const QByteArray twoLines = Header + "\\pard Hi\\par\r\n\\pard y\\u246?u\\par\r\n}";
    const QByteArray formatted("{\\rtf1\\ansi{\\fonttbl{\\f0 Arial;}}\\pard\\qc{\\b Bold} text\\par second}");

    QTest::newRow("plain to rich text") << quint16(0) << quint16(2) << le(u"Hi\r\ny\u00f6u") << twoLines;
    QTest::newRow("plain to rich ink") << quint16(0) << quint16(1) << le(u"Hi\r\ny\u00f6u")
                                       << Magic + chunk("RTF ", twoLines);
    QTest::newRow("plain without terminator")
        << quint16(0) << quint16(2) << le(u"Hi", false) << Header + "\\pard Hi\\par\r\n}";
    QTest::newRow("rich text to plain") << quint16(2) << quint16(0) << formatted << le(u"Bold text\r\nsecond");
    QTest::newRow("rich text to rich ink keeps the rtf")
        << quint16(2) << quint16(1) << formatted + '\0' << Magic + chunk("RTF ", formatted);
    QTest::newRow("rich ink to plain") << quint16(1) << quint16(0)
                                       << Magic + chunk("INKS", "\x01\x02\x03") + chunk("RTF ", formatted)
                                       << le(u"Bold text\r\nsecond");
    QTest::newRow("rich ink to rich text keeps the rtf")
        << quint16(1) << quint16(2) << Magic + chunk("RTF ", formatted) + chunk("VOIC", "RIFF....WAVE") << formatted;
    QTest::newRow("drawing only to plain is no note")
        << quint16(1) << quint16(0) << Magic + chunk("INKS", QByteArray(40, '\x07')) << QByteArray();
    QTest::newRow("drawing only to rich text is no note")
        << quint16(1) << quint16(2) << Magic + chunk("INKS", QByteArray(40, '\x07')) << QByteArray();

    // Ink from another program: binary around UTF-16 text.
    const QByteArray foreign = QByteArray("\x10\x00\xff\xfe\x03\x00\x00\x00", 8) + le(u"Shopping list", false) +
                               QByteArray("\x00\x00\x9c\x01\x9d\x01\x9e\x01", 8) + le(u"milk", false) +
                               QByteArray("\x01\x00", 2);
    QTest::newRow("foreign ink to plain") << quint16(1) << quint16(0) << foreign << le(u"Shopping list\r\nmilk");
    QTest::newRow("foreign ink to rich text")
        << quint16(1) << quint16(2) << foreign << Header + "\\pard Shopping list\\par\r\n\\pard milk\\par\r\n}";
    QTest::newRow("foreign ink holding rtf")
        << quint16(1) << quint16(0) << QByteArray("\x05\x00\x00\x00", 4) + formatted << le(u"Bold text\r\nsecond");

    QTest::newRow("bare rtf as rich ink keeps its formatting")
        << quint16(1) << quint16(2) << formatted + QByteArray(2, '\0') << formatted;
    QTest::newRow("same type is unchanged") << quint16(1) << quint16(1) << foreign << foreign;
    QTest::newRow("empty plain is no note") << quint16(0) << quint16(2) << QByteArray(2, '\0') << QByteArray();
}

void TestNoteConversion::convertsOneNote()
{
    QFETCH(quint16, from);
    QFETCH(quint16, to);
    QFETCH(QByteArray, note);
    QFETCH(QByteArray, expected);
    NoteConverter converter;
    QByteArray result("untouched");
    QVERIFY(converter.convert(note, from, to, &result));
    QCOMPARE(result, expected);
}

void TestNoteConversion::unknownTypeFails()
{
    NoteConverter converter;
    QByteArray result;
    QVERIFY(!converter.convert(le(u"x"), 0, 3, &result));
    QVERIFY(!converter.convert(le(u"x"), 7, 0, &result));
}

void TestNoteConversion::convertsEveryNoteOfATree()
{
    Document document;
    document.noteType = Document::PlainText;
    auto *a = new Item(QStringLiteral("a"));
    auto *b = new Item(QStringLiteral("b"));
    auto *c = new Item(QStringLiteral("c"));
    document.root()->appendChild(a);
    a->appendChild(b);
    document.root()->appendChild(c);
    a->setNote(le(u"first"));
    c->setNote(le(u"third\r\nline"));

    NoteConverter converter;
    QVERIFY(converter.convertDocument(document, Document::RichText));
    QCOMPARE(document.noteType, quint16(Document::RichText));
    QCOMPARE(a->note(), Header + "\\pard first\\par\r\n}");
    QCOMPARE(b->noteSize(), 0);
    QCOMPARE(c->note(), Header + "\\pard third\\par\r\n\\pard line\\par\r\n}");

    QVERIFY(converter.convertDocument(document, Document::RichInk));
    QCOMPARE(a->note(), Magic + chunk("RTF ", Header + "\\pard first\\par\r\n}"));
    QVERIFY(converter.convertDocument(document, Document::PlainText));
    QCOMPARE(a->note(), le(u"first"));
    QCOMPARE(b->noteSize(), 0);
    QCOMPARE(c->note(), le(u"third\r\nline"));
}

void TestNoteConversion::failureChangesNothing()
{
    Document document;
    document.noteType = Document::PlainText;
    for (int i = 0; i < 4; ++i) {
        auto *item = new Item(QStringLiteral("item %1").arg(i));
        item->setNote(le(u"note"));
        document.root()->appendChild(item);
    }
    FailingConverter converter(3);
    QVERIFY(!converter.convertDocument(document, Document::RichText));
    QCOMPARE(document.noteType, quint16(Document::PlainText));
    for (const Item *item : document.root()->children())
        QCOMPARE(item->note(), le(u"note"));

    document.noteType = 9; // a type no converter knows
    NoteConverter plain;
    QVERIFY(!plain.convertDocument(document, Document::RichText));
    QCOMPARE(document.noteType, quint16(9));
    QCOMPARE(document.root()->child(0)->note(), le(u"note"));
}

void TestNoteConversion::plainTextOfEveryType_data()
{
    QTest::addColumn<quint16>("type");
    QTest::addColumn<QByteArray>("note");
    QTest::addColumn<QString>("text");

    QTest::newRow("plain") << quint16(0) << le(u"abc") << "abc";
    QTest::newRow("plain ends at a zero") << quint16(0) << le(u"ab") + le(u"hidden") << "ab";
    QTest::newRow("rich text") << quint16(2) << QByteArray("{\\rtf1 x\\par y}") << "x\r\ny";
    QTest::newRow("rich ink") << quint16(1) << Magic + chunk("RTF ", "{\\rtf1 ink text}") << "ink text";
    QTest::newRow("damaged rich ink keeps the chunks before")
        << quint16(1) << Magic + chunk("RTF ", "{\\rtf1 kept}") + QByteArray("INKS\xff\xff\x00\x00short", 13) << "kept";
    QTest::newRow("unknown type") << quint16(5) << le(u"abc") << QString();
}

void TestNoteConversion::plainTextOfEveryType()
{
    QFETCH(quint16, type);
    QFETCH(QByteArray, note);
    QFETCH(QString, text);
    QCOMPARE(NoteText::plainText(note, type), text);
}

void TestNoteConversion::findReadsEveryType_data()
{
    QTest::addColumn<quint16>("type");
    QTest::addColumn<QByteArray>("note");
    QTest::newRow("plain") << quint16(0) << le(u"Call the Plumber today");
    QTest::newRow("rich text") << quint16(2)
                               << QByteArray("{\\rtf1{\\fonttbl{\\f0 Arial;}}Call the {\\b Plum}ber today}");
    QTest::newRow("rich ink") << quint16(1)
                              << Magic + chunk("RTF ", "{\\rtf1 Call the \\i Plumber\\i0  today}") +
                                     chunk("INKS", "\x01\x02");
}

void TestNoteConversion::findReadsEveryType()
{
    QFETCH(quint16, type);
    QFETCH(QByteArray, note);
    Item item(QStringLiteral("x"));
    item.setNote(note);
    FindCriteria criteria;
    criteria.flags = FindCriteria::NotePhrase;
    criteria.notePhrase = QStringLiteral("plumber");
    criteria.caseInsensitive = true;
    QVERIFY(Finder(criteria, type).matches(&item));
    criteria.notePhrase = QStringLiteral("rtf");
    QVERIFY(!Finder(criteria, type).matches(&item));
}

QTEST_GUILESS_MAIN(TestNoteConversion)
#include "tst_noteconversion.moc"
