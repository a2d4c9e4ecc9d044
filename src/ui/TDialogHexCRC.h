#pragma once

#include <QDialog>

class QComboBox;
class QLabel;
class THexBuffer;

// The check value of the whole image or of a selection with any model of the catalogue, shown at once
// as the choices change (the text can be selected and copied).
class TDialogHexCRC : public QDialog {
    Q_OBJECT
public:
    // count 0: no selection, only the whole image is offered.
    TDialogHexCRC(const THexBuffer* buffer, qint64 selStart, qint64 selCount, QWidget* parent = nullptr);

    QComboBox* modelBox() const { return model; }
    QComboBox* rangeBox() const { return range; }
    QString resultText() const;

private:
    void update();

    const THexBuffer* buf;
    qint64 selStart;
    qint64 selCount;
    QComboBox* model;
    QComboBox* range;
    QLabel* result;
};
