#pragma once

#include <QStringList>

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
    /// Saves the open document (Save As for a read-only one); a failure is
    /// shown with its reason. False when nothing was written.
    virtual bool saveDocument() = 0;
    /// Saves the open document under another name and follows it there.
    virtual bool saveDocumentAs() = 0;
    /// The documents opened last, newest first.
    virtual QStringList recentDocuments() const = 0;
    virtual bool isAutosaveOn() const = 0;
    virtual void setAutosaveOn(bool on) = 0;
    virtual void refreshDocumentList() = 0;
    /// Greys and marks every command for the present state.
    virtual void updateActions() = 0;
};
