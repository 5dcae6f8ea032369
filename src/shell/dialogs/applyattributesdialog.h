#pragma once

#include "views/attributeset.h"

#include <QDialog>
#include <QStringList>

class ColourCombo;
class IconButton;
class Prompts;
class QCheckBox;
class QComboBox;
class QSpinBox;

/// "Apply Attributes...": the attributes to set on an item's children (and,
/// with "Apply to all sub-items", on everything below it). Each attribute has
/// a box that says whether it is set; changing a value ticks its box.
class ApplyAttributesDialog : public QDialog {
    Q_OBJECT
public:
    ApplyAttributesDialog(const QStringList &categories, const QList<quint16> &favouriteIcons, Prompts *prompts,
                          QWidget *parent = nullptr);

    /// The attributes as chosen: only those whose box is ticked are in flags.
    AttributeSet attributes() const;

private:
    QCheckBox *box(const QString &text, const char *name);

    QCheckBox *m_setPriority = nullptr;
    QComboBox *m_priority = nullptr;
    QCheckBox *m_setCategory = nullptr;
    QComboBox *m_category = nullptr;
    QCheckBox *m_setIcon = nullptr;
    IconButton *m_icon = nullptr;
    QCheckBox *m_setColour = nullptr;
    ColourCombo *m_colour = nullptr;
    QCheckBox *m_setProgress = nullptr;
    QSpinBox *m_progress = nullptr;
    QCheckBox *m_setStatus = nullptr;
    QComboBox *m_status = nullptr;
    QCheckBox *m_setShowIcon = nullptr;
    QComboBox *m_showIcon = nullptr;
    QCheckBox *m_setItalic = nullptr;
    QComboBox *m_italic = nullptr;
    QCheckBox *m_setAutomatic = nullptr;
    QComboBox *m_automatic = nullptr;
    QCheckBox *m_allSubItems = nullptr;
};
