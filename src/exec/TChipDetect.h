#pragma once

#include "app/TTypes.h"

#include <QString>
#include <QStringList>

class TDataPrj;

// Finding the part in the socket: each family of the auto-detection list reads the identification in a
// run of its own, one after another, until one finds the part. Without a programmer no family can do
// better, so the first run that never reached the detection ends the search. The command-line runner
// and the chip panel drive the runs; this class builds each and reads its events.
class TChipDetect {
public:
    explicit TChipDetect(const QString& prog);

    // Adds the next family's run to the configuration; false when no family is left.
    bool buildNext(TDataPrj& prj, int idCfg);
    // Every event of the current run.
    void event(TCodeExec code, const QString& text, const QString& param);
    // After a run: whether the next family is worth a run.
    bool wantsMore() const;
    QStringList found() const { return parts; }

private:
    QString prog;
    QStringList families;
    int next = 0;
    bool reached = false; // the programmer answered and the family's detection started
    QStringList parts;
};
