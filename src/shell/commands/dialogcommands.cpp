#include "shell/commands/dialogcommands.h"

#include "exchange/itemexport.h"
#include "notes/noteconverter.h"
#include "exchange/textexport.h"
#include "exchange/textimport.h"
#include "exchange/xmlexport.h"
#include "views/categorylist.h"
#include "model/childorder.h"
#include "model/document.h"
#include "model/progress.h"
#include "noteeditor/notepane.h"
#include "platform/messages.h"
#include "rows/iconset.h"
#include "shell/dialogs/applyattributesdialog.h"
#include "shell/document/branchview.h"
#include "shell/commands/commandids.h"
#include "shell/dialogs/convertnotesdialog.h"
#include "shell/document/documentview.h"
#include "shell/dialogs/externalnoteeditor.h"
#include "shell/dialogs/filepropertiesdialog.h"
#include "shell/dialogs/finddialog.h"
#include "shell/dialogs/itemexportdialog.h"
#include "shell/dialogs/itempropertiesdialog.h"
#include "shell/app/mainwindow.h"
#include "shell/widgets/nodetree.h"
#include "shell/dialogs/optionsdialog.h"
#include "shell/dialogs/passworddialog.h"
#include "shell/widgets/prompts.h"
#include "shell/dialogs/searchresultsdialog.h"
#include "shell/dialogs/templatesdialog.h"
#include "shell/dialogs/textexportdialog.h"
#include "shell/widgets/toolbaricons.h"
#include "shell/document/treepane.h"
#include "shell/widgets/waitcursor.h"
#include "storage/documentfile.h"
#include "storage/password.h"
#include "storage/templatefile.h"
#include "views/applyattributes.h"
#include "views/finder.h"
#include "views/visibilityfilter.h"

#include <QAction>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QMenu>
#include <QUrl>

DialogCommands::DialogCommands(MainWindow *window) : QObject(window), m_window(window)
{
    using namespace CommandId;
    const std::pair<int, QIcon> icons[] = {{ModifyItem, ToolbarIcons::modifyItem()},
                                           {ModifyNote, ToolbarIcons::modifyNote()},
                                           {CommandId::Links, ToolbarIcons::links()},
                                           {CommandId::BranchView, ToolbarIcons::branchView()}};
    for (const auto &[id, icon] : icons) {
        if (QAction *action = window->commandAction(id))
            action->setIcon(icon);
    }
    auto *help = new QAction(QStringLiteral("Help"), window);
    help->setObjectName(QStringLiteral("actionHelp"));
    help->setShortcut(QKeySequence::HelpContents);
    help->setShortcutContext(Qt::ApplicationShortcut);
    connect(help, &QAction::triggered, this, &DialogCommands::showHelp);
    window->addAction(help);

    connect(window, &MainWindow::viewOpened, this, &DialogCommands::install);

    m_newMenu = new QMenu(window);
    m_newMenu->setObjectName(QStringLiteral("menuNew"));
    connect(m_newMenu, &QMenu::aboutToShow, this, [this] {
        m_newMenu->clear();
        auto addEntry = [this](int command, const QString &text, const QIcon &icon) {
            QAction *action = m_newMenu->addAction(icon, text);
            action->setObjectName(QStringLiteral("action%1").arg(command));
            action->setData(command);
            connect(action, &QAction::triggered, this, [this, command] { m_window->runCommand(command); });
        };
        addEntry(TemplateFile::BlankCommand, QStringLiteral("New Item..."), QIcon());
        m_newMenu->addSeparator();
        if (!m_view)
            return;
        for (const TemplateFile::MenuEntry &entry : templates().menu(m_view->document()->noteType))
            addEntry(entry.command, entry.name,
                     QIcon(IconSet::instance().icon(templates().at(entry.index)->image(), 16)));
    });
}

DialogCommands::~DialogCommands() = default;

QString DialogCommands::templateFilePath() const
{
    // The default file lies in the documents folder that the shell shows.
    const QString path = settings().templateFile;
    if (path == Settings::defaultTemplateFile())
        return QDir(m_window->documentsFolder()).filePath(QFileInfo(path).fileName());
    return path;
}

