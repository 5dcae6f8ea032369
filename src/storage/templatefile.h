#pragma once

#include "storage/template.h"

#include <QString>
#include <memory>
#include <vector>

/// The application's templates and the file that keeps them (the settings'
/// TemplateFile). The file is version 551 little-endian: version (u32), count
/// (u32), then per template its name (string), its note type (u16) and the
/// item fields a document entry holds from Image through Note, without
/// depth, record number or links.
class TemplateFile {
public:
    static constexpr quint32 WrittenVersion = 551;
    /// The menu's command for the blank default template.
    static constexpr int BlankCommand = 40124;
    /// A template's command is this plus its position in the whole list.
    static constexpr int FirstCommand = 40125;
    static constexpr int MaxMenuEntries = 10;

    TemplateFile();
    ~TemplateFile();
    TemplateFile(const TemplateFile &) = delete;
    TemplateFile &operator=(const TemplateFile &) = delete;

    int count() const { return int(m_templates.size()); }
    Template *at(int index) const { return m_templates[size_t(index)].get(); }

    /// Replaces the list by the file's templates. A missing file is created
    /// empty (the load then fails, as there is no version to read, and the
    /// list stays empty). A damaged record ends the load with false, keeping
    /// the templates read before it.
    bool load(const QString &path);
    /// Writes the list by a safe save: the old file is replaced only by a
    /// complete new one. An empty list gives an 8-byte file.
    bool save(const QString &path, QString *error = nullptr) const;

    void add(std::unique_ptr<Template> entry);
    /// Adds a template made in the name dialog, unless the caller has fixed a
    /// note type (fixedNoteType >= 0) that the template's differs from.
    bool addNew(std::unique_ptr<Template> entry, int fixedNoteType = -1);
    void remove(int index);
    /// "Edit": puts the edited copy in the template's place.
    void replace(int index, std::unique_ptr<Template> entry);
    /// "Are you sure to delete template '<name>'?"
    QString deleteQuestion(int index) const;

    struct MenuEntry {
        int command;
        int index; ///< position in the whole list
        QString name;
    };
    /// The templates offered to a document of noteType, in list order, at
    /// most ten.
    std::vector<MenuEntry> menu(quint16 noteType) const;
    /// The template of a menu command, or null (also for the blank one).
    Template *forCommand(int command) const;

private:
    std::vector<std::unique_ptr<Template>> m_templates;
};
