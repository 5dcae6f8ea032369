#include "notes/noteconverter.h"
#include "support/exchangetest.h"
#include "notes/richink.h"
#include "model/document.h"

#include <QTest>

namespace {

using namespace ExchangeTest;

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
    void inkContainer();
    void damagedInkContainer_data();
    void damagedInkContainer();
    void foreignInkKeepsItsBytes();
    void convertsOneNote_data();
    void convertsOneNote();
    void convertsEveryNoteOfATree();
    void failureChangesNothing();
};

void TestNoteConversion::inkContainer()
{
    const QByteArray note("QBINK\r\n\x1a"
                          "VOIC\x03\x00\x00\x00wav"
                          "XTRA\x00\x00\x00\x00"
                          "RTF \x0d\x00\x00\x00{\\rtf1 \\b hi}",
                          8 + 11 + 8 + 21);
    RichInk ink = RichInk::fromNote(note);
    QVERIFY(ink.isOurs());
    QVERIFY(!ink.isDamaged());
    QCOMPARE(ink.chunks().size(), size_t(3));
    QCOMPARE(ink.chunk(RichInk::voiceTag()), QByteArray("wav"));
    QCOMPARE(ink.plainText(), QStringLiteral("hi"));
    // Chunks of tags we do not know survive, in their order.
    QCOMPARE(ink.toNote(), note);

    // A chunk is replaced in its place; an empty one is removed.
    ink.setChunk(RichInk::rtfTag(), "{\\rtf1 a}");
    ink.setChunk(RichInk::voiceTag(), QByteArray());
    ink.setChunk(RichInk::strokesTag(), QByteArray("\x00\x01", 2));
    QCOMPARE(ink.toNote(), QByteArray("QBINK\r\n\x1a"
                                      "XTRA\x00\x00\x00\x00"
                                      "RTF \x09\x00\x00\x00{\\rtf1 a}"
                                      "INKS\x02\x00\x00\x00\x00\x01",
                                      8 + 8 + 8 + 9 + 8 + 2));
}

void TestNoteConversion::damagedInkContainer_data()
{
    QTest::addColumn<QByteArray>("note");
    QTest::addColumn<int>("chunksKept");
    QTest::newRow("length past the end")
        << QByteArray("QBINK\r\n\x1aRTF \x04\x00\x00\x00{\\rtINKS\xff\xff\xff\x7f\x01", 8 + 12 + 9) << 1;
    QTest::newRow("cut inside a chunk header") << QByteArray("QBINK\r\n\x1aRTF \x04\x00", 14) << 0;
}

void TestNoteConversion::damagedInkContainer()
{
    QFETCH(QByteArray, note);
    QFETCH(int, chunksKept);
    const RichInk ink = RichInk::fromNote(note);
    QVERIFY(ink.isOurs());
    QVERIFY(ink.isDamaged());
    QCOMPARE(int(ink.chunks().size()), chunksKept);
}

void TestNoteConversion::foreignInkKeepsItsBytes()
{
    const QByteArray foreign("\x02\x00\x00\x00"
                             "A\x00g\x00"
                             "e\x00n\x00"
                             "d\x00"
                             "a\x00\x00\x00\xff",
                             19);
    RichInk ink = RichInk::fromNote(foreign);
    QVERIFY(!ink.isOurs());
    QCOMPARE(ink.toNote(), foreign);
    QCOMPARE(ink.plainText(), QStringLiteral("Agenda"));
    // Too short a run, or one without letters, is not text.
    QCOMPARE(RichInk::extractText(QByteArray("x\x00y\x00z\x00\x00\x00"
                                             "1\x00"
                                             "2\x00"
                                             "3\x00"
                                             "4\x00"
                                             "5\x00",
                                             18)),
             QString());
    // The first and last units of each range of text belong to a run; the
    // units just outside end it.
    const auto units = [](const QString &text) {
        return QByteArray(reinterpret_cast<const char *>(text.utf16()), 2 * text.size());
    };
    const QString edges = QStringLiteral("Ab\u0020~\t\u00a0\u017f\u0370\u052f\u2010\u206f\u20ac");
    QCOMPARE(RichInk::extractText(units(edges)), edges);
    // A run needs two letters; an RTF text inside, even at the very start, is read as RTF.
    QCOMPARE(RichInk::extractText(units(QStringLiteral("a1234"))), QString());
    QCOMPARE(RichInk::extractText("{\\rtf1 Hello}"), QStringLiteral("Hello"));
    for (const char16_t outside : {u'\x1f', u'\x7f', u'\x9f', u'\u0180', u'\u036f', u'\u0530', u'\u200f', u'\u2070'})
        QCOMPARE(RichInk::extractText(units(QStringLiteral("Abcd") + QChar(outside) + QStringLiteral("Efgh"))),
                 QStringLiteral("Abcd\r\nEfgh"));
    // Writing a chunk makes the note one of ours.
    ink.setChunk(RichInk::rtfTag(), "{\\rtf1 new}");
    QVERIFY(ink.isOurs());
}

