#pragma once

#include "shell/commands/commandgroup.h"
#include "views/findcriteria.h"

#include <QPointer>
#include <vector>

class DocumentView;
class TemplateCommands;

/// "Find Item..." and "Find Result...". The criteria stay between searches
/// (they preset the next Find); the last search's matches are kept for the
/// document they were found in.
class FindCommands : public CommandGroup {
    Q_OBJECT
public:
    FindCommands(CommandHost *host, TemplateCommands *templates, QObject *parent);

private:
    bool hasResult() const;
    void find();
    void showResult();

    TemplateCommands *m_templates;
    FindCriteria m_criteria;
    /// Handles of the last search's matches, so a deleted match is noticed.
    std::vector<quint32> m_results;
    QPointer<DocumentView> m_resultView;
};
