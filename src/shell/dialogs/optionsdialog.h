#pragma once

#include "storage/settings.h"

#include <QDialog>

class ColourCombo;
class IconButton;
class Prompts;
class QCheckBox;
class QComboBox;
class QLineEdit;
class QLabel;
class QListWidget;
class QSpinBox;
class QTabWidget;

/// "Options...": the application-wide settings on six pages, "Display",
/// "General", "Defaults", "Icons", "Import/Export" and "Calendar". The
/// Calendar page keeps a CalDAV password in the keyring on OK, never in the
/// settings. The dialog works on a
/// copy of the settings; settings() gives the edited record for the caller
/// to keep and save after OK.
class OptionsDialog : public QDialog {
    Q_OBJECT
public:
    OptionsDialog(const Settings &settings, Prompts *prompts, QWidget *parent = nullptr);

    /// The settings as edited.
    Settings settings() const;
    QTabWidget *pages() const { return m_pages; }

    /// Refuses a code page that the converters do not know.
    void accept() override;
    /// Opens on the Calendar page.
    void showCalendarPage();

private:
    QWidget *buildDisplay();
    QWidget *buildGeneral();
    QWidget *buildDefaults();
    QWidget *buildIcons();
    QWidget *buildExchange();
    QWidget *buildCalendar();
    void updateCalendarFields();
    void testConnection();
    QCheckBox *flagBox(const QString &text, const char *name, Settings::Flag flag, bool inverted = false);

    Settings m_settings;
    Prompts *m_prompts;
    QTabWidget *m_pages = nullptr;
    QComboBox *m_fontSize = nullptr;
    QComboBox *m_listStyle = nullptr;
    ColourCombo *m_progressColour = nullptr;
    QComboBox *m_noteZoom = nullptr;
    QSpinBox *m_undoLimit = nullptr;
    QComboBox *m_sound = nullptr;
    QLineEdit *m_templateFile = nullptr;
    QComboBox *m_branchTab = nullptr;
    QListWidget *m_icons = nullptr;
    QComboBox *m_xmlEncoding = nullptr;
    QComboBox *m_indent = nullptr;
    QComboBox *m_separator = nullptr;
    QComboBox *m_codePage = nullptr;
    IconButton *m_importIcon = nullptr;
    QComboBox *m_importNoteType = nullptr;
    QWidget *m_calendarPage = nullptr;
    QLineEdit *m_calendarStore = nullptr;
    QLineEdit *m_calendarUser = nullptr;
    QLineEdit *m_calendarPassword = nullptr;
    QLabel *m_calendarResult = nullptr;
    /// Flag boxes and whether each shows its bit inverted.
    QList<std::tuple<QCheckBox *, Settings::Flag, bool>> m_flagBoxes;
};
