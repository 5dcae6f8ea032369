#include "views/visibilityfilter.h"

#include "model/document.h"

namespace {

quint32 hideBit(VisibilityFilter::Toggle toggle)
{
    switch (toggle) {
    case VisibilityFilter::HideNoStatus:
        return Document::HideNoStatus;
    case VisibilityFilter::HideCheckBox:
        return Document::HideCheckBox;
    case VisibilityFilter::HideProgressBar:
        return Document::HideProgressBar;
    default:
        return 0;
    }
}

} // namespace

VisibilityFilter::VisibilityFilter(const Document &document)
    : VisibilityFilter(document.hideCompleted, document.hideByStatus)
{
}

VisibilityFilter::VisibilityFilter(bool hideCompleted, quint32 hideByStatus)
    // Only the three status bits hide anything; other bits are kept in the
    // document as read but mean nothing here.
    : m_hideByStatus(hideByStatus & (Document::HideNoStatus | Document::HideCheckBox | Document::HideProgressBar)),
      m_hideCompleted(hideCompleted)
{
}

bool VisibilityFilter::isVisible(const TreeNode *node) const
{
    if (!node->isItem())
        return true;
    if (m_hideCompleted && node->isComplete())
        return false;
    // Status types 0, 1 and 2 are hidden by bits 4, 5 and 6; other types
    // have no bit.
    const quint16 type = node->statusType();
    return type > 2 || !(m_hideByStatus & (Document::HideNoStatus << type));
}

bool VisibilityFilter::isShown(const TreeNode *node) const
{
    if (!isActive())
        return true;
    for (; node; node = node->parent()) {
        if (!isVisible(node))
            return false;
    }
    return true;
}

bool VisibilityFilter::isOn(const Document &document, Toggle toggle)
{
    switch (toggle) {
    case HideCompleted:
        return document.hideCompleted;
    case ShowDueDate:
        return document.showDueDate;
    case ShowStatistics:
        return document.showStatistics;
    default:
        return document.hideByStatus & hideBit(toggle);
    }
}

bool VisibilityFilter::toggle(Document &document, Toggle toggle)
{
    switch (toggle) {
    case HideCompleted:
        document.hideCompleted = !document.hideCompleted;
        return true;
    case ShowDueDate:
        document.showDueDate = !document.showDueDate;
        return false;
    case ShowStatistics:
        document.showStatistics = !document.showStatistics;
        return false;
    default:
        document.hideByStatus ^= hideBit(toggle);
        return true;
    }
}
