#include "ui/TWgtSettingsInterface.h"

#include "app/TApp.h"
#include "app/TAppData.h"
#include "app/TLang.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QFontComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

QList<QColor*> TWgtSettingsInterface::colorFields() const {
    return {&AppData.colorTime,    &AppData.colorCmd,    &AppData.colorParam,
            &AppData.colorText,    &AppData.colorWork,   &AppData.colorResult,
            &AppData.colorSuccess, &AppData.colorFailed, &AppData.colorBackground};
}

TWgtSettingsInterface::TWgtSettingsInterface(QWidget* parent) : QWidget(parent) {
    auto* colorBox = new QGroupBox(Lang.get(56), this);
    auto* grid = new QGridLayout(colorBox);
    const QList<QColor*> fields = colorFields();
    const QStringList names = {Lang.get(57), Lang.get(58), Lang.get(59), Lang.get(60), Lang.get(61),
                               Lang.get(62), Lang.get(63), Lang.get(64), Lang.get(65)};
    for (int i = 0; i < fields.size(); ++i) {
        colors.append(*fields.at(i));
        auto* button = new QPushButton(names.at(i), colorBox);
        button->setObjectName(QStringLiteral("color%1").arg(i));
        colorButtons.append(button);
        connect(button, &QPushButton::clicked, this, [this, i] {
            const QColor c = QColorDialog::getColor(colors.at(i), this, Lang.get(119));
            if (c.isValid()) setColor(i, c);
        });
        grid->addWidget(button, i / 3, i % 3);
        setColor(i, colors.at(i));
    }
    showTime = new QCheckBox(Lang.get(66), this);
    showTime->setChecked(AppData.logShowTime);
    showMSec = new QCheckBox(Lang.get(67), this);
    showMSec->setChecked(AppData.logShowMSec);
    clearLog = new QCheckBox(Lang.get(68), this);
    clearLog->setChecked(AppData.logClearBeforeRun);

    iconsSet = new QComboBox(this);
    iconsSet->addItems({Lang.get(70), Lang.get(71)});
    iconsSet->setCurrentIndex(AppData.iconsSet == 1 ? 1 : 0);
    style = new QComboBox(this);
    style->addItems(TApp::getStylesApp());
    style->setCurrentText(AppData.style);
    fontApp = new QFontComboBox(this);
    fontApp->setCurrentFont(QFont(AppData.fontAppName.isEmpty() ? font().family() : AppData.fontAppName));
    fontAppSize = new QSpinBox(this);
    fontAppSize->setRange(0, 72);
    fontAppSize->setValue(AppData.fontAppSize);
    fontMono = new QFontComboBox(this);
    fontMono->setFontFilters(QFontComboBox::MonospacedFonts);
    fontMono->setCurrentFont(QFont(AppData.fontMonoName));
    fontMonoSize = new QSpinBox(this);
    fontMonoSize->setRange(0, 72);
    fontMonoSize->setValue(AppData.fontMonoSize);

    auto* form = new QFormLayout;
    form->addRow(Lang.get(69), iconsSet);
    form->addRow(Lang.get(72), style);
    auto* app = new QHBoxLayout;
    app->addWidget(fontApp, 1);
    app->addWidget(fontAppSize);
    form->addRow(Lang.get(73), app);
    auto* mono = new QHBoxLayout;
    mono->addWidget(fontMono, 1);
    mono->addWidget(fontMonoSize);
    form->addRow(Lang.get(74), mono);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(colorBox);
    layout->addWidget(showTime);
    layout->addWidget(showMSec);
    layout->addWidget(clearLog);
    // The run journal: a folder where every run adds its log and one JSON line; empty keeps none.
    logDir = new QLineEdit(AppData.logDir, this);
    logDir->setObjectName(QStringLiteral("logDir"));
    logDir->setPlaceholderText(Lang.get(1761));
    form->addRow(Lang.get(1760), logDir);
    layout->addLayout(form);
    layout->addStretch(1);
}

// Each button shows its colour on the log's background, as the log will.
void TWgtSettingsInterface::setColor(int index, const QColor& color) {
    colors[index] = color;
    const QColor back = colors.value(8);
    for (int i = 0; i < colorButtons.size(); ++i) {
        const QColor fore = i == 8 ? colors.value(3) : colors.at(i);
        colorButtons.at(i)->setStyleSheet(
            QStringLiteral("color: %1; background-color: %2;").arg(fore.name(), back.name()));
    }
}

QColor TWgtSettingsInterface::getColor(int index) const {
    return colors.value(index);
}

void TWgtSettingsInterface::save() {
    const QList<QColor*> fields = colorFields();
    for (int i = 0; i < fields.size(); ++i)
        *fields.at(i) = colors.at(i);
    AppData.logShowTime = showTime->isChecked();
    AppData.logShowMSec = showMSec->isChecked();
    AppData.logClearBeforeRun = clearLog->isChecked();
    AppData.logDir = logDir->text().trimmed();
    AppData.iconsSet = iconsSet->currentIndex();
    if (style->currentText() != AppData.style) {
        AppData.style = style->currentText();
        TApp::setStyleApp(AppData.style);
    }
    AppData.fontAppName = fontApp->currentFont().family();
    AppData.fontAppSize = fontAppSize->value();
    AppData.fontMonoName = fontMono->currentFont().family();
    AppData.fontMonoSize = fontMonoSize->value();
}