TemplateFile &DialogCommands::templates()
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

void DialogCommands::install(DocumentView *view)
{
    using namespace CommandId;
    m_view = view;
    m_results.clear();
    m_hasResult = false;
    auto hasItem = [this] { return currentItem() != nullptr; };

    view->setCommand(
        ModifyItem, [this] { editItem(ItemPropertiesDialog::GeneralPage); }, hasItem);
    view->setCommand(
        ModifyNote, [this] { editItem(ItemPropertiesDialog::NotePage); }, hasItem);
    view->setCommand(
        CommandId::Links, [this] { editItem(ItemPropertiesDialog::LinkPage); }, hasItem);
    view->setCommand(New, [this] { newItem(nullptr); });
    view->setCommand(ItemTemplates, [this] { itemTemplates(); });
    view->setCommand(TemplateFile::BlankCommand, [this] { newItem(nullptr); });
    view->setCommand(ExportItems, [this] { exportItems(); });
    view->setCommand(
        CommandId::BranchView, [this] { branchView(); },
        [this] { return currentItem() && m_view->document()->viewMode == Document::DefaultView; });
    view->setCommand(FindItem, [this] { find(); });
    view->setCommand(
        FindResult, [this] { showSearchResult(); }, [this] { return m_hasResult; });
    view->setCommand(CommandId::ApplyAttributes, [this] { applyAttributes(); });
    view->setCommand(Options, [this] { options(); });
    view->setCommand(SetPassword, [this] { setPassword(); });
    view->setCommand(FileProperties, [this] { fileProperties(); });
    view->setCommand(ConvertNotes, [this] { convertNotes(); });
    view->setCommand(ImportFile, [this] { importFile(); });
    view->setCommand(ExportView, [this] { exportText(ExportView); });
    view->setCommand(ExportNotes, [this] { exportText(ExportNotes); });
    view->setCommand(ExportLinks, [this] { exportText(ExportLinks); });
    view->setCommand(ExportXml, [this] { exportXml(); });

    updateTemplateCommands();
    // The document list's "New" makes documents: no template menu there.
    // (The action is held by a guard: the view may go while the window is
    // being taken down.)
    connect(view, &QObject::destroyed, this, [action = QPointer<QAction>(m_window->commandAction(New))] {
        if (action)
            action->setMenu(static_cast<QMenu *>(nullptr));
    });
}

void DialogCommands::updateTemplateCommands()
{
    // A template's command is its place in the whole list; it is offered
    // while the template is one of the menu's.
    for (int index = 0; index < templates().count(); ++index) {
        const int command = TemplateFile::FirstCommand + index;
        m_view->setCommand(
            command, [this, command] { newItem(templates().forCommand(command)); },
            [this, command] {
                for (const TemplateFile::MenuEntry &entry : templates().menu(m_view->document()->noteType)) {
                    if (entry.command == command)
                        return true;
                }
                return false;
            });
    }
    updateNewMenu();
}

void DialogCommands::updateNewMenu()
{
    QAction *action = m_window->commandAction(CommandId::New);
    if (!action || !m_view)
        return;
    const bool offered = !templates().menu(m_view->document()->noteType).empty();
    action->setMenu(offered ? m_newMenu : static_cast<QMenu *>(nullptr));
}

Prompts *DialogCommands::prompts() const
{
    return m_window->prompts();
}

Settings &DialogCommands::settings() const
{
    return m_window->settings();
}

TreeNode *DialogCommands::currentNode() const
{
    return m_view ? m_view->treePane()->currentNode() : nullptr;
}

Item *DialogCommands::currentItem() const
{
    TreeNode *node = currentNode();
    return node ? node->asItem() : nullptr;
}

QStringList DialogCommands::categories() const
{
    // The calendar's categories join here once a calendar store is set up.
    return CategoryList::fill(*m_view->document(), settings().testFlag(Settings::CalendarCategories), {});
}

