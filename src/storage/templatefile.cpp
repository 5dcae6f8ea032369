#include "storage/templatefile.h"

#include "platform/messages.h"
#include "storage/bytereader.h"
#include "storage/bytewriter.h"
#include "storage/safesave.h"

#include <QFile>

namespace {

// The same reading rules as a document's item entries.
constexpr quint16 ImageUnset = 0xFFFF;
constexpr quint16 ColourUnset = 0xFFFF;
constexpr quint32 MaxTaskTimeUnits = 7;
// The fewest bytes a record of a version 551 file can take (empty strings,
// no note); older files lack the 16-byte reminder time.
constexpr qint64 MinRecordBytes = 94;
constexpr qint64 MinOldRecordBytes = MinRecordBytes - 16;

std::unique_ptr<Template> readRecord(ByteReader &in, quint32 version)
{
    auto entry = std::make_unique<Template>();
    entry->setTemplateName(in.string());
    entry->setTemplateNoteType(in.u16());
    quint16 image = in.u16();
    entry->setImage(image == ImageUnset ? Template::DefaultImage : image);
    entry->setName(in.string());
    entry->setExtraWord(in.u32());
    const quint32 stdFlags = in.u32();
    quint16 sort = in.u16();
    // Version 500 numbered "Creation Date" where manual order now is.
    if (version == 500 && sort == TreeNode::SortCreationDate)
        sort = TreeNode::SortManual;
    entry->setSort(sort);
    const QString taskTime = in.string(MaxTaskTimeUnits);
    const quint16 colour = in.u16();
    entry->setColour(colour == ColourUnset ? 0 : colour);
    entry->setCreated(in.time());
    entry->storeProgress(in.u16());
    entry->setStatusType(in.u16());
    entry->setFlags(in.u32());
    entry->setCategory(in.string());
    entry->setPriority(in.u16());
    entry->setDueDate(in.time());
    if (version == 551)
        entry->setReminderTime(in.time());
    const qint32 noteSize = qint32(in.u32());
    if (noteSize > 0)
        entry->setNote(in.block(noteSize));
    if (!in.ok())
        return nullptr;
    entry->setTaskTime(taskTime);
    // A template has no children, so it can never be expanded; only the
    // direction is kept.
    entry->setStdFlags(stdFlags);
    return entry;
}

void writeRecord(ByteWriter &out, const Template &entry)
{
    out.string(entry.templateName());
    out.u16(entry.templateNoteType());
    out.u16(entry.image());
    out.string(entry.name());
    out.u32(entry.extraWord());
    out.u32(entry.stdFlags());
    out.u16(entry.sort());
    out.string(entry.taskTime());
    out.u16(entry.colour());
    out.time(entry.created());
    out.u16(entry.progress());
    out.u16(entry.statusType());
    out.u32(entry.flags());
    out.string(entry.category());
    out.u16(entry.priority());
    out.time(entry.dueDate());
    out.time(entry.reminderTime());
    const QByteArray note = entry.note();
    out.u32(quint32(note.size()));
    out.block(note);
}

} // namespace

TemplateFile::TemplateFile() = default;

TemplateFile::~TemplateFile() = default;

bool TemplateFile::load(const QString &path)
{
    m_templates.clear();
    QFile file(path);
    if (!file.exists()) {
        // The first start leaves an empty template file behind.
        file.open(QIODevice::WriteOnly);
        return false;
    }
    if (!file.open(QIODevice::ReadOnly))
        return false;
    ByteReader in(&file);
    const quint32 version = in.u32();
    const quint32 count = in.u32();
    if (!in.ok())
        return false;
    // The count is trusted only as far as the bytes left can hold records.
    const qint64 fit = in.bytesLeft() / (version == 551 ? MinRecordBytes : MinOldRecordBytes);
    m_templates.reserve(size_t(qMin<qint64>(count, fit)));
    for (quint32 i = 0; i < count; ++i) {
        std::unique_ptr<Template> entry = readRecord(in, version);
        if (!entry)
            return false;
        m_templates.push_back(std::move(entry));
    }
    return true;
}

bool TemplateFile::save(const QString &path, QString *error) const
{
    ByteWriter out;
    out.u32(WrittenVersion);
    out.u32(quint32(m_templates.size()));
    for (const auto &entry : m_templates)
        writeRecord(out, *entry);
    out.finish();
    return SafeSave::write(path, out.bytes(), error);
}

void TemplateFile::add(std::unique_ptr<Template> entry)
{
    m_templates.push_back(std::move(entry));
}

bool TemplateFile::addNew(std::unique_ptr<Template> entry, int fixedNoteType)
{
    if (fixedNoteType >= 0 && entry->templateNoteType() != fixedNoteType)
        return false;
    add(std::move(entry));
    return true;
}

void TemplateFile::remove(int index)
{
    m_templates.erase(m_templates.begin() + index);
}

void TemplateFile::replace(int index, std::unique_ptr<Template> entry)
{
    m_templates[size_t(index)] = std::move(entry);
}

QString TemplateFile::deleteQuestion(int index) const
{
    return QString::fromUtf8(Messages::AskDeleteTemplate).arg(at(index)->templateName());
}

std::vector<TemplateFile::MenuEntry> TemplateFile::menu(quint16 noteType) const
{
    std::vector<MenuEntry> entries;
    for (size_t i = 0; i < m_templates.size() && entries.size() < MaxMenuEntries; ++i) {
        if (m_templates[i]->templateNoteType() == noteType)
            entries.push_back({FirstCommand + int(i), int(i), m_templates[i]->templateName()});
    }
    return entries;
}

Template *TemplateFile::forCommand(int command) const
{
    const int index = command - FirstCommand;
    return index >= 0 && index < count() ? at(index) : nullptr;
}
