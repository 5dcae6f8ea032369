#pragma once

#include <QString>

class DocumentView;
class Prompts;
class QWidget;
class Settings;

/// What the commands need of the window that holds them: the open document's
/// view, the questions, the settings and the document's lifecycle.
class CommandHost {
public:
    virtual ~CommandHost() = default;

    virtual QWidget *frame() = 0;
    /// The open document's view; null while the document list is shown.
    virtual DocumentView *view() const = 0;
    virtual Prompts *prompts() const = 0;
    virtual Settings &settings() = 0;
    virtual void saveSettings() = 0;
    virtual QString documentsFolder() const = 0;
    virtual bool openDocument(const QString &path) = 0;
    virtual bool createDocument() = 0;
    virtual void closeDocument() = 0;
    virtual void refreshDocumentList() = 0;
    /// Greys and marks every command for the present state.
    virtual void updateActions() = 0;
};
