#pragma once

#include <QDialog>

class QTabWidget;
class TWgtSettingsConfirm;
class TWgtSettingsHotKeys;
class TWgtSettingsInterface;
class TWgtSettingsProg;

// The settings pages; OK writes every page into the settings file.
class TDialogSettings : public QDialog {
    Q_OBJECT
public:
    explicit TDialogSettings(QWidget* parent = nullptr);
    void accept() override;

    QTabWidget* pages;
    TWgtSettingsInterface* pageInterface;
    TWgtSettingsConfirm* pageConfirm;
    TWgtSettingsProg* pageProg;
    TWgtSettingsHotKeys* pageHotKeys;
};
