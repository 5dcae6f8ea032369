#include "notes/rtfreader.h"
#include "notes/rtfwriter.h"

#include <QTest>

namespace {

RichText::CharFormat format(bool bold, bool italic, bool underline, bool strike, int size = 0, int colour = -1)
{
    RichText::CharFormat f;
    f.bold = bold;
    f.italic = italic;
    f.underline = underline;
    f.strikeOut = strike;
    f.fontSize = size;
    f.hasColour = colour >= 0;
    f.colour = colour >= 0 ? quint32(colour) : 0;
    return f;
}

RichText::Paragraph paragraph(RichText::Alignment alignment, std::vector<RichText::Run> runs)
{
    RichText::Paragraph p;
    p.alignment = alignment;
    p.runs = std::move(runs);
    return p;
}

QString describe(const RichText &text)
{
    QString out;
    for (const RichText::Paragraph &p : text.paragraphs) {
        out += QStringLiteral("[align %1]").arg(int(p.alignment));
        for (const RichText::Run &r : p.runs) {
            out += QStringLiteral("(%1%2%3%4 fs%5 c%6:%7 \"%8\")")
                       .arg(r.format.bold ? "b" : "", r.format.italic ? "i" : "", r.format.underline ? "u" : "",
                            r.format.strikeOut ? "s" : "")
                       .arg(r.format.fontSize)
                       .arg(r.format.hasColour ? QString::number(r.format.colour, 16) : QStringLiteral("-"))
                       .arg(r.text.size())
                       .arg(r.text);
        }
        out += QLatin1Char('\n');
    }
    return out;
}

} // namespace

class TestRtf : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void readsText_data();
    void readsText();
    void readsFormatting();
    void writesExactBytes();
    void plainTextRoundTrip_data();
    void plainTextRoundTrip();
    void deepNestingIsSafe();
};

