#pragma once

#include <QByteArray>
#include <QWidget>

class QPlainTextEdit;
class QStackedWidget;
class QTextEdit;
class QToolBar;

/// The note pane: a plain-text editor for "Plain Text" documents and a rich
/// text editor for "Rich Text" and "Rich Ink" documents. It shows the note
/// bytes of one item and gives back new bytes only when the person changed
/// the text, so a note it cannot fully represent is never rewritten unasked.
class NotePane : public QWidget {
    Q_OBJECT
public:
    explicit NotePane(QWidget *parent = nullptr);

    /// The document's NoteType (0 plain, 1 rich ink, 2 rich text).
    void setNoteType(quint16 noteType);
    quint16 noteType() const { return m_noteType; }

    /// Shows a note; an empty array is an empty note. Clears the modified flag.
    void load(const QByteArray &note);
    /// Empties and greys the pane (no item is current).
    void clear(bool enabled);
    bool isModified() const;
    void setModified(bool modified);
    /// The note bytes in the document's NoteType for what the pane shows.
    QByteArray noteBytes() const;
    QString plainText() const;

    /// The voice recording toolbar of "Rich Ink" documents.
    void setRecordingToolbarVisible(bool visible);
    bool isRecordingToolbarVisible() const;

    QPlainTextEdit *plainEditor() const { return m_plain; }
    QTextEdit *richEditor() const { return m_rich; }

Q_SIGNALS:
    void modificationChanged(bool modified);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    quint16 m_noteType = 0;
    QByteArray m_original; // the note as loaded, for what the editor does not show
    QStackedWidget *m_stack = nullptr;
    QPlainTextEdit *m_plain = nullptr;
    QTextEdit *m_rich = nullptr;
    QToolBar *m_format = nullptr;
    QToolBar *m_recording = nullptr;
};
