#pragma once

#include <QDialog>

class QComboBox;

/// The options of a text export: for the view export its indent unit
/// ("Indent character(s):"), for the notes and links exports the level
/// separator ("Level separator:"), each under the line that says which view
/// the export follows.
class TextExportDialog : public QDialog {
    Q_OBJECT
public:
    enum class Kind { View, Notes, Links };

    /// choice is the present indent (setting ExpViewSep) or separator
    /// (setting ExpOtherSep) index.
    TextExportDialog(Kind kind, int choice, QWidget *parent = nullptr);

    /// The chosen index.
    int choice() const;
    QComboBox *choices() const { return m_choices; }

private:
    QComboBox *m_choices = nullptr;
};
