#include "shell/commands/findcommands.h"

#include "model/document.h"
#include "model/item.h"
#include "platform/messages.h"
#include "shell/commands/commandhost.h"
#include "shell/commands/templatecommands.h"
#include "shell/dialogs/finddialog.h"
#include "shell/dialogs/searchresultsdialog.h"
#include "shell/document/documentview.h"
#include "shell/widgets/prompts.h"
#include "shell/widgets/waitcursor.h"
#include "storage/settings.h"
#include "views/finder.h"
#include "views/visibilityfilter.h"

#include <QAction>

FindCommands::FindCommands(CommandHost *host, TemplateCommands *templates, QObject *parent)
    : CommandGroup(host, parent), m_templates(templates)
{
    setRecordsSteps(false);
    add(
        "actionFindItem", QStringLiteral("Find Item..."), [this] { find(); }, [host] { return host->view(); })
        ->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_F));
    add(
        "actionFindResult", QStringLiteral("Find Result..."), [this] { showResult(); }, [this] { return hasResult(); });
}

bool FindCommands::hasResult() const
{
    return m_resultView && m_resultView == m_host->view() && !m_results.empty();
}

void FindCommands::find()
{
    DocumentView *view = m_host->view();
    Settings &settings = m_host->settings();
    FindCriteria preset = m_criteria;
    preset.caseInsensitive = settings.testFlag(Settings::CaseInsensitiveFind);
    FindDialog dialog(preset, m_templates->categories(), view);
    if (m_host->prompts()->runDialog(&dialog) != QDialog::Accepted)
        return;
    m_criteria = dialog.criteria();
    if (m_criteria.caseInsensitive != settings.testFlag(Settings::CaseInsensitiveFind)) {
        settings.setFlag(Settings::CaseInsensitiveFind, m_criteria.caseInsensitive);
        m_host->saveSettings();
    }
    std::vector<Item *> found;
    {
        WaitCursor wait;
        found = Finder::search(*view->document(), m_criteria);
    }
    m_results.clear();
    for (const Item *item : found)
        m_results.push_back(item->handle());
    m_resultView = view;
    if (found.empty()) {
        m_host->prompts()->message(view, Prompts::Icon::Information, QString::fromLatin1(Messages::NoMatch));
        return;
    }
    showResult();
}

void FindCommands::showResult()
{
    // Matches deleted or hidden since the search are left out.
    DocumentView *view = m_host->view();
    const Document &document = *view->document();
    const VisibilityFilter filter(document);
    std::vector<Item *> items;
    for (quint32 handle : m_results) {
        Item *item = document.liveItem(handle);
        if (item && filter.isShown(item))
            items.push_back(item);
    }
    if (items.empty()) {
        m_results.clear();
        m_host->prompts()->message(view, Prompts::Icon::Information, QString::fromLatin1(Messages::NoMatch));
        return;
    }
    SearchResultsDialog dialog(items, view);
    if (m_host->prompts()->runDialog(&dialog) != QDialog::Accepted)
        return;
    if (Item *chosen = dialog.chosen())
        view->refresh(chosen);
}
