#include "app/TApp.h"

#include "app/TLang.h"

#include <QApplication>
#include <QCoreApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QLabel>
#include <QLayout>
#include <QPalette>
#include <QPushButton>
#include <QScreen>
#include <QStandardPaths>
#include <QStyleFactory>
#include <QWidget>

#include <atomic>

namespace {
std::atomic<bool> debugOn{false};
std::atomic<void (*)(const QString&, const QString&)> debugSink{nullptr};
} // namespace

QString TApp::getPathApp() {
    return QCoreApplication::applicationDirPath();
}

QString TApp::getAbsoluteFile(const QString& file) {
    return QFileInfo(file).absoluteFilePath();
}

QString TApp::getAbsoluteFile(const QString& base, const QString& file) {
    if (QFileInfo(file).isAbsolute()) return file;
    return QFileInfo(QDir(base), file).absoluteFilePath();
}

QString TApp::getAbsolutePath(const QString& file) {
    return QFileInfo(file).absolutePath();
}

QString TApp::getAbsolutePath(const QString& base, const QString& path) {
    // The folder of the file that path names; an empty path stands for a dummy file inside base.
    return QFileInfo(getAbsoluteFile(base, path.isEmpty() ? QStringLiteral("empty") : path)).absolutePath();
}

QString TApp::getPathFile(const QString& base, const QString& file) {
    const QString abs = getAbsoluteFile(base, file);
    const QString rel = QDir(base).relativeFilePath(abs);
    // On another root the "relative" form still contains the absolute path: keep the absolute one.
    if (QFileInfo(rel).isAbsolute() || rel.contains(abs)) return abs;
    return rel;
}

QString TApp::getPathFile(const QString& file) {
    return getPathFile(getPathApp(), file);
}

QString TApp::getFileName(const QString& file) {
    return QFileInfo(file).fileName();
}

QString TApp::getFileExt(const QString& file) {
    return QFileInfo(file).completeSuffix();
}

QString TApp::getFileNameExt(const QString& file) {
    return QFileInfo(file).baseName();
}

QString TApp::toOutText(const QString& text) {
    return QDir::fromNativeSeparators(text);
}

QString TApp::fromOutText(const QString& text) {
    return QDir::toNativeSeparators(text);
}

QString TApp::getPathDesktop() {
    return QStandardPaths::writableLocation(QStandardPaths::DesktopLocation);
}

QColor TApp::getSystemColorText() {
    return QGuiApplication::palette().color(QPalette::Text);
}
QColor TApp::getSystemColorBackground() {
    return QGuiApplication::palette().color(QPalette::Base);
}
QColor TApp::getSystemColorButton() {
    return QGuiApplication::palette().color(QPalette::Button);
}
QColor TApp::getErrorColorText() {
    return QColor(Qt::white);
}
QColor TApp::getErrorColorBackground() {
    return QColor(0xC0, 0x20, 0x20);
}

void TApp::setWindowGeometryMain(QWidget* wgt, int left, int top, int width, int height) {
    const QScreen* screen = QGuiApplication::primaryScreen();
    const QRect avail = screen ? screen->availableGeometry() : QRect(0, 0, 1280, 800);
    if (width <= 0 || height <= 0) {
        width = avail.width() * 3 / 4;
        height = avail.height() * 3 / 4;
        left = avail.left() + (avail.width() - width) / 2;
        top = avail.top() + (avail.height() - height) / 2;
    }
    // Never place a window where the user cannot reach it (a screen was removed since the last run).
    width = qMin(width, avail.width());
    height = qMin(height, avail.height());
    left = qBound(avail.left(), left, avail.right() - width + 1);
    top = qBound(avail.top(), top, avail.bottom() - height + 1);
    wgt->setGeometry(left, top, width, height);
}

void TApp::setWindowGeometryOther(QWidget* wgt, QWidget* parent, int width, int height) {
    wgt->resize(width, height);
    if (parent) {
        const QRect pg = parent->geometry();
        wgt->move(pg.left() + (pg.width() - width) / 2, pg.top() + (pg.height() - height) / 2);
    }
}

QStringList TApp::getStylesApp() {
    return QStyleFactory::keys();
}

void TApp::setStyleApp(const QString& name) {
    QApplication::setStyle(name);
}

QVariant TApp::getParam(const TData& data, const char* source, int line, const QString& key) {
    const auto it = data.constFind(key);
    if (it != data.constEnd()) return it.value();
    if (debugOn) {
        const QString text = QStringLiteral("Param %1, %2: %3 not found")
                                 .arg(QFileInfo(QString::fromUtf8(source)).fileName())
                                 .arg(line)
                                 .arg(key);
        if (auto sink = debugSink.load())
            sink(QStringLiteral("Error"), text);
        else
            qWarning("%s: %s", "Error", qPrintable(text));
    }
    return QVariant();
}

void TApp::setDebug(bool on) {
    debugOn = on;
}
bool TApp::isDebug() {
    return debugOn;
}
void TApp::setDebugSink(void (*sink)(const QString&, const QString&)) {
    debugSink = sink;
}

QDialogButtonBox* TApp::createOkCancel(QDialog* dialog, QPushButton** ok) {
    auto* buttons = new QDialogButtonBox(dialog);
    QPushButton* accept = buttons->addButton(Lang.get(90), QDialogButtonBox::AcceptRole);
    if (ok) *ok = accept;
    buttons->addButton(Lang.get(91), QDialogButtonBox::RejectRole);
    QObject::connect(buttons, &QDialogButtonBox::accepted, dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
    return buttons;
}

// A red that reads well on the dialog's own background, light or dark.
QColor TApp::getErrorColorReadable(const QPalette& palette) {
    return palette.color(QPalette::Window).lightness() >= 128 ? QColor(0xB0, 0x10, 0x10)
                                                              : QColor(0xFF, 0x8A, 0x80);
}

void TApp::growToContents(QWidget* dialog) {
    QLayout* box = dialog->layout();
    if (!box) return;
    const int need =
        box->hasHeightForWidth() ? box->totalHeightForWidth(dialog->width()) : box->totalSizeHint().height();
    if (need > dialog->height()) dialog->resize(dialog->width(), need);
}

QLabel* TApp::createErrorLabel(QWidget* parent) {
    auto* label = new QLabel(parent);
    label->setObjectName(QStringLiteral("error"));
    label->setWordWrap(true);
    QPalette pal = label->palette();
    pal.setColor(QPalette::WindowText, getErrorColorReadable(pal));
    label->setPalette(pal);
    return label;
}
