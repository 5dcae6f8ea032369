#pragma once

#include <QtGlobal>

class Document;

/// Builds synthetic documents for benchmarks, examples and large-file tests:
/// names of about 20 characters with some non-ASCII, a note on about one item
/// in five, categories, due dates, priorities, progress and item links. The
/// same options and seed always give the same document (creation dates come
/// from the seed, not the clock).
class DocumentGenerator {
public:
    struct Options {
        int items = 1000;
        quint32 seed = 1;
        /// Every item nested under the previous one (one chain items deep);
        /// otherwise a tree with a fan-out of about 8.
        bool chain = false;
        /// 0 plain text, 1 rich ink, 2 rich text: the format of every note.
        quint16 noteType = 0;
    };

    /// Replaces document's tree and header with a generated one.
    static void generate(Document *document, const Options &options);

    /// Replaces document's tree with a small hand-written outline (a house
    /// move planned in a few levels) that shows what a document can hold:
    /// check boxes, an automatic progress bar, categories, due dates, notes,
    /// links. Used to make the sample document a new user first sees.
    static void sample(Document *document);
};
