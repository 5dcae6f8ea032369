#pragma once

#include "views/findcriteria.h"

#include "shell/dialogs/itempropertiesdialog.h"

#include <QObject>
#include <QPointer>
#include <memory>
#include <vector>

class DocumentView;
class Item;
class MainWindow;
class Prompts;
class QMenu;
class Settings;
class Template;
class TemplateFile;
class TreeNode;

/// The commands of the document view that open a dialog: item properties
/// and the new-item dialog, find and its result list, apply attributes,
/// options, password, file properties, note conversion, import and the
/// exports, and help. Each runs the core's operation on the document and
/// turns its result into the message to show.
///
/// One object serves the main window for its lifetime: it keeps the find
/// criteria between searches (they preset the next Find) and the last
/// search result of the open document.
class DialogCommands : public QObject {
    Q_OBJECT
public:
    explicit DialogCommands(MainWindow *window);
    ~DialogCommands() override;

    /// Plugs the commands into a newly opened document view.
    void install(DocumentView *view);

    /// The frame's "Import...": a text outline becomes a new document beside
    /// it, which is then opened. False when nothing was opened.
    bool importText();
    /// Opens the help page at its table of contents.
    void showHelp();
    /// The help page: next to the program, or in the source tree it was
    /// built from.
    static QString helpFile();

    const FindCriteria &findCriteria() const { return m_criteria; }
    /// The application's templates, read from the settings' template file
    /// (created empty when missing) the first time they are needed and again
    /// when the settings name another file.
    TemplateFile &templates();
    /// The template file: the settings' TemplateFile, where the default one
    /// lies in the documents folder the shell shows.
    QString templateFilePath() const;
    /// Whether a search result is kept ("Find Result..." is offered).
    bool hasSearchResult() const { return m_hasResult; }

private:
    DocumentView *view() const { return m_view; }
    Prompts *prompts() const;
    Settings &settings() const;
    TreeNode *currentNode() const;
    Item *currentItem() const;
    QStringList categories() const;
    ItemPropertiesDialog::Context propertiesContext();
    void select(TreeNode *node);
    void updateTemplateCommands();
    void updateNewMenu();

    void editItem(int page);
    void editNoteExternally(Item *item);
    void newItem(const Template *templ);
    bool editProperties(Item *item, QWidget *parent);
    void branchView();
    void itemTemplates();
    void find();
    void showSearchResult();
    void applyAttributes();
    void options();
    void setPassword();
    void fileProperties();
    void convertNotes();
    void importFile();
    void exportText(int command);
    void exportXml();
    void exportItems();

    MainWindow *m_window;
    QPointer<DocumentView> m_view;
    FindCriteria m_criteria;
    /// Handles of the last search's matches, so a deleted match is noticed.
    std::vector<quint32> m_results;
    bool m_hasResult = false;
    std::unique_ptr<TemplateFile> m_templates;
    QString m_templatesPath;
    /// The drop-down of the "New" button while templates are offered.
    QMenu *m_newMenu = nullptr;
};