ItemPropertiesDialog::Context DialogCommands::propertiesContext()
{
    ItemPropertiesDialog::Context context;
    context.document = m_view->document();
    context.prompts = prompts();
    context.documentsFolder = m_window->documentsFolder();
    context.categories = categories();
    context.favouriteIcons = settings().favIcons;
    // Templates of the document's note type can fill a new item or an edited
    // one.
    for (const TemplateFile::MenuEntry &entry : templates().menu(context.document->noteType))
        context.templates.append({entry.name, templates().at(entry.index)});
    return context;
}

void DialogCommands::select(TreeNode *node)
{
    m_view->refresh(node);
}

// ---- item properties

void DialogCommands::editItem(int page)
{
    Item *item = currentItem();
    if (!item)
        return;
    m_view->commitEdits();
    Document *document = m_view->document();
    if (page == ItemPropertiesDialog::NotePage && settings().testFlag(Settings::ExternalRichEditor) &&
        document->noteType != Document::PlainText) {
        editNoteExternally(item);
        return;
    }
    ItemPropertiesDialog dialog(propertiesContext(), item, false, m_view);
    dialog.setPage(page);
    if (prompts()->runDialog(&dialog) != QDialog::Accepted)
        return;
    {
        WaitCursor wait;
        dialog.store();
    }
    m_view->notePane()->load(item->note());
    select(dialog.followedLink() ? dialog.followedLink() : item);
}

void DialogCommands::editNoteExternally(Item *item)
{
    QByteArray note = item->note();
    if (ExternalNoteEditor::edit(m_view, prompts(), &note, m_view->document()->noteType) !=
        ExternalNoteEditor::Result::Updated)
        return;
    item->setNote(note);
    m_view->notePane()->load(item->note());
}

void DialogCommands::newItem(const Template *templ)
{
    m_view->commitEdits();
    Document *document = m_view->document();
    auto item = std::make_unique<Item>();
    ItemPropertiesDialog dialog(propertiesContext(), item.get(), true, m_view);
    if (templ)
        dialog.applyTemplate(*templ);
    if (prompts()->runDialog(&dialog) != QDialog::Accepted)
        return;
    Item *added = item.release();
    {
        WaitCursor wait;
        dialog.store();
        Editing::insertItem(*document, added, dialog.position());
    }
    select(dialog.followedLink() ? dialog.followedLink() : added);
}

bool DialogCommands::editProperties(Item *item, QWidget *parent)
{
    ItemPropertiesDialog dialog(propertiesContext(), item, false, parent);
    if (prompts()->runDialog(&dialog) != QDialog::Accepted)
        return false;
    WaitCursor wait;
    dialog.store();
    return true;
}

void DialogCommands::branchView()
{
    Item *item = currentItem();
    if (!item)
        return;
    m_view->commitEdits();
    Document *document = m_view->document();
    const quint32 top = item->handle();
    // The main list rebuilds its rows after every change made in the branch
    // view, so that none of them names an item deleted there.
    auto mainListFollows = [this, document, top] {
        Item *branchTop = document->liveItem(top);
        m_view->refresh(branchTop ? static_cast<TreeNode *>(branchTop) : document->current());
    };
    ::BranchView branch(document, item, &settings(), prompts(), &m_view->clip(), m_view);
    branch.setAfterChange(mainListFollows);
    branch.setPropertiesEditor([this, &branch](Item *edited) { return editProperties(edited, &branch); });
    prompts()->runDialog(&branch);
    mainListFollows();
}

void DialogCommands::itemTemplates()
{
    TemplatesDialog dialog(&templates(), templateFilePath(), propertiesContext(), m_view);
    prompts()->runDialog(&dialog);
    updateTemplateCommands();
}

// ---- find

