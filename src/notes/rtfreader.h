#pragma once

#include "notes/richtext.h"

#include <QByteArrayView>

/// Reads the RTF that word processors write, not only our own: groups,
/// destinations that hold no text (font and colour tables, style sheets,
/// pictures, document information, field instructions, every "\*" group we
/// do not know), "\uN" escapes with their "\ucN" fallbacks, "\'hh" bytes in
/// the code page that "\ansicpgN" or the current font's character set
/// declares, paragraphs, tabs and the common typographic characters. Keeps bold,
/// italic, underline, strike-through, font size, colour and alignment.
///
/// Never fails: bytes that do not begin with "{\rtf" are taken as text in the
/// windows-1252 code page, and damaged RTF gives the text found up to the
/// damage. Works without recursion, so nesting of any depth is safe.
class RtfReader {
public:
    static RichText read(QByteArrayView rtf);
    /// The text alone, paragraphs joined by CR LF.
    static QString plainText(QByteArrayView rtf) { return read(rtf).plainText(); }
    /// Whether the bytes begin as RTF does ("{\rtf", white space allowed before).
    static bool looksLikeRtf(QByteArrayView bytes);
};
