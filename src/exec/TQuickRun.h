#pragma once

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

#include <cstdio>

class IDevice;

// One-line operations on a chip from the command line, as flashrom and avrdude users expect: the
// options become the commands of a temporary configuration (programmer, device, then one command per
// option in the order given), which the command-line runner runs like any other.
class TQuickRun {
public:
    struct Step {
        QString option; // without the dashes: "detect", "erase", "write", "verify", "read", "fuses", "lock"
        QString value;
    };
    struct Options {
        QString prog;              // empty: the default programmer
        QString chip;              // a catalogue name, or "auto"
        QString format;            // "bin", "hex", "ihex"; empty: from each file's extension
        QString memory = "flash";  // "flash" or "eeprom"
        QString vcc;               // supply voltage; empty: none is set
        bool allowLockout = false; // fuse writes that turn off serial programming
        QList<Step> steps;
    };

    // Whether the arguments ask for a one-liner (they name a chip or a programmer).
    static bool wanted(const QStringList& args);
    // The options of args (args[0] is the program) in the order given; false with the reason.
    static bool parse(const QStringList& args, Options& opt, QString& error);
    // The data file format key of a file: the option's choice, else its contents (a file to be written:
    // its extension).
    static QString formatKey(const QString& option, const QString& file, bool forSave);

    explicit TQuickRun(FILE* out = stdout, FILE* err = stderr) : out(out), err(err) {}

    // Runs the options with files relative to workDir; the runner's exit status.
    int run(const Options& opt, const QString& workDir);
    int listChips(const QString& pattern);
    int listProgs();

private:
    bool resolveChip(const QString& name, QString& device, QString& file);
    // Detection through the auto-detect command of each family in turn; the names that match.
    QStringList detect(const QString& prog);
    bool build(const Options& opt, const QString& device, const QString& file, const QString& workDir);
    bool addStep(const Options& opt, IDevice* dev, int idCfg, const Step& step, const QString& workDir);
    bool checkBuilt(int idCfg);
    void fail(const QString& text);

    FILE* out;
    FILE* err;
    QHash<int, QString> optionOf; // command id -> the option that made it
};
