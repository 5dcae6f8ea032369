#pragma once

#include <QDialog>

class Document;

/// "File Properties...": the open document's name, note type, location,
/// last modification and a few figures about its tree.
class FilePropertiesDialog : public QDialog {
    Q_OBJECT
public:
    explicit FilePropertiesDialog(const Document &document, QWidget *parent = nullptr);
};
