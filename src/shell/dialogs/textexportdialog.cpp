#include "shell/dialogs/textexportdialog.h"

#include "exchange/textexport.h"
#include "platform/messages.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QStyle>
#include <QVBoxLayout>

TextExportDialog::TextExportDialog(Kind kind, int choice, QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("textExport"));
    const char *titles[] = {"Export View", "Export All Notes", "Export Links"};
    setWindowTitle(QString::fromLatin1(titles[int(kind)]));
    auto *layout = new QVBoxLayout(this);

    auto *top = new QHBoxLayout;
    auto *icon = new QLabel(this);
    icon->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxInformation).pixmap(32, 32));
    icon->setAlignment(Qt::AlignTop);
    auto *note = new QLabel(
        QString::fromLatin1(kind == Kind::View ? Messages::ExportCurrentView : Messages::ExportDefaultView), this);
    note->setObjectName(QStringLiteral("exportNote"));
    note->setWordWrap(true);
    top->addWidget(icon);
    top->addWidget(note, 1);
    layout->addLayout(top);

    auto *form = new QFormLayout;
    m_choices = new QComboBox(this);
    m_choices->setObjectName(QStringLiteral("exportChoice"));
    if (kind == Kind::View) {
        m_choices->addItems(TextExport::indentLabels());
        form->addRow(QStringLiteral("&Indent character(s):"), m_choices);
    } else {
        m_choices->addItems(TextExport::separators());
        form->addRow(QStringLiteral("&Level separator:"), m_choices);
    }
    m_choices->setCurrentIndex(choice >= 0 && choice < m_choices->count() ? choice : 0);
    layout->addLayout(form);

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
    setMinimumWidth(380);
}

int TextExportDialog::choice() const
{
    return m_choices->currentIndex();
}
