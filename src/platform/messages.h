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

namespace Messages {

inline constexpr const char *SaveFailed = "Unable to save file. Please make sure there is enough disk space.";
inline constexpr const char *LoadDamaged = "Unable to load file. The file may be corrupted.";
inline constexpr const char *LoadUnsupported = "This file was created either prior to version 5.0 or by a newer "
                                               "version. These file formats are not supported.";
inline constexpr const char *FileMissing = "File '%1' does not exist.";
inline constexpr const char *PasswordEnter =
    "This Quillbox file is protected with a password. Please enter a valid password.";
inline constexpr const char *PasswordWrong = "The password is not correct. Please enter the password and try again.";
inline constexpr const char *NoteTypeQuestion = "Select the type of note to be used in this file:";
inline constexpr const char *NoteTypePlain = "Plain Text Note";
inline constexpr const char *NoteTypeInk = "Rich Ink Note";
inline constexpr const char *NoteTypeRich = "Rich Text Note";
inline constexpr const char *FileFilter = "Quillbox Files (*.qbx)";

} // namespace Messages
