#pragma once

#include <QDialog>

class QButtonGroup;

/// "Convert Notes...": shows the document to convert and offers the note
/// type its notes become, each with what it keeps.
class ConvertNotesDialog : public QDialog {
    Q_OBJECT
public:
    ConvertNotesDialog(const QString &path, quint16 noteType, QWidget *parent = nullptr);

    /// The chosen NoteType.
    quint16 target() const;
    void setTarget(quint16 noteType);

private:
    QButtonGroup *m_targets = nullptr;
};
