#pragma once

#include "ui/TDialogHexForm.h"

class QLineEdit;

// Fills a range of the image with a repeated pattern of bytes, as one undo step; the range starts as the
// editor's selection (the cursor's byte without one).
class TDialogHexFill : public TDialogHexForm {
    Q_OBJECT
public:
    explicit TDialogHexFill(TWgtHexEdit* edit, QWidget* parent = nullptr);
    void accept() override;

private:
    QLineEdit* pattern;
};
