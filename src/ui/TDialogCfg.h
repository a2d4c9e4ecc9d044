#pragma once

#include <QDialog>

class QPushButton;
class QLabel;
class QLineEdit;

// Name and description of a configuration. Both are written into the project file as they are, so
// texts the file cannot hold are refused, and so is a name another configuration already has.
class TDialogCfg : public QDialog {
    Q_OBJECT
public:
    // idCfg is the configuration edited, -1 for a new one.
    TDialogCfg(int idCfg, const QString& name, const QString& desc, QWidget* parent = nullptr);

    QString getName() const;
    QString getDesc() const;
    // The reason OK is refused, empty when the texts may be taken.
    QString getError() const;

    // Empty when the text can be stored in a project file, otherwise why not.
    static QString checkText(const QString& text);
    static QString checkName(int idCfg, const QString& name);

private:
    void updateState();

    const int idCfg;
    QLineEdit* nameEdit;
    QLineEdit* descEdit;
    QLabel* error;
    QPushButton* ok;
};
