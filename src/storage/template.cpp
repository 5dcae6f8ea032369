#include "storage/template.h"

#include "platform/messages.h"

Template::Template() : Item(QString(), DefaultImage) {}

Template::Template(quint16 noteType) : Template()
{
    m_templateNoteType = noteType;
}

Template *Template::clone() const
{
    auto *copy = new Template(m_templateNoteType);
    copy->setName(name());
    copy->setImage(image());
    copy->setSort(sort());
    copy->setAscending(isAscending());
    copy->setExtraWord(extraWord());
    copy->setTaskTime(taskTime());
    copy->setTaskTimeType(taskTimeType());
    copy->setColour(colour());
    copy->setNote(note());
    copy->storeProgress(progress());
    copy->setStatusType(statusType());
    copy->setFlags(flags());
    copy->setCategory(category());
    copy->setPriority(priority());
    copy->setDueDate(dueDate());
    copy->setReminderTime(reminderTime());
    copy->m_templateName = m_templateName;
    return copy;
}

void Template::applyTo(Item *item) const
{
    item->setName(name());
    item->setImage(image());
    item->setPriority(priority());
    item->setCategory(category());
    item->setStatusType(statusType());
    item->setAutoProgress(autoProgress());
    item->setProgress(progress());
    item->setColour(colour());
    item->setItalic(isItalic());
    item->setShowIcon(showIcon());
    item->setDueDate(dueDate());
    item->setTaskTime(taskTime());
    item->setTaskTimeType(taskTimeType());
    item->setReminderTime(reminderTime());
    item->setNote(note());
}

QString Template::nameError(const QString &name)
{
    return name.trimmed().isEmpty() ? QString::fromUtf8(Messages::EnterName) : QString();
}