void DialogCommands::find()
{
    FindCriteria preset = m_criteria;
    preset.caseInsensitive = settings().testFlag(Settings::CaseInsensitiveFind);
    FindDialog dialog(preset, categories(), m_view);
    if (prompts()->runDialog(&dialog) != QDialog::Accepted)
        return;
    m_criteria = dialog.criteria();
    if (m_criteria.caseInsensitive != settings().testFlag(Settings::CaseInsensitiveFind)) {
        settings().setFlag(Settings::CaseInsensitiveFind, m_criteria.caseInsensitive);
        m_window->saveSettings();
    }
    std::vector<Item *> found;
    {
        WaitCursor wait;
        found = Finder::search(*m_view->document(), m_criteria);
    }
    m_results.clear();
    for (const Item *item : found)
        m_results.push_back(item->handle());
    m_hasResult = !found.empty();
    if (found.empty()) {
        prompts()->message(m_view, Prompts::Icon::Information, QString::fromLatin1(Messages::NoMatch));
        return;
    }
    showSearchResult();
}

void DialogCommands::showSearchResult()
{
    // Matches deleted or hidden since the search are left out.
    const Document &document = *m_view->document();
    const VisibilityFilter filter(document);
    std::vector<Item *> items;
    for (quint32 handle : m_results) {
        Item *item = document.liveItem(handle);
        if (item && filter.isShown(item))
            items.push_back(item);
    }
    if (items.empty()) {
        m_hasResult = false;
        prompts()->message(m_view, Prompts::Icon::Information, QString::fromLatin1(Messages::NoMatch));
        return;
    }
    SearchResultsDialog dialog(items, m_view);
    if (prompts()->runDialog(&dialog) != QDialog::Accepted)
        return;
    if (Item *chosen = dialog.chosen())
        select(chosen);
}

// ---- apply attributes, options, password, file

void DialogCommands::applyAttributes()
{
    TreeNode *node = currentNode();
    Document *document = m_view->document();
    if (!node || !node->hasChildren() || document->viewMode != Document::DefaultView)
        return;
    ApplyAttributesDialog dialog(categories(), settings().favIcons, prompts(), m_view);
    if (prompts()->runDialog(&dialog) != QDialog::Accepted)
        return;
    AttributeSet set = dialog.attributes();
    if (set.has(AttributeSet::Category))
        set.category = document->collectCategory(set.category);
    {
        WaitCursor wait;
        ApplyAttributes::apply(node, set);
    }
    select(node);
}

void DialogCommands::options()
{
    OptionsDialog dialog(settings(), prompts(), m_view);
    if (prompts()->runDialog(&dialog) != QDialog::Accepted)
        return;
    settings() = dialog.settings();
    m_window->saveSettings();
    m_view->applySettings();
}

void DialogCommands::setPassword()
{
    PasswordDialog dialog(m_view->document(), prompts(), m_view);
    prompts()->runDialog(&dialog);
}

void DialogCommands::fileProperties()
{
    m_view->commitEdits();
    FilePropertiesDialog dialog(*m_view->document(), m_view);
    prompts()->runDialog(&dialog);
}

void DialogCommands::convertNotes()
{
    Document *document = m_view->document();
    ConvertNotesDialog dialog(document->path, document->noteType, m_view);
    if (prompts()->runDialog(&dialog) != QDialog::Accepted)
        return;
    if (document->noteType != Document::PlainText &&
        !prompts()->askWarningYesNo(m_view, QString::fromLatin1(Messages::AskConvertNotes)))
        return;
    m_view->commitEdits();
    bool converted = false;
    {
        WaitCursor wait;
        converted = NoteConverter().convertDocument(*document, dialog.target());
    }
    // The conversion is all or nothing: after a failure the document is as it
    // was, so closing it keeps the file as it was too.
    if (converted && !m_view->save())
        return;
    m_window->closeDocument();
    if (converted)
        prompts()->message(m_window, Prompts::Icon::Information, QString::fromLatin1(Messages::NoteConversionDone));
    else
        prompts()->message(m_window, Prompts::Icon::Stop, QString::fromLatin1(Messages::NoteConversionFailed));
}

// ---- import and export

