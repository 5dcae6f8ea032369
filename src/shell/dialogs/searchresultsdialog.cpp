#include "shell/dialogs/searchresultsdialog.h"

#include "model/item.h"
#include "platform/messages.h"
#include "rows/iconset.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

QString SearchResultsDialog::placeOf(const Item *item)
{
    // The nearest few ancestors say enough, however deep the item lies.
    constexpr int Shown = 4;
    QStringList names;
    const TreeNode *n = item->parent();
    for (; n && n->parent() && names.size() < Shown; n = n->parent())
        names.prepend(n->name());
    if (n && n->parent())
        names.prepend(QStringLiteral("..."));
    return names.join(QStringLiteral(" > "));
}

SearchResultsDialog::SearchResultsDialog(const std::vector<Item *> &items, QWidget *parent)
    : QDialog(parent), m_items(items)
{
    setObjectName(QStringLiteral("searchResults"));
    setWindowTitle(QStringLiteral("Find Result"));
    auto *layout = new QVBoxLayout(this);
    m_list = new QTreeWidget(this);
    m_list->setObjectName(QStringLiteral("resultList"));
    m_list->setHeaderLabels({QString::fromLatin1(Messages::SearchResults), QStringLiteral("In")});
    m_list->setRootIsDecorated(false);
    m_list->setUniformRowHeights(true);
    m_list->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_list->setIconSize(QSize(16, 16));
    m_list->header()->setStretchLastSection(true);
    const qreal dpr = devicePixelRatioF();
    QList<QTreeWidgetItem *> rows;
    rows.reserve(qsizetype(items.size()));
    for (const Item *item : items) {
        auto *row = new QTreeWidgetItem;
        row->setText(0, item->name());
        // Items of the same name are told apart by where they are.
        row->setText(1, placeOf(item));
        row->setIcon(0, QIcon(IconSet::instance().icon(item->image(), 16, dpr)));
        rows.append(row);
    }
    m_list->addTopLevelItems(rows);
    if (!rows.isEmpty())
        m_list->setCurrentItem(rows.constFirst());
    layout->addWidget(m_list, 1);

    auto *count = new QLabel(QStringLiteral("%1 item(s) found.").arg(items.size()), this);
    count->setObjectName(QStringLiteral("resultCount"));
    layout->addWidget(count);

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setText(QStringLiteral("&Go To"));
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_list, &QTreeWidget::itemActivated, this, &QDialog::accept);
    layout->addWidget(buttons);
    resize(380, 440);
}

Item *SearchResultsDialog::chosen() const
{
    const int row = m_list->indexOfTopLevelItem(m_list->currentItem());
    return row >= 0 && size_t(row) < m_items.size() ? m_items[size_t(row)] : nullptr;
}
