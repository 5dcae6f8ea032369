#include "exchange/richink.h"

#include <QTest>

class TestRichInk : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void writesTheContainer();
    void readsItBack();
    void damagedContainer_data();
    void damagedContainer();
    void foreignNoteKeepsItsBytes();
    void setChunkReplacesAndRemoves();
};

void TestRichInk::writesTheContainer()
{
    RichInk ink;
    ink.setChunk(RichInk::rtfTag(), "{\\rtf1 a}");
    ink.setChunk(RichInk::strokesTag(), QByteArray("\x00\x01", 2));
    QCOMPARE(ink.toNote(), QByteArray("QBINK\r\n\x1a"
                                      "RTF \x09\x00\x00\x00{\\rtf1 a}"
                                      "INKS\x02\x00\x00\x00\x00\x01",
                                      8 + 8 + 9 + 8 + 2));
}

void TestRichInk::readsItBack()
{
    const QByteArray note("QBINK\r\n\x1a"
                          "VOIC\x03\x00\x00\x00wav"
                          "XTRA\x00\x00\x00\x00"
                          "RTF \x0d\x00\x00\x00{\\rtf1 \\b hi}",
                          8 + 11 + 8 + 21);
    const RichInk ink = RichInk::fromNote(note);
    QVERIFY(ink.isOurs());
    QVERIFY(!ink.isDamaged());
    QCOMPARE(ink.chunks().size(), size_t(3));
    QCOMPARE(ink.chunk(RichInk::voiceTag()), QByteArray("wav"));
    QCOMPARE(ink.rtf(), QByteArray("{\\rtf1 \\b hi}"));
    QCOMPARE(ink.plainText(), QStringLiteral("hi"));
    // Chunks of tags we do not know survive, in their order.
    QCOMPARE(ink.toNote(), note);
}

void TestRichInk::damagedContainer_data()
{
    QTest::addColumn<QByteArray>("note");
    QTest::addColumn<int>("chunksKept");

    QTest::newRow("length past the end") << QByteArray("QBINK\r\n\x1a"
                                                       "RTF \x04\x00\x00\x00{\\rt"
                                                       "INKS\xff\xff\xff\x7f\x01",
                                                       8 + 12 + 9)
                                         << 1;
    QTest::newRow("cut inside a chunk header") << QByteArray("QBINK\r\n\x1a"
                                                             "RTF \x04\x00",
                                                             14)
                                               << 0;
}

void TestRichInk::damagedContainer()
{
    QFETCH(QByteArray, note);
    QFETCH(int, chunksKept);
    const RichInk ink = RichInk::fromNote(note);
    QVERIFY(ink.isOurs());
    QVERIFY(ink.isDamaged());
    QCOMPARE(int(ink.chunks().size()), chunksKept);
}

void TestRichInk::foreignNoteKeepsItsBytes()
{
    QByteArray foreign("\x02\x00\x00\x00"
                       "A\x00g\x00"
                       "e\x00n\x00"
                       "d\x00"
                       "a\x00\x00\x00\xff",
                       19);
    const RichInk ink = RichInk::fromNote(foreign);
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
}

void TestRichInk::setChunkReplacesAndRemoves()
{
    RichInk ink = RichInk::fromNote(QByteArray("foreign"));
    QVERIFY(!ink.isOurs());
    ink.setChunk(RichInk::rtfTag(), "{\\rtf1 new}");
    QVERIFY(ink.isOurs());
    ink.setChunk(RichInk::strokesTag(), "s");
    ink.setChunk(RichInk::rtfTag(), "{\\rtf1 newer}");
    QCOMPARE(ink.chunks().front().data, QByteArray("{\\rtf1 newer}"));
    ink.setChunk(RichInk::rtfTag(), QByteArray());
    QCOMPARE(ink.chunks().size(), size_t(1));
    QCOMPARE(ink.chunks().front().tag, RichInk::strokesTag());
}

QTEST_GUILESS_MAIN(TestRichInk)
#include "tst_richink.moc"
