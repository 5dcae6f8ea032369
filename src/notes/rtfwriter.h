#pragma once

#include "notes/richtext.h"

#include <QByteArray>

/// Writes RichText as RTF: seven-bit ASCII, every other character as a
/// "\uN" escape with "?" for readers that do not know it. Keeps bold, italic,
/// underline, strike-through, font size, colour, alignment and paragraphs;
/// every paragraph ends with "\par", so the RTF reader gives the same
/// paragraphs back, an empty last one included.
class RtfWriter {
public:
    static QByteArray write(const RichText &text);
    /// The rich-text form of a plain text: one paragraph per line.
    static QByteArray fromPlainText(const QString &text) { return write(RichText::fromPlainText(text)); }
};
