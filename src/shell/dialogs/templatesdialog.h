#pragma once

#include "shell/dialogs/itempropertiesdialog.h"

#include <QDialog>

class QPushButton;
class QTreeWidget;
class TemplateFile;

/// "Item Templates...": the application's templates, to add, edit and
/// delete. A template is named first, then its attributes and note are set
/// in the item properties. Every change is written to the template file at
/// once; a failed write is reported and the list on disk stays as it was.
class TemplatesDialog : public QDialog {
    Q_OBJECT
public:
    /// context serves the item properties of a template (the document for
    /// its categories and note type).
    TemplatesDialog(TemplateFile *templates, const QString &path, const ItemPropertiesDialog::Context &context,
                    QWidget *parent = nullptr);

    QTreeWidget *list() const { return m_list; }

    void addTemplate();
    void editSelected();
    void deleteSelected();

private:
    bool editProperties(Template *entry);
    void save();
    void showList(int select);
    void updateButtons();

    TemplateFile *m_templates;
    QString m_path;
    ItemPropertiesDialog::Context m_context;
    QTreeWidget *m_list = nullptr;
    QPushButton *m_edit = nullptr;
    QPushButton *m_delete = nullptr;
};
