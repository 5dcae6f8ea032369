#pragma once

#include <QPoint>
#include <QString>
#include <functional>

class QAction;
class QMenu;
class QWidget;

/// Every question, message box, file dialog and popup menu of the shell goes
/// through here, so that tests can answer them. Message boxes carry the
/// caption "Quillbox": a stop icon for failures, an exclamation for refused
/// input, a question with Yes and No for confirmations, information for
/// reports.
class Prompts {
public:
    enum class Icon { Stop, Exclamation, Question, Information };

    virtual ~Prompts() = default;

    /// Yes/No with a question icon; true for Yes. Callers treat only an
    /// explicit No as a refusal.
    virtual bool askYesNo(QWidget *parent, const QString &text) = 0;
    virtual void message(QWidget *parent, Icon icon, const QString &text) = 0;
    /// A file to open, or empty when cancelled. filter is in Qt's form.
    virtual QString openFileName(QWidget *parent, const QString &title, const QString &folder,
                                 const QString &filter) = 0;
    virtual QString saveFileName(QWidget *parent, const QString &title, const QString &suggested,
                                 const QString &filter) = 0;
    /// The note type of a new document (0 plain text, 1 rich ink, 2 rich
    /// text), or -1 when cancelled.
    virtual int askNoteType(QWidget *parent) = 0;
    /// Asks for the password of a protected document until check accepts
    /// it; false when cancelled.
    virtual bool askPassword(QWidget *parent, const std::function<bool(const QString &)> &check) = 0;
    /// Shows a popup menu at a global position. The chosen action is
    /// triggered (callers act on its triggered signal) and returned; null
    /// when the menu was dismissed.
    virtual QAction *popupMenu(QMenu *menu, const QPoint &globalPos) = 0;
    virtual void about(QWidget *parent) = 0;
    /// An icon number from the icon chooser, or -1 when cancelled.
    virtual int chooseIcon(QWidget *parent, quint16 current) = 0;
};

/// The real dialogs.
class DialogPrompts : public Prompts {
public:
    bool askYesNo(QWidget *parent, const QString &text) override;
    void message(QWidget *parent, Icon icon, const QString &text) override;
    QString openFileName(QWidget *parent, const QString &title, const QString &folder, const QString &filter) override;
    QString saveFileName(QWidget *parent, const QString &title, const QString &suggested,
                         const QString &filter) override;
    int askNoteType(QWidget *parent) override;
    bool askPassword(QWidget *parent, const std::function<bool(const QString &)> &check) override;
    QAction *popupMenu(QMenu *menu, const QPoint &globalPos) override;
    void about(QWidget *parent) override;
    int chooseIcon(QWidget *parent, quint16 current) override;
};
