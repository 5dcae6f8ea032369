#include "shell/dialogs/linkspage.h"

#include "model/document.h"
#include "platform/messages.h"
#include "rows/iconset.h"
#include "shell/dialogs/itempickerdialog.h"
#include "shell/widgets/prompts.h"

#include <QAction>
#include <QApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QMenu>
#include <QPainter>
#include <QPainterPath>
#include <QPushButton>
#include <QStyle>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {

// A URL's text is kept at the length the prompt allows.
constexpr int MaxLinkLength = 260;

QIcon paintedIcon(const std::function<void(QPainter &)> &draw)
{
    QPixmap pm(32, 32);
    pm.fill(Qt::transparent);
    QPainter p(&pm);
    p.setRenderHint(QPainter::Antialiasing);
    draw(p);
    return QIcon(pm);
}

QIcon globeIcon()
{
    return paintedIcon([](QPainter &p) {
        p.setPen(QPen(QColor(0x1f, 0x5f, 0xa8), 2));
        p.setBrush(QColor(0xd6, 0xe8, 0xfa));
        p.drawEllipse(QRectF(3, 3, 26, 26));
        p.setBrush(Qt::NoBrush);
        p.drawEllipse(QRectF(10, 3, 12, 26));
        p.drawLine(QPointF(3, 16), QPointF(29, 16));
        p.drawLine(QPointF(6, 9), QPointF(26, 9));
        p.drawLine(QPointF(6, 23), QPointF(26, 23));
    });
}

QIcon mailIcon()
{
    return paintedIcon([](QPainter &p) {
        p.setPen(QPen(QColor(0x8a, 0x5a, 0x10), 2));
        p.setBrush(QColor(0xff, 0xf1, 0xc8));
        p.drawRect(QRectF(3, 7, 26, 18));
        p.drawPolyline(QPolygonF() << QPointF(3, 7) << QPointF(16, 18) << QPointF(29, 7));
    });
}

QIcon phoneIcon()
{
    return paintedIcon([](QPainter &p) {
        p.setPen(Qt::NoPen);
        p.setBrush(QColor(0x2e, 0x7d, 0x32));
        QPainterPath handset;
        handset.moveTo(6, 4);
        handset.lineTo(12, 4);
        handset.lineTo(14, 11);
        handset.lineTo(10.5, 13.5);
        handset.cubicTo(12.5, 18, 14, 19.5, 18.5, 21.5);
        handset.lineTo(21, 18);
        handset.lineTo(28, 20);
        handset.lineTo(28, 26);
        handset.cubicTo(28, 28, 26.5, 29, 24, 29);
        handset.cubicTo(13, 28, 4, 19, 3, 8);
        handset.cubicTo(3, 5.5, 4, 4, 6, 4);
        p.drawPath(handset);
    });
}

} // namespace