void TestRtf::readsText_data()
{
    QTest::addColumn<QByteArray>("rtf");
    QTest::addColumn<QString>("text");

    QTest::newRow("minimal") << QByteArray("{\\rtf1 Hello}") << "Hello";
    QTest::newRow("word processor header")
        << QByteArray("{\\rtf1\\ansi\\ansicpg1252\\deff0\\nouicompat\\deflang1033{\\fonttbl{\\f0\\fswiss\\fcharset0 "
                      "Calibri;}{\\f1\\fnil\\fcharset2 Symbol;}}\r\n{\\colortbl ;\\red0\\green0\\blue255;}\r\n"
                      "{\\stylesheet{ Normal;}{\\s1 heading 1;}}{\\info{\\title Secret}{\\author Someone}}\r\n"
                      "{\\*\\generator Riched20 10.0.19041}\\viewkind4\\uc1 \r\n\\pard\\sa200\\sl276\\slmult1\\f0"
                      "\\fs22\\lang9 First line\\par\r\nSecond line\\par\r\n}\r\n") +
               QByteArray(1, '\0')
        << "First line\r\nSecond line";
    QTest::newRow("unicode escape with fallback") << QByteArray("{\\rtf1\\uc1 caf\\u233e au lait}") << "café au lait";
    QTest::newRow("two-byte fallback") << QByteArray("{\\rtf1\\uc2\\u26085\\'93\\'fa x}") << QString::fromUtf8("日 x");
    QTest::newRow("fallback count is per group")
        << QByteArray("{\\rtf1{\\uc0\\u26085}\\u26412?!}") << QString::fromUtf8("日本!");
    QTest::newRow("negative escapes form a pair")
        << QByteArray("{\\rtf1 a\\u-10179?\\u-8704?b}") << QString::fromUtf8("a😀b");
    QTest::newRow("declared code page") << QByteArray("{\\rtf1\\ansi\\ansicpg1251 \\'c4\\'ee\\'ec}")
                                        << QString::fromUtf8("Дом");
    QTest::newRow("font character set")
        << QByteArray("{\\rtf1\\ansi\\ansicpg1252{\\fonttbl{\\f0\\fswiss Arial;}{\\f1\\fnil\\fcharset128 MS Mincho;}}"
                      "\\f1 \\'93\\'fa\\f0 \\'e9}")
        << QString::fromUtf8("日é");
    QTest::newRow("the default font's character set")
        << QByteArray("{\\rtf1\\ansi\\ansicpg1252\\deff0{\\fonttbl{\\f0\\fcharset128 Mincho;}{\\f1 Arial;}}\\'93\\'fa}")
        << QString::fromUtf8("日");
    QTest::newRow("IBM PC character set") << QByteArray("{\\rtf1\\pc \\'82\\'9b}") << QString::fromUtf8("é¢");
    QTest::newRow("a font's definition ends at its semicolon")
        << QByteArray("{\\rtf1\\ansi\\ansicpg1252{\\fonttbl\\f0\\fcharset204;\\cpg1252}\\f0 \\'c4}")
        << QString::fromUtf8("Д");
    QTest::newRow("second byte as a plain letter")
        << QByteArray("{\\rtf1\\ansi\\ansicpg932 \\'83e\\'83X\\'83g}") << QString::fromUtf8("テスト");
    QTest::newRow("empty paragraph") << QByteArray("{\\rtf1 a\\par\\par b}") << "a\r\n\r\nb";
    QTest::newRow("line, page and backslash-newline")
        << QByteArray("{\\rtf1 a\\line b\\page c\\\nd}") << "a\r\nb\r\nc\r\nd";
    QTest::newRow("tabs and cells") << QByteArray("{\\rtf1 a\\tab b\tc\\cell d\\row}") << "a\tb\tc\td";
    QTest::newRow("typographic characters")
        << QByteArray("{\\rtf1 \\lquote a\\rquote \\ldblquote b\\rdblquote \\emdash\\endash\\bullet x\\~y\\-z\\_w}")
        << QString::fromUtf8("‘a’“b”—–•x\u00a0yz\u2011w");
    QTest::newRow("unknown starred destination") << QByteArray("{\\rtf1 a{\\*\\unknownthing b{c}}d}") << "ad";
    QTest::newRow("field keeps its result")
        << QByteArray("{\\rtf1 see {\\field{\\*\\fldinst{HYPERLINK \"http://x\"}}{\\fldrslt{\\ul link}}} now}")
        << "see link now";
    QTest::newRow("picture and binary data")
        << QByteArray("{\\rtf1 a{\\pict\\wmetafile8 0102ff}{\\pict\\bin3 {}\\}b}") << "ab";
    QTest::newRow("a star after text or a group is no destination")
        << QByteArray("{\\rtf1 {x\\*\\foo y}{}\\*\\bar z}") << "xyz";
    QTest::newRow("a group ends the fallback") << QByteArray("{\\rtf1 caf\\u233{x}}") << QString::fromUtf8("caféx");
    QTest::newRow("code page of the first font")
        << QByteArray("{\\rtf1\\ansi{\\fonttbl\\f0\\cpg1251 Cyr;}\\f0 \\'c4}") << QString::fromUtf8("Д");
    QTest::newRow("white space before the header") << QByteArray(" \t\r\n{\\rtf1 x}") << "x";
    QTest::newRow("a parameter of minus zero") << QByteArray("{\\rtf1 a\\li-0 b}") << "ab";
    QTest::newRow("what follows the document's group") << QByteArray("{\\rtf1 a}tail") << "a";
    QTest::newRow("truncated escape") << QByteArray("{\\rtf1 ab\\'4") << "ab";
    QTest::newRow("not rtf at all") << QByteArray("plain caf\xe9\r\nline 2")
                                    << QString::fromUtf8("plain café\r\nline 2");
    QTest::newRow("empty") << QByteArray() << QString();
    QTest::newRow("not rtf, ending at once") << QByteArray("\0abc", 4) << QString();
}

void TestRtf::readsText()
{
    QFETCH(QByteArray, rtf);
    QFETCH(QString, text);
    QCOMPARE(RtfReader::plainText(rtf), text);
}