void TestNoteConversion::convertsOneNote_data()
{
    QTest::addColumn<quint16>("from");
    QTest::addColumn<quint16>("to");
    QTest::addColumn<QByteArray>("note");
    QTest::addColumn<QByteArray>("expected");

    const QByteArray twoLines = Header + "\\pard Hi\\par\r\n\\pard y\\u246?u\\par\r\n}";
    const QByteArray formatted("{\\rtf1\\ansi{\\fonttbl{\\f0 Arial;}}\\pard\\qc{\\b Bold} text\\par second}");

    QTest::newRow("plain to rich text") << quint16(0) << quint16(2) << note(u"Hi\r\ny\u00f6u") << twoLines;
    QTest::newRow("plain to rich ink") << quint16(0) << quint16(1) << note(u"Hi\r\ny\u00f6u")
                                       << Magic + chunk("RTF ", twoLines);
    QTest::newRow("plain without terminator")
        << quint16(0) << quint16(2) << le(u"Hi") << Header + "\\pard Hi\\par\r\n}";
    QTest::newRow("rich text to plain") << quint16(2) << quint16(0) << formatted << note(u"Bold text\r\nsecond");
    QTest::newRow("rich text to rich ink keeps the rtf")
        << quint16(2) << quint16(1) << formatted + '\0' << Magic + chunk("RTF ", formatted);
    QTest::newRow("rich ink to plain") << quint16(1) << quint16(0)
                                       << Magic + chunk("INKS", "\x01\x02\x03") + chunk("RTF ", formatted)
                                       << note(u"Bold text\r\nsecond");
    QTest::newRow("rich ink to rich text keeps the rtf")
        << quint16(1) << quint16(2) << Magic + chunk("RTF ", formatted) + chunk("VOIC", "RIFF....WAVE") << formatted;
    QTest::newRow("drawing only to plain is no note")
        << quint16(1) << quint16(0) << Magic + chunk("INKS", QByteArray(40, '\x07')) << QByteArray();

    // Ink from another program: binary around UTF-16 text.
    const QByteArray foreign = QByteArray("\x10\x00\xff\xfe\x03\x00\x00\x00", 8) + le(u"Shopping list") +
                               QByteArray("\x00\x00\x9c\x01\x9d\x01\x9e\x01", 8) + le(u"milk") +
                               QByteArray("\x01\x00", 2);
    QTest::newRow("foreign ink to plain") << quint16(1) << quint16(0) << foreign << note(u"Shopping list\r\nmilk");
    QTest::newRow("foreign ink holding rtf")
        << quint16(1) << quint16(0) << QByteArray("\x05\x00\x00\x00", 4) + formatted << note(u"Bold text\r\nsecond");

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
    a->setNote(note(u"first"));
    c->setNote(note(u"third\r\nline"));

    NoteConverter converter;
    QVERIFY(converter.convertDocument(document, Document::RichText));
    QCOMPARE(document.noteType, quint16(Document::RichText));
    QCOMPARE(a->note(), Header + "\\pard first\\par\r\n}");
    QCOMPARE(b->noteSize(), 0);
    QCOMPARE(c->note(), Header + "\\pard third\\par\r\n\\pard line\\par\r\n}");

    QVERIFY(converter.convertDocument(document, Document::PlainText));
    QCOMPARE(a->note(), note(u"first"));
    QCOMPARE(b->noteSize(), 0);
    QCOMPARE(c->note(), note(u"third\r\nline"));
}

void TestNoteConversion::failureChangesNothing()
{
    Document document;
    document.noteType = Document::PlainText;
    for (int i = 0; i < 4; ++i) {
        auto *item = new Item(QStringLiteral("item %1").arg(i));
        item->setNote(note(u"note"));
        document.root()->appendChild(item);
    }
    FailingConverter converter(3);
    QVERIFY(!converter.convertDocument(document, Document::RichText));
    QCOMPARE(document.noteType, quint16(Document::PlainText));
    for (const Item *item : document.root()->children())
        QCOMPARE(item->note(), note(u"note"));

    // Types no converter knows, on either side.
    NoteConverter plain;
    QVERIFY(!plain.convertDocument(document, 3));
    document.noteType = 9;
    QVERIFY(!plain.convertDocument(document, Document::RichText));
    QCOMPARE(document.noteType, quint16(9));
    QCOMPARE(document.root()->child(0)->note(), note(u"note"));
}

QTEST_GUILESS_MAIN(TestNoteConversion)
#include "tst_noteconversion.moc"
