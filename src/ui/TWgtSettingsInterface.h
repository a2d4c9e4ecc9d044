#pragma once

#include <QColor>
#include <QWidget>

class QCheckBox;
class QLineEdit;
class QComboBox;
class QFontComboBox;
class QPushButton;
class QSpinBox;

// Settings page of the interface: the log's colours and switches, icon set, style and fonts.
class TWgtSettingsInterface : public QWidget {
    Q_OBJECT
public:
    explicit TWgtSettingsInterface(QWidget* parent = nullptr);
    // Puts the page's values into the application data (the caller writes them).
    void save();
    void setColor(int index, const QColor& color);
    QColor getColor(int index) const;
    QCheckBox* showTime;
    QCheckBox* showMSec;
    QCheckBox* clearLog;
    QLineEdit* logDir;
    QComboBox* iconsSet;
    QComboBox* style;
    QFontComboBox* fontApp;
    QSpinBox* fontAppSize;
    QFontComboBox* fontMono;
    QSpinBox* fontMonoSize;

private:
    QList<QColor*> colorFields() const;
    QList<QPushButton*> colorButtons;
    QList<QColor> colors;
};
