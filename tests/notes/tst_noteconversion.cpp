#include "notes/noteconverter.h"
#include "notes/richink.h"
#include "support/exchangetest.h"
#include "support/outline.h"

#include <QTest>

namespace {

using namespace ExchangeTest;

QByteArray chunk(const char *tag, const QByteArray &data)
{
    const quint32 n = quint32(data.size());
    return QByteArray(tag, 4) + char(n & 0xff) + char(n >> 8 & 0xff) + char(n >> 16 & 0xff) + char(n >> 24) + data;
}

const QByteArray Magic("QBINK\r\n\x1a", 8);
const QByteArray Header("{\\rtf1\\ansi\\ansicpg1252\\deff0\\uc1{\\fonttbl{\\f0\\fnil Tahoma;}}\r\n");

// A converter that fails on the third note it meets.
struct FailingConverter : NoteConverter {
    int seen = 0;
    bool convert(const QByteArray &note, quint16 from, quint16 to, QByteArray *result) override
    {
        return ++seen != 3 && NoteConverter::convert(note, from, to, result);
    }
};

} // namespace

class TestNoteConversion : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void inkContainer()
    {
        const QByteArray note = Magic + chunk("VOIC", "wav") + chunk("XTRA", "") + chunk("RTF ", "{\\rtf1 \\b hi}");
        RichInk ink = RichInk::fromNote(note);
        QVERIFY(ink.isOurs() && !ink.isDamaged());
        QCOMPARE(ink.chunks().size(), size_t(3));
        QCOMPARE(ink.chunk(RichInk::voiceTag()), QByteArray("wav"));
        QCOMPARE(ink.plainText(), QStringLiteral("hi"));
        // Chunks of tags we do not know survive, in their order.
        QCOMPARE(ink.toNote(), note);
        // A chunk is replaced in its place; an empty one is removed.
        ink.setChunk(RichInk::rtfTag(), "{\\rtf1 a}");
        ink.setChunk(RichInk::voiceTag(), QByteArray());
        ink.setChunk(RichInk::strokesTag(), QByteArray("\x00\x01", 2));
        QCOMPARE(ink.toNote(),
                 Magic + chunk("XTRA", "") + chunk("RTF ", "{\\rtf1 a}") + chunk("INKS", QByteArray(1, '\0') + '\1'));
        // Damaged: a length past the end keeps the chunks before it; a cut chunk header keeps none.
        const RichInk past =
            RichInk::fromNote(QByteArray("QBINK\r\n\x1aRTF \x04\x00\x00\x00{\\rtINKS\xff\xff\xff\x7f\x01", 8 + 12 + 9));
        QVERIFY(past.isOurs() && past.isDamaged());
        QCOMPARE(past.chunks().size(), size_t(1));
        const RichInk cut = RichInk::fromNote(QByteArray("QBINK\r\n\x1aRTF \x04\x00", 14));
        QVERIFY(cut.isOurs() && cut.isDamaged());
        QCOMPARE(cut.chunks().size(), size_t(0));
    }

    void foreignInkKeepsItsBytes()
    {
        const QByteArray foreign = QByteArray("\x02\x00\x00\x00", 4) + le(u"Agenda") + QByteArray("\x00\x00\xff", 3);
        RichInk ink = RichInk::fromNote(foreign);
        QVERIFY(!ink.isOurs());
        QCOMPARE(ink.toNote(), foreign);
        QCOMPARE(ink.plainText(), QStringLiteral("Agenda"));
        // Writing a chunk makes the note one of ours.
        ink.setChunk(RichInk::rtfTag(), "{\\rtf1 new}");
        QVERIFY(ink.isOurs());

        const auto units = [](const QString &text) {
            return QByteArray(reinterpret_cast<const char *>(text.utf16()), 2 * text.size());
        };
        // Too short a run, or one without two letters, is not text; a run of four units is, even at the very end.
        QCOMPARE(RichInk::extractText(units(QStringLiteral("xyz")) + QByteArray(2, '\0') + units("12345")), QString());
        QCOMPARE(RichInk::extractText(units(QStringLiteral("a1234"))), QString());
        QCOMPARE(RichInk::extractText(QByteArray(1, '\x01') + units(QStringLiteral("Abcd"))), QStringLiteral("Abcd"));
        // The first and last units of each range of text belong to a run; the units just outside end it.
        const QString edges = QStringLiteral("Ab\u0020~\t\u00a0\u017f\u0370\u052f\u2010\u206f\u20ac");
        QCOMPARE(RichInk::extractText(units(edges)), edges);
        for (const char16_t outside :
             {u'\x1f', u'\x7f', u'\x9f', u'\u0180', u'\u036f', u'\u0530', u'\u200f', u'\u2070'})
            QCOMPARE(RichInk::extractText(units(QStringLiteral("Abcd") + QChar(outside) + QStringLiteral("Efgh"))),
                     QStringLiteral("Abcd\r\nEfgh"));
        // An RTF text inside, even at the very start, is read as RTF.
        QCOMPARE(RichInk::extractText("{\\rtf1 Hello}"), QStringLiteral("Hello"));
    }

    void convertsOneNote()
    {
        const QByteArray twoLines = Header + "\\pard Hi\\par\r\n\\pard y\\u246?u\\par\r\n}";
        const QByteArray formatted("{\\rtf1\\ansi{\\fonttbl{\\f0 Arial;}}\\pard\\qc{\\b Bold} text\\par second}");
        // Ink from another program: binary around UTF-16 text.
        const QByteArray foreign = QByteArray("\x10\x00\xff\xfe\x03\x00\x00\x00", 8) + le(u"Shopping list") +
                                   QByteArray("\x00\x00\x9c\x01\x9d\x01\x9e\x01", 8) + le(u"milk") +
                                   QByteArray("\x01\x00", 2);
        const std::tuple<quint16, quint16, QByteArray, QByteArray> cases[] = {
            {0, 2, note(u"Hi\r\ny\u00f6u"), twoLines},
            {0, 1, note(u"Hi\r\ny\u00f6u"), Magic + chunk("RTF ", twoLines)},
            {0, 2, le(u"Hi"), Header + "\\pard Hi\\par\r\n}"}, // no terminator
            {2, 0, formatted, note(u"Bold text\r\nsecond")},
            {2, 1, formatted + '\0', Magic + chunk("RTF ", formatted)},
            {1, 0, Magic + chunk("INKS", "\x01\x02\x03") + chunk("RTF ", formatted), note(u"Bold text\r\nsecond")},
            {1, 2, Magic + chunk("RTF ", formatted) + chunk("VOIC", "RIFF....WAVE"), formatted},
            {1, 0, Magic + chunk("INKS", QByteArray(40, '\x07')), QByteArray()}, // a drawing only is no note
            {1, 0, foreign, note(u"Shopping list\r\nmilk")},
            {1, 0, QByteArray("\x05\x00\x00\x00", 4) + formatted, note(u"Bold text\r\nsecond")},
            {1, 2, formatted + QByteArray(2, '\0'), formatted}, // bare RTF as rich ink keeps its formatting
            {1, 1, foreign, foreign},
            {0, 2, QByteArray(2, '\0'), QByteArray()},
        };
        for (const auto &[from, to, note, expected] : cases) {
            QByteArray result("untouched");
            QVERIFY(NoteConverter().convert(note, from, to, &result));
            QCOMPARE(result, expected);
        }
    }

    void convertsEveryNoteOfATreeOrNone()
    {
        Document document;
        document.noteType = Document::PlainText;
        Outline::build(document.root(), "x | note=first\n  x | note=deep\nx\nx\n");
        document.root()->child(2)->setNote(note(u"third\r\nline"));
        // The notes in tree order, the empty one too.
        const auto notes = [&document] {
            QByteArray all;
            document.root()->forEachDescendant([&all](Item *item) { all += item->note() + '|'; });
            return all;
        };
        const QByteArray plain = note(u"first") + '|' + note(u"deep") + "||" + note(u"third\r\nline") + '|';
        // A failure on the third note leaves the notes converted before it as they were.
        QVERIFY(!FailingConverter().convertDocument(document, Document::RichText));
        QCOMPARE(std::pair(document.noteType, notes()), std::pair(quint16(Document::PlainText), plain));
        NoteConverter converter;
        QVERIFY(converter.convertDocument(document, Document::RichText));
        QCOMPARE(std::pair(document.noteType, notes()),
                 std::pair(quint16(Document::RichText), Header + "\\pard first\\par\r\n}|" + Header +
                                                            "\\pard deep\\par\r\n}||" + Header +
                                                            "\\pard third\\par\r\n\\pard line\\par\r\n}|"));
        QVERIFY(converter.convertDocument(document, Document::PlainText));
        QCOMPARE(notes(), plain);
        QVERIFY(!converter.convertDocument(document, 3));
        document.noteType = 9;
        QVERIFY(!converter.convertDocument(document, Document::RichText));
        QCOMPARE(std::pair(document.noteType, notes()), std::pair(quint16(9), plain));
    }
};

QTEST_GUILESS_MAIN(TestNoteConversion)
#include "tst_noteconversion.moc"
