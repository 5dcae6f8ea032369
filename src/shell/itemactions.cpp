#include "shell/itemactions.h"

#include "model/editing.h"
#include "model/item.h"
#include "model/progress.h"
#include "platform/messages.h"
#include "shell/itemmenu.h"
#include "shell/prompts.h"
#include "shell/waitcursor.h"

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
