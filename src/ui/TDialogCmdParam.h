#pragma once

#include "app/TTypes.h"

#include <QDialog>

class IDevice;
class QPushButton;
class QLabel;
class TFormCmd;

// Edits one command's parameters in the form its family makes. OK is offered only while every field
// holds a valid value; the reason of the first invalid one is shown above the buttons.
class TDialogCmdParam : public QDialog {
    Q_OBJECT
public:
    TDialogCmdParam(IDevice* group, const TData& param, QWidget* parent = nullptr);

    // False when the command has nothing to edit (the family made no form).
    bool hasForm() const { return form != nullptr; }
    TFormCmd* getForm() const { return form; }
    // The record as edited, through the family.
    TData getParam() const;
    QString getError() const;

private:
    void updateState();

    IDevice* group;
    TData param;
    TFormCmd* form = nullptr;
    QLabel* error;
    QPushButton* ok;
};
