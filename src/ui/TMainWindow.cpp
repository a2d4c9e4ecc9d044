#include "ui/TMainWindow.h"

#include "app/CApp.h"
#include "app/TApp.h"
#include "app/TAppData.h"
#include "app/TIcons.h"

#include <QLabel>

TMainWindow::TMainWindow(QWidget* parent) : QMainWindow(parent) {
    setWindowTitle(QStringLiteral("%1 %2").arg(CApp::full_name, CApp::version));
    setWindowIcon(TIcons::getIcon(AppData.iconsSet, QStringLiteral("app")));
    auto* label = new QLabel(windowTitle(), this);
    label->setAlignment(Qt::AlignCenter);
    setCentralWidget(label);
    TApp::setWindowGeometryMain(this, 0, 0, 0, 0);
}
