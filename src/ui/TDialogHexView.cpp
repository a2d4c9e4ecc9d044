#include "ui/TDialogHexView.h"

#include "app/TApp.h"
#include "app/TLang.h"
#include "misc/THexBuffer.h"
#include "ui/TWgtHexView.h"

#include <QDialogButtonBox>
#include <QFileInfo>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

TDialogHexView::TDialogHexView(QWidget* parent) : QDialog(parent) {
    setWindowTitle(Lang.get(103));
    hex = new TWgtHexView(this);
    info = new QLabel(this);
    auto* buttons = new QDialogButtonBox(this);
    buttons->addButton(Lang.get(94), QDialogButtonBox::RejectRole);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(info);
    layout->addWidget(hex, 1);
    layout->addWidget(buttons);
    TApp::setWindowGeometryOther(this, parent, 760, 560);
}

bool TDialogHexView::loadFile(const QString& file) {
    const bool isHex = QFileInfo(file).suffix().compare(QLatin1String("hex"), Qt::CaseInsensitive) == 0;
    QByteArray image;
    QString why;
    if (!THexBuffer::readImage(file, isHex ? QStringLiteral("hex") : QStringLiteral("bin"), 0, maxSize, image,
                               why)) {
        errorText = Lang.get(105).arg(file, why);
        return false;
    }
    hex->setData(image);
    info->setText(
        QStringLiteral("%1  —  %2").arg(QFileInfo(file).fileName(), Lang.get(107).arg(image.size())));
    setWindowTitle(QStringLiteral("%1 - %2").arg(QFileInfo(file).fileName(), Lang.get(103)));
    return true;
}
