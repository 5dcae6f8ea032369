#include "shell/document/undostack.h"

#include "model/document.h"
#include "model/editstep.h"

#include <optional>

/// A recorded step on the stack: the first redo() is the push, when the
/// change is already made.
class EditCommand : public QUndoCommand {
public:
    EditCommand(UndoStack *stack, std::unique_ptr<EditStep> step, const QString &name)
        : QUndoCommand(name), m_stack(stack), m_step(std::move(step))
    {
    }
    void undo() override
    {
        m_step->undo();
        Q_EMIT m_stack->stepApplied(m_step->focus());
    }
    void redo() override
    {
        if (m_step->isDone())
            return;
        m_step->redo();
        Q_EMIT m_stack->stepApplied(m_step->focus());
    }

private:
    UndoStack *m_stack;
    std::unique_ptr<EditStep> m_step;
};

UndoStack::UndoStack(Document *document, int limit, QObject *parent) : QUndoStack(parent), m_document(document)
{
    setUndoLimit(limit);
}

namespace {
// The scope that records on this thread, if any: the one of an outer command.
EditScope *g_recordingScope = nullptr;
std::optional<EditStep::Recording> g_recording;
} // namespace

UndoStack::~UndoStack()
{
    // The steps go with the view: nobody is told of that.
    blockSignals(true);
    if (g_recordingScope && g_recordingScope->m_stack == this)
        g_recording.reset();
}

void UndoStack::storePending()
{
    if (!m_storePending || m_storingPending)
        return;
    m_storingPending = true;
    m_storePending();
    m_storingPending = false;
}

EditScope::EditScope(UndoStack *stack, const QString &name) : m_stack(stack), m_name(name)
{
    if (!stack || g_recordingScope)
        return;
    stack->storePending();
    m_step = std::make_unique<EditStep>(*stack->document());
    g_recordingScope = this;
    g_recording.emplace(*m_step);
}

EditScope::~EditScope()
{
    if (g_recordingScope != this)
        return;
    g_recording.reset();
    g_recordingScope = nullptr;
    // A command may have closed the document: its step goes with it.
    if (m_stack && m_step->finish())
        m_stack->push(new EditCommand(m_stack, std::move(m_step), m_name));
}
