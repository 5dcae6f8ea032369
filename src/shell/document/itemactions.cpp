#include "shell/document/itemactions.h"

#include "model/editing.h"
#include "model/item.h"
#include "model/progress.h"
#include "platform/messages.h"
#include "shell/document/itemmenu.h"
#include "shell/widgets/prompts.h"
#include "shell/widgets/waitcursor.h"

#include <QAction>
#include <QMenu>

namespace ItemActions {

void tapStatus(Item *item, const QPoint &globalPos, Prompts *prompts, QWidget *parent,
               const std::function<void()> &changed)
{
    switch (Progress::tap(item)) {
    case Progress::TapResult::Ignored:
        return;
    case Progress::TapResult::Toggled:
        changed();
        return;
    case Progress::TapResult::ShowPresets: {
        QMenu *menu = ItemMenu::buildPresets(parent);
        for (QAction *action : menu->actions()) {
            QObject::connect(action, &QAction::triggered, parent, [item, changed, value = action->data().toInt()] {
                item->setProgress(quint16(value));
                changed();
            });
        }
        prompts->popupMenu(menu, globalPos);
        menu->deleteLater();
        return;
    }
    }
}

void popupItemMenu(QMenu *menu, const QPoint &globalPos, Prompts *prompts, QObject *context,
                   const std::function<bool(int)> &available, const std::function<void(int)> &run)
{
    const auto actions = menu->findChildren<QAction *>();
    for (QAction *action : actions) {
        const int id = action->data().toInt();
        if (id == 0)
            continue;
        if (!available(id))
            action->setEnabled(false);
        QObject::connect(action, &QAction::triggered, context, [run, id] { run(id); }, Qt::QueuedConnection);
    }
    prompts->popupMenu(menu, globalPos);
    menu->deleteLater();
}

Item *paste(ItemClip &clip, TreeNode *target, Prompts *prompts, QWidget *parent)
{
    if (!clip.canPaste(target))
        return nullptr;
    bool withChildren = false;
    if (clip.asksForChildren())
        withChildren = prompts->askYesNo(parent, QString::fromLatin1(Messages::AskPasteChildren));
    WaitCursor wait;
    return clip.paste(target, withChildren);
}

} // namespace ItemActions
