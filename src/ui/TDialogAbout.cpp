#include "ui/TDialogAbout.h"

#include "app/CApp.h"
#include "app/TAppData.h"
#include "app/TIcons.h"
#include "app/TLang.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

TDialogAbout::TDialogAbout(QWidget* parent) : QDialog(parent) {
    setWindowTitle(Lang.get(100));
    auto* icon = new QLabel(this);
    icon->setPixmap(TIcons::getIcon(1, QStringLiteral("app")).pixmap(64, 64));
    label = new QLabel(
        QStringLiteral("<h2>%1</h2><p>%2</p><p>%3</p>")
            .arg(QString::fromLatin1(CApp::full_name),
                 Lang.get(101).arg(QString::fromLatin1(CApp::version), QString::fromLatin1(CApp::date)),
                 Lang.get(102).toHtmlEscaped()),
        this);
    label->setWordWrap(true);
    auto* top = new QHBoxLayout;
    top->addWidget(icon, 0, Qt::AlignTop);
    top->addWidget(label, 1);
    auto* buttons = new QDialogButtonBox(this);
    buttons->addButton(Lang.get(94), QDialogButtonBox::AcceptRole);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(buttons);
    setMinimumWidth(420);
}

QString TDialogAbout::text() const {
    return label->text();
}
