#include "shell/dialogs/templatesdialog.h"

#include "model/document.h"
#include "platform/messages.h"
#include "rows/iconset.h"
#include "shell/dialogs/templatenamedialog.h"
#include "shell/widgets/prompts.h"
#include "storage/templatefile.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {

} // namespace

TemplatesDialog::TemplatesDialog(TemplateFile *templates, const QString &path,
                                 const ItemPropertiesDialog::Context &context, QWidget *parent)
    : QDialog(parent), m_templates(templates), m_path(path), m_context(context)
{
    setObjectName(QStringLiteral("itemTemplates"));
    setWindowTitle(QStringLiteral("Item Templates"));
    auto *layout = new QVBoxLayout(this);
    auto *intro = new QLabel(QStringLiteral("Templates give new items their attributes and note. A template is "
                                            "offered to documents of its note type."),
                             this);
    intro->setWordWrap(true);
    layout->addWidget(intro);

    auto *row = new QHBoxLayout;
    m_list = new QTreeWidget(this);
    m_list->setObjectName(QStringLiteral("templateList"));
    m_list->setHeaderLabels({QStringLiteral("Template"), QStringLiteral("Note type")});
    m_list->setRootIsDecorated(false);
    m_list->setUniformRowHeights(true);
    m_list->setIconSize(QSize(16, 16));
    m_list->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    m_list->header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    m_list->header()->setStretchLastSection(false);
    row->addWidget(m_list, 1);

    auto *buttons = new QVBoxLayout;
    auto *add = new QPushButton(QStringLiteral("&New..."), this);
    add->setObjectName(QStringLiteral("newTemplate"));
    m_edit = new QPushButton(QStringLiteral("&Edit..."), this);
    m_edit->setObjectName(QStringLiteral("editTemplate"));
    m_delete = new QPushButton(QStringLiteral("&Delete"), this);
    m_delete->setObjectName(QStringLiteral("deleteTemplate"));
    connect(add, &QPushButton::clicked, this, &TemplatesDialog::addTemplate);
    connect(m_edit, &QPushButton::clicked, this, &TemplatesDialog::editSelected);
    connect(m_delete, &QPushButton::clicked, this, &TemplatesDialog::deleteSelected);
    buttons->addWidget(add);
    buttons->addWidget(m_edit);
    buttons->addWidget(m_delete);
    buttons->addStretch(1);
    row->addLayout(buttons);
    layout->addLayout(row, 1);

    auto *close = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(close, &QDialogButtonBox::rejected, this, &QDialog::accept);
    layout->addWidget(close);

    connect(m_list, &QTreeWidget::currentItemChanged, this, &TemplatesDialog::updateButtons);
    connect(m_list, &QTreeWidget::itemActivated, this, &TemplatesDialog::editSelected);
    showList(0);
    resize(440, 360);
}

void TemplatesDialog::showList(int select)
{
    m_list->clear();
    const qreal dpr = devicePixelRatioF();
    for (int i = 0; i < m_templates->count(); ++i) {
        const Template *entry = m_templates->at(i);
        auto *row = new QTreeWidgetItem(m_list);
        row->setText(0, entry->templateName());
        row->setIcon(0, QIcon(IconSet::instance().icon(entry->image(), 16, dpr)));
        const quint16 type = entry->templateNoteType();
        row->setText(1, type <= Document::RichText ? Document::noteTypeName(type) : QString());
    }
    if (select >= 0 && select < m_list->topLevelItemCount())
        m_list->setCurrentItem(m_list->topLevelItem(select));
    updateButtons();
}

void TemplatesDialog::updateButtons()
{
    const bool selected = m_list->currentItem() != nullptr;
    m_edit->setEnabled(selected);
    m_delete->setEnabled(selected);
}

bool TemplatesDialog::editProperties(Template *entry)
{
    ItemPropertiesDialog::Context context = m_context;
    context.forTemplate = true;
    context.noteType = entry->templateNoteType();
    context.templates.clear();
    ItemPropertiesDialog dialog(context, entry, false, this);
    dialog.setWindowTitle(QStringLiteral("Template: %1").arg(entry->templateName()));
    if (m_context.prompts->runDialog(&dialog) != QDialog::Accepted)
        return false;
    dialog.store();
    return true;
}

void TemplatesDialog::save()
{
    QString error;
    if (!m_templates->save(m_path, &error))
        m_context.prompts->message(this, Prompts::Icon::Stop, Prompts::withReason(Messages::SaveFailed, error));
}

void TemplatesDialog::addTemplate()
{
    TemplateNameDialog naming(QString(), m_context.document->noteType, false, m_context.prompts, this);
    if (m_context.prompts->runDialog(&naming) != QDialog::Accepted)
        return;
    auto entry = std::make_unique<Template>(naming.noteType());
    entry->setTemplateName(naming.name());
    if (!editProperties(entry.get()))
        return;
    if (!m_templates->addNew(std::move(entry)))
        return;
    save();
    showList(m_templates->count() - 1);
}

void TemplatesDialog::editSelected()
{
    const int index = m_list->indexOfTopLevelItem(m_list->currentItem());
    if (index < 0 || index >= m_templates->count())
        return;
    std::unique_ptr<Template> copy(m_templates->at(index)->clone());
    TemplateNameDialog naming(copy->templateName(), copy->templateNoteType(), true, m_context.prompts, this);
    if (m_context.prompts->runDialog(&naming) != QDialog::Accepted)
        return;
    copy->setTemplateName(naming.name());
    if (!editProperties(copy.get()))
        return;
    m_templates->replace(index, std::move(copy));
    save();
    showList(index);
}

void TemplatesDialog::deleteSelected()
{
    const int index = m_list->indexOfTopLevelItem(m_list->currentItem());
    if (index < 0 || index >= m_templates->count())
        return;
    if (!m_context.prompts->askYesNo(this, m_templates->deleteQuestion(index)))
        return;
    m_templates->remove(index);
    save();
    showList(std::min(index, m_templates->count() - 1));
}
