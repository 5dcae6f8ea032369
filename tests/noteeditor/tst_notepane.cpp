#include "notes/richink.h"
#include "notes/rtfreader.h"
#include "noteeditor/notepane.h"

#include <QPlainTextEdit>
#include <QTest>
#include <QTextCharFormat>
#include <QTextCursor>
#include <QTextEdit>

class TestNotePane : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void plainText();
    void richTextKeepsFormatting();
    void richInkKeepsDrawingsAndRecordings();
    void emptiedNoteLeavesNoNote();
    void formatKeys_data();
    void formatKeys();
};

void TestNotePane::plainText()
{
    NotePane pane;
    pane.setNoteType(0);
    // "Hi" in UTF-16LE with its terminating zero unit.
    pane.load(QByteArray("H\0i\0\0\0", 6));
    QCOMPARE(pane.plainText(), QStringLiteral("Hi"));
    QVERIFY(!pane.isModified());
    QTest::keyClicks(pane.plainEditor(), QStringLiteral("!"));
    QVERIFY(pane.isModified());
    QCOMPARE(pane.noteBytes(), QByteArray("!\0H\0i\0\0\0", 8));
    // Loading another note starts unmodified again.
    pane.load(QByteArray());
    QVERIFY(!pane.isModified());
    QCOMPARE(pane.plainText(), QString());
}

void TestNotePane::richTextKeepsFormatting()
{
    NotePane pane;
    pane.setNoteType(2);
    QVERIFY(pane.richEditor()->isVisibleTo(&pane));
    QVERIFY(!pane.plainEditor()->isVisibleTo(&pane));
    pane.load(QByteArrayLiteral("{\\rtf1\\ansi plain {\\b bold} caf\\'e9}"));
    QCOMPARE(pane.plainText(), QStringLiteral("plain bold caf\u00e9"));
    QTextCursor cursor(pane.richEditor()->document());
    cursor.setPosition(8);
    QCOMPARE(cursor.charFormat().fontWeight(), int(QFont::Bold));
    cursor.setPosition(2);
    QCOMPARE(cursor.charFormat().fontWeight(), int(QFont::Normal));

    cursor.movePosition(QTextCursor::End);
    QTextCharFormat italic;
    italic.setFontItalic(true);
    cursor.insertText(QStringLiteral(" \u20ac"), italic);
    const RichText back = RtfReader::read(pane.noteBytes());
    QCOMPARE(back.plainText(), QStringLiteral("plain bold caf\u00e9 \u20ac"));
    QCOMPARE(back.paragraphs.size(), size_t(1));
    const auto &runs = back.paragraphs.front().runs;
    QVERIFY(runs.size() >= 3);
    bool sawBold = false;
    bool sawItalic = false;
    for (const RichText::Run &run : runs) {
        sawBold |= run.text == QLatin1String("bold") && run.format.bold;
        sawItalic |= run.text.contains(QChar(0x20ac)) && run.format.italic;
    }
    QVERIFY(sawBold);
    QVERIFY(sawItalic);
}

void TestNotePane::richInkKeepsDrawingsAndRecordings()
{
    RichInk ink = RichInk::fromRtf(QByteArrayLiteral("{\\rtf1\\ansi Sketch}"));
    ink.setChunk(RichInk::strokesTag(), QByteArrayLiteral("\x01\x02\x03strokes"));
    ink.setChunk(RichInk::voiceTag(), QByteArrayLiteral("RIFFvoice"));
    NotePane pane;
    pane.setNoteType(1);
    pane.load(ink.toNote());
    QCOMPARE(pane.plainText(), QStringLiteral("Sketch"));
    QTextCursor cursor(pane.richEditor()->document());
    cursor.movePosition(QTextCursor::End);
    cursor.insertText(QStringLiteral(" of the garden"));
    const RichInk saved = RichInk::fromNote(pane.noteBytes());
    QVERIFY(saved.isOurs());
    QCOMPARE(saved.plainText(), QStringLiteral("Sketch of the garden"));
    QCOMPARE(saved.chunk(RichInk::strokesTag()), QByteArrayLiteral("\x01\x02\x03strokes"));
    QCOMPARE(saved.chunk(RichInk::voiceTag()), QByteArrayLiteral("RIFFvoice"));

    // The recording toolbar belongs to rich ink documents only.
    pane.setRecordingToolbarVisible(true);
    QVERIFY(pane.isRecordingToolbarVisible());
    pane.setNoteType(2);
    QVERIFY(!pane.isRecordingToolbarVisible());
    pane.setRecordingToolbarVisible(true);
    QVERIFY(!pane.isRecordingToolbarVisible());
}

void TestNotePane::emptiedNoteLeavesNoNote()
{
    for (quint16 type : {0, 1, 2}) {
        NotePane pane;
        pane.setNoteType(type);
        pane.load(type == 0 ? QByteArray("x\0\0\0", 4)
                            : (type == 1 ? RichInk::fromRtf("{\\rtf1 x}").toNote() : QByteArray("{\\rtf1 x}")));
        if (type == 0)
            pane.plainEditor()->clear();
        else
            pane.richEditor()->clear();
        QCOMPARE(pane.noteBytes(), QByteArray());
    }
    // A drawing without text stays a note.
    RichInk ink;
    ink.setChunk(RichInk::strokesTag(), QByteArrayLiteral("lines"));
    NotePane pane;
    pane.setNoteType(1);
    pane.load(ink.toNote());
    QCOMPARE(pane.plainText(), QString());
    QCOMPARE(RichInk::fromNote(pane.noteBytes()).chunk(RichInk::strokesTag()), QByteArrayLiteral("lines"));
}

void TestNotePane::formatKeys_data()
{
    QTest::addColumn<int>("key");
    QTest::newRow("Ctrl+B") << int(Qt::Key_B);
    QTest::newRow("Ctrl+I") << int(Qt::Key_I);
    QTest::newRow("Ctrl+U") << int(Qt::Key_U);
}

void TestNotePane::formatKeys()
{
    QFETCH(int, key);
    NotePane pane;
    pane.setNoteType(2);
    pane.show();
    QTextEdit *editor = pane.richEditor();
    editor->setFocus();
    QTest::keyClick(editor, Qt::Key(key), Qt::ControlModifier);
    QTest::keyClicks(editor, QStringLiteral("word"));
    const QTextCharFormat format = editor->textCursor().charFormat();
    QCOMPARE(format.fontWeight() >= QFont::Bold, key == Qt::Key_B);
    QCOMPARE(format.fontItalic(), key == Qt::Key_I);
    QCOMPARE(format.fontUnderline(), key == Qt::Key_U);
    QCOMPARE(editor->toPlainText(), QStringLiteral("word"));
}

QTEST_MAIN(TestNotePane)
#include "tst_notepane.moc"
