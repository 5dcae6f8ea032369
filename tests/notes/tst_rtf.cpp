#include "notes/rtfreader.h"
#include "notes/rtfwriter.h"

#include <QTest>

class TestRtf : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void readsText()
    {
        const std::tuple<QByteArray, const char *> cases[] = {
            {"{\\rtf1 Hello}", "Hello"},
            {QByteArray("{\\rtf1\\ansi\\deff0{\\fonttbl{\\f0\\fswiss\\fcharset0 Calibri;}}\r\n{\\colortbl ;\\red0;}"
                        "{\\stylesheet{ Normal;}}{\\info{\\title Secret}}{\\*\\generator Riched20}\\viewkind4\\uc1 \r\n"
                        "\\pard\\sa200\\f0\\fs22\\lang9 First line\\par\r\nSecond line\\par\r\n}\r\n"),
             "First line\r\nSecond line"},
            {"{\\rtf1\\uc1 caf\\u233e au lait}", "café au lait"},
            {"{\\rtf1\\uc2\\u26085\\'93\\'fa x}", "日 x"},
            {"{\\rtf1{\\uc0\\u26085}\\u26412?!}", "日本!"}, // the fallback count is per group
            {"{\\rtf1 a\\u-10179?\\u-8704?b}", "a😀b"},
            {"{\\rtf1\\ansi\\ansicpg1251 \\'c4\\'ee\\'ec}", "Дом"},
            {"{\\rtf1\\ansi\\ansicpg1252{\\fonttbl{\\f0\\fswiss Arial;}{\\f1\\fnil\\fcharset128 MS Mincho;}}"
             "\\f1 \\'93\\'fa\\f0 \\'e9}",
             "日é"},
            {"{\\rtf1\\ansi\\ansicpg1252{\\fonttbl{\\f1\\fcharset186 B;}{\\f2\\fcharset178 A;}}\\f1 \\'e0\\f2 \\'c7}",
             "ąا"},
            {"{\\rtf1\\ansi\\ansicpg1252\\deff0{\\fonttbl{\\f0\\fcharset128 Mincho;}{\\f1 Arial;}}\\'93\\'fa}", "日"},
            {"{\\rtf1\\pc \\'82\\'9b}", "é¢"},
            {"{\\rtf1\\ansi\\ansicpg1252{\\fonttbl\\f0\\fcharset204;\\cpg1252}\\f0 \\'c4}", "Д"}, // ends at its ";"
            {"{\\rtf1\\ansi{\\fonttbl\\f0\\cpg1251 Cyr;}\\f0 \\'c4}", "Д"},
            {"{\\rtf1\\ansi\\ansicpg932 \\'83e\\'83X\\'83g}", "テスト"}, // a second byte as a plain letter
            {"{\\rtf1\\ansicpg1200 ab}", "ab"},                          // bytes below 0x80 are ASCII in any page
            {"{\\rtf1 a\\par\\par b}", "a\r\n\r\nb"},
            {"{\\rtf1 a\\line b\\page c\\\nd}", "a\r\nb\r\nc\r\nd"},
            {"{\\rtf1 a\\tab b\tc\\cell d\\row}", "a\tb\tc\td"},
            {"{\\rtf1 \\lquote a\\rquote \\ldblquote b\\rdblquote \\emdash\\endash\\bullet x\\~y\\-z\\_w}",
             "‘a’“b”—–•x\u00a0yz\u2011w"},
            {"{\\rtf1 a{\\*\\unknownthing b{c}}d}", "ad"},
            {"{\\rtf1 see {\\field{\\*\\fldinst{HYPERLINK \"http://x\"}}{\\fldrslt{\\ul link}}} now}", "see link now"},
            {"{\\rtf1 a{\\pict\\wmetafile8 0102ff}{\\pict\\bin3 {}\\}b}", "ab"},
            {"{\\rtf1 a{\\upr{b}{\\*\\ud{c}}}d}", "acd"},  // the Unicode copy of older Word's text
            {"{\\rtf1 {x\\*\\foo y}{}\\*\\bar z}", "xyz"}, // a star after text or a group is no destination
            {"{\\rtf1 caf\\u233{x}}", "caféx"},            // a group ends the fallback
            {" \t\r\n{\\rtf1 x}", "x"},
            {"{\\rtf1 a\\li-0 b}", "ab"},
            {"{\\rtf1 a\\li-5", "a"},
            {"{\\rtf1 a}tail", "a"},
            {"{\\rtf1 ab\\'4", "ab"},
            {"plain caf\xe9\r\nline 2", "plain café\r\nline 2"},
            {"", ""},
            {QByteArray("\0abc", 4), ""},
        };
        for (const auto &[rtf, text] : cases)
            QCOMPARE(RtfReader::plainText(rtf), QString::fromUtf8(text));
    }

    void readsFormatting()
    {
        using A = RichText::Alignment;
        using F = RichText::CharFormat;
        const F none;
        // As a word processor writes it: groups, toggles, the automatic colour first, aligned paragraphs.
        QCOMPARE(RtfReader::read("{\\rtf1\\ansi\\deff0{\\fonttbl{\\f0 Arial;}}{\\colortbl;\\red255\\green0\\blue0;"
                                 "\\red0\\green128\\blue0;}\r\n\\pard\\qc{\\b Bold}{\\i  italic}\\par\r\n"
                                 "\\pard caf\\'e9\\ul under\\ulnone  \\strike gone\\strike0\\par\r\n"
                                 "\\pard\\qr\\fs32\\cf1 big red\\cf2  green\\plain  plain\\par\r\n"
                                 "\\pard\\qj{\\b\\i both}\\par}"),
                 (RichText{{{A::Centre, {{"Bold", F{true}}, {" italic", F{false, true}}}},
                            {A::Left,
                             {{"café", none}, {"under", F{false, false, true}}, {" ", none}, {"gone", F{0, 0, 0, 1}}}},
                            {A::Right,
                             {{"big red", F{0, 0, 0, 0, 32, true, 0xff0000}},
                              {" green", F{0, 0, 0, 0, 32, true, 0x008000}},
                              {" plain", none}}},
                            {A::Justify, {{"both", F{true, true}}}}}}));
        // A last colour entry without its ";" is kept, any part of it alone; entry 0 is no colour.
        QCOMPARE(RtfReader::read("{\\rtf1{\\colortbl;\\red255\\green128\\blue1}\\cf1 red\\cf0 auto}"),
                 (RichText{{{A::Left, {{"red", F{0, 0, 0, 0, 0, true, 0xff8001}}, {"auto", none}}}}}));
        QCOMPARE(RtfReader::read("{\\rtf1{\\colortbl;\\green0}\\cf1 black}"),
                 (RichText{{{A::Left, {{"black", F{0, 0, 0, 0, 0, true, 0}}}}}}));
    }

    void writesExactBytes()
    {
        using F = RichText::CharFormat;
        const RichText text{
            {{RichText::Alignment::Centre, {{"Title {1}", F{true, false, false, false, 28}}, {" ünï", F{}}}},
             {RichText::Alignment::Left,
              {{"a\\b\t😀", F{false, true, true, true, 0, true, 0x0000ff}},
               {"x", F{false, false, false, false, 0, true, 0xff8000}}}},
             {RichText::Alignment::Right, {}}}};
        QCOMPARE(
            RtfWriter::write(text),
            QByteArray("{\\rtf1\\ansi\\ansicpg1252\\deff0\\uc1{\\fonttbl{\\f0\\fnil Tahoma;}}"
                       "{\\colortbl ;\\red0\\green0\\blue255;\\red255\\green128\\blue0;}\r\n"
                       "\\pard\\qc\\b\\fs28 Title \\{1\\}\\plain  \\u252?n\\u239?\\par\r\n"
                       "\\pard\\i\\ul\\strike\\cf1 a\\\\b\\tab \\u-10179?\\u-8704?\\i0\\ulnone\\strike0\\cf2 x\\par\r\n"
                       "\\pard\\qr\\par\r\n}"));
        // Plain text through the writer and back: every line end becomes CR LF.
        QCOMPARE(RtfReader::plainText(RtfWriter::fromPlainText(QStringLiteral("a\r\nb\r\n\r\nc\nd\re"))),
                 QStringLiteral("a\r\nb\r\n\r\nc\r\nd\r\ne"));
        const QString special = QString::fromUtf8("\t{x}\\ Ω😀");
        QCOMPARE(RtfReader::plainText(RtfWriter::fromPlainText(special)), special);
    }

    void deepNestingIsSafe()
    {
        const QByteArray deep = "{\\rtf1 a" + QByteArray(200000, '{') + "\\b deep" + QByteArray(200000, '}') + "b}";
        QCOMPARE(RtfReader::plainText(deep), QStringLiteral("adeepb"));
        // Past the kept depth the groups still close in order: the skipped destination ends.
        const QByteArray skipped("{\\rtf1 a{\\*\\unknown" + QByteArray(2000, '{') + QByteArray(2000, '}') + "x}b}");
        QCOMPARE(RtfReader::plainText(skipped), QStringLiteral("ab"));
        // Groups left open, however many, end with the text.
        QCOMPARE(RtfReader::plainText("{\\rtf1 x" + QByteArray(300000, '{') + "y"), QStringLiteral("xy"));
    }
};

QTEST_GUILESS_MAIN(TestRtf)
#include "tst_rtf.moc"
