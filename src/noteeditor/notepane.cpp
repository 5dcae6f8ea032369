#include "noteeditor/notepane.h"

#include "noteeditor/notecodec.h"

#include <QAction>
#include <QKeyEvent>
#include <QPlainTextEdit>
#include <QStackedWidget>
#include <QTextDocument>
#include <QTextEdit>
#include <QToolBar>
#include <QVBoxLayout>

NotePane::NotePane(QWidget *parent) : QWidget(parent)
{
    setObjectName(QStringLiteral("notePane"));
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);

    m_format = new QToolBar(this);
    m_format->setObjectName(QStringLiteral("noteFormatBar"));
    m_format->setIconSize(QSize(16, 16));
    m_recording = new QToolBar(this);
    m_recording->setObjectName(QStringLiteral("recordingToolbar"));
    m_recording->setIconSize(QSize(16, 16));

    m_stack = new QStackedWidget(this);
    m_plain = new QPlainTextEdit(m_stack);
    m_plain->setObjectName(QStringLiteral("plainNoteEditor"));
    m_plain->setPlaceholderText(QStringLiteral("Note"));
    m_rich = new QTextEdit(m_stack);
    m_rich->setObjectName(QStringLiteral("richNoteEditor"));
    m_rich->setPlaceholderText(QStringLiteral("Note"));
    m_rich->setAcceptRichText(true);
    m_stack->addWidget(m_plain);
    m_stack->addWidget(m_rich);

    auto addFormat = [this](const QString &text, const QString &tip, auto apply) {
        QAction *action = m_format->addAction(text);
        action->setObjectName(QStringLiteral("format") + text);
        action->setToolTip(tip);
        action->setCheckable(true);
        QFont f = font();
        if (text == QLatin1String("B"))
            f.setBold(true);
        if (text == QLatin1String("I"))
            f.setItalic(true);
        if (text == QLatin1String("U"))
            f.setUnderline(true);
        action->setFont(f);
        connect(action, &QAction::triggered, this, [this, apply](bool on) {
            QTextCharFormat format;
            apply(format, on);
            m_rich->mergeCurrentCharFormat(format);
        });
    };
    addFormat(QStringLiteral("B"), QStringLiteral("Bold"),
              [](QTextCharFormat &f, bool on) { f.setFontWeight(on ? QFont::Bold : QFont::Normal); });
    addFormat(QStringLiteral("I"), QStringLiteral("Italic"), [](QTextCharFormat &f, bool on) { f.setFontItalic(on); });
    addFormat(QStringLiteral("U"), QStringLiteral("Underline"),
              [](QTextCharFormat &f, bool on) { f.setFontUnderline(on); });

    // Ctrl+B, Ctrl+I and Ctrl+U format the rich note, before the window's
    // own shortcuts of those keys.
    m_rich->installEventFilter(this);

    for (const char *name : {"Record", "Stop", "Play"}) {
        QAction *action = m_recording->addAction(QString::fromLatin1(name));
        // Voice clips are kept with the note, but this computer has no
        // recorder for them yet.
        action->setEnabled(false);
    }
    m_recording->hide();

    // The buttons follow the format at the cursor.
    connect(m_rich, &QTextEdit::currentCharFormatChanged, this, [this](const QTextCharFormat &format) {
        if (QAction *bold = m_format->findChild<QAction *>(QStringLiteral("formatB")))
            bold->setChecked(format.fontWeight() >= QFont::Bold);
        if (QAction *italic = m_format->findChild<QAction *>(QStringLiteral("formatI")))
            italic->setChecked(format.fontItalic());
        if (QAction *underline = m_format->findChild<QAction *>(QStringLiteral("formatU")))
            underline->setChecked(format.fontUnderline());
    });

    layout->addWidget(m_format);
    layout->addWidget(m_recording);
    layout->addWidget(m_stack);
    connect(m_plain->document(), &QTextDocument::modificationChanged, this, &NotePane::modificationChanged);
    connect(m_rich->document(), &QTextDocument::modificationChanged, this, &NotePane::modificationChanged);
    setNoteType(0);
}

void NotePane::setNoteType(quint16 noteType)
{
    m_noteType = noteType;
    m_stack->setCurrentIndex(noteType == 0 ? 0 : 1);
    m_format->setVisible(noteType != 0);
    if (noteType != 1)
        m_recording->hide();
}

void NotePane::load(const QByteArray &note)
{
    setEnabled(true);
    m_original = note;
    if (m_noteType == 0) {
        NoteCodec::read(note, 0, m_plain->document());
        m_plain->moveCursor(QTextCursor::Start);
        m_plain->document()->setModified(false);
    } else {
        NoteCodec::read(note, m_noteType, m_rich->document());
        m_rich->moveCursor(QTextCursor::Start);
        m_rich->document()->setModified(false);
    }
}

void NotePane::clear(bool enabled)
{
    m_original.clear();
    m_plain->clear();
    m_rich->clear();
    setModified(false);
    setEnabled(enabled);
}

bool NotePane::isModified() const
{
    return m_noteType == 0 ? m_plain->document()->isModified() : m_rich->document()->isModified();
}

void NotePane::setModified(bool modified)
{
    m_plain->document()->setModified(modified);
    m_rich->document()->setModified(modified);
}

QByteArray NotePane::noteBytes() const
{
    return NoteCodec::write(m_noteType == 0 ? m_plain->document() : m_rich->document(), m_noteType, m_original);
}

QString NotePane::plainText() const
{
    return m_noteType == 0 ? m_plain->toPlainText() : m_rich->toPlainText();
}

void NotePane::setRecordingToolbarVisible(bool visible)
{
    m_recording->setVisible(visible && m_noteType == 1);
}

bool NotePane::isRecordingToolbarVisible() const
{
    return !m_recording->isHidden();
}

bool NotePane::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_rich && (event->type() == QEvent::ShortcutOverride || event->type() == QEvent::KeyPress)) {
        auto *key = static_cast<QKeyEvent *>(event);
        const char *name = nullptr;
        if (key->modifiers() == Qt::ControlModifier) {
            if (key->key() == Qt::Key_B)
                name = "formatB";
            else if (key->key() == Qt::Key_I)
                name = "formatI";
            else if (key->key() == Qt::Key_U)
                name = "formatU";
        }
        if (name) {
            if (event->type() == QEvent::ShortcutOverride) {
                event->accept();
                return true;
            }
            if (QAction *action = m_format->findChild<QAction *>(QString::fromLatin1(name)))
                action->trigger();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}
