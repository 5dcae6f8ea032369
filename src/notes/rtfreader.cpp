#include "notes/rtfreader.h"

#include "platform/codepage.h"

#include <QHash>
#include <QSet>
#include <map>
#include <memory>

namespace {

enum class Destination : quint8 {
    Text,        // text that the note shows
    Skip,        // a destination without text for us
    FontTable,   // font numbers and their character sets
    ColourTable, // \red \green \blue entries ended by ";"
    Upr,         // older Word: an ANSI copy of the text whose "\*\ud" subgroup has the real one
};

struct GroupState {
    RichText::CharFormat format;
    RichText::Alignment alignment = RichText::Alignment::Left;
    Destination destination = Destination::Text;
    int ucSkip = 1;
    int font = -1;
};

// Destinations that hold no text of the note, named without "\*" by the
// writers that use them (every "\*" destination is skipped anyway).
const QSet<QByteArray> &skippedDestinations()
{
    static const QSet<QByteArray> words = {"info",         "stylesheet",
                                           "pict",         "header",
                                           "headerl",      "headerr",
                                           "headerf",      "footer",
                                           "footerl",      "footerr",
                                           "footerf",      "footnote",
                                           "fldinst",      "filetbl",
                                           "listtable",    "listoverridetable",
                                           "revtbl",       "rsidtbl",
                                           "generator",    "xmlnstbl",
                                           "themedata",    "colorschememapping",
                                           "latentstyles", "datastore",
                                           "pgdsctbl",     "objdata",
                                           "objclass",     "objname",
                                           "nonshppict",   "shpinst",
                                           "shppict",      "sp",
                                           "sn",           "sv",
                                           "bkmkstart",    "bkmkend",
                                           "annotation",   "atnid",
                                           "atnauthor",    "atrfstart",
                                           "atrfend",      "atntime",
                                           "atnref",       "atndate",
                                           "atnicn",       "author",
                                           "operator",     "title",
                                           "subject",      "doccomm",
                                           "keywords",     "comment",
                                           "creatim",      "revtim",
                                           "printim",      "buptim",
                                           "template",     "docvar",
                                           "ftnsep",       "ftnsepc",
                                           "ftncn",        "aftnsep",
                                           "aftnsepc",     "aftncn",
                                           "txe",          "xe",
                                           "tc",           "private",
                                           "formfield",    "datafield",
                                           "blipuid",      "listpicture",
                                           "fchars",       "lchars",
                                           "pnseclvl",     "picprop",
                                           "do",           "expandedcolortbl",
                                           "mmathPr",      "wgrffmtfilter",
                                           "userprops",    "protusertbl",
                                           "passwordhash", "company",
                                           "category",     "manager",
                                           "hlinkbase",    "pntxta",
                                           "pntxtb",       "ud"};
    return words;
}

// The underline styles; each turns underlining on (or off with 0).
const QSet<QByteArray> &underlineWords()
{
    static const QSet<QByteArray> words = {"ul",         "uld",       "uldash",     "uldashd", "uldashdd", "uldb",
                                           "ulhwave",    "ulldash",   "ulth",       "ulthd",   "ulthdash", "ulthdashd",
                                           "ulthdashdd", "ulthldash", "ululdbwave", "ulw",     "ulwave"};
    return words;
}

// Characters that RTF spells as control words.
const QHash<QByteArray, char16_t> &symbolWords()
{
    static const QHash<QByteArray, char16_t> words = {
        {"tab", u'\t'},      {"cell", u'\t'},       {"nestcell", u'\t'},   {"emdash", 0x2014}, {"endash", 0x2013},
        {"emspace", 0x2003}, {"enspace", 0x2002},   {"qmspace", 0x2005},   {"bullet", 0x2022}, {"lquote", 0x2018},
        {"rquote", 0x2019},  {"ldblquote", 0x201c}, {"rdblquote", 0x201d}, {"zwj", 0x200d},    {"zwnj", 0x200c},
        {"ltrmark", 0x200e}, {"rtlmark", 0x200f}};
    return words;
}

// Word's font character sets and the Windows code pages behind them.
int codePageOfCharset(int charset)
{
    switch (charset) {
    case 77:
        return 10000;
    case 128:
        return 932;
    case 129:
        return 949;
    case 130:
        return 1361;
    case 134:
        return 936;
    case 136:
        return 950;
    case 161:
        return 1253;
    case 162:
        return 1254;
    case 163:
        return 1258;
    case 177:
        return 1255;
    case 178:
        return 1256;
    case 186:
        return 1257;
    case 204:
        return 1251;
    case 222:
        return 874;
    case 238:
        return 1250;
    case 255:
        return 437;
    default:
        return 0; // the document's code page
    }
}

QString codePageName(int codePage)
{
    switch (codePage) {
    case 10000:
        return QStringLiteral("macintosh");
    case 65001:
        return QStringLiteral("UTF-8");
    case 437:
        return QStringLiteral("ibm-437");
    case 850:
        return QStringLiteral("ibm-850");
    case 1361:
        return QStringLiteral("ibm-1361");
    default:
        return QStringLiteral("windows-%1").arg(codePage);
    }
}

bool isLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

int hexValue(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

class Parser {
public:
    explicit Parser(QByteArrayView in) : m_in(in) {}
    RichText parse();

private:
    GroupState &state() { return m_stack.back(); }
    void openGroup();
    void closeGroup();
    void controlWord(const QByteArray &word, bool hasParameter, int parameter);
    void controlSymbol(char symbol);
    void textByte(char byte);
    void addByte(char byte);
    void appendUnits(const QString &text);
    void flushBytes();
    void endParagraph();
    bool consumeFallback();
    int currentCodePage() const;
    CodePage *codePage(int number);

    QByteArrayView m_in;
    qsizetype m_pos = 0;
    RichText m_result;
    RichText::Paragraph m_paragraph;
    std::vector<GroupState> m_stack;
    qsizetype m_extraDepth = 0; // groups beyond the kept depth share the top state
    bool m_groupStart = false;  // the last token opened a group
    bool m_starred = false;     // "{\*" seen; the next control word names an optional destination
    int m_fallbackLeft = 0;     // characters still to drop after a \uN
    int m_ansiCodePage = 1252;
    int m_defaultFont = -1;
    int m_fontBeingDefined = -1;
    std::map<int, int> m_fontCodePages;
    std::vector<std::pair<bool, quint32>> m_colours; // (defined, rgb)
    int m_red = -1, m_green = -1, m_blue = -1;
    QByteArray m_bytes; // text bytes waiting for their code page
    int m_bytesCodePage = 0;
    std::map<int, std::unique_ptr<CodePage>> m_codePages;
};

constexpr qsizetype KeptDepth = 1024;

RichText Parser::parse()
{
    m_stack.emplace_back();
    const qsizetype size = m_in.size();
    while (m_pos < size) {
        const char c = m_in[m_pos++];
        if (c == '{') {
            m_fallbackLeft = 0;
            openGroup();
            continue;
        }
        if (c == '}') {
            m_fallbackLeft = 0;
            closeGroup();
            if (m_stack.size() == 1 && m_extraDepth == 0 && m_pos > 1)
                break; // the document's own group is closed; what follows is not RTF
            continue;
        }
        if (c != '\\') {
            if (c == '\r' || c == '\n' || c == '\0')
                continue; // line breaks of the RTF file are not text
            m_groupStart = m_starred = false;
            if (!consumeFallback())
                textByte(c);
            continue;
        }
        if (m_pos >= size)
            break;
        const char next = m_in[m_pos];
        if (!isLetter(next)) {
            ++m_pos;
            if (next == '*' && m_groupStart) {
                m_starred = true;
                continue;
            }
            m_groupStart = m_starred = false;
            if (next == '\'') {
                // Two hex digits; a broken escape drops the digits it has.
                int value = 0;
                int digits = 0;
                while (digits < 2 && m_pos < size && hexValue(m_in[m_pos]) >= 0) {
                    value = value * 16 + hexValue(m_in[m_pos++]);
                    ++digits;
                }
                if (digits < 2)
                    value = -1;
                if (!consumeFallback() && value >= 0 && state().destination == Destination::Text)
                    addByte(char(value));
                continue;
            }
            if (!consumeFallback())
                controlSymbol(next);
            continue;
        }
        QByteArray word;
        while (m_pos < size && isLetter(m_in[m_pos])) {
            if (word.size() < 32)
                word += m_in[m_pos];
            ++m_pos;
        }
        bool hasParameter = false;
        bool negative = false;
        qint64 parameter = 0;
        if (m_pos + 1 < size && m_in[m_pos] == '-' && m_in[m_pos + 1] >= '0' && m_in[m_pos + 1] <= '9') {
            negative = true;
            ++m_pos;
        }
        while (m_pos < size && m_in[m_pos] >= '0' && m_in[m_pos] <= '9') {
            hasParameter = true;
            if (parameter < 100000000000LL)
                parameter = parameter * 10 + (m_in[m_pos] - '0');
            ++m_pos;
        }
        if (m_pos < size && m_in[m_pos] == ' ')
            ++m_pos;
        parameter = qBound<qint64>(-2147483647LL, negative ? -parameter : parameter, 2147483647LL);
        if (word == "bin") {
            // Binary data: that many raw bytes follow, whatever they are.
            m_pos += qMin<qint64>(qMax<qint64>(parameter, 0), size - m_pos);
            m_groupStart = m_starred = false;
            continue;
        }
        if (consumeFallback()) {
            m_groupStart = m_starred = false;
            continue;
        }
        controlWord(word, hasParameter, int(parameter));
    }
    flushBytes();
    if (!m_paragraph.runs.empty())
        endParagraph();
    return std::move(m_result);
}

bool Parser::consumeFallback()
{
    if (m_fallbackLeft <= 0)
        return false;
    --m_fallbackLeft;
    return true;
}

void Parser::openGroup()
{
    flushBytes();
    if (qsizetype(m_stack.size()) < KeptDepth)
        m_stack.push_back(m_stack.back());
    else
        ++m_extraDepth;
    m_groupStart = true;
    m_starred = false;
}

void Parser::closeGroup()
{
    flushBytes();
    m_groupStart = m_starred = false;
    if (m_extraDepth > 0) {
        --m_extraDepth;
        return;
    }
    if (m_stack.size() > 1) {
        const Destination closed = m_stack.back().destination;
        m_stack.pop_back();
        if (closed == Destination::ColourTable && state().destination != Destination::ColourTable &&
            (m_red >= 0 || m_green >= 0 || m_blue >= 0)) {
            // A last entry without its ";".
            m_colours.emplace_back(true, quint32(qMax(m_red, 0) & 0xff) << 16 | quint32(qMax(m_green, 0) & 0xff) << 8 |
                                             quint32(qMax(m_blue, 0) & 0xff));
            m_red = m_green = m_blue = -1;
        }
    }
}

void Parser::controlWord(const QByteArray &word, bool hasParameter, int parameter)
{
    const bool starred = m_starred;
    const bool groupStart = m_groupStart;
    m_groupStart = m_starred = false;
    GroupState &s = state();

    if (word == "fonttbl") {
        s.destination = Destination::FontTable;
        return;
    }
    if (word == "colortbl") {
        s.destination = Destination::ColourTable;
        m_red = m_green = m_blue = -1;
        return;
    }
    if (word == "ud" && groupStart && m_stack.size() >= 2 &&
        m_stack[m_stack.size() - 2].destination == Destination::Upr) {
        s.destination = Destination::Text;
        return;
    }
    if (word == "upr") {
        flushBytes();
        s.destination = Destination::Upr;
        return;
    }
    if ((starred && groupStart) || skippedDestinations().contains(word)) {
        flushBytes();
        s.destination = Destination::Skip;
        return;
    }

    switch (s.destination) {
    case Destination::Skip:
    case Destination::Upr:
        return;
    case Destination::FontTable:
        if (word == "f")
            m_fontBeingDefined = parameter;
        else if (word == "fcharset" && m_fontBeingDefined >= 0 && !m_fontCodePages.count(m_fontBeingDefined))
            m_fontCodePages[m_fontBeingDefined] = codePageOfCharset(parameter);
        else if (word == "cpg" && m_fontBeingDefined >= 0)
            m_fontCodePages[m_fontBeingDefined] = parameter;
        return;
    case Destination::ColourTable:
        if (word == "red")
            m_red = parameter;
        else if (word == "green")
            m_green = parameter;
        else if (word == "blue")
            m_blue = parameter;
        return;
    case Destination::Text:
        break;
    }

    const bool on = !hasParameter || parameter != 0;
    if (word == "par" || word == "sect" || word == "page" || word == "line" || word == "row" || word == "nestrow") {
        flushBytes();
        endParagraph();
    } else if (const auto symbol = symbolWords().constFind(word); symbol != symbolWords().constEnd()) {
        appendUnits(QString(QChar(*symbol)));
    } else if (word == "u") {
        appendUnits(QString(QChar(char16_t(parameter < 0 ? parameter + 65536 : parameter))));
        m_fallbackLeft = s.ucSkip;
    } else if (word == "uc") {
        s.ucSkip = qBound(0, parameter, 16);
    } else if (word == "b") {
        flushBytes();
        s.format.bold = on;
    } else if (word == "i") {
        flushBytes();
        s.format.italic = on;
    } else if (word == "strike" || word == "striked") {
        flushBytes();
        s.format.strikeOut = on;
    } else if (word == "ulnone") {
        flushBytes();
        s.format.underline = false;
    } else if (underlineWords().contains(word)) {
        flushBytes();
        s.format.underline = on;
    } else if (word == "fs") {
        flushBytes();
        s.format.fontSize = hasParameter ? qMax(parameter, 0) : 0;
    } else if (word == "cf") {
        flushBytes();
        const bool known = parameter >= 0 && size_t(parameter) < m_colours.size() && m_colours[size_t(parameter)].first;
        s.format.hasColour = known;
        s.format.colour = known ? m_colours[size_t(parameter)].second : 0;
    } else if (word == "plain") {
        flushBytes();
        s.format = RichText::CharFormat();
        s.font = m_defaultFont;
    } else if (word == "f") {
        flushBytes();
        s.font = parameter;
    } else if (word == "pard") {
        s.alignment = RichText::Alignment::Left;
    } else if (word == "ql") {
        s.alignment = RichText::Alignment::Left;
    } else if (word == "qc") {
        s.alignment = RichText::Alignment::Centre;
    } else if (word == "qr") {
        s.alignment = RichText::Alignment::Right;
    } else if (word == "qj" || word == "qd") {
        s.alignment = RichText::Alignment::Justify;
    } else if (word == "ansicpg") {
        flushBytes();
        m_ansiCodePage = parameter;
    } else if (word == "mac") {
        m_ansiCodePage = 10000;
    } else if (word == "pc") {
        m_ansiCodePage = 437;
    } else if (word == "pca") {
        m_ansiCodePage = 850;
    } else if (word == "deff") {
        m_defaultFont = parameter;
        if (s.font < 0)
            s.font = parameter;
    }
}

void Parser::controlSymbol(char symbol)
{
    if (state().destination != Destination::Text)
        return;
    switch (symbol) {
    case '\\':
    case '{':
    case '}':
        textByte(symbol);
        break;
    case '~':
        appendUnits(QString(QChar(0x00a0)));
        break;
    case '_':
        appendUnits(QString(QChar(0x2011)));
        break;
    case '\r':
    case '\n':
        // A backslash before a line break of the file is a paragraph mark.
        flushBytes();
        endParagraph();
        break;
    case '\t':
        appendUnits(QStringLiteral("\t"));
        break;
    default: // "\-" optional hyphen, "\|" and "\:" index marks: no text
        break;
    }
}

void Parser::textByte(char byte)
{
    switch (state().destination) {
    case Destination::Text:
        if (byte == '\t') {
            appendUnits(QStringLiteral("\t"));
            return;
        }
        addByte(byte);
        return;
    case Destination::ColourTable:
        if (byte == ';') {
            const bool defined = m_red >= 0 || m_green >= 0 || m_blue >= 0;
            m_colours.emplace_back(defined, quint32(qMax(m_red, 0) & 0xff) << 16 |
                                                quint32(qMax(m_green, 0) & 0xff) << 8 |
                                                quint32(qMax(m_blue, 0) & 0xff));
            m_red = m_green = m_blue = -1;
        }
        return;
    case Destination::FontTable:
        if (byte == ';')
            m_fontBeingDefined = -1;
        return;
    case Destination::Skip:
    case Destination::Upr:
        return;
    }
}

void Parser::addByte(char byte)
{
    // Bytes are decoded together, so that both bytes of a double-byte
    // character meet even when the second is written as a plain letter.
    const int page = currentCodePage();
    if (!m_bytes.isEmpty() && m_bytesCodePage != page)
        flushBytes();
    m_bytesCodePage = page;
    m_bytes.append(byte);
}

int Parser::currentCodePage() const
{
    const int font = m_stack.back().font;
    const auto entry = m_fontCodePages.find(font);
    if (entry != m_fontCodePages.end() && entry->second > 0)
        return entry->second;
    return m_ansiCodePage;
}

CodePage *Parser::codePage(int number)
{
    auto &slot = m_codePages[number];
    if (!slot) {
        slot = std::make_unique<CodePage>(codePageName(number));
        if (!slot->isValid())
            slot = std::make_unique<CodePage>(CodePage::defaultName());
    }
    return slot.get();
}

void Parser::flushBytes()
{
    if (m_bytes.isEmpty())
        return;
    bool ascii = true;
    for (char c : std::as_const(m_bytes))
        ascii = ascii && uchar(c) < 0x80;
    const QString text = ascii ? QString::fromLatin1(m_bytes) : codePage(m_bytesCodePage)->toUnicode(m_bytes);
    m_bytes.clear();
    m_paragraph.append(text, state().format);
}

void Parser::appendUnits(const QString &text)
{
    flushBytes();
    m_paragraph.append(text, state().format);
}

void Parser::endParagraph()
{
    m_paragraph.alignment = state().alignment;
    m_result.paragraphs.push_back(std::move(m_paragraph));
    m_paragraph = RichText::Paragraph();
}

} // namespace

bool RtfReader::looksLikeRtf(QByteArrayView bytes)
{
    qsizetype i = 0;
    while (i < bytes.size() && (bytes[i] == ' ' || bytes[i] == '\t' || bytes[i] == '\r' || bytes[i] == '\n'))
        ++i;
    return bytes.sliced(i).startsWith("{\\rtf");
}

RichText RtfReader::read(QByteArrayView rtf)
{
    if (!looksLikeRtf(rtf)) {
        // Not RTF: the bytes as text, up to a terminating zero.
        qsizetype end = rtf.indexOf('\0');
        CodePage page;
        return RichText::fromPlainText(page.toUnicode(end < 0 ? rtf : rtf.first(end)));
    }
    // White space before the header is no text of the document.
    return Parser(rtf.sliced(rtf.indexOf('{'))).parse();
}
