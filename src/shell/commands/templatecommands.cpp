#include "shell/commands/templatecommands.h"

#include "model/document.h"
#include "rows/iconset.h"
#include "shell/commands/commandhost.h"
#include "shell/dialogs/templatesdialog.h"
#include "shell/document/documentview.h"
#include "shell/widgets/calendaraccess.h"
#include "shell/widgets/prompts.h"
#include "shell/widgets/waitcursor.h"
#include "storage/settings.h"
#include "storage/templatefile.h"

#include <QAction>
#include <QDir>
#include <QFileInfo>
#include <QMenu>

TemplateCommands::TemplateCommands(CommandHost *host, QObject *parent) : CommandGroup(host, parent)
{
    auto open = [host] { return host->view() != nullptr; };
    QAction *newItem = add(
        "actionNew", QStringLiteral("New"), [this] { this->newItem(nullptr); }, open);
    newItem->setShortcuts({QKeySequence(Qt::CTRL | Qt::Key_N), QKeySequence(Qt::CTRL | Qt::Key_I)});
    newItem->setToolTip(QStringLiteral("New (Ctrl+N)"));
    add(
        "actionItemTemplates", QStringLiteral("Item Templates..."), [this] { itemTemplates(); }, open);

    m_newMenu = new QMenu(host->frame());
    m_newMenu->setObjectName(QStringLiteral("menuNew"));
    connect(m_newMenu, &QMenu::aboutToShow, this, &TemplateCommands::fillNewMenu);
}

TemplateCommands::~TemplateCommands() = default;

QString TemplateCommands::templateFilePath() const
{
    const QString path = m_host->settings().templateFile;
    if (path == Settings::defaultTemplateFile())
        return QDir(m_host->documentsFolder()).filePath(QFileInfo(path).fileName());
    return path;
}

TemplateFile &TemplateCommands::templates()
{
    const QString path = templateFilePath();
    if (!m_templates || m_templatesPath != path) {
        m_templates = std::make_unique<TemplateFile>();
        // A missing file is made empty; a damaged one gives what it holds
        // before the damage.
        m_templates->load(path);
        m_templatesPath = path;
    }
    return *m_templates;
}

QStringList TemplateCommands::categories() const
{
    return CalendarAccess::categories(*m_host->view()->document(), m_host->settings());
}

ItemPropertiesDialog::Context TemplateCommands::propertiesContext()
{
    ItemPropertiesDialog::Context context;
    context.document = m_host->view()->document();
    context.prompts = m_host->prompts();
    context.documentsFolder = m_host->documentsFolder();
    context.categories = categories();
    context.favouriteIcons = m_host->settings().favIcons;
    // Templates of the document's note type can fill a new item or an edited
    // one.
    for (const TemplateFile::MenuEntry &entry : templates().menu(context.document->noteType))
        context.templates.append({entry.name, templates().at(entry.index)});
    return context;
}

void TemplateCommands::viewOpened()
{
    updateNewMenu();
}

void TemplateCommands::updateNewMenu()
{
    DocumentView *view = m_host->view();
    const bool offered = view && !templates().menu(view->document()->noteType).empty();
    action(QStringLiteral("actionNew"))->setMenu(offered ? m_newMenu : static_cast<QMenu *>(nullptr));
}

void TemplateCommands::fillNewMenu()
{
    m_newMenu->clear();
    auto addEntry = [this](int command, const QString &text, const QIcon &icon, const Template *templ) {
        // A template's entry is named by its command number, its place in the
        // whole list.
        QAction *entry = m_newMenu->addAction(icon, text);
        entry->setObjectName(QStringLiteral("action%1").arg(command));
        connect(entry, &QAction::triggered, this, [this, templ] {
            newItem(templ);
            m_host->updateActions();
        });
    };
    addEntry(TemplateFile::BlankCommand, QStringLiteral("New Item..."), QIcon(), nullptr);
    m_newMenu->addSeparator();
    if (DocumentView *view = m_host->view()) {
        for (const TemplateFile::MenuEntry &entry : templates().menu(view->document()->noteType))
            addEntry(entry.command, entry.name,
                     QIcon(IconSet::instance().icon(templates().at(entry.index)->image(), 16)),
                     templates().at(entry.index));
    }
}

void TemplateCommands::newItem(const Template *templ)
{
    DocumentView *view = m_host->view();
    view->commitEdits();
    auto item = std::make_unique<Item>();
    ItemPropertiesDialog dialog(propertiesContext(), item.get(), true, view);
    if (templ)
        dialog.applyTemplate(*templ);
    if (m_host->prompts()->runDialog(&dialog) != QDialog::Accepted)
        return;
    Item *added = item.release();
    {
        WaitCursor wait;
        dialog.store();
        Editing::insertItem(*view->document(), added, dialog.position());
    }
    view->edited(ItemHost::Edit::ReminderChanged, added);
    view->refresh(dialog.followedLink() ? dialog.followedLink() : added);
}

void TemplateCommands::itemTemplates()
{
    TemplatesDialog dialog(&templates(), templateFilePath(), propertiesContext(), m_host->view());
    m_host->prompts()->runDialog(&dialog);
    updateNewMenu();
}
