#pragma once

#include "ui/TDialogHexForm.h"

// Asks for a device address and puts the editor's cursor there.
class TDialogHexGoTo : public TDialogHexForm {
    Q_OBJECT
public:
    explicit TDialogHexGoTo(TWgtHexEdit* edit, QWidget* parent = nullptr);
    void accept() override;
};
