#include "exchange/opmlexport.h"

#include "exchange/exchangetext.h"
#include "model/item.h"
#include "model/treewalker.h"
#include "storage/safesave.h"

#include <QIODevice>
#include <QXmlStreamWriter>
#include <array>

namespace {

// Indentation grows by two spaces a level up to this level and no further,
// so a chain a million levels deep does not make the file quadratic in size.
constexpr int MaxIndentLevel = 40;

// A line break and the indentation of an element at this level (the body's
// children are at level 2).
void newLine(QXmlStreamWriter &xml, int level)
{
    static const std::array<QString, MaxIndentLevel + 1> lines = [] {
        std::array<QString, MaxIndentLevel + 1> made;
        for (int i = 0; i <= MaxIndentLevel; ++i)
            made[size_t(i)] = QLatin1Char('\n') + QString(2 * i, QLatin1Char(' '));
        return made;
    }();
    xml.writeCharacters(lines[size_t(qMin(level, MaxIndentLevel))]);
}

QString isoDate(const SystemTime &date)
{
    const auto digit = [](int value) { return QChar(u'0' + value % 10); };
    const QChar text[] = {digit(date.year / 1000), digit(date.year / 100), digit(date.year / 10), digit(date.year),
                          u'-', digit(date.month / 10), digit(date.month), u'-', digit(date.day / 10), digit(date.day)};
    return QString(text, 10);
}

void writeOutline(QXmlStreamWriter &xml, const Item &item, quint16 noteType)
{
    if (item.hasChildren())
        xml.writeStartElement(QStringLiteral("outline"));
    else
        xml.writeEmptyElement(QStringLiteral("outline"));
    xml.writeAttribute(QStringLiteral("text"), ExchangeText::xmlSafe(item.name()));
    // A note of nothing but characters XML cannot hold is no note.
    const QString note = ExchangeText::xmlSafe(ExchangeText::noteText(item, noteType));
    if (!note.isEmpty())
        xml.writeAttribute(QStringLiteral("_note"), note);
    switch (item.statusType()) {
    case Item::NoStatus:
        xml.writeAttribute(QStringLiteral("_status"), QStringLiteral("none"));
        break;
    case Item::CheckBox:
        if (item.isComplete())
            xml.writeAttribute(QStringLiteral("_status"), QStringLiteral("checked"));
        break;
    case Item::ProgressBar:
        xml.writeAttribute(QStringLiteral("_progress"), QString::number(item.progress()));
        break;
    }
    if (item.priority() != 10)
        xml.writeAttribute(QStringLiteral("_priority"), QString::number(item.priority()));
    if (!item.category().isEmpty())
        xml.writeAttribute(QStringLiteral("_category"), ExchangeText::xmlSafe(item.category()));
    if (item.hasDueDate())
        xml.writeAttribute(QStringLiteral("_due"), isoDate(item.dueDate()));
    // Readers trim an address, so it is written trimmed; one that then looks
    // like a link to an item would read back as one, and is left out.
    const QString link = ExchangeText::xmlSafe(ExchangeText::firstOuterLink(item)).trimmed();
    if (!link.isEmpty() && !Item::isItemLink(link)) {
        xml.writeAttribute(QStringLiteral("type"), QStringLiteral("link"));
        xml.writeAttribute(QStringLiteral("url"), link);
    }
}

} // namespace

bool OpmlExport::write(QIODevice &out, const TreeNode *root, const Options &options)
{
    // The writer fills a string that goes to the device as UTF-8 whenever a
    // piece of it is full: far fewer, larger writes than a writer on the
    // device itself makes. A writer on a string declares no encoding, so the
    // declaration is written here.
    static constexpr qsizetype PieceSize = 1 << 16;
    QString piece;
    piece.reserve(PieceSize + 4096);
    const auto flush = [&out, &piece] {
        const QByteArray bytes = piece.toUtf8();
        piece.resize(0);
        return out.write(bytes) == bytes.size();
    };
    const QByteArray declaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>";
    if (out.write(declaration) != declaration.size())
        return false;

    QXmlStreamWriter xml(&piece);
    newLine(xml, 0);
    xml.writeStartElement(QStringLiteral("opml"));
    xml.writeAttribute(QStringLiteral("version"), QStringLiteral("2.0"));
    newLine(xml, 1);
    xml.writeStartElement(QStringLiteral("head"));
    newLine(xml, 2);
    // Readers trim the title, so it is written trimmed and reads back the same.
    xml.writeTextElement(QStringLiteral("title"), ExchangeText::xmlSafe(root->name()).trimmed());
    newLine(xml, 1);
    xml.writeEndElement();
    newLine(xml, 1);
    xml.writeStartElement(QStringLiteral("body"));

    // Outlines left open (those with children); a count, so any depth is safe.
    int open = 0;
    TreeWalker walker(root);
    while (const Item *item = walker.next()) {
        for (; open >= walker.depth(); --open) {
            newLine(xml, open + 1);
            xml.writeEndElement();
        }
        newLine(xml, walker.depth() + 1);
        writeOutline(xml, *item, options.noteType);
        if (item->hasChildren())
            ++open;
        if (piece.size() >= PieceSize && !flush())
            return false;
    }
    for (; open > 0; --open) {
        newLine(xml, open + 1);
        xml.writeEndElement();
    }
    newLine(xml, 1);
    xml.writeEndElement(); // body
    newLine(xml, 0);
    xml.writeEndElement(); // opml
    xml.writeEndDocument();
    return !xml.hasError() && flush();
}

bool OpmlExport::exportOpml(const QString &path, const TreeNode *root, const Options &options, QString *error)
{
    if (!root)
        return false;
    return SafeSave::write(path, [&](QIODevice &out) { return write(out, root, options); }, error);
}
