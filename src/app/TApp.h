#pragma once

#include "app/TTypes.h"

#include <QColor>
#include <QStringList>

class QDialog;
class QDialogButtonBox;
class QLabel;
class QPalette;
class QPushButton;
class QWidget;

// Path helpers and small application-wide services.
class TApp {
public:
    static QString getPathApp();

    static QString getAbsoluteFile(const QString& file);
    static QString getAbsoluteFile(const QString& base, const QString& file);
    static QString getAbsolutePath(const QString& file);
    static QString getAbsolutePath(const QString& base, const QString& path);

    // The form in which a path is stored: relative to base when it can be, else absolute.
    static QString getPathFile(const QString& base, const QString& file);
    static QString getPathFile(const QString& file);

    static QString getFileName(const QString& file);    // name with extension
    static QString getFileExt(const QString& file);     // everything after the first dot of the name
    static QString getFileNameExt(const QString& file); // name without that extension

    static QString toOutText(const QString& text);
    static QString fromOutText(const QString& text);
    static QString getPathDesktop();

    static QColor getSystemColorText();
    static QColor getSystemColorBackground();
    static QColor getSystemColorButton();
    static QColor getErrorColorText();
    static QColor getErrorColorReadable(const QPalette& palette);
    static QColor getErrorColorBackground();

    static void setWindowGeometryMain(QWidget* wgt, int left, int top, int width, int height);
    static void setWindowGeometryOther(QWidget* wgt, QWidget* parent, int width, int height);
    // The OK and Cancel buttons of a dialog, wired to accept and reject; ok receives the OK button.
    static QDialogButtonBox* createOkCancel(QDialog* dialog, QPushButton** ok = nullptr);
    // A line that shows why a dialog cannot be accepted yet, in the error colour.
    static QLabel* createErrorLabel(QWidget* parent);
    // Grows a dialog whose contents need more height (a longer reason), rather than clip them.
    static void growToContents(QWidget* dialog);

    static QStringList getStylesApp();
    static void setStyleApp(const QString& name);

    // Checked parameter read: an invalid value for a missing key, reported when debug output is on.
    static QVariant getParam(const TData& data, const char* source, int line, const QString& key);
    static void setDebug(bool on);
    static bool isDebug();
    // Where the "not found" reports go (default: qWarning). Tests capture them here.
    static void setDebugSink(void (*sink)(const QString& title, const QString& text));
};

#define TAPP_PARAM(data, key) TApp::getParam((data), __FILE__, __LINE__, (key))
