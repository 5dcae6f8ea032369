#include "shell/dialogs/filepropertiesdialog.h"

#include "model/document.h"
#include "model/treewalker.h"
#include "rows/iconset.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QFileInfo>
#include <QFormLayout>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QVBoxLayout>

namespace {

QLabel *value(const QString &text, const char *name, QWidget *parent)
{
    auto *label = new QLabel(text, parent);
    label->setObjectName(QString::fromLatin1(name));
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->setWordWrap(true);
    return label;
}

} // namespace

FilePropertiesDialog::FilePropertiesDialog(const Document &document, QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("fileProperties"));
    setWindowTitle(QStringLiteral("File Properties"));
    const QFileInfo info(document.path);
    const QLocale locale;
    auto *layout = new QVBoxLayout(this);

    auto *head = new QHBoxLayout;
    auto *icon = new QLabel(this);
    icon->setPixmap(IconSet::instance().icon(17, 32, devicePixelRatioF()));
    auto *title = value(info.completeBaseName(), "fileName", this);
    QFont big = title->font();
    big.setPointSizeF(big.pointSizeF() * 1.3);
    big.setBold(true);
    title->setFont(big);
    head->addWidget(icon);
    head->addWidget(title, 1);
    layout->addLayout(head);
    auto *line = new QFrame(this);
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Sunken);
    layout->addWidget(line);

    int items = 0;
    int notes = 0;
    int links = 0;
    int completed = 0;
    TreeWalker walker(document.root());
    while (const Item *item = walker.next()) {
        ++items;
        notes += item->noteSize() > 0;
        links += int(item->links().size());
        completed += item->isComplete();
    }

    auto *form = new QFormLayout;
    form->addRow(QStringLiteral("Note type:"), value(Document::noteTypeName(document.noteType), "noteType", this));
    form->addRow(QStringLiteral("Location:"), value(QDir::toNativeSeparators(info.absolutePath()), "location", this));
    form->addRow(
        QStringLiteral("Modified:"),
        value(info.exists() ? locale.toString(info.lastModified(), QLocale::LongFormat) : QString(), "modified", this));
    form->addRow(QStringLiteral("Size:"),
                 value(info.exists() ? locale.formattedDataSize(info.size()) : QString(), "size", this));
    form->addRow(QStringLiteral("Password:"),
                 value(document.passwordHash.isEmpty() ? QStringLiteral("Not protected") : QStringLiteral("Protected"),
                       "protection", this));
    form->addRow(QStringLiteral("Items:"),
                 value(QStringLiteral("%1 (%2 completed)").arg(locale.toString(items), locale.toString(completed)),
                       "items", this));
    form->addRow(QStringLiteral("Notes:"), value(locale.toString(notes), "notes", this));
    form->addRow(QStringLiteral("Links:"), value(locale.toString(links), "links", this));
    layout->addLayout(form);
    layout->addStretch(1);

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    layout->addWidget(buttons);
    setMinimumWidth(400);
}
