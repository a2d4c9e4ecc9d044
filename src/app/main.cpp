#include "app/CApp.h"
#include "app/TApp.h"
#include "app/TAppData.h"
#include "app/TLang.h"
#include "app/TSettings.h"
#include "app/TTypes.h"
#include "exec/TQuickRun.h"
#include "exec/TRunner.h"
#include "ui/TMainWindow.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>
#include <QFont>
#include <QTextCodec>

#include <cstdio>
#include <cstring>
#include <memory>

namespace {

// Options that never need a display: they run on a plain core application.
bool isConsoleOnly(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        for (const char* opt : {"--help", "-h", "--version", "-v", "--help-all", "--run", "--list",
                                "--list-chips", "--list-progs", "--chip", "--prog"})
            if (std::strcmp(argv[i], opt) == 0) return true;
        if (std::strncmp(argv[i], "--chip=", 7) == 0 || std::strncmp(argv[i], "--prog=", 7) == 0) return true;
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

// The one-line chip operations; their order on the command line is read by TQuickRun itself.
void addQuickOptions(QCommandLineParser& parser) {
    const auto add = [&](const char* name, const char* help, const char* value = nullptr) {
        parser.addOption(value ? QCommandLineOption(QString::fromLatin1(name), QString::fromLatin1(help),
                                                    QString::fromLatin1(value))
                               : QCommandLineOption(QString::fromLatin1(name), QString::fromLatin1(help)));
    };
    add("prog", "Programmer for a one-line operation (default: the default programmer).", "NAME");
    add("chip", "Chip for a one-line operation, or \"auto\" to detect it.", "PART");
    add("detect", "Read the chip's identification and compare it.");
    add("erase", "Erase the chip.");
    add("write", "Write FILE into the chip's memory.", "FILE");
    add("verify", "Compare the chip's memory with FILE.", "FILE");
    add("read", "Read the chip's memory into FILE.", "FILE");
    add("format", "Data file format: bin, hex or ihex (default: from the file's extension).", "FORMAT");
    add("memory", "Memory of the file options: flash (default) or eeprom.", "MEMORY");
    add("fuses", "Write and verify the fuse bytes, as hex digits.", "HEX");
    add("lock", "Write and verify the lock byte, as hex digits.", "HEX");
    add("vcc", "Supply voltage to set before the operations.", "VOLTS");
    add("list-chips", "List the chips of the catalogue whose name matches the optional PATTERN.");
    add("list-progs", "List the programmers that are set up.");
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
    const QCommandLineOption settingsOpt(
        QStringLiteral("settings"), QStringLiteral("Use FILE as the settings file."), QStringLiteral("FILE"));
    const QCommandLineOption runOpt(QStringLiteral("run"),
                                    QStringLiteral("Run PROJECT without a window and print its log."),
                                    QStringLiteral("PROJECT"));
    const QCommandLineOption configOpt(
        QStringLiteral("config"), QStringLiteral("Configuration to run; repeat it to run several at once."),
        QStringLiteral("NAME"));
    const QCommandLineOption saveOpt(QStringLiteral("save"),
                                     QStringLiteral("Save the project after the runs."));
    const QCommandLineOption pausesOpt(QStringLiteral("continue-pauses"),
                                       QStringLiteral("Continue every pause at once."));
    const QCommandLineOption processOpt(QStringLiteral("allow-process"),
                                        QStringLiteral("Let the project's process commands start programs."));
    const QCommandLineOption listOpt(QStringLiteral("list"),
                                     QStringLiteral("List the configurations and commands of PROJECT."),
                                     QStringLiteral("PROJECT"));
    parser.addOptions({settingsOpt, runOpt, configOpt, saveOpt, pausesOpt, processOpt, listOpt});
    addQuickOptions(parser);
    parser.addPositionalArgument(QStringLiteral("project"),
                                 QStringLiteral("Project file to open in the window."),
                                 QStringLiteral("[PROJECT.prj]"));
    // A wrong argument ends with status 2, as a project that cannot be loaded does.
    if (!parser.parse(app->arguments())) {
        std::fprintf(stderr, "%s\n", qPrintable(parser.errorText()));
        return 2;
    }
    if (parser.isSet(QStringLiteral("help"))) parser.showHelp(0);
    if (parser.isSet(QStringLiteral("version"))) parser.showVersion();

    // Files named on the command line are meant relative to where the user typed the command.
    const QDir startDir = QDir::current();
    auto absolute = [&](const QString& file) { return QFileInfo(startDir, file).absoluteFilePath(); };
    if (parser.isSet(settingsOpt)) TSettings::setFileNameIniOverride(absolute(parser.value(settingsOpt)));

    QDir::setCurrent(TApp::getPathApp());
    QTextCodec::setCodecForLocale(QTextCodec::codecForName(CApp::codepage));

    AppData.loadData();
    Lang.loadData(AppData.getLanguageFileAbs());

    if (parser.isSet(listOpt)) return TRunner().list(absolute(parser.value(listOpt)));
    if (parser.isSet(QStringLiteral("list-chips")))
        return TQuickRun().listChips(parser.positionalArguments().value(0));
    if (parser.isSet(QStringLiteral("list-progs"))) return TQuickRun().listProgs();
    if (TQuickRun::wanted(app->arguments())) {
        TQuickRun::Options opt;
        QString error;
        if (!TQuickRun::parse(app->arguments(), opt, error)) {
            std::fprintf(stderr, "%s\n", qPrintable(error));
            return TRunner::ExitUsage;
        }
        return TQuickRun().run(opt, startDir.absolutePath());
    }
    if (parser.isSet(runOpt)) {
        TRunner::Options opt;
        opt.project = absolute(parser.value(runOpt));
        opt.configs = parser.values(configOpt);
        opt.save = parser.isSet(saveOpt);
        opt.continuePauses = parser.isSet(pausesOpt);
        opt.allowProcess = parser.isSet(processOpt);
        return TRunner().run(opt);
    }

    applyStyle();
    applyFonts();

    TMainWindow wnd;
    wnd.show();
    if (!parser.positionalArguments().isEmpty())
        wnd.openProject(absolute(parser.positionalArguments().first()));
    return app->exec();
}
