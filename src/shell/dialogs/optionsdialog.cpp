#include "shell/dialogs/optionsdialog.h"

#include "exchange/textexport.h"
#include "integration/calendarstore.h"
#include "exchange/xmlexport.h"
#include "model/document.h"
#include "platform/codepage.h"
#include "platform/messages.h"
#include "rows/iconset.h"
#include "shell/widgets/calendaraccess.h"
#include "shell/widgets/colourcombo.h"
#include "shell/widgets/iconbutton.h"
#include "shell/widgets/prompts.h"
#include "shell/widgets/waitcursor.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileInfo>
#include <QFormLayout>
#include <QSpinBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTabWidget>
#include <QVBoxLayout>

namespace {

QComboBox *combo(const char *name, QWidget *parent)
{
    auto *box = new QComboBox(parent);
    box->setObjectName(QString::fromLatin1(name));
    return box;
}

/// Selects the entry carrying value, adding one for a value the list lacks
/// (a size or zoom the store holds but the list does not offer).
void selectData(QComboBox *box, const QVariant &value, const QString &text)
{
    int index = box->findData(value);
    if (index < 0) {
        box->addItem(text, value);
        index = box->count() - 1;
    }
    box->setCurrentIndex(index);
}

QWidget *page(QWidget *content)
{
    content->setContentsMargins(4, 4, 4, 4);
    return content;
}

} // namespace

OptionsDialog::OptionsDialog(const Settings &settings, Prompts *prompts, QWidget *parent)
    : QDialog(parent), m_settings(settings), m_prompts(prompts)
{
    setObjectName(QStringLiteral("optionsDialog"));
    setWindowTitle(QStringLiteral("Options"));
    auto *layout = new QVBoxLayout(this);
    m_pages = new QTabWidget(this);
    m_pages->setObjectName(QStringLiteral("pages"));
    m_pages->addTab(page(buildDisplay()), QStringLiteral("Display"));
    m_pages->addTab(page(buildGeneral()), QStringLiteral("General"));
    m_pages->addTab(page(buildDefaults()), QStringLiteral("Defaults"));
    m_pages->addTab(page(buildIcons()), QStringLiteral("Icons"));
    m_pages->addTab(page(buildExchange()), QStringLiteral("Import/Export"));
    m_calendarPage = page(buildCalendar());
    m_pages->addTab(m_calendarPage, QStringLiteral("Calendar"));
    layout->addWidget(m_pages, 1);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
    resize(480, 460);
}

QCheckBox *OptionsDialog::flagBox(const QString &text, const char *name, Settings::Flag flag, bool inverted)
{
    auto *box = new QCheckBox(text);
    box->setObjectName(QString::fromLatin1(name));
    box->setChecked(m_settings.testFlag(flag) != inverted);
    m_flagBoxes.append({box, flag, inverted});
    return box;
}

QWidget *OptionsDialog::buildDisplay()
{
    auto *w = new QWidget;
    auto *layout = new QVBoxLayout(w);
    auto *list = new QGroupBox(QStringLiteral("List"), w);
    auto *form = new QFormLayout(list);
    m_fontSize = combo("fontSize", list);
    // The store keeps tenths of a point.
    for (int size : {60, 70, 80, 90, 100, 110, 120, 140, 160, 180, 200})
        m_fontSize->addItem(QStringLiteral("%1 pt").arg(size / 10), size);
    selectData(m_fontSize, int(m_settings.fontSize), QStringLiteral("%1 pt").arg(m_settings.fontSize / 10.0));
    form->addRow(QStringLiteral("&Font size:"), m_fontSize);
    form->addRow(QString(), flagBox(QStringLiteral("&Bold"), "bold", Settings::BoldFont));
    m_listStyle = combo("listStyle", list);
    m_listStyle->addItems({QStringLiteral("Default"), QStringLiteral("Compact Mode")});
    m_listStyle->setCurrentIndex(m_settings.testFlag(Settings::CompactMode) ? 1 : 0);
    form->addRow(QStringLiteral("&List display style:"), m_listStyle);
    m_progressColour = new ColourCombo(false, list);
    m_progressColour->setObjectName(QStringLiteral("progressColour"));
    m_progressColour->setColour(m_settings.prgColour);
    form->addRow(QStringLiteral("&Progress bar colour:"), m_progressColour);
    layout->addWidget(list);

    auto *completed = new QGroupBox(QStringLiteral("Completed items"), w);
    auto *completedLayout = new QVBoxLayout(completed);
    completedLayout->addWidget(flagBox(QStringLiteral("Use &normal font for completed items"), "normalFontCompleted",
                                       Settings::NormalFontForCompleted));
    completedLayout->addWidget(
        flagBox(QStringLiteral("Use &gray colour for completed items"), "greyCompleted", Settings::GreyCompleted));
    layout->addWidget(completed);

    layout->addWidget(
        flagBox(QStringLiteral("Use &calendar categories"), "calendarCategories", Settings::CalendarCategories));
    layout->addStretch(1);
    return w;
}

