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

inline constexpr const char *LoadDamaged = "Unable to load file. The file may be corrupted.";
inline constexpr const char *LoadUnsupportedVersion =
    "This file was created either prior to version 5.0 or by a newer version. These file formats are not supported.";
/// %1 is the path.
inline constexpr const char *LoadNotFound = "File '%1' does not exist.";
inline constexpr const char *SaveFailed = "Unable to save file. Please make sure there is enough disk space.";
inline constexpr const char *ImportUnsupportedVersion =
    "Only Quillbox files from the current version can be imported. Please open the file and save it and then try "
    "import again.";

inline constexpr const char *PasswordEnterPrompt =
    "This Quillbox file is protected with a password. Please enter a valid password.";
inline constexpr const char *PasswordSetPrompt =
    "Enter a new password to protect this file. If this file already has a password, please enter it to change.";
inline constexpr const char *PasswordNotCorrect = "The password is not correct. Please enter the password and try again.";
inline constexpr const char *PasswordMismatch = "The new password and confirmation do not match. Please try again.";

// Import and export.
inline constexpr const char *NoItemsToExport = "There are no items that matched the export criteria. No file is created.";
inline constexpr const char *ItemExportFailed =
    "Item Export has failed. Please make sure you have enough storage space and try again.";
inline constexpr const char *ItemsExported = "%d item(s) exported.";
/// Follows ItemsExported after an export with delete; %1 is the count.
inline constexpr const char *ExportedItemsKept =
    "%1 exported item(s) stayed in the document because they hold items that were not exported.";
inline constexpr const char *TextFileFilter = "Text Files|*.txt|Unicode Files|*.txt|";
inline constexpr const char *ImportTooLarge = "Unable to load file. Please try again with a smaller file.";
inline constexpr const char *ExportFailed =
    "Export has failed. Please make sure you have enough storage space and try again.";
inline constexpr const char *NoLinks = "(None)";
inline constexpr const char *NoteConversionFailed = "Note conversion has failed. Original file is restored.";
inline constexpr const char *NoteConversionDone = "Note conversion completed.";
inline constexpr const char *AskConvertNotes = "Converting notes to a different format may cause data loss. Are you sure?";
inline constexpr const char *ImportFormatInvalid =
    "The format of the import text file is invalid. Please correct the file and try again.";
/// Follows ImportFormatInvalid; %1 is the line where the outline broke.
inline constexpr const char *ImportFormatLine = "(line %1)";
inline constexpr const char *XmlFileFilter = "XML Files|*.xml|";
inline constexpr const char *OutlineImportInvalid =
    "The file is not an outline this program can read. Please correct the file and try again.";
inline constexpr const char *MarkdownTooDeep =
    "The outline is nested too deeply for Markdown. Export it as OPML or XML instead.";
inline constexpr const char *OpmlFileFilter = "OPML Files|*.opml|";
inline constexpr const char *MarkdownFileFilter = "Markdown Files|*.md;*.markdown|";

inline constexpr const char *NoteTypeQuestion = "Select the type of note to be used in this file:";
inline constexpr const char *NoteTypePlain = "Plain Text Note";
inline constexpr const char *NoteTypeInk = "Rich Ink Note";
inline constexpr const char *NoteTypeRich = "Rich Text Note";
inline constexpr const char *FileFilter = "Quillbox Files (*.qbx)";

} // namespace Messages

namespace Messages {

inline constexpr const char *NoMatch = "No item matched the search criteria.";
/// %1 is the template's name.
inline constexpr const char *AskDeleteTemplate = "Are you sure to delete template '%1'?";
inline constexpr const char *EnterName = "Please enter a name.";
inline constexpr const char *TemplateNameLabel = "Template Name: (Max 32 characters)";

} // namespace Messages

// Links, find, templates and the other dialogs of the document view.
namespace Messages {

inline constexpr const char *LinksColumn = "Links";
inline constexpr const char *LinkFileFilter =
    "Words Files|*.psw;*.doc|Excel Files|*.pxl;*.xls|Text Files (*.txt)|*.txt|Pictures|*.bmp;*.2bp;*.jpg;*.gif;*.png|"
    "Web Files|*.html;*.htm;*.xml;*.css;*.asp;*.aspx|Quillbox Files (*.qbx)|*.qbx|All Files (*.*)|*.*|";
inline constexpr const char *EnterUrl = "Enter URL:";
inline constexpr const char *EnterSomeText = "Please enter some text.";
inline constexpr const char *AskDeleteAllLinks = "Are you sure to delete all links?";
inline constexpr const char *ListTitleNotLinkable = "List title cannot be linked. Please choose an item.";
/// %1 is the count. The two spaces after "deleted." belong to the text.
inline constexpr const char *DeadItemLinks =
    "%1 item link(s) are no longer valid because they have been deleted.  These links will be removed.";
inline constexpr const char *EditInWordDone =
    "When finished editing and saving the note in Pocket Word, tap OK to update Quillbox.";
inline constexpr const char *AskDeleteLink = "Are you sure to delete this link?";
inline constexpr const char *EnterPhoneNumber = "Enter a phone number:";

inline constexpr const char *SearchResults = "Search Results";

inline constexpr const char *ConvertNotesIntro = "This feature converts notes from one format to the other.";
inline constexpr const char *PlainTextDescription =
    "Does not support formatting, voice recordings, or drawings. Use the least amount of storage spaces.";
inline constexpr const char *RichInkDescription =
    "Supports formatting, voice recordings, and drawings.  Desktop Quillbox does not support editing notes with "
    "voice recordings, or drawings.";
inline constexpr const char *RichTextDescription = "Supports formatting but NOT voice recordings, or drawings.";

inline constexpr const char *ExportCurrentView =
    "Data will be exported based on current view excluding all filtering options.";
inline constexpr const char *ExportDefaultView =
    "Data will be exported based on default view excluding any filtering options.";

/// %1 is the path of the document that a text import would replace.
inline constexpr const char *AskReplaceDocument = "'%1' already exists. Do you want to replace it?";
/// %1 is the name typed in the options.
inline constexpr const char *UnknownCodePage = "The code page '%1' is not known. Please choose one from the list.";

} // namespace Messages

