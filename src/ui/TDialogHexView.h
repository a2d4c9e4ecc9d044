#pragma once

#include <QDialog>

class QLabel;
class TWgtHexView;

// Shows a BIN or HEX data file read-only; gaps of a HEX file show as erased bytes (FF).
class TDialogHexView : public QDialog {
    Q_OBJECT
public:
    // The largest image shown; addresses beyond it are not read.
    static const qint64 maxSize = 64 * 1024 * 1024;

    explicit TDialogHexView(QWidget* parent = nullptr);

    bool loadFile(const QString& file);
    QString getErrorText() const { return errorText; }
    TWgtHexView* view() const { return hex; }

private:
    TWgtHexView* hex;
    QLabel* info;
    QString errorText;
};