void DialogCommands::importFile()
{
    Document *document = m_view->document();
    TreeNode *target = currentNode() ? currentNode() : document->root();
    const QString path = prompts()->openFileName(
        m_view, QStringLiteral("Import File"), m_window->documentsFolder(),
        Prompts::filtersOf(QString::fromLatin1(Messages::FileFilter)).join(QStringLiteral(";;")));
    if (path.isEmpty())
        return;
    m_view->commitEdits();
    auto askPassword = [this](const QByteArray &hash) {
        return prompts()->askPassword(m_view,
                                      [&hash](const QString &password) { return Password::matches(hash, password); });
    };
    auto convertNotes = [](TreeNode *root, quint16 from, quint16 to) {
        NoteConverter().convertAllNotes(root, from, to);
    };
    DocumentFile::LoadResult result = DocumentFile::Damaged;
    {
        WaitCursor wait;
        result = DocumentFile::importInto(document, target, path, askPassword, convertNotes);
        if (result == DocumentFile::Loaded) {
            // The new children count in an automatic progress and join a
            // sorted order like any other.
            Progress::rollUp(target);
            ChildOrder::sortAgain(target);
            target->setExpanded(true);
        }
    }
    const QString message = DocumentFile::importMessage(result);
    if (!message.isEmpty())
        prompts()->message(m_view, Prompts::Icon::Stop, message);
    if (result == DocumentFile::Loaded)
        select(target);
}

void DialogCommands::exportText(int command)
{
    using Kind = TextExportDialog::Kind;
    const Kind kind = command == CommandId::ExportView    ? Kind::View
                      : command == CommandId::ExportNotes ? Kind::Notes
                                                          : Kind::Links;
    Settings &s = settings();
    TextExportDialog options(kind, kind == Kind::View ? s.expViewSep : s.expOtherSep, m_view);
    if (prompts()->runDialog(&options) != QDialog::Accepted)
        return;
    // The choice is kept as the next export's default.
    quint16 &kept = kind == Kind::View ? s.expViewSep : s.expOtherSep;
    if (kept != options.choice()) {
        kept = quint16(options.choice());
        m_window->saveSettings();
    }
    Document *document = m_view->document();
    const QString suggested = QDir(m_window->documentsFolder())
                                  .filePath(QFileInfo(document->path).completeBaseName() + QStringLiteral(".txt"));
    int type = 0;
    const QString path = prompts()->saveFileOfType(m_view, QStringLiteral("Export"), suggested,
                                                   Prompts::filtersOf(QString::fromLatin1(Messages::TextFileFilter)),
                                                   QStringLiteral("txt"), &type);
    if (path.isEmpty())
        return;
    m_view->commitEdits();
    TextExport::Options textOptions;
    textOptions.unicode = type == 1;
    textOptions.codePage = s.ansiCodePage;
    textOptions.indent = s.expViewSep;
    textOptions.separator = s.expOtherSep;
    textOptions.noteType = document->noteType;
    bool written = false;
    {
        WaitCursor wait;
        switch (kind) {
        case Kind::View:
            written = TextExport::exportView(path, document->root(), textOptions);
            break;
        case Kind::Notes:
            written = TextExport::exportNotes(path, document->root(), textOptions);
            break;
        case Kind::Links:
            written = TextExport::exportLinks(path, document->root(), textOptions);
            break;
        }
    }
    if (!written)
        prompts()->message(m_view, Prompts::Icon::Stop, QString::fromLatin1(Messages::ExportFailed));
}

void DialogCommands::exportXml()
{
    Document *document = m_view->document();
    const QString suggested = QDir(m_window->documentsFolder())
                                  .filePath(QFileInfo(document->path).completeBaseName() + QStringLiteral(".xml"));
    const QString path = prompts()->saveFileOfType(m_view, QStringLiteral("XML Export"), suggested,
                                                   Prompts::filtersOf(QString::fromLatin1(Messages::XmlFileFilter)),
                                                   QStringLiteral("xml"), nullptr);
    if (path.isEmpty())
        return;
    m_view->commitEdits();
    XmlExport::Options options;
    options.encoding = settings().xmlEncode;
    options.codePage = settings().ansiCodePage;
    options.noteType = document->noteType;
    bool written = false;
    {
        WaitCursor wait;
        written = XmlExport::exportXml(path, document->root(), options);
    }
    if (!written)
        prompts()->message(m_view, Prompts::Icon::Stop, QString::fromLatin1(Messages::ExportFailed));
}