QWidget *OptionsDialog::buildGeneral()
{
    auto *w = new QWidget;
    auto *layout = new QVBoxLayout(w);
    layout->addWidget(
        flagBox(QStringLiteral("&Case insensitive (Find item)"), "caseInsensitive", Settings::CaseInsensitiveFind));
    layout->addWidget(flagBox(QStringLiteral("&Longer tap to edit item"), "longTapEdit", Settings::LongTapEdit));
    layout->addWidget(flagBox(QStringLiteral("Use the &word processor for full screen Rich Note editing"),
                              "externalEditor", Settings::ExternalRichEditor));

    auto *form = new QFormLayout;
    m_noteZoom = combo("noteZoom", w);
    for (int zoom : {75, 100, 150, 200})
        m_noteZoom->addItem(QStringLiteral("%1%").arg(zoom), zoom);
    selectData(m_noteZoom, int(m_settings.noteZoom), QStringLiteral("%1%").arg(m_settings.noteZoom));
    form->addRow(QStringLiteral("Note window &zoom:"), m_noteZoom);
    m_undoLimit = new QSpinBox(w);
    m_undoLimit->setObjectName(QStringLiteral("undoLimit"));
    m_undoLimit->setRange(1, 1000);
    m_undoLimit->setValue(m_settings.undoLimit);
    m_undoLimit->setToolTip(QStringLiteral("Takes effect for the documents opened next"));
    form->addRow(QStringLiteral("&Undo steps per document:"), m_undoLimit);
    m_sound = combo("sound", w);
    for (const char *sound : {"(None)", "Alarm1", "Alarm2", "Alarm3", "Alarm4", "Alarm5"})
        m_sound->addItem(QString::fromLatin1(sound), QString::fromLatin1(sound));
    selectData(m_sound, m_settings.sound, m_settings.sound);
    form->addRow(QStringLiteral("&Reminder sound:"), m_sound);

    auto *templateRow = new QHBoxLayout;
    m_templateFile = new QLineEdit(m_settings.templateFile, w);
    m_templateFile->setObjectName(QStringLiteral("templateFile"));
    auto *browse = new QPushButton(QStringLiteral("&Browse..."), w);
    connect(browse, &QPushButton::clicked, this, [this] {
        const QString path =
            m_prompts->saveFileOfType(this, QStringLiteral("Template File"), m_templateFile->text(),
                                      {QStringLiteral("Template Files (*.qbt)")}, QStringLiteral("qbt"), nullptr);
        if (!path.isEmpty())
            m_templateFile->setText(path);
    });
    templateRow->addWidget(m_templateFile, 1);
    templateRow->addWidget(browse);
    auto *templateLabel = new QLabel(QStringLiteral("&Template file:"), w);
    templateLabel->setBuddy(m_templateFile);
    form->addRow(templateLabel, templateRow);
    layout->addLayout(form);
    layout->addStretch(1);
    return w;
}

