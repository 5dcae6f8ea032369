#include "shell/commands/viewcommands.h"

#include "model/document.h"
#include "shell/commands/commandhost.h"
#include "shell/document/documentview.h"
#include "storage/settings.h"

#include <QAction>
#include <QStyle>
#include <QWidget>

ViewCommands::ViewCommands(CommandHost *host, QObject *parent) : CommandGroup(host, parent)
{
    // How the document is shown is not undone.
    setRecordsSteps(false);
    auto open = [host] { return host->view() != nullptr; };
    auto document = [host] { return host->view()->document(); };

    const char *modeNames[] = {"actionDefaultView", "actionByCategory", "actionByDueDate", "actionByPriority"};
    const char *modeTexts[] = {"Default View", "By Category", "By Task/Due Date", "By Priority"};
    for (int m = 0; m < 4; ++m) {
        add(
            modeNames[m], QString::fromLatin1(modeTexts[m]), [host, m] { host->view()->setViewMode(quint16(m)); }, open,
            [host, document, m] { return host->view() && document()->viewMode == m; });
    }

    const struct {
        const char *name;
        const char *text;
        VisibilityFilter::Toggle toggle;
        std::function<bool(const Document &)> state;
    } toggles[] = {
        {"actionHideCompleted", "Hide Completed Items", VisibilityFilter::HideCompleted,
         [](const Document &d) { return d.hideCompleted; }},
        {"actionHideNoStatus", "No Status", VisibilityFilter::HideNoStatus,
         [](const Document &d) { return d.hideByStatus & Document::HideNoStatus; }},
        {"actionHideCheckBox", "Check Box", VisibilityFilter::HideCheckBox,
         [](const Document &d) { return d.hideByStatus & Document::HideCheckBox; }},
        {"actionHideProgressBar", "Progress Bar", VisibilityFilter::HideProgressBar,
         [](const Document &d) { return d.hideByStatus & Document::HideProgressBar; }},
        {"actionShowDueDate", "Show Due Date", VisibilityFilter::ShowDueDate,
         [](const Document &d) { return d.showDueDate; }},
        {"actionShowStatistics", "Show Statistics", VisibilityFilter::ShowStatistics,
         [](const Document &d) { return d.showStatistics; }},
    };
    for (const auto &t : toggles) {
        const VisibilityFilter::Toggle toggle = t.toggle;
        add(
            t.name, QString::fromLatin1(t.text), [host, toggle] { host->view()->toggleFilter(toggle); }, open,
            [host, document, state = t.state] { return host->view() && state(*document()); });
    }

    add(
        "actionNoteWindow", QStringLiteral("Note Window"),
        [host, document] { host->view()->setNoteWindowVisible(!document()->showNoteWindow); }, open,
        [host, document] { return host->view() && document()->showNoteWindow; });
    add(
        "actionQuickEntryBar", QStringLiteral("Quick Entry Bar"),
        [host] {
            host->view()->setQuickEntryVisible(!host->view()->isQuickEntryVisible());
            host->saveSettings();
        },
        open, [host] { return host->view() && host->view()->isQuickEntryVisible(); });
    // The recording tool bar belongs to notes that can hold recordings.
    auto richInk = [host, document] { return host->view() && document()->noteType == Document::RichInk; };
    add(
        "actionRecordingToolbar", QStringLiteral("Recording Toolbar"),
        [host] { host->view()->setRecordingToolbarVisible(!host->view()->isRecordingToolbarVisible()); },
        [richInk, document] { return richInk() && document()->showNoteWindow; },
        [richInk, host] { return richInk() && host->view()->isRecordingToolbarVisible(); });

    const QStyle *style = host->frame()->style();
    add(
        "actionExpandAll", QStringLiteral("Expand All"), [host] { host->view()->expandAll(); }, open)
        ->setIcon(QIcon::fromTheme(QStringLiteral("list-add"),
                                   style->standardIcon(QStyle::SP_ToolBarVerticalExtensionButton)));
    add(
        "actionCollapseAll", QStringLiteral("Collapse All"), [host] { host->view()->collapseAll(); }, open)
        ->setIcon(QIcon::fromTheme(QStringLiteral("list-remove"),
                                   style->standardIcon(QStyle::SP_ToolBarHorizontalExtensionButton)));
}
