// Feeds arbitrary bytes as a note of every type: its text, and the six
// conversions, must not fail or crash; converting to plain text and reading
// that gives the text of the note.
#include "notes/noteconverter.h"
#include "notes/notetext.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray note(reinterpret_cast<const char *>(data), qsizetype(size));
    NoteConverter converter;
    for (quint16 from = 0; from <= 2; ++from) {
        const QString text = NoteText::plainText(note, from);
        for (quint16 to = 0; to <= 2; ++to) {
            QByteArray result;
            if (!converter.convert(note, from, to, &result))
                std::abort();
            if (to == 0 && from != 0 && NoteText::plainText(result, 0) != text.left(text.indexOf(QChar(0))))
                std::abort();
        }
    }
    return 0;
}
