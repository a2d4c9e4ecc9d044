#include "app/TIcons.h"

QIcon TIcons::getIcon(int set, const QString& name) {
    return QIcon(QStringLiteral(":/images/%1/%2.png").arg(set).arg(name));
}

int TIcons::getHeight(int set) {
    return set == 1 ? 50 : 37;
}

void TIcons::getSize(int set, int& toolBar, int& toolButton, int& tabHeight, int& listRow, int& menu,
                     int& status, int& button) {
    if (set == 1) {
        toolBar = 45, toolButton = 45, tabHeight = 45, listRow = 60, menu = 32, status = 32, button = 46;
    } else {
        toolBar = 30, toolButton = 30, tabHeight = 45, listRow = 60, menu = 16, status = 16, button = 28;
    }
}
