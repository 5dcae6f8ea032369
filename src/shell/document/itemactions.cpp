#include "shell/document/itemactions.h"

#include "model/item.h"
#include "model/progress.h"
#include "shell/document/itemmenu.h"
#include "shell/widgets/prompts.h"

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

} // namespace ItemActions
