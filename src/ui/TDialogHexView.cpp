#include "ui/TDialogHexView.h"

#include "app/TApp.h"
#include "app/TLang.h"
#include "formats/TFormat.h"
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
    TFormat format(isHex ? QStringLiteral("hex") : QStringLiteral("bin"), file, 0, 0, maxSize - 1, 64 * 1024);
    QByteArray image;
    bool ok = format.open(FormatModeRead);
    long long addr = 0;
    while (ok) {
        QByteArray piece;
        ok = format.read(addr, piece);
        if (!ok || piece.isEmpty()) break;
        if (addr + piece.size() > image.size())
            image.append(int(addr + piece.size() - image.size()), char(0xFF));
        image.replace(int(addr), piece.size(), piece);
        addr += piece.size();
    }
    if (!ok) {
        errorText = Lang.get(105).arg(file, format.getErrorText());
        return false;
    }
    format.close();
    hex->setData(image);
    info->setText(
        QStringLiteral("%1  —  %2").arg(QFileInfo(file).fileName(), Lang.get(107).arg(image.size())));
    setWindowTitle(QStringLiteral("%1 - %2").arg(QFileInfo(file).fileName(), Lang.get(103)));
    return true;
}
