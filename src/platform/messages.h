#pragma once

// Every text the system shows a person, in one place and exactly as it must
// read. The shell and qbx map core results to these.
namespace Messages {

inline constexpr const char *Caption = "Quillbox";

inline constexpr const char *AskDelete = "Are you sure to delete this item and all its subitems?";
inline constexpr const char *AskPasteChildren =
    "Do you want to paste children of the item? Tap Yes to paste all children of the item. Tap No to paste the "
    "item alone.";
inline constexpr const char *BranchHidden =
    "The whole branch is hidden due to progress value and/or status type changes.";

} // namespace Messages