QWidget *OptionsDialog::buildDefaults()
{
    auto *w = new QWidget;
    auto *layout = new QVBoxLayout(w);
    auto *exportBox = new QGroupBox(QStringLiteral("Item export"), w);
    auto *exportLayout = new QFormLayout(exportBox);
    // The store keeps the inverse: its bit says the items are kept.
    exportLayout->addRow(
        flagBox(QStringLiteral("&Delete items after export"), "deleteAfterExport", Settings::KeepExportedItems, true));
    m_branchTab = combo("branchTab", exportBox);
    m_branchTab->addItems(TextExport::indentLabels());
    m_branchTab->setCurrentIndex(m_settings.branchTab < m_branchTab->count() ? m_settings.branchTab : 1);
    exportLayout->addRow(QStringLiteral("&Branch indentation:"), m_branchTab);
    layout->addWidget(exportBox);
    layout->addStretch(1);
    return w;
}

QWidget *OptionsDialog::buildIcons()
{
    auto *w = new QWidget;
    auto *layout = new QVBoxLayout(w);
    auto *text = new QLabel(QStringLiteral("Check the icons you want to appear at the beginning of the list."), w);
    text->setWordWrap(true);
    layout->addWidget(text);
    m_icons = new QListWidget(w);
    m_icons->setObjectName(QStringLiteral("favouriteIcons"));
    m_icons->setViewMode(QListView::IconMode);
    m_icons->setIconSize(QSize(24, 24));
    m_icons->setGridSize(QSize(52, 48));
    m_icons->setResizeMode(QListView::Adjust);
    m_icons->setMovement(QListView::Static);
    m_icons->setUniformItemSizes(true);
    const int count = IconSet::distinctCount();
    const qreal dpr = devicePixelRatioF();
    for (int i = 0; i < count; ++i) {
        auto *entry = new QListWidgetItem(QIcon(IconSet::instance().icon(quint16(i), 24, dpr)), QString(), m_icons);
        entry->setToolTip(IconSet::name(quint16(i)));
        entry->setData(Qt::UserRole, i);
        entry->setFlags(entry->flags() | Qt::ItemIsUserCheckable);
        entry->setCheckState(m_settings.favIcons.contains(quint16(i)) ? Qt::Checked : Qt::Unchecked);
    }
    layout->addWidget(m_icons, 1);
    return w;
}

QWidget *OptionsDialog::buildExchange()
{
    auto *w = new QWidget;
    auto *layout = new QVBoxLayout(w);
    auto *exportBox = new QGroupBox(QStringLiteral("Export Options"), w);
    auto *exportForm = new QFormLayout(exportBox);
    m_xmlEncoding = combo("xmlEncoding", exportBox);
    m_xmlEncoding->addItems(XmlExport::encodingLabels());
    m_xmlEncoding->setCurrentIndex(m_settings.xmlEncode < m_xmlEncoding->count() ? m_settings.xmlEncode : 0);
    exportForm->addRow(QStringLiteral("&XML export encoding:"), m_xmlEncoding);
    m_indent = combo("indent", exportBox);
    m_indent->addItems(TextExport::indentLabels());
    m_indent->setCurrentIndex(m_settings.expViewSep < m_indent->count() ? m_settings.expViewSep : 2);
    exportForm->addRow(QStringLiteral("&Indent character(s):"), m_indent);
    m_separator = combo("separator", exportBox);
    m_separator->addItems(TextExport::separators());
    m_separator->setCurrentIndex(m_settings.expOtherSep < m_separator->count() ? m_settings.expOtherSep : 0);
    exportForm->addRow(QStringLiteral("&Level separator:"), m_separator);
    m_codePage = combo("codePage", exportBox);
    m_codePage->setEditable(true);
    m_codePage->setInsertPolicy(QComboBox::NoInsert);
    m_codePage->addItems({QStringLiteral("windows-1250"), QStringLiteral("windows-1251"),
                          QStringLiteral("windows-1252"), QStringLiteral("windows-1253"),
                          QStringLiteral("windows-1254"), QStringLiteral("windows-1255"),
                          QStringLiteral("windows-1256"), QStringLiteral("windows-1257"),
                          QStringLiteral("windows-1258"), QStringLiteral("windows-874"), QStringLiteral("windows-932"),
                          QStringLiteral("windows-936"), QStringLiteral("windows-949"), QStringLiteral("windows-950")});
    m_codePage->setEditText(m_settings.ansiCodePage);
    exportForm->addRow(QStringLiteral("&Code page of text files:"), m_codePage);
    layout->addWidget(exportBox);

    auto *importBox = new QGroupBox(QStringLiteral("Text Import"), w);
    auto *importForm = new QFormLayout(importBox);
    m_importIcon = new IconButton(m_prompts, importBox);
    m_importIcon->setObjectName(QStringLiteral("importIcon"));
    m_importIcon->setFavourites(m_settings.favIcons);
    m_importIcon->setImage(quint16(m_settings.textImport & 0xffff));
    auto *iconRow = new QHBoxLayout;
    iconRow->addWidget(m_importIcon);
    iconRow->addStretch(1);
    auto *iconLabel = new QLabel(QStringLiteral("Default &icon:"), importBox);
    iconLabel->setBuddy(m_importIcon);
    importForm->addRow(iconLabel, iconRow);
    m_importNoteType = combo("importNoteType", importBox);
    m_importNoteType->addItems({Document::noteTypeName(0), Document::noteTypeName(1), Document::noteTypeName(2)});
    const int noteType = int(m_settings.textImport >> 16);
    m_importNoteType->setCurrentIndex(noteType < 3 ? noteType : 1);
    importForm->addRow(QStringLiteral("Default &note type:"), m_importNoteType);
    importForm->addRow(flagBox(QStringLiteral("Read text files as &UTF-8 (a byte-order mark always wins)"),
                               "utf8TextImport", Settings::Utf8TextImport));
    layout->addWidget(importBox);
    layout->addStretch(1);
    return w;
}

