#pragma once

#include "shell/commands/commandgroup.h"

/// Import and export: the document list's "Import..." of a text outline,
/// "Import File..." of another document into the current item, an OPML or
/// Markdown outline into it, and the View, XML, Links, All Notes, Items,
/// OPML and Markdown exports.
class ExchangeCommands : public CommandGroup {
    Q_OBJECT
public:
    ExchangeCommands(CommandHost *host, QObject *parent);

    /// "Import...": a text, OPML or Markdown outline becomes a new document
    /// beside it, which is then opened. False when nothing was opened.
    bool importText();

private:
    enum class TextKind { View, Notes, Links };
    /// Where an export goes by default: the documents folder, the document's
    /// name with extension.
    QString suggestedPath(const QString &extension) const;
    void importFile();
    void exportText(TextKind kind);
    void exportXml();
    void exportItems();
    void importOutline();
    void exportOutline(bool markdown);
};
