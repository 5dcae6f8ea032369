#pragma once

#include <QComboBox>

/// A choice among the 36 item colours, each shown as a swatch: entry 0 is the
/// default colour. With an "[Any]" entry first, for searches.
class ColourCombo : public QComboBox {
    Q_OBJECT
public:
    explicit ColourCombo(bool withAny = false, QWidget *parent = nullptr);

    /// The chosen colour index, or -1 for "[Any]".
    int colour() const;
    void setColour(int colour);

Q_SIGNALS:
    void colourChosen(int colour);
};
