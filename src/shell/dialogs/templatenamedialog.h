#pragma once

#include <QDialog>

class Prompts;
class QComboBox;
class QLineEdit;

/// Names a template: "Template Name: (Max 32 characters)" over a box of 32
/// characters, and the note type the template is for. An empty name is
/// refused with its message.
class TemplateNameDialog : public QDialog {
    Q_OBJECT
public:
    /// noteTypeFixed greys the note type (an existing template's note is in
    /// its type already).
    TemplateNameDialog(const QString &name, quint16 noteType, bool noteTypeFixed, Prompts *prompts,
                       QWidget *parent = nullptr);

    QString name() const;
    quint16 noteType() const;

    void accept() override;

private:
    Prompts *m_prompts;
    QLineEdit *m_name = nullptr;
    QComboBox *m_noteType = nullptr;
};
