#pragma once

#include <QString>
#include <vector>

class Document;
class Item;

/// The partial export: chosen items of the open document written as a new
/// document file, optionally deleted from the open document afterwards.
///
/// What each choice writes:
/// - CompletedOnly: every completed Item (progress 100); one placed under its
///   nearest completed ancestor keeps that place, the others become top-level
///   items. Nothing that is not completed is written.
/// - CompletedWithHierarchy: every completed Item together with all its
///   ancestors, in their places, so every completed item keeps its path; the
///   ancestors' other children that hold nothing completed are left out.
/// - CurrentBranch: the current node as a branch file (the node's record in
///   place of the root, its branch below it).
/// - SelectedItems: the chosen Items, placed as CompletedOnly places them.
/// Copies keep every field of their originals, and item links between copied
/// items lead to the copies.
///
/// "Delete after export" deletes what was written, but never loses what was
/// not: a chosen item goes only when everything below it was written too
/// (CurrentBranch: the whole branch; with the root current, every Item).
/// Ancestors written only for their path are never deleted.
class ItemExport {
public:
    enum Choice : int {
        CompletedOnly = 0,
        CompletedWithHierarchy = 1,
        CurrentBranch = 2,
        SelectedItems = 3,
    };
    /// The radio labels of the options dialog, by choice.
    static QString choiceLabel(int choice);

    static constexpr int Failed = -1;

    /// What an export with delete did beyond the count it returns.
    struct Report {
        /// Chosen items that were written but stayed in the document because
        /// an item below them was not exported (so nothing unexported is lost).
        int kept = 0;
    };

    /// Writes the new document at path (never over the document's own file,
    /// document.path). Returns the number of items written; 0 when nothing
    /// matched (no file is made, nothing deleted); Failed when the file could
    /// not be written (nothing deleted), with the file and the reason in
    /// *error when given.
    static int exportItems(Document &document, Choice choice, bool deleteAfter, const std::vector<Item *> &selection,
                           const QString &path, QString *error = nullptr, Report *report = nullptr);

    /// The message to show for a result: "%d item(s) exported.", the
    /// nothing-matched text or the failure text. With kept items of an export
    /// with delete, a second sentence says how many stayed and why.
    static QString message(int result, int kept = 0);
};
