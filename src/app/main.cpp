#include "app/CApp.h"
#include "app/TApp.h"
#include "app/TAppData.h"
#include "app/TLang.h"
#include "app/TSettings.h"
#include "app/TTypes.h"
#include "ui/TMainWindow.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>
#include <QFont>
#include <QTextCodec>

#include <cstring>
#include <memory>

namespace {

// Options that never need a display: they run on a plain core application.
bool isConsoleOnly(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        for (const char* opt : {"--help", "-h", "--version", "-v", "--help-all"})
            if (std::strcmp(argv[i], opt) == 0) return true;
    }
    return false;
}

void applyStyle() {
    const QStringList styles = TApp::getStylesApp();
    if (!styles.contains(AppData.style, Qt::CaseInsensitive) && !styles.isEmpty()) {
        AppData.style = styles.first();
        AppData.saveData();
    }
    TApp::setStyleApp(AppData.style);
}

void applyFonts() {
    QFont font = QApplication::font();
    if (!AppData.fontAppName.isEmpty()) font.setFamily(AppData.fontAppName);
    if (AppData.fontAppSize != 0) font.setPointSize(AppData.fontAppSize);
    QApplication::setFont(font);
    if (AppData.fontMonoName.isEmpty()) AppData.fontMonoName = font.family();
    if (AppData.fontMonoSize == 0) AppData.fontMonoSize = font.pointSize();
}

} // namespace

int main(int argc, char** argv) {
    const bool console = isConsoleOnly(argc, argv);
    std::unique_ptr<QCoreApplication> app(console ? new QCoreApplication(argc, argv)
                                                  : new QApplication(argc, argv));
    QCoreApplication::setApplicationName(CApp::name);
    QCoreApplication::setApplicationVersion(CApp::version);

    qRegisterMetaType<TData>("TData");
    qRegisterMetaType<TCodeView>("TCodeView");
    qRegisterMetaType<TCodeExec>("TCodeExec");
    qRegisterMetaType<TCodeCfgStatus>("TCodeCfgStatus");

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Tarvelix: memory chip and microcontroller programmer"));
    parser.addHelpOption();
    parser.addVersionOption();
    QCommandLineOption settingsOpt(QStringLiteral("settings"),
                                   QStringLiteral("Use FILE as the settings file."), QStringLiteral("FILE"));
    parser.addOption(settingsOpt);
    parser.process(*app);

    // A relative settings file is meant relative to where the user typed the command.
    if (parser.isSet(settingsOpt))
        TSettings::setFileNameIniOverride(QFileInfo(parser.value(settingsOpt)).absoluteFilePath());

    QDir::setCurrent(TApp::getPathApp());
    QTextCodec::setCodecForLocale(QTextCodec::codecForName(CApp::codepage));

    AppData.loadData();
    Lang.loadData(AppData.getLanguageFileAbs());

    applyStyle();
    applyFonts();

    TMainWindow wnd;
    wnd.show();
    return app->exec();
}
