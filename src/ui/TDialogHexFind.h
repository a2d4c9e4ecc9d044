#pragma once

#include "ui/TDialogHexForm.h"

class QComboBox;
class QCheckBox;
class QLineEdit;

// Finds hex bytes or text in the image from the cursor on (or back), selecting what it finds. Not found,
// the dialog stays open and says so. The last search is kept for findAgain (F3 in the panel).
class TDialogHexFind : public TDialogHexForm {
    Q_OBJECT
public:
    explicit TDialogHexFind(TWgtHexEdit* edit, QWidget* parent = nullptr);
    void accept() override;

    // Repeats the last search from the selection on; false when nothing more is found (message says
    // so) or nothing was searched yet (message stays empty).
    static bool findAgain(TWgtHexEdit* edit, bool backwards, QString& message);

private:
    QLineEdit* text;
    QComboBox* mode;
    QCheckBox* backwards;
};
