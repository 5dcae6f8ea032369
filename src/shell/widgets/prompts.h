#pragma once

#include <QList>
#include <QPoint>
#include <QString>
#include <QStringList>
#include <functional>

class QAction;
class QDialog;
class QMenu;
class QUrl;
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
    /// text), or -1 when cancelled. preselected is the type offered first.
    virtual int askNoteType(QWidget *parent, int preselected = 0) = 0;
    /// Asks for the password of a protected document until check accepts
    /// it; false when cancelled.
    virtual bool askPassword(QWidget *parent, const std::function<bool(const QString &)> &check) = 0;
    /// Shows a popup menu at a global position. The chosen action is
    /// triggered (callers act on its triggered signal) and returned; null
    /// when the menu was dismissed.
    virtual QAction *popupMenu(QMenu *menu, const QPoint &globalPos) = 0;
    virtual void about(QWidget *parent) = 0;
    /// An icon number from the icon chooser, the favourite icons first, or
    /// -1 when cancelled.
    virtual int chooseIcon(QWidget *parent, quint16 current, const QList<quint16> &favourites) = 0;

    /// Runs one of our dialogs modally and returns its result code
    /// (QDialog::Accepted or QDialog::Rejected).
    virtual int runDialog(QDialog *dialog) = 0;
    /// One line of text under a prompt, the box pre-filled with *text and
    /// taking at most maxLength characters. accept is asked on OK and keeps
    /// the box open (it shows its own refusal) when it says no. True with the
    /// accepted text in *text; false when cancelled.
    virtual bool askText(QWidget *parent, const QString &prompt, QString *text, int maxLength,
                         const std::function<bool(const QString &)> &accept) = 0;
    /// Yes/No with an exclamation icon and No as the default button, for
    /// questions whose Yes may lose something; true for Yes.
    virtual bool askWarningYesNo(QWidget *parent, const QString &text) = 0;
    /// OK/Cancel with an exclamation icon; true for OK.
    virtual bool askOkCancel(QWidget *parent, const QString &text) = 0;
    /// A file to save under one of several types, or empty when cancelled.
    /// filters are in Qt's form ("Text Files (*.txt)"); *chosenFilter gets
    /// the index of the type chosen. defaultSuffix is added to a name
    /// without one.
    virtual QString saveFileOfType(QWidget *parent, const QString &title, const QString &suggested,
                                   const QStringList &filters, const QString &defaultSuffix, int *chosenFilter) = 0;
    /// Hands a web address, "mailto:", "tel:" or a local file to the
    /// desktop's application for it; false when none took it.
    virtual bool openUrl(const QUrl &url) = 0;
    /// A secret (a server's password) typed into a masked box under a
    /// prompt. True with the text in *secret; false when cancelled.
    virtual bool askSecret(QWidget *parent, const QString &prompt, QString *secret) = 0;

    /// The file dialog filters for a filter text in the form the document
    /// formats name them ("Text Files|*.txt|Unicode Files|*.txt|").
    /// A failure message followed by the reason the core gave (which names
    /// the file), or the message alone when there is no reason.
    static QString withReason(const char *message, const QString &reason);
    /// A message about a file, with the file's name under it.
    static QString withFile(const QString &message, const QString &path);
    static QStringList filtersOf(const QString &pairs);
};

/// The real dialogs.
class DialogPrompts : public Prompts {
public:
    bool askYesNo(QWidget *parent, const QString &text) override;
    void message(QWidget *parent, Icon icon, const QString &text) override;
    QString openFileName(QWidget *parent, const QString &title, const QString &folder, const QString &filter) override;
    QString saveFileName(QWidget *parent, const QString &title, const QString &suggested,
                         const QString &filter) override;
    int askNoteType(QWidget *parent, int preselected = 0) override;
    bool askPassword(QWidget *parent, const std::function<bool(const QString &)> &check) override;
    QAction *popupMenu(QMenu *menu, const QPoint &globalPos) override;
    void about(QWidget *parent) override;
    int chooseIcon(QWidget *parent, quint16 current, const QList<quint16> &favourites) override;
    int runDialog(QDialog *dialog) override;
    bool askText(QWidget *parent, const QString &prompt, QString *text, int maxLength,
                 const std::function<bool(const QString &)> &accept) override;
    bool askWarningYesNo(QWidget *parent, const QString &text) override;
    bool askOkCancel(QWidget *parent, const QString &text) override;
    QString saveFileOfType(QWidget *parent, const QString &title, const QString &suggested, const QStringList &filters,
                           const QString &defaultSuffix, int *chosenFilter) override;
    bool openUrl(const QUrl &url) override;
    bool askSecret(QWidget *parent, const QString &prompt, QString *secret) override;
};