LinksPage::LinksPage(Document *document, Prompts *prompts, const QString &documentsFolder, QWidget *parent)
    : QWidget(parent), m_document(document), m_prompts(prompts), m_documentsFolder(documentsFolder)
{
    setObjectName(QStringLiteral("linksPage"));
    auto *layout = new QVBoxLayout(this);

    m_list = new QTreeWidget(this);
    m_list->setObjectName(QStringLiteral("linksList"));
    m_list->setHeaderLabels({QString::fromLatin1(Messages::LinksColumn)});
    m_list->setRootIsDecorated(false);
    m_list->setUniformRowHeights(true);
    m_list->setIconSize(QSize(16, 16));
    m_list->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_list->setContextMenuPolicy(Qt::CustomContextMenu);
    m_list->header()->setStretchLastSection(true);
    layout->addWidget(m_list, 1);

    auto *addMenu = new QMenu(this);
    addMenu->setObjectName(QStringLiteral("menuAddLink"));
    addMenu->addAction(
        makeAction(QStringLiteral("actionAddFileLink"), QStringLiteral("File Link..."), &LinksPage::addFileLink));
    addMenu->addAction(makeAction(QStringLiteral("actionAddUrl"), QStringLiteral("URL..."), &LinksPage::addUrl));
    addMenu->addAction(
        makeAction(QStringLiteral("actionAddPhone"), QStringLiteral("Phone Number..."), &LinksPage::addPhoneNumber));
    addMenu->addAction(
        makeAction(QStringLiteral("actionAddItemLink"), QStringLiteral("Item Link..."), &LinksPage::addItemLink));
    QAction *modify =
        makeAction(QStringLiteral("actionModifyLink"), QStringLiteral("Modify..."), &LinksPage::modifySelected);
    QAction *remove =
        makeAction(QStringLiteral("actionDeleteLink"), QStringLiteral("Delete"), &LinksPage::deleteSelected);
    QAction *removeAll =
        makeAction(QStringLiteral("actionDeleteAllLinks"), QStringLiteral("All Links"), &LinksPage::deleteAll);

    auto *buttons = new QHBoxLayout;
    auto *add = new QPushButton(QStringLiteral("&Add"), this);
    add->setObjectName(QStringLiteral("addLinkButton"));
    add->setMenu(addMenu);
    m_modify = new QPushButton(QStringLiteral("&Modify..."), this);
    m_modify->setObjectName(QStringLiteral("modifyLinkButton"));
    connect(m_modify, &QPushButton::clicked, modify, &QAction::trigger);
    m_delete = new QPushButton(QStringLiteral("&Delete"), this);
    m_delete->setObjectName(QStringLiteral("deleteLinkButton"));
    connect(m_delete, &QPushButton::clicked, remove, &QAction::trigger);
    m_deleteAll = new QPushButton(QStringLiteral("Delete A&ll"), this);
    m_deleteAll->setObjectName(QStringLiteral("deleteAllLinksButton"));
    connect(m_deleteAll, &QPushButton::clicked, removeAll, &QAction::trigger);
    buttons->addWidget(add);
    buttons->addWidget(m_modify);
    buttons->addWidget(m_delete);
    buttons->addStretch(1);
    buttons->addWidget(m_deleteAll);
    layout->addLayout(buttons);

    connect(m_list, &QTreeWidget::itemActivated, this,
            [this](QTreeWidgetItem *row) { follow(m_list->indexOfTopLevelItem(row)); });
    connect(m_list, &QTreeWidget::currentItemChanged, this, &LinksPage::updateButtons);
    connect(m_list, &QWidget::customContextMenuRequested, this, [this, modify, remove](const QPoint &pos) {
        if (!m_list->itemAt(pos))
            return;
        m_list->setCurrentItem(m_list->itemAt(pos));
        QMenu menu(this);
        menu.addAction(modify);
        menu.addAction(remove);
        m_prompts->popupMenu(&menu, m_list->viewport()->mapToGlobal(pos));
    });
    updateButtons();
}

QAction *LinksPage::makeAction(const QString &name, const QString &text, void (LinksPage::*slot)())
{
    auto *action = new QAction(text, this);
    action->setObjectName(name);
    connect(action, &QAction::triggered, this, slot);
    m_actions.append(action);
    return action;
}

QAction *LinksPage::action(const QString &name) const
{
    for (QAction *a : m_actions) {
        if (a->objectName() == name)
            return a;
    }
    return nullptr;
}

int LinksPage::fill(const Item &item)
{
    const Links::Page page = Links::fill(*m_document, item);
    m_rows = page.rows;
    m_filled = true;
    showRows(m_rows.isEmpty() ? -1 : 0);
    if (page.dropped > 0)
        m_prompts->message(this, Prompts::Icon::Exclamation,
                           QString::fromLatin1(Messages::DeadItemLinks).arg(page.dropped));
    return page.dropped;
}

QStringList LinksPage::links() const
{
    return Links::store(m_rows);
}

QIcon LinksPage::iconFor(const Links::Row &row) const
{
    switch (row.kind) {
    case Links::Kind::ItemLink:
        return QIcon(IconSet::instance().icon(row.target ? row.target->image() : 0, 16, devicePixelRatioF()));
    case Links::Kind::Url:
        return row.text.contains(QLatin1String("mailto:")) ? mailIcon() : globeIcon();
    case Links::Kind::Phone:
        return phoneIcon();
    case Links::Kind::File:
        break;
    }
    return style()->standardIcon(QStyle::SP_FileIcon);
}

void LinksPage::showRows(int select)
{
    m_list->clear();
    for (const Links::Row &row : std::as_const(m_rows)) {
        auto *entry = new QTreeWidgetItem(m_list);
        entry->setText(0, row.text);
        entry->setIcon(0, iconFor(row));
        entry->setToolTip(0, row.text);
    }
    if (select >= 0 && select < m_list->topLevelItemCount())
        m_list->setCurrentItem(m_list->topLevelItem(select));
    updateButtons();
}