// The reminder bubble and its two commands.
namespace Messages {

inline constexpr const char *ReminderTitle = "Quillbox Reminder";
/// The page for two reminders; {0} takes the entries.
inline constexpr const char *ReminderPageTable =
    "<html><body><table border=\"1\" rules=\"None\" frame=\"Box\" cellspacing=\"0\" cellpadding=\"1\" "
    "width=\"100%\">{0}</table><p align=right><input type=button name=\"cmd:1990\" value=\"Dismiss All\"></p>"
    "</body></html>";
/// One entry of the table: {0} the name, {1} the date, {2} the separator.
inline constexpr const char *ReminderTableEntry = "<tr><td><b>{0}</b><br />{1}{2}</td></tr>";
/// %d is the count, three or more.
inline constexpr const char *ReminderCountPage =
    "<html><body><p><b>There are %d reminders.</b></p><p align=\"right\"><a href=\"cmd:1991\">View "
    "Reminders</a></p></body></html>";
/// The page for one reminder; {0} takes the entry.
inline constexpr const char *ReminderPageSingle =
    "<html><body>{0}<p align=right><input type=button name=\"cmd:1990\" value=\"Dismiss All\"></p></body></html>";
/// The one entry: {0} the name, {1} the date.
inline constexpr const char *ReminderSingleEntry = "<b>{0}</b><br />{1}";
inline constexpr const char *ReminderSeparator = "<hr  size=\"1\" width=\"100%\" />";
inline constexpr const char *DismissAll = "Dismiss All";
inline constexpr const char *ViewReminders = "View Reminders";
/// The "Reminder sound:" choice that plays nothing.
inline constexpr const char *NoSound = "(None)";

} // namespace Messages

// Tasks and appointments in the calendar store.
namespace Messages {

inline constexpr const char *AskTaskForEachChild =
    "Do you want to create a task item for each direct child? Tap Yes to create a task for each child. Tap No to "
    "create a task for the selected item only.";
inline constexpr const char *AskAppointmentForEachChild =
    "Do you want to create an appointment item for each direct child? Tap Yes to create an appointment for each "
    "child. Tap No to create an appointment for the selected item only.";
inline constexpr const char *CalendarNotSetUp =
    "No calendar is set up. Choose a folder or a CalDAV calendar on the Calendar page of the options.";
/// %1 is the reason the store gave.
inline constexpr const char *CalendarUnreachable = "The calendar cannot be used: %1";
/// %1 is the count.
inline constexpr const char *CalendarObjectsCreated = "%1 object(s) created in the calendar.";
/// %1 the count created, %2 the count that failed.
inline constexpr const char *CalendarObjectsFailed = "%1 object(s) created in the calendar, %2 could not be created.";

// Reasons a calendar store gives; %1 is the folder or address.
inline constexpr const char *CalendarFolderUnusable = "The folder '%1' cannot be created or written.";
inline constexpr const char *CalendarFolderMissing = "The folder '%1' does not exist.";
/// %2 is the system's reason.
inline constexpr const char *CalendarFileNotWritten = "The file '%1' cannot be written: %2";
inline constexpr const char *CalendarObjectExists = "An object with the same identity is already in '%1'.";
inline constexpr const char *CalendarBadAddress = "'%1' is not an http:// or https:// address.";
inline constexpr const char *CalendarHttpsRequired =
    "'%1' is not encrypted: only this computer's own address may use http://. Use https:// instead.";
/// %2 is the address the server points to.
inline constexpr const char *CalendarRedirected = "The server moved '%1' to '%2'. Enter that address instead.";
inline constexpr const char *CalendarAuthFailed = "The server at '%1' refused the user name or password.";
inline constexpr const char *CalendarForbidden = "The server does not allow this user to use '%1'.";
inline constexpr const char *CalendarNotFound = "There is no calendar at '%1'.";
inline constexpr const char *CalendarNotACalendar = "'%1' is not a calendar collection.";
/// %2 is the number of seconds waited.
inline constexpr const char *CalendarTimeout = "The server at '%1' did not answer within %2 seconds.";
/// %2 is the network's reason.
inline constexpr const char *CalendarNoConnection = "The server at '%1' cannot be reached: %2";
/// %2 is the HTTP status and its text.
inline constexpr const char *CalendarServerError = "The server answered '%1' with %2.";

} // namespace Messages
