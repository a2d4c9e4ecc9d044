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
#include <memory>

namespace {

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
    add("format", "Data file format: bin, hex or ihex (default: from the file's contents or extension).",
        "FORMAT");
    add("memory", "Memory of the file options: flash (default) or eeprom.", "MEMORY");
    add("fuses", "Write and verify the fuse bytes, as hex digits.", "HEX");
    add("lock", "Write and verify the lock byte, as hex digits.", "HEX");
    add("vcc", "Supply voltage to set before the operations.", "VOLTS");
    add("list-chips", "List the chips of the catalogue whose name matches the optional PATTERN.");
    add("list-progs", "List the programmers that are set up.");
    add("log-dir", "Append every run's log and one JSON line to files in DIR.", "DIR");
}

struct Options {
    QCommandLineOption settings{QStringLiteral("settings"), QStringLiteral("Use FILE as the settings file."),
                                QStringLiteral("FILE")};
    QCommandLineOption run{QStringLiteral("run"),
                           QStringLiteral("Run PROJECT without a window and print its log."),
                           QStringLiteral("PROJECT")};
    QCommandLineOption config{QStringLiteral("config"),
                              QStringLiteral("Configuration to run; repeat it to run several at once."),
                              QStringLiteral("NAME")};
    QCommandLineOption save{QStringLiteral("save"), QStringLiteral("Save the project after the runs.")};
    QCommandLineOption pauses{QStringLiteral("continue-pauses"),
                              QStringLiteral("Continue every pause at once.")};
    QCommandLineOption process{QStringLiteral("allow-process"),
                               QStringLiteral("Let the project's process commands start programs.")};
    QCommandLineOption lockOut{
        QStringLiteral("allow-lockout"),
        QStringLiteral(
            "Let fuse writes turn off serial programming of the part (SPIEN, RSTDISBL, DWEN, clock).")};
    QCommandLineOption list{QStringLiteral("list"),
                            QStringLiteral("List the configurations and commands of PROJECT."),
                            QStringLiteral("PROJECT")};
    QCommandLineOption noCheck{
        QStringLiteral("no-check"),
        QStringLiteral("Do not check commands and data files before the chip is touched.")};

    void addTo(QCommandLineParser& parser) const {
        parser.setApplicationDescription(
            QStringLiteral("Tarvelix: memory chip and microcontroller programmer"));
        parser.addHelpOption();
        parser.addVersionOption();
        parser.addOptions({settings, run, config, save, pauses, process, lockOut, list, noCheck});
        addQuickOptions(parser);
        parser.addPositionalArgument(QStringLiteral("project"),
                                     QStringLiteral("Project file to open in the window."),
                                     QStringLiteral("[PROJECT.prj]"));
    }
};

QStringList argumentList(int argc, char** argv) {
    QStringList args;
    for (int i = 0; i < argc; ++i)
        args << QString::fromLocal8Bit(argv[i]);
    return args;
}

} // namespace

int main(int argc, char** argv) {
    // The arguments are read before any application object exists: a wrong one gets the usage and
    // status 2 also where no display could be opened.
    const Options options;
    QCommandLineParser parser;
    options.addTo(parser);
    const bool parsed = parser.parse(argumentList(argc, argv));
    const bool quick = TQuickRun::wanted(argumentList(argc, argv)) ||
                       parser.isSet(QStringLiteral("list-chips")) ||
                       parser.isSet(QStringLiteral("list-progs"));
    const bool console = !parsed || quick || parser.isSet(options.run) || parser.isSet(options.list) ||
                         parser.isSet(QStringLiteral("help")) || parser.isSet(QStringLiteral("help-all")) ||
                         parser.isSet(QStringLiteral("version"));
    std::unique_ptr<QCoreApplication> app(console ? new QCoreApplication(argc, argv)
                                                  : new QApplication(argc, argv));
    QCoreApplication::setApplicationName(CApp::name);
    QCoreApplication::setApplicationVersion(CApp::version);

    qRegisterMetaType<TData>("TData");
    qRegisterMetaType<TCodeView>("TCodeView");
    qRegisterMetaType<TCodeExec>("TCodeExec");
    qRegisterMetaType<TCodeCfgStatus>("TCodeCfgStatus");

    if (!parsed) {
        std::fprintf(stderr, "%s\n\n%s", qPrintable(parser.errorText()), qPrintable(parser.helpText()));
        return 2;
    }
    if (parser.isSet(QStringLiteral("help"))) parser.showHelp(0);
    if (parser.isSet(QStringLiteral("version"))) parser.showVersion();

    // Files named on the command line are meant relative to where the user typed the command.
    const QDir startDir = QDir::current();
    auto absolute = [&](const QString& file) { return QFileInfo(startDir, file).absoluteFilePath(); };
    if (parser.isSet(options.settings))
        TSettings::setFileNameIniOverride(absolute(parser.value(options.settings)));

    QDir::setCurrent(TApp::getPathApp());
    QTextCodec::setCodecForLocale(QTextCodec::codecForName(CApp::codepage));

    AppData.loadData();
    Lang.loadData(AppData.getLanguageFileAbs());
    // For this process only: the settings file keeps its folder.
    if (parser.isSet(QStringLiteral("log-dir")))
        AppData.logDir = absolute(parser.value(QStringLiteral("log-dir")));

    if (parser.isSet(options.list)) return TRunner().list(absolute(parser.value(options.list)));
    if (parser.isSet(QStringLiteral("list-chips")))
        return TQuickRun().listChips(parser.positionalArguments().value(0));
    if (parser.isSet(QStringLiteral("list-progs"))) return TQuickRun().listProgs();
    if (quick) {
        TQuickRun::Options opt;
        QString error;
        if (!TQuickRun::parse(app->arguments(), opt, error)) {
            std::fprintf(stderr, "%s\n", qPrintable(error));
            return TRunner::ExitUsage;
        }
        if (parser.isSet(options.noCheck)) AppData.checkBeforeRun = false;
        opt.allowLockout = parser.isSet(options.lockOut);
        return TQuickRun().run(opt, startDir.absolutePath());
    }
    if (parser.isSet(options.run)) {
        TRunner::Options opt;
        opt.project = absolute(parser.value(options.run));
        opt.configs = parser.values(options.config);
        opt.save = parser.isSet(options.save);
        opt.continuePauses = parser.isSet(options.pauses);
        opt.allowProcess = parser.isSet(options.process);
        // For this run only: the settings file keeps its value.
        if (parser.isSet(options.noCheck)) AppData.checkBeforeRun = false;
        opt.allowLockout = parser.isSet(options.lockOut);
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