void LinksPage::updateButtons()
{
    const bool selected = m_list->currentItem() != nullptr;
    m_modify->setEnabled(selected);
    m_delete->setEnabled(selected);
    m_deleteAll->setEnabled(!m_rows.isEmpty());
    if (QAction *a = action(QStringLiteral("actionModifyLink")))
        a->setEnabled(selected);
    if (QAction *a = action(QStringLiteral("actionDeleteLink")))
        a->setEnabled(selected);
    if (QAction *a = action(QStringLiteral("actionDeleteAllLinks")))
        a->setEnabled(!m_rows.isEmpty());
}

void LinksPage::addRow(const Links::Row &row)
{
    m_rows.append(row);
    showRows(int(m_rows.size()) - 1);
}

bool LinksPage::askLinkText(const QString &prompt, QString *text)
{
    return m_prompts->askText(this, prompt, text, MaxLinkLength, [this](const QString &answer) {
        if (!answer.isEmpty())
            return true;
        m_prompts->message(this, Prompts::Icon::Exclamation, QString::fromLatin1(Messages::EnterSomeText));
        return false;
    });
}

Item *LinksPage::pickItem(const Item *preset)
{
    ItemPickerDialog picker(*m_document, m_prompts, this);
    if (preset)
        picker.selectNode(preset);
    if (m_prompts->runDialog(&picker) != QDialog::Accepted)
        return nullptr;
    return picker.chosen();
}

void LinksPage::addFileLink()
{
    const QString path = m_prompts->openFileName(
        this, QStringLiteral("File Link"), m_documentsFolder,
        Prompts::filtersOf(QString::fromLatin1(Messages::LinkFileFilter)).join(QStringLiteral(";;")));
    if (!path.isEmpty())
        addRow(Links::fileRow(path, m_documentsFolder));
}

void LinksPage::addUrl()
{
    QString text = QStringLiteral("http://");
    if (askLinkText(QString::fromLatin1(Messages::EnterUrl), &text))
        addRow(Links::urlRow(text));
}

void LinksPage::addPhoneNumber()
{
    QString text;
    if (askLinkText(QString::fromLatin1(Messages::EnterPhoneNumber), &text))
        addRow(Links::phoneRow(text));
}

void LinksPage::addItemLink()
{
    if (Item *target = pickItem(nullptr))
        addRow(Links::itemRow(target));
}

void LinksPage::modifySelected()
{
    const int index = m_list->indexOfTopLevelItem(m_list->currentItem());
    if (index < 0 || index >= m_rows.size())
        return;
    Links::Row &row = m_rows[index];
    if (row.kind == Links::Kind::ItemLink) {
        Item *target = pickItem(row.target);
        if (!target)
            return;
        row = Links::itemRow(target);
    } else {
        QString text = row.text;
        const char *prompt = row.kind == Links::Kind::Url ? Messages::EnterUrl : Messages::EnterPhoneNumber;
        if (!askLinkText(QString::fromLatin1(prompt), &text))
            return;
        row.text = text;
    }
    showRows(index);
}

void LinksPage::deleteSelected()
{
    const int index = m_list->indexOfTopLevelItem(m_list->currentItem());
    if (index < 0 || index >= m_rows.size())
        return;
    if (!m_prompts->askYesNo(this, QString::fromLatin1(Messages::AskDeleteLink)))
        return;
    m_rows.removeAt(index);
    showRows(std::min<int>(index, int(m_rows.size()) - 1));
}

void LinksPage::deleteAll()
{
    if (m_rows.isEmpty() || !m_prompts->askYesNo(this, QString::fromLatin1(Messages::AskDeleteAllLinks)))
        return;
    m_rows.clear();
    showRows(-1);
}

void LinksPage::follow(int index)
{
    if (index < 0 || index >= m_rows.size())
        return;
    const Links::Row &row = m_rows.at(index);
    if (row.kind == Links::Kind::ItemLink) {
        // The target may have been deleted since the page was filled.
        if (row.target && m_document->liveItem(row.target->handle()))
            Q_EMIT itemLinkFollowed(row.target);
        return;
    }
    // A failure to open is not reported: the desktop says nothing either.
    m_prompts->openUrl(Links::target(Links::store({row}).constFirst(), m_documentsFolder));
}
