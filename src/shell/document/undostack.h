#pragma once

#include <QPointer>
#include <QUndoStack>
#include <functional>
#include <memory>

class Document;
class EditStep;
class TreeNode;

/// The undo stack of one open document, shared by its branch views. Each
/// command's changes are one step (see EditScope), named after the command.
class UndoStack : public QUndoStack {
    Q_OBJECT
public:
    UndoStack(Document *document, int limit, QObject *parent);
    /// A command that closes the document ends its recording here.
    ~UndoStack() override;
    Document *document() const { return m_document; }
    /// What is being edited but not yet in the document (a note being
    /// typed) is stored by this before a command's step begins, as a step
    /// of its own.
    void setPendingEdits(std::function<void()> store) { m_storePending = std::move(store); }

Q_SIGNALS:
    /// An undo or redo changed the document; focus is the node to show.
    void stepApplied(TreeNode *focus);

private:
    friend class EditScope;
    void storePending();

    Document *m_document;
    std::function<void()> m_storePending;
    bool m_storingPending = false;
};

/// Records what changes in the stack's document while it lives as one step
/// named name ("Delete Item"), pushed when something changed. A scope inside
/// another joins the outer step; without a stack it records nothing.
class EditScope {
public:
    EditScope(UndoStack *stack, const QString &name);
    ~EditScope();
    EditScope(const EditScope &) = delete;
    EditScope &operator=(const EditScope &) = delete;

private:
    friend class UndoStack;
    QPointer<UndoStack> m_stack;
    QString m_name;
    std::unique_ptr<EditStep> m_step;
};