QWidget *OptionsDialog::buildCalendar()
{
    auto *w = new QWidget;
    auto *layout = new QVBoxLayout(w);
    auto *storeBox = new QGroupBox(QStringLiteral("Tasks and appointments go to"), w);
    auto *form = new QFormLayout(storeBox);
    m_calendarStore = new QLineEdit(m_settings.calendarStore, storeBox);
    m_calendarStore->setObjectName(QStringLiteral("calendarStore"));
    m_calendarStore->setPlaceholderText(CalendarStore::defaultFolder());
    m_calendarStore->setClearButtonEnabled(true);
    form->addRow(QStringLiteral("&Folder or address:"), m_calendarStore);
    auto *hint = new QLabel(QStringLiteral("A folder of .ics files (empty for the one shown), or the address of a "
                                           "CalDAV calendar, such as https://example.org/dav/calendars/me/tasks/"),
                            storeBox);
    hint->setWordWrap(true);
    hint->setEnabled(false);
    form->addRow(QString(), hint);
    m_calendarUser = new QLineEdit(m_settings.calendarUser, storeBox);
    m_calendarUser->setObjectName(QStringLiteral("calendarUser"));
    form->addRow(QStringLiteral("&User name:"), m_calendarUser);
    m_calendarPassword = new QLineEdit(storeBox);
    m_calendarPassword->setObjectName(QStringLiteral("calendarPassword"));
    m_calendarPassword->setEchoMode(QLineEdit::Password);
    m_calendarPassword->setPlaceholderText(QStringLiteral("Unchanged"));
    m_calendarPassword->setToolTip(QStringLiteral("Kept in the desktop's keyring, or for this session only where "
                                                  "there is none"));
    form->addRow(QStringLiteral("&Password:"), m_calendarPassword);
    layout->addWidget(storeBox);

    auto *testRow = new QHBoxLayout;
    auto *test = new QPushButton(QStringLiteral("&Test connection"), w);
    test->setObjectName(QStringLiteral("calendarTest"));
    test->setAutoDefault(false);
    testRow->addWidget(test);
    testRow->addStretch(1);
    layout->addLayout(testRow);
    m_calendarResult = new QLabel(w);
    m_calendarResult->setObjectName(QStringLiteral("calendarResult"));
    m_calendarResult->setWordWrap(true);
    m_calendarResult->setTextInteractionFlags(Qt::TextSelectableByMouse);
    layout->addWidget(m_calendarResult);
    layout->addStretch(1);

    connect(m_calendarStore, &QLineEdit::textChanged, this, &OptionsDialog::updateCalendarFields);
    connect(test, &QPushButton::clicked, this, &OptionsDialog::testConnection);
    updateCalendarFields();
    return w;
}

