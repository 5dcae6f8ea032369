#include "shell/dialogs/convertnotesdialog.h"

#include "model/document.h"
#include "platform/messages.h"

#include <QButtonGroup>
#include <QDialogButtonBox>
#include <QDir>
#include <QGroupBox>
#include <QLabel>
#include <QRadioButton>
#include <QVBoxLayout>

ConvertNotesDialog::ConvertNotesDialog(const QString &path, quint16 noteType, QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("convertNotes"));
    setWindowTitle(QStringLiteral("Convert Notes"));
    auto *layout = new QVBoxLayout(this);
    auto *intro = new QLabel(QString::fromLatin1(Messages::ConvertNotesIntro), this);
    intro->setWordWrap(true);
    layout->addWidget(intro);

    auto *fileBox = new QGroupBox(QStringLiteral("File to be converted:"), this);
    auto *fileLayout = new QVBoxLayout(fileBox);
    auto *file = new QLabel(QDir::toNativeSeparators(path), fileBox);
    file->setObjectName(QStringLiteral("convertFile"));
    file->setWordWrap(true);
    file->setTextInteractionFlags(Qt::TextSelectableByMouse);
    fileLayout->addWidget(file);
    layout->addWidget(fileBox);

    auto *targetBox = new QGroupBox(QStringLiteral("Notes will be converted to:"), this);
    auto *targetLayout = new QVBoxLayout(targetBox);
    m_targets = new QButtonGroup(this);
    const char *descriptions[] = {Messages::PlainTextDescription, Messages::RichInkDescription,
                                  Messages::RichTextDescription};
    for (int t = 0; t < 3; ++t) {
        auto *button = new QRadioButton(Document::noteTypeName(quint16(t)), targetBox);
        button->setObjectName(QStringLiteral("target%1").arg(t));
        m_targets->addButton(button, t);
        targetLayout->addWidget(button);
        auto *detail = new QLabel(QString::fromLatin1(descriptions[t]), targetBox);
        detail->setWordWrap(true);
        detail->setContentsMargins(24, 0, 0, 6);
        detail->setForegroundRole(QPalette::PlaceholderText);
        targetLayout->addWidget(detail);
    }
    layout->addWidget(targetBox);
    // The type the notes have now is offered too: converting to it rewrites
    // and saves every note unchanged. A different one is chosen first.
    setTarget(noteType == 0 ? 2 : 0);

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
    setMinimumWidth(440);
}

quint16 ConvertNotesDialog::target() const
{
    return quint16(std::max(0, m_targets->checkedId()));
}

void ConvertNotesDialog::setTarget(quint16 noteType)
{
    if (QAbstractButton *button = m_targets->button(noteType))
        button->setChecked(true);
}