void DialogCommands::exportItems()
{
    Document *document = m_view->document();
    m_view->commitEdits();
    ItemExportDialog dialog(*document, !settings().testFlag(Settings::KeepExportedItems), m_view);
    dialog.tree()->selectNode(document->current());
    if (prompts()->runDialog(&dialog) != QDialog::Accepted)
        return;
    const QString suggested = QDir(m_window->documentsFolder()).filePath(QStringLiteral("Exported Items.qbx"));
    const QString path = prompts()->saveFileOfType(m_view, QStringLiteral("Export Items"), suggested,
                                                   Prompts::filtersOf(QString::fromLatin1(Messages::FileFilter)),
                                                   QStringLiteral("qbx"), nullptr);
    if (path.isEmpty())
        return;
    // The selection is the branch of "Currently selected item"; the note it
    // shows was stored above, so its pane holds nothing that a deletion could
    // lose.
    const bool deleting = dialog.deleteAfter();
    const quint32 marked = m_view->clip().item() ? m_view->clip().item()->handle() : 0;
    int result = ItemExport::Failed;
    {
        WaitCursor wait;
        result =
            ItemExport::exportItems(*document, ItemExport::Choice(dialog.choice()), deleting, dialog.selection(), path);
    }
    if (deleting && result > 0) {
        if (marked && !document->liveItem(marked))
            m_view->clip().clear();
        select(document->current());
    }
    prompts()->message(m_view, result == ItemExport::Failed ? Prompts::Icon::Stop : Prompts::Icon::Information,
                       ItemExport::message(result));
}

bool DialogCommands::importText()
{
    const QString path = prompts()->openFileName(
        m_window, QStringLiteral("Import"), m_window->documentsFolder(),
        Prompts::filtersOf(QString::fromLatin1(Messages::TextFileFilter)).join(QStringLiteral(";;")));
    if (path.isEmpty())
        return false;
    const QString target = TextImport::documentPath(path);
    const int noteType = prompts()->askNoteType(m_window, TextImport::noteTypeOf(settings().textImport));
    if (noteType < 0)
        return false;
    // An existing document of that name is replaced only when the person
    // says so.
    if (QFileInfo::exists(target) &&
        !prompts()->askWarningYesNo(
            m_window, QString::fromLatin1(Messages::AskReplaceDocument).arg(QDir::toNativeSeparators(target))))
        return false;
    Document document;
    TextImport::Options options;
    options.icon = TextImport::iconOf(settings().textImport);
    options.codePage = settings().ansiCodePage;
    TextImport::Result result = TextImport::Result::Unreadable;
    bool saved = false;
    {
        WaitCursor wait;
        result = TextImport::importDocument(path, quint16(noteType), options, &document);
        if (result == TextImport::Result::Ok)
            saved = DocumentFile::save(document);
    }
    if (result != TextImport::Result::Ok) {
        prompts()->message(m_window, Prompts::Icon::Stop, TextImport::message(result));
        return false;
    }
    if (!saved) {
        prompts()->message(m_window, Prompts::Icon::Stop, QString::fromLatin1(Messages::SaveFailed));
        return false;
    }
    m_window->refreshDocumentList();
    return m_window->openDocument(document.path);
}

// ---- help

QString DialogCommands::helpFile()
{
    const QString appDir = QCoreApplication::applicationDirPath();
    const QString candidates[] = {
        appDir + QStringLiteral("/Quillbox.htm"),
        appDir + QStringLiteral("/../share/doc/quillbox/Quillbox.htm"),
        QStringLiteral(QUILLBOX_HELP_SOURCE),
    };
    for (const QString &candidate : candidates) {
        if (QFileInfo::exists(candidate))
            return QFileInfo(candidate).absoluteFilePath();
    }
    return {};
}

void DialogCommands::showHelp()
{
    const QString file = helpFile();
    if (file.isEmpty())
        return;
    QUrl url = QUrl::fromLocalFile(file);
    url.setFragment(QStringLiteral("Main_Contents"));
    prompts()->openUrl(url);
}
