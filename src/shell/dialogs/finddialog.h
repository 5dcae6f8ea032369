#pragma once

#include "views/findcriteria.h"

#include <QDialog>
#include <QStringList>

class ColourCombo;
class QCheckBox;
class QComboBox;
class QDateEdit;
class QLineEdit;

/// "Find Item...": the criteria of a search. Every field left at "[Any]"
/// (or empty, or a box in its middle state) takes no part; the filled ones
/// must all hold. The dialog opens with the criteria of the last search.
class FindDialog : public QDialog {
    Q_OBJECT
public:
    FindDialog(const FindCriteria &preset, const QStringList &categories, QWidget *parent = nullptr);

    /// The criteria as filled in.
    FindCriteria criteria() const;

private:
    void load(const FindCriteria &c);

    QLineEdit *m_name = nullptr;
    QComboBox *m_priority = nullptr;
    QComboBox *m_category = nullptr;
    QCheckBox *m_hasDate = nullptr;
    QComboBox *m_dateOperator = nullptr;
    QDateEdit *m_date = nullptr;
    QLineEdit *m_phrase = nullptr;
    QCheckBox *m_completed = nullptr;
    ColourCombo *m_colour = nullptr;
    QCheckBox *m_italic = nullptr;
    QCheckBox *m_showIcon = nullptr;
    QCheckBox *m_caseInsensitive = nullptr;
};
