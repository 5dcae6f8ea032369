#include "noteeditor/notepane.h"
#include "notes/richink.h"
#include "notes/rtfreader.h"

#include <QPlainTextEdit>
#include <QTest>
#include <QTextCursor>
#include <QTextEdit>

// The note pane loads a note of each type, edits it, and gives back bytes that keep what it does not show.
class TestNotePane : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void plainText()
    {
        NotePane pane;
        pane.setNoteType(0);
        pane.load(QByteArray("H\0i\0\0\0", 6)); // UTF-16LE with its terminating zero unit
        QVERIFY(!pane.isModified());
        QTest::keyClicks(pane.plainEditor(), QStringLiteral("!"));
        QVERIFY(pane.isModified());
        QCOMPARE(pane.noteBytes(), QByteArray("!\0H\0i\0\0\0", 8));
        // An emptied note leaves no note.
        pane.plainEditor()->clear();
        QCOMPARE(pane.noteBytes(), QByteArray());
        pane.load(QByteArray());
        QVERIFY(!pane.isModified());
    }

    void richTextKeepsFormatting()
    {
        NotePane pane;
        pane.setNoteType(2);
        QVERIFY(pane.richEditor()->isVisibleTo(&pane) && !pane.plainEditor()->isVisibleTo(&pane));
        pane.load(QByteArrayLiteral("{\\rtf1\\ansi plain {\\b bold} caf\\'e9}"));
        QTextCursor cursor(pane.richEditor()->document());
        cursor.movePosition(QTextCursor::End);
        QTextCharFormat italic;
        italic.setFontItalic(true);
        cursor.insertText(QStringLiteral(" \u20ac"), italic);
        const RichText back = RtfReader::read(pane.noteBytes());
        QCOMPARE(back.plainText(), QStringLiteral("plain bold caf\u00e9 \u20ac"));
        QStringList runs;
        for (const RichText::Run &run : back.paragraphs.front().runs)
            runs.append(run.text.trimmed() + (run.format.bold ? "/b" : "") + (run.format.italic ? "/i" : ""));
        QVERIFY2(runs.contains(QStringLiteral("bold/b")) && runs.contains(QStringLiteral("\u20ac/i")),
                 qPrintable(runs.join(QLatin1Char('|'))));
        pane.richEditor()->clear();
        QCOMPARE(pane.noteBytes(), QByteArray());
    }

    void richInkKeepsDrawingsAndRecordings()
    {
        RichInk ink = RichInk::fromRtf(QByteArrayLiteral("{\\rtf1\\ansi Sketch}"));
        ink.setChunk(RichInk::strokesTag(), QByteArrayLiteral("\x01\x02\x03strokes"));
        ink.setChunk(RichInk::voiceTag(), QByteArrayLiteral("RIFFvoice"));
        NotePane pane;
        pane.setNoteType(1);
        pane.load(ink.toNote());
        QTextCursor cursor(pane.richEditor()->document());
        cursor.movePosition(QTextCursor::End);
        cursor.insertText(QStringLiteral(" of the garden"));
        const RichInk saved = RichInk::fromNote(pane.noteBytes());
        QCOMPARE(saved.plainText(), QStringLiteral("Sketch of the garden"));
        QCOMPARE(saved.chunk(RichInk::strokesTag()), QByteArrayLiteral("\x01\x02\x03strokes"));
        QCOMPARE(saved.chunk(RichInk::voiceTag()), QByteArrayLiteral("RIFFvoice"));
        // A drawing without text stays a note once its text is cleared.
        pane.richEditor()->clear();
        QCOMPARE(RichInk::fromNote(pane.noteBytes()).chunk(RichInk::voiceTag()), QByteArrayLiteral("RIFFvoice"));
        // The recording toolbar belongs to rich ink notes only.
        pane.setRecordingToolbarVisible(true);
        QVERIFY(pane.isRecordingToolbarVisible());
        pane.setNoteType(2);
        QVERIFY(!pane.isRecordingToolbarVisible());
    }

    void formatKeys()
    {
        for (Qt::Key key : {Qt::Key_B, Qt::Key_I, Qt::Key_U}) {
            NotePane pane;
            pane.setNoteType(2);
            pane.show();
            QTextEdit *editor = pane.richEditor();
            editor->setFocus();
            QTest::keyClick(editor, key, Qt::ControlModifier);
            QTest::keyClicks(editor, QStringLiteral("word"));
            const QTextCharFormat format = editor->textCursor().charFormat();
            QCOMPARE(format.fontWeight() >= QFont::Bold, key == Qt::Key_B);
            QCOMPARE(format.fontItalic(), key == Qt::Key_I);
            QCOMPARE(format.fontUnderline(), key == Qt::Key_U);
        }
    }
};

QTEST_MAIN(TestNotePane)
#include "tst_notepane.moc"