void OptionsDialog::updateCalendarFields()
{
    // A folder needs no account.
    const bool server = CalendarStore::isCalDavAddress(m_calendarStore->text().trimmed());
    m_calendarUser->setEnabled(server);
    m_calendarPassword->setEnabled(server);
    m_calendarResult->clear();
}

void OptionsDialog::testConnection()
{
    const QString location = m_calendarStore->text().trimmed();
    const QString user = m_calendarUser->text().trimmed();
    const QString password = m_calendarPassword->text();
    std::unique_ptr<CalendarStore> store;
    if (CalendarStore::isCalDavAddress(location) && !password.isEmpty())
        store = CalendarStore::open(location, user, password);
    else
        store = CalendarAccess::open(location, user, m_prompts, this);
    if (!store)
        return;
    QString error;
    bool connected;
    {
        WaitCursor wait;
        connected = store->connect(&error);
    }
    m_calendarResult->setText(connected ? QStringLiteral("The calendar at %1 can be used.").arg(store->location())
                                        : error);
}

void OptionsDialog::showCalendarPage()
{
    m_pages->setCurrentWidget(m_calendarPage);
    m_calendarStore->setFocus();
}

Settings OptionsDialog::settings() const
{
    Settings s = m_settings;
    for (const auto &[box, flag, inverted] : m_flagBoxes)
        s.setFlag(flag, box->isChecked() != inverted);
    s.fontSize = quint16(m_fontSize->currentData().toInt());
    s.setFlag(Settings::CompactMode, m_listStyle->currentIndex() == 1);
    s.prgColour = quint16(m_progressColour->colour());
    s.noteZoom = quint16(m_noteZoom->currentData().toInt());
    s.undoLimit = quint16(m_undoLimit->value());
    s.sound = m_sound->currentData().toString();
    s.templateFile = m_templateFile->text();
    s.branchTab = quint16(m_branchTab->currentIndex());

    // Icons still checked keep their place; newly checked ones follow in
    // number order.
    QList<quint16> favourites;
    auto checked = [this](quint16 icon) {
        QListWidgetItem *entry = m_icons->item(icon);
        return entry && entry->checkState() == Qt::Checked;
    };
    for (quint16 icon : m_settings.favIcons) {
        // Numbers past the chooser's pictures are kept as they are.
        if ((icon >= m_icons->count() || checked(icon)) && !favourites.contains(icon))
            favourites.append(icon);
    }
    for (int i = 0; i < m_icons->count(); ++i) {
        if (checked(quint16(i)) && !favourites.contains(quint16(i)))
            favourites.append(quint16(i));
    }
    s.favIcons = favourites;

    s.xmlEncode = quint16(m_xmlEncoding->currentIndex());
    s.expViewSep = quint16(m_indent->currentIndex());
    s.expOtherSep = quint16(m_separator->currentIndex());
    s.ansiCodePage = m_codePage->currentText().trimmed();
    s.textImport = quint32(m_importNoteType->currentIndex()) << 16 | m_importIcon->image();
    s.calendarStore = m_calendarStore->text().trimmed();
    s.calendarUser = m_calendarUser->text().trimmed();
    return s;
}

void OptionsDialog::accept()
{
    const QString codePage = m_codePage->currentText().trimmed();
    if (!CodePage(codePage).isValid()) {
        m_prompts->message(this, Prompts::Icon::Exclamation,
                           QString::fromLatin1(Messages::UnknownCodePage).arg(codePage));
        m_pages->setCurrentIndex(4);
        m_codePage->setFocus();
        return;
    }
    const QString location = m_calendarStore->text().trimmed();
    if (CalendarStore::isCalDavAddress(location) && !m_calendarPassword->text().isEmpty())
        CalendarAccess::keepPassword(location, m_calendarUser->text().trimmed(), m_calendarPassword->text());
    QDialog::accept();
}
