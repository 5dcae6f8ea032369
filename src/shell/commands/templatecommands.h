#pragma once

#include "shell/commands/commandgroup.h"
#include "shell/dialogs/itempropertiesdialog.h"

#include <memory>

class QMenu;
class Template;
class TemplateFile;

/// New items, plain or from a template, and "Item Templates...". The "New"
/// button drops down the templates of the document's note type while there
/// are any. It also gives the item properties dialog what it offers:
/// categories, templates, favourite icons.
class TemplateCommands : public CommandGroup {
    Q_OBJECT
public:
    TemplateCommands(CommandHost *host, QObject *parent);
    ~TemplateCommands() override;

    /// The application's templates, read from the settings' template file
    /// (created empty when missing) the first time they are needed and again
    /// when the settings name another file.
    TemplateFile &templates();
    /// The template file: the settings' TemplateFile, where the default one
    /// lies in the documents folder the shell shows.
    QString templateFilePath() const;
    /// The categories to offer: the document's, and the calendar's when in
    /// use.
    QStringList categories() const;
    ItemPropertiesDialog::Context propertiesContext();
    /// A new view opened: the "New" button offers its templates.
    void viewOpened();

private:
    void newItem(const Template *templ);
    void itemTemplates();
    void fillNewMenu();
    void updateNewMenu();

    std::unique_ptr<TemplateFile> m_templates;
    QString m_templatesPath;
    /// The drop-down of the "New" button while templates are offered.
    QMenu *m_newMenu = nullptr;
};
