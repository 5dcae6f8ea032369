#pragma once

#include "cli/standardoutput.h"
#include "model/document.h"
#include "model/treewalker.h"

#include <QByteArray>
#include <QCommandLineParser>
#include <QTextStream>
#include <cstdio>

/// Reading option values and item positions for the qbx commands that work
/// on items. Positions count items 1, 2, 3 ... in the tree's depth-first
/// order (the order of the file), the root not counted.
namespace OptionValues {

/// Reports a bad value on stderr; the caller exits with status 2.
inline bool fail(const QString &text)
{
    QTextStream(stderr) << "qbx: " << text << "\n";
    return false;
}

/// A whole number from low to high.
inline bool number(const QCommandLineParser &parser, const QString &option, int low, int high, int *value)
{
    bool ok = false;
    const int n = parser.value(option).toInt(&ok);
    if (!ok || n < low || n > high)
        return fail(QStringLiteral("--%1 takes a number from %2 to %3").arg(option).arg(low).arg(high));
    *value = n;
    return true;
}

/// "yes" or "no".
inline bool yesNo(const QCommandLineParser &parser, const QString &option, bool *value)
{
    const QString text = parser.value(option);
    if (text != QLatin1String("yes") && text != QLatin1String("no"))
        return fail(QStringLiteral("--%1 takes yes or no").arg(option));
    *value = text == QLatin1String("yes");
    return true;
}

/// The item at a 1-based position, or null.
inline Item *itemAt(const Document &document, qint64 position)
{
    if (position < 1)
        return nullptr;
    TreeWalker walker(document.root());
    qint64 at = 0;
    while (Item *item = walker.next()) {
        if (++at == position)
            return item;
    }
    return nullptr;
}

/// Output gathered in large pieces: a million lines are written in a few
/// hundred calls.
class Output {
public:
    ~Output() { flush(); }
    void line(const QString &text)
    {
        m_buffer.append(text.toUtf8()).append('\n');
        if (m_buffer.size() > (1 << 20))
            flush();
    }
    void flush()
    {
        StandardOutput::write(m_buffer);
        m_buffer.clear();
    }

private:
    QByteArray m_buffer;
};

} // namespace OptionValues
