#pragma once

#include <QWidget>

class QCheckBox;

// Settings page of the questions the application asks, of opening the last project at start and of
// the check that runs make before they touch the chip.
class TWgtSettingsConfirm : public QWidget {
    Q_OBJECT
public:
    explicit TWgtSettingsConfirm(QWidget* parent = nullptr);
    void save();

    QCheckBox* openLastPrj;
    QCheckBox* quit;
    QCheckBox* savePrj;
    QCheckBox* process;
    QCheckBox* checkBeforeRun;
};
