#pragma once

#include <QStringList>
#include <QWidget>
#include <functional>

class QComboBox;
class QToolButton;

/// The quick entry bar at the bottom of the document view: a text box with
/// its history, the icon of the next item, and the italic and child toggles.
class QuickEntryBar : public QWidget {
    Q_OBJECT
public:
    explicit QuickEntryBar(QWidget *parent = nullptr);

    QString text() const;
    void setText(const QString &text);
    quint16 icon() const { return m_icon; }
    void setIcon(quint16 image);
    bool isItalic() const;
    void setItalic(bool on);
    bool isChild() const;
    const QStringList &history() const { return m_history; }

    /// The bar's line edit, the italic and child toggles, by object name
    /// "quickEntryText", "quickEntryItalic", "quickEntryChild", "quickEntryAdd".
    QComboBox *textBox() const { return m_text; }

    /// Adds the text to the history (unless an entry equal but for case is
    /// there), empties the box and asks for the item to be added.
    void add();
    /// How the icon button asks for an icon: the chosen number or -1.
    void setIconChooser(std::function<int(quint16 current)> chooser) { m_chooser = std::move(chooser); }

Q_SIGNALS:
    void addRequested(const QString &text, quint16 icon, bool italic, bool child);

private:
    void chooseIcon();

    QComboBox *m_text = nullptr;
    QToolButton *m_iconButton = nullptr;
    QToolButton *m_italic = nullptr;
    QToolButton *m_child = nullptr;
    QToolButton *m_add = nullptr;
    QStringList m_history;
    quint16 m_icon = 0;
    std::function<int(quint16)> m_chooser;
};