void TestRtf::readsFormatting()
{
    // As a word processor writes it: formatting in groups and toggles, a
    // colour table with the automatic entry first, a centred paragraph.
    const QByteArray rtf("{\\rtf1\\ansi\\deff0{\\fonttbl{\\f0 Arial;}}{\\colortbl;\\red255\\green0\\blue0;"
                         "\\red0\\green128\\blue0;}\r\n"
                         "\\pard\\qc{\\b Bold}{\\i  italic}\\par\r\n"
                         "\\pard caf\\'e9\\ul under\\ulnone  \\strike gone\\strike0\\par\r\n"
                         "\\pard\\qr\\fs32\\cf1 big red\\cf2  green\\plain  plain\\par\r\n"
                         "\\pard\\qj{\\b\\i both}\\par}");
    RichText expected;
    expected.paragraphs.push_back(
        paragraph(RichText::Alignment::Centre,
                  {{"Bold", format(true, false, false, false)}, {" italic", format(false, true, false, false)}}));
    expected.paragraphs.push_back(paragraph(RichText::Alignment::Left, {{"caf\u00e9", format(false, false, false, false)},
                                                                        {"under", format(false, false, true, false)},
                                                                        {" ", format(false, false, false, false)},
                                                                        {"gone", format(false, false, false, true)}}));
    expected.paragraphs.push_back(
        paragraph(RichText::Alignment::Right, {{"big red", format(false, false, false, false, 32, 0xff0000)},
                                               {" green", format(false, false, false, false, 32, 0x008000)},
                                               {" plain", format(false, false, false, false)}}));
    expected.paragraphs.push_back(
        paragraph(RichText::Alignment::Justify, {{"both", format(true, true, false, false)}}));
    QCOMPARE(describe(RtfReader::read(rtf)), describe(expected));

    // A colour table whose last entry lacks its ";" keeps that entry; the
    // empty first entry is the automatic colour, no colour of its own.
    RichText red;
    red.paragraphs.push_back(paragraph(RichText::Alignment::Left,
                                       {{"red", format(false, false, false, false, 0, 0xff8001)},
                                        {"auto", format(false, false, false, false)}}));
    QCOMPARE(describe(RtfReader::read("{\\rtf1{\\colortbl;\\red255\\green128\\blue1}\\cf1 red\\cf0 auto}")),
             describe(red));
}

void TestRtf::writesExactBytes()
{
    RichText text;
    text.paragraphs.push_back(
        paragraph(RichText::Alignment::Centre, {{"Title {1}", format(true, false, false, false, 28)},
                                                {QString::fromUtf8(" ünï"), format(false, false, false, false)}}));
    text.paragraphs.push_back(paragraph(RichText::Alignment::Left,
                                        {{QString::fromUtf8("a\\b\t😀"), format(false, true, true, true, 0, 0x0000ff)},
                                         {"x", format(false, false, false, false, 0, 0xff8000)}}));
    text.paragraphs.push_back(paragraph(RichText::Alignment::Right, {}));
    const QByteArray expected(
        "{\\rtf1\\ansi\\ansicpg1252\\deff0\\uc1{\\fonttbl{\\f0\\fnil Tahoma;}}"
        "{\\colortbl ;\\red0\\green0\\blue255;\\red255\\green128\\blue0;}\r\n"
        "\\pard\\qc\\b\\fs28 Title \\{1\\}\\plain  \\u252?n\\u239?\\par\r\n"
        "\\pard\\i\\ul\\strike\\cf1 a\\\\b\\tab \\u-10179?\\u-8704?\\i0\\ulnone\\strike0\\cf2 x\\par\r\n"
        "\\pard\\qr\\par\r\n"
        "}");
    QCOMPARE(RtfWriter::write(text), expected);
}

void TestRtf::plainTextRoundTrip_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("back");

    QTest::newRow("lines") << "a\r\nb\r\n\r\nc"
                           << "a\r\nb\r\n\r\nc";
    QTest::newRow("other line ends") << "a\nb\rc"
                                     << "a\r\nb\r\nc";
    QTest::newRow("tab, braces, unicode") << QString::fromUtf8("\t{x}\\ Ω😀") << QString::fromUtf8("\t{x}\\ Ω😀");
}

void TestRtf::plainTextRoundTrip()
{
    QFETCH(QString, text);
    QFETCH(QString, back);
    QCOMPARE(RtfReader::plainText(RtfWriter::fromPlainText(text)), back);
}

void TestRtf::deepNestingIsSafe()
{
    QByteArray rtf("{\\rtf1 a");
    rtf += QByteArray(200000, '{') + "\\b deep" + QByteArray(200000, '}') + "b}";
    QCOMPARE(RtfReader::plainText(rtf), QStringLiteral("adeepb"));
    // Past the depth that is kept the groups still close in order: the
    // skipped destination ends, and the text after it is read.
    const QByteArray skipped("{\\rtf1 a{\\*\\unknown" + QByteArray(2000, '{') + QByteArray(2000, '}') + "x}b}");
    QCOMPARE(RtfReader::plainText(skipped), QStringLiteral("ab"));
    // Groups left open, however many, end with the text.
    QByteArray open("{\\rtf1 x" + QByteArray(300000, '{') + "y");
    QCOMPARE(RtfReader::plainText(open), QStringLiteral("xy"));
}

QTEST_GUILESS_MAIN(TestRtf)
#include "tst_rtf.moc"
