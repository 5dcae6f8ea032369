#include "exchange/opmlimport.h"

#include "exchange/htmlentities.h"
#include "exchange/importedtree.h"
#include "exchange/textimport.h"
#include "model/document.h"
#include "model/item.h"
#include "notes/notetext.h"
#include "platform/messages.h"

#include <QFile>
#include <QFileInfo>
#include <QXmlStreamReader>
#include <vector>

namespace {

class EntityResolver : public QXmlStreamEntityResolver {
public:
    QString resolveUndeclaredEntity(const QString &name) override { return HtmlEntities::resolve(name); }
};

bool isTrue(QStringView value)
{
    return value.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0;
}

// A whole number in [low, high], or -1.
int number(QStringView text, int low, int high)
{
    bool ok = false;
    const int value = text.trimmed().toInt(&ok);
    return ok && value >= low && value <= high ? value : -1;
}

// The date at the start of an ISO date or date-time, or no date.
SystemTime isoDate(QStringView text)
{
    const QStringView trimmed = text.trimmed();
    const QDate date = QDate::fromString(trimmed.first(qMin<qsizetype>(10, trimmed.size())), Qt::ISODate);
    if (!date.isValid())
        return {};
    return SystemTime::fromDateTime(QDateTime(date, QTime(0, 0)));
}

Item *makeItem(const QXmlStreamAttributes &attributes, const OpmlImport::Options &options, Document *categoryOwner,
               const SystemTime &now)
{
    // Outliners that know no text attribute name their rows by title.
    QStringView name = attributes.value(QLatin1String("text"));
    if (name.isEmpty())
        name = attributes.value(QLatin1String("title"));
    auto *item = new Item(name.toString(), options.icon, now);
    const QStringView note = attributes.value(QLatin1String("_note"));
    if (!note.isEmpty())
        item->setNote(NoteText::fromText(note.toString(), options.noteType));

    const QStringView status = attributes.value(QLatin1String("_status"));
    if (status == QLatin1String("checked") || isTrue(attributes.value(QLatin1String("_complete"))) ||
        isTrue(attributes.value(QLatin1String("complete"))))
        item->storeProgress(100);
    else if (status == QLatin1String("none"))
        item->setStatusType(Item::NoStatus);
    if (const int progress = number(attributes.value(QLatin1String("_progress")), 0, 100); progress >= 0) {
        item->setStatusType(Item::ProgressBar);
        item->storeProgress(quint16(progress));
    }
    if (const int priority = number(attributes.value(QLatin1String("_priority")), 1, 20); priority >= 0)
        item->setPriority(quint16(priority));
    const QStringView category = attributes.value(QLatin1String("_category"));
    if (!category.isEmpty()) {
        const QString text = category.toString();
        item->setCategory(categoryOwner ? categoryOwner->collectCategory(text) : text);
    }
    const SystemTime due = isoDate(attributes.value(QLatin1String("_due")));
    if (due.hasDate())
        item->setDueDate(due);

    QStringList links;
    for (const char *key : {"url", "xmlUrl", "htmlUrl"}) {
        const QString link = attributes.value(QLatin1String(key)).trimmed().toString();
        if (!link.isEmpty() && !links.contains(link))
            links.append(link);
    }
    if (!links.isEmpty())
        item->setLinks(links);
    return item;
}

OpmlImport::Result failed(QString *error, const QString &detail)
{
    if (error)
        *error = detail;
    return OpmlImport::Result::FormatError;
}

} // namespace

OpmlImport::Result OpmlImport::read(QIODevice &in, TreeNode *root, const Options &options, Document *categoryOwner,
                                    QString *error)
{
    QXmlStreamReader xml(&in);
    EntityResolver resolver;
    xml.setEntityResolver(&resolver);
    const SystemTime now = SystemTime::now();

    // The outlines open around the reader's position; an explicit stack, so
    // the depth of the file does not matter.
    std::vector<TreeNode *> open;
    int headDepth = 0;
    bool seenRoot = false;
    while (!xml.atEnd()) {
        const QXmlStreamReader::TokenType token = xml.readNext();
        if (token == QXmlStreamReader::StartElement) {
            const QStringView name = xml.name();
            if (!seenRoot) {
                if (name != QLatin1String("opml"))
                    return failed(error, QStringLiteral("the file is not an OPML outline"));
                seenRoot = true;
            } else if (headDepth > 0 || name == QLatin1String("head")) {
                ++headDepth;
                if (headDepth == 2 && name == QLatin1String("title")) {
                    root->setName(xml.readElementText(QXmlStreamReader::IncludeChildElements).trimmed());
                    --headDepth;
                }
            } else if (name == QLatin1String("outline")) {
                Item *item = makeItem(xml.attributes(), options, categoryOwner, now);
                (open.empty() ? root : open.back())->appendChild(item);
                open.push_back(item);
            }
        } else if (token == QXmlStreamReader::EndElement) {
            if (headDepth > 0)
                --headDepth;
            else if (xml.name() == QLatin1String("outline"))
                open.pop_back();
        }
    }
    if (xml.hasError()) {
        if (auto *file = qobject_cast<QFileDevice *>(&in); file && file->error() != QFileDevice::NoError)
            return Result::Unreadable;
        return failed(error, QStringLiteral("line %1, column %2: %3")
                                 .arg(xml.lineNumber())
                                 .arg(xml.columnNumber())
                                 .arg(xml.errorString()));
    }
    if (!seenRoot)
        return failed(error, QStringLiteral("the file is not an OPML outline"));
    return Result::Ok;
}

namespace {

OpmlImport::Result readFile(const QString &path, TreeNode *root, const OpmlImport::Options &options,
                            Document *categoryOwner, QString *error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return OpmlImport::Result::Unreadable;
    return OpmlImport::read(file, root, options, categoryOwner, error);
}

} // namespace

OpmlImport::Result OpmlImport::importDocument(const QString &path, const Options &options, Document *document,
                                              QString *error)
{
    document->noteType = options.noteType;
    document->path = TextImport::documentPath(path);
    // A file without a title names the root after itself.
    document->root()->setName(QFileInfo(path).completeBaseName());
    return readFile(path, document->root(), options, document, error);
}

OpmlImport::Result OpmlImport::importInto(const QString &path, Document *document, TreeNode *target,
                                          const Options &options, QString *error)
{
    Options into = options;
    into.noteType = document->noteType;
    return ImportedTree::into(
        document, target, [&](TreeNode *root, Document *scratch) { return readFile(path, root, into, scratch, error); },
        Result::Ok);
}

QString OpmlImport::message(Result result, const QString &detail)
{
    QString text;
    switch (result) {
    case Result::Ok:
        return QString();
    case Result::FormatError:
        text = QString::fromLatin1(Messages::OutlineImportInvalid);
        break;
    case Result::Unreadable:
        text = QString::fromLatin1(Messages::ImportTooLarge);
        break;
    }
    return detail.isEmpty() ? text : text + QLatin1Char('\n') + detail;
}
